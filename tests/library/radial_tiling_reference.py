"""Reference implementation of Blender's radial tiling: one point at a time, in double precision, case by case."""

from math import atan, atan2, cos, floor, hypot, pi, sin, sqrt, tan


def mix(a, b, t):
    return a + t * (b - a)


def along(length, g, q, d):
    x = length * cos(g)
    return length * sin(g) + (x * d + 0.5 * (1 - x) * d * d / q if d < q else q * (0.5 * x - 0.5) + d)


def norm_h(h, g, q, e):
    return h * tan(g) + q * (0.5 * h + 0.5) + e


def norm_l(length, g, q, e):
    return length * sin(g) + q * (0.5 * length * cos(g) + 0.5) + e


def segment_id(n, px, py):
    return floor(n * (atan2(py, px) / (2 * pi) + (py < 0)))


class Tiling:
    """The quantities that all cases share. The methods return (h, t, divisor of t, W, R)."""

    def __init__(self, n, rho, px, py):
        self.n, self.rho, self.px, self.py = n, rho, px, py
        self.length = hypot(px, py)
        self.theta = atan2(py, px) + (2 * pi if py < 0 else 0)
        self.alpha = a = pi / n
        self.sigma = 2 * a
        self.k = floor(self.theta / self.sigma)
        self.phi = self.theta - self.k * self.sigma
        self.beta = a - atan((1 - rho) * tan(a))
        self.gamma, self.q = a - self.beta, (1 - rho) * self.beta
        self.width = tan(self.gamma) + self.q + rho * self.beta
        self.turn = self.k * self.sigma + a

    def signed(self, t, middle):
        return -t if self.phi < middle else t

    def straight(self, g, q, e):
        h = self.length * cos(self.alpha - self.phi)
        t = h * tan(abs(self.alpha - self.phi))
        return h, self.signed(t, self.alpha), norm_h(h, g, q, e), self.width, self.turn

    def corner(self):
        psi = self.phi - (self.sigma if self.phi > self.alpha else 0)
        c = (1 - self.rho) / cos(self.alpha)
        h = self.length / (cos(psi) * c + sqrt((cos(psi) * c) ** 2 + self.rho**2 - c * c))
        d, e = self.beta - abs(psi), self.rho * self.beta
        t = along(self.length, self.gamma, self.q, d)
        edge = self.gamma, self.q, e
        divisor = mix(norm_h(h, *edge), norm_l(self.length, *edge), d / self.beta)
        return h, self.signed(t, self.alpha), divisor, self.width, self.turn

    def whole(self):
        if self.rho == 0 or (self.beta <= self.phi < self.sigma - self.beta):
            h, t, divisor, width, turn = self.straight(self.gamma, self.q, self.rho * self.beta)
            return (h, t, 1.0, 0.0, turn) if self.n == 2 else (h, t, divisor, width, turn)
        return self.corner()

    def fractional_sharp(self):
        lam = pi - floor(self.n) * self.alpha
        if self.theta < 2 * pi - 2 * lam:
            return self.straight(self.alpha, 0.0, 0.0)
        r, g = cos(self.alpha) / cos(lam), self.length * cos(lam - self.phi)
        t = r * g * tan(abs(lam - self.phi))
        return r * g, self.signed(t, lam), r * g * tan(lam), tan(lam), self.k * self.sigma + lam

    def fractional(self):
        if self.rho == 0:
            return self.fractional_sharp()
        a, rho, theta, beta = self.alpha, self.rho, self.theta, self.beta
        lam = pi - floor(self.n) * a
        start = 2 * pi - 2 * lam
        beta2 = lam - atan((1 - rho) * tan(lam))
        rc = rho * tan(lam) / tan(0.5 * (a + lam))
        cx = cos(beta2) / cos(lam - beta2) - rc * cos(lam)
        cy = rc * sin(lam) - sin(beta2) / cos(lam - beta2)
        w = atan((cy + rc * sin(a)) / (cx + rc * cos(a)))
        big = a - w
        eps = 1 - tan(a - w) / tan(a)
        qo = (1 - eps) * w
        if w <= theta < start - w:
            if beta <= self.phi < self.sigma - beta or theta >= start - beta or theta < beta:
                beside = theta >= start - a or theta < a
                return self.straight(*((big, qo, eps * w) if beside else (self.gamma, self.q, rho * beta)))
            return self.corner()
        g2, q2 = lam - beta2, (1 - rho) * beta2
        r = cos(a) / cos(lam)
        width2, turn2 = tan(g2) + r * (q2 * (0.5 / r + 0.5) + rho * beta2), self.k * self.sigma + lam
        if start + beta2 <= theta < 2 * pi - beta2:
            g = self.length * cos(lam - self.phi)
            t = r * g * tan(abs(lam - self.phi))
            return r * g, self.signed(t, lam), r * norm_h(g, g2, q2, rho * beta2), width2, turn2
        chi = atan2(self.py, self.px)
        if start - w <= theta < 2 * pi - lam:
            chi = -(chi + 2 * lam)
        u = sin(chi) * cy + cos(chi) * cx
        g = self.length / (u + sqrt(u * u + rc * rc - cx * cx - cy * cy))
        h = r * g
        if chi < 0:
            d = beta2 - abs(chi)
            edge = g2, q2, rho * beta2
            divisor = r * mix(norm_h(g, *edge), norm_l(self.length, *edge), d / beta2)
            return h, self.signed(r * along(self.length, g2, q2, d), lam), divisor, width2, turn2
        d = w - abs(chi)
        divisor = mix(norm_h(h, big, qo, eps * w), norm_l(self.length, big, qo, eps * w), d / w)
        return h, self.signed(along(self.length, big, qo, d), a), divisor, self.width, self.turn


def variables(normalize, n, rho, px, py):
    tiling = Tiling(n, rho, px, py)
    h, t, divisor, width, turn = tiling.whole() if n == floor(n) else tiling.fractional()
    t = 0.0 if px == 0 and py == 0 else t / divisor if normalize else t
    return (h, 0.5 * t + 0.5, width, turn) if normalize else (h - 1, t, width, turn)


def from_border(n, px, py):
    """The angle between a point and the nearest border or middle of a segment, where the result depends on rounding."""
    theta = atan2(py, px) % (2 * pi)
    lam = pi - floor(n) * pi / n
    angles = [k * pi / n for k in range(2 * floor(n) + 1)] + [2 * pi - lam, 2 * pi]
    return min(abs(theta - a) for a in angles)
