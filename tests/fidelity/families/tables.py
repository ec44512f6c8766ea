"""Colour ramps and curves."""

from builder import Case, Draw

SPLINES = "splines are linear stops that stay within a thousandth"
TABLE = "Cycles looks a ramp up in a table of 257 entries, so it bends and steps at other places in between"


def cases():
    for mode in ("RGB", "HSV", "HSL"):
        for interpolation in ("LINEAR", "EASE", "CONSTANT", "B_SPLINE", "CARDINAL"):
            for seed in range(3):
                spline = mode == "RGB" and interpolation in ("B_SPLINE", "CARDINAL")
                for out in ("Color", "Alpha"):
                    yield Case(
                        "Color Ramp",
                        f"{mode} {interpolation} {out} {seed}",
                        ramp(mode, interpolation, "NEAR", seed, out),
                        SPLINES if spline else "",
                    )
        for way in ("FAR", "CW", "CCW") if mode != "RGB" else ():
            for seed in range(4):
                yield Case("Color Ramp", f"{mode} {way} {seed}", ramp(mode, "LINEAR", way, seed, "Color"))
    for interpolation in ("LINEAR", "CONSTANT"):
        yield Case(
            "Color Ramp",
            f"between the table's entries {interpolation}",
            ramp("RGB", interpolation, "NEAR", 1, "Color", odd=True),
            TABLE,
        )
    yield Case("Color Ramp", "one stop", ramp("RGB", "LINEAR", "NEAR", 9, "Color"))
    yield from curves()


def every_step(c, low=0.0, high=1.0):
    """A number that rises from low towards high in 256 steps over the tile."""
    step = (high - low) / 256
    across = c.number("x", step, low)
    return c.node("Math", {0: c.number("y", step * 16, 0.0), 1: across}).outputs[0]


def ramp(mode, interpolation, way, seed, out, odd=False):
    draw = Draw("ramp", mode, seed)
    stops = {9: [0.5], 0: [0.0, 1.0]}.get(seed) or sorted(draw.random.sample(range(2, 31), 5))
    stops = [(place + (0.3 if odd else 0.0)) / 32 if place > 1 else place for place in stops]

    def build(c):
        fac = every_step(c, *((-0.25, 1.25 + 1 / 3) if odd else (0.0, 1.0)))
        if odd:
            fac = c.node("Math", {0: fac, 1: 0.9371, 2: 0.0013}, operation="MULTIPLY_ADD").outputs[0]
        node = c.node("ValToRGB", {"Fac": fac})
        band = node.color_ramp
        band.color_mode, band.interpolation, band.hue_interpolation = mode, interpolation, way
        while len(band.elements) > 1:
            band.elements.remove(band.elements[-1])
        for number, place in enumerate(stops):
            stop = band.elements[0] if number == 0 else band.elements.new(place)
            stop.position, stop.color = place, draw.triple(0, 1) + (draw.number(0, 1),)
        return node.outputs[out]

    draw = Draw("ramp colours", mode, seed)
    return build


def curves():
    for kind in ("RGBCurve", "VectorCurve", "FloatCurve"):
        for seed in range(8):
            extend = ("EXTRAPOLATED", "HORIZONTAL")[seed % 2]
            yield Case(
                {"RGBCurve": "RGB Curves", "VectorCurve": "Vector Curves", "FloatCurve": "Float Curve"}[kind],
                f"{extend} {seed}",
                curve(kind, extend, seed),
            )


def curve(kind, extend, seed):
    """Curves with seeds below 2 stay in the usual range, 2 and 3 exceed it, and 4 and above have another factor and
    inputs far outside."""
    wide = kind == "VectorCurve"

    def build(c):
        draw = Draw("curve", kind, seed)
        scale, offset = ((1 / 8, -1.0) if wide else (1 / 16, 0.0)) if seed < 2 else (0.5, -4.0)
        given = {"RGBCurve": "Color", "VectorCurve": "Vector", "FloatCurve": "Value"}[kind]
        source = c.number("x", scale, offset) if kind == "FloatCurve" else c.vector(scale, offset)
        factor = 1.0 if seed < 4 else draw.number(-0.5, 1.5)
        node = c.node(kind, {given: source, 0: factor})
        mapping = node.mapping
        mapping.extend = extend
        mapping.use_clip = seed not in (2, 3)
        for part in mapping.curves:
            for _ in range(1 + seed % 3):
                part.points.new(draw.number(-0.9 if wide else 0.1, 0.9), draw.number(-1 if wide else 0, 1))
            if seed in (2, 3):
                part.points[-1].location = draw.number(1.25, 3), draw.number(-1, 2)
                part.points[0].location = draw.number(-2, -1.25), draw.number(-1, 2)
            for point in part.points:
                point.handle_type = draw.random.choice(("AUTO", "AUTO_CLAMPED", "VECTOR"))
        mapping.update()
        return node.outputs[0]

    return build
