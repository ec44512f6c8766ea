"""Reference implementation of Blender's hashes and noise in numpy: hashes in uint32, the rest in double precision.

The library must agree up to the rounding of its sums for points that are exact in float32 and stay exact when
multiplied by the lacunarity.
"""

import itertools

import numpy as np

FINAL = "cb14 ac11 ba25 cb16 ac4 ba14 cb24".split()
MIX = "acb4 bac6 cba8 acb16 bac19 cba4".split()


def rotate(x, r):
    return x << np.uint32(r) | x >> np.uint32(32 - r)


def word_hash(*words):
    """The hash of one to four uint32 arrays."""
    words = np.broadcast_arrays(*(np.asarray(w, np.uint32) for w in words))
    v = {name: np.full(words[0].shape, 0xDEADBEEF + 4 * len(words) + 13, np.uint32) for name in "abc"}
    for name, word in zip("abc", words):
        v[name] = v[name] + word
    if len(words) == 4:
        for x, y, z, r in ((s[0], s[1], s[2], int(s[3:])) for s in MIX):
            v[x] = (v[x] - v[y]) ^ rotate(v[y], r)
            v[y] = v[y] + v[z]
        v["a"] = v["a"] + words[3]
    for x, y, r in ((s[0], s[1], int(s[2:])) for s in FINAL):
        v[x] = (v[x] ^ v[y]) - rotate(v[y], r)
    return v["c"]


def float_hash(*values):
    words = [np.asarray(v, np.float32).view(np.uint32) for v in np.broadcast_arrays(*values)]
    return word_hash(*words).astype(np.float32) * np.float32(2.0**-32)


def cell_hash(cells):
    """The integer hash of cells [n, 2..4]: words [n, 2..4] of 31 bits."""
    v = [column.astype(np.uint32) * np.uint32(1664525) + np.uint32(1013904223) for column in cells.T]
    factors = {
        2: [(0, 1, None), (1, 0, None)],
        3: [(0, 1, 2), (1, 2, 0), (2, 0, 1)],
        4: [(0, 1, 3), (1, 2, 0), (2, 0, 1), (3, 1, 2)],
    }[len(v)]
    for turn in range(2):
        for to, first, second in factors:
            v[to] = v[to] + v[first] * (np.uint32(1664525) if second is None else v[second])
        if turn == 0:
            v = [(x.view(np.int32) ^ (x.view(np.int32) >> 16)).view(np.uint32) for x in v]
    return np.stack(v, axis=1) & np.uint32(0x7FFFFFFF)


def gradient(h, f):
    """The dot products of the corners' gradients and the offsets f (a list of arrays)."""

    def signed(value, bit):
        return np.where(h >> bit & 1, -value, value)

    if len(f) == 1:
        return signed((1.0 + (h & 7)) * f[0], 3)
    if len(f) == 2:
        low = (h & 7) < 4
        return signed(np.where(low, f[0], f[1]), 0) + 2.0 * signed(np.where(low, f[1], f[0]), 1)
    if len(f) == 3:
        s = h & 15
        return signed(np.where(s < 8, f[0], f[1]), 0) + signed(
            np.where(s < 4, f[1], np.where((s == 12) | (s == 14), f[0], f[2])), 1
        )
    s = h & 31
    return (
        signed(np.where(s < 24, f[0], f[1]), 0)
        + signed(np.where(s < 16, f[1], f[2]), 1)
        + signed(np.where(s < 8, f[2], f[3]), 2)
    )


def signed_noise(p):
    """Noise at points [n, d], roughly in -1..1."""
    p = np.fmod(p, 100000.0) + 0.5 * (np.abs(p) >= 1000000.0)
    d = p.shape[1]
    cell = np.floor(p)
    f = p - cell
    u = f * f * f * (f * (f * 6.0 - 15.0) + 10.0)
    total = np.zeros(len(p))
    for corner in itertools.product((0, 1), repeat=d):
        h = word_hash(*((cell[:, k] + corner[k]).astype(np.int64).astype(np.uint32) for k in range(d)))
        weight = np.prod([u[:, k] if corner[k] else 1.0 - u[:, k] for k in range(d)], axis=0)
        total += weight * gradient(h, [f[:, k] - corner[k] for k in range(d)])
    return (0.25, 0.6616, 0.9820, 0.8344)[d - 1] * total


def fbm(p, detail, rough, lac, _offset, _gain, normalize):
    octaves, share = int(detail), detail - int(detail)
    total, weights, results = 0.0, 0.0, []
    for i in range(octaves + 2):
        total = total + signed_noise(p * lac**i) * rough**i
        weights += rough**i
        results.append(0.5 * total / weights + 0.5 if normalize else total)
    return results[octaves] + share * (results[octaves + 1] - results[octaves])


def multifractal(p, detail, rough, lac, _offset, _gain, _normalize):
    value = 1.0
    for i in range(int(detail) + 1):
        value = value * (rough**i * signed_noise(p * lac**i) + 1.0)
    i = int(detail) + 1
    return value * ((detail - int(detail)) * rough**i * signed_noise(p * lac**i) + 1.0)


def hybrid_multifractal(p, detail, rough, lac, offset, gain, _normalize):
    value, carry = np.zeros(len(p)), np.ones(len(p))
    for i in range(int(detail) + 2):
        share = 1.0 if i <= int(detail) else detail - int(detail)
        runs = carry > 0.001
        carry = np.minimum(carry, 1.0)
        octave = (signed_noise(p * lac**i) + offset) * rough**i
        value = np.where(runs, value + share * carry * octave, value)
        carry = np.where(runs, carry * (gain * octave), 0.0)
    return value


def ridged_multifractal(p, detail, rough, lac, offset, gain, _normalize):
    ridge = (offset - np.abs(signed_noise(p))) ** 2
    value = ridge
    for i in range(1, int(detail) + 1):
        ridge = (offset - np.abs(signed_noise(p * lac**i))) ** 2 * np.clip(ridge * gain, 0.0, 1.0)
        value = value + ridge * rough**i
    return value


def hetero_terrain(p, detail, rough, lac, offset, _gain, _normalize):
    value = offset + signed_noise(p)
    for i in range(1, int(detail) + 1):
        value = value + (signed_noise(p * lac**i) + offset) * rough**i * value
    i = int(detail) + 1
    return value + (detail - int(detail)) * (signed_noise(p * lac**i) + offset) * rough**i * value


FRACTALS = {
    "FBM": fbm,
    "MULTIFRACTAL": multifractal,
    "HYBRID_MULTIFRACTAL": hybrid_multifractal,
    "RIDGED_MULTIFRACTAL": ridged_multifractal,
    "HETERO_TERRAIN": hetero_terrain,
}


def shift(seed, d):
    """The offset at which the noise is evaluated for a component of the distortion or a channel of the colour."""
    seeds = np.full(d, seed, np.float32)
    h = float_hash(seeds) if d == 1 else float_hash(seeds, np.arange(d, dtype=np.float32))
    return np.float32(100.0 + 100.0 * h.astype(np.float64)).astype(np.float64)


def texture(kind, co, detail, rough, lac, offset, gain, distortion, normalize):
    """The colour [n, 3] of a noise texture at points [n, d]; its first channel is the value."""
    d = co.shape[1]
    p = np.asarray(co, np.float64)
    if distortion != 0.0:
        p = p + distortion * np.stack([signed_noise(p + shift(i, d)) for i in range(d)], axis=1)
    places = [p, p + shift(d, d), p + shift(d + 1, d)]
    return np.stack([FRACTALS[kind](q, detail, rough, lac, offset, gain, normalize) for q in places], axis=1)
