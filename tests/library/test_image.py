"""Texel access and projections of image nodes: Blender's values."""

import math

import numpy as np
import pytest

import library
from agreement import check, evaluate, table

VALUES = table("projections")
REPEAT, EXTEND, CLIP, MIRROR = range(4)
STORED, BYTES, PRODUCT = range(3)

# Tolerances relative to the largest component. The device's atan has a relative accuracy of 4e-6.
LOOSER = {"map_to_sphere": 2e-6, "map_to_tube": 2e-6, "equirect_uv": 2e-6}


@pytest.mark.parametrize("name", VALUES)
def test_agrees_with_blender(name):
    check(name, VALUES[name], LOOSER.get(name, 1e-6))


# ----------------------------------------------------------------------------------------------------
# Texels

OUT = None
WRAPS = {  # index in a row of 4: for REPEAT, EXTEND, CLIP, MIRROR
    -9: (3, 0, OUT, 0),
    -8: (0, 0, OUT, 0),
    -5: (3, 0, OUT, 3),
    -4: (0, 0, OUT, 3),
    -3: (1, 0, OUT, 2),
    -1: (3, 0, OUT, 0),
    0: (0, 0, 0, 0),
    3: (3, 3, 3, 3),
    4: (0, 3, OUT, 3),
    5: (1, 3, OUT, 2),
    7: (3, 3, OUT, 0),
    8: (0, 3, OUT, 0),
    9: (1, 3, OUT, 1),
    12: (0, 3, OUT, 3),
}


def fetch(texels, at, extension, association=STORED):
    height, width = texels.shape[:2]
    return library.call(
        "texel_fetch_a",
        "T",
        np.asarray(at, np.int32),
        f"int2({width}, {height})",
        extension,
        association,
        result="float4",
        textures={"T": texels},
    )


def numbered(width, height):
    """A texture that holds the coordinates of each texel, and 1."""
    y, x = np.mgrid[0:height, 0:width]
    return np.stack([x, y, np.ones_like(x), np.ones_like(x)], axis=-1).astype(np.float32)


@pytest.mark.parametrize("extension", [REPEAT, EXTEND, CLIP, MIRROR])
@pytest.mark.parametrize("axis", [0, 1])
def test_wrap(extension, axis):
    indices = list(WRAPS)
    at = np.zeros((len(indices), 2), np.int32)
    at[:, axis] = indices
    got = fetch(numbered(4, 7) if axis == 0 else numbered(7, 4), at, extension)
    for i, texel in zip(indices, got):
        want = WRAPS[i][extension]
        if want is OUT:
            assert (texel == 0).all(), i
        else:
            assert texel[axis] == want and texel[1 - axis] == 0 and texel[3] == 1, i


@pytest.mark.parametrize(
    "extension, want",
    [
        (REPEAT, lambda i, n: i % n),
        (EXTEND, lambda i, n: np.clip(i, 0, n - 1)),
        (MIRROR, lambda i, n: np.where(i // n % 2 == 0, i % n, n - 1 - i % n)),
    ],
)
def test_wrap_far_away(extension, want):
    last = 2**31 - 1 - np.arange(1024, dtype=np.int64)
    far = np.concatenate([[-(2**31)], -last, [-(10**6), -13, 13, 41, 10**6], last])
    for width, height in (5, 3), (1, 7), (1021, 6), (41, 2):  # 41 * (1 / 41) is less than 1 in floats
        at = np.stack([far, far[::-1]], axis=-1)
        got = fetch(numbered(width, height), at, extension)
        assert (got[:, 0] == want(at[:, 0], width)).all() and (got[:, 1] == want(at[:, 1], height)).all()
        assert (got[:, 3] == 1).all()


def test_a_single_texel_and_an_unknown_code():
    at = [[-3, 0], [0, 2], [5, 5]]
    for extension in (REPEAT, EXTEND, MIRROR):
        assert (fetch(numbered(1, 1), at, extension) == [0, 0, 1, 1]).all()
    assert (fetch(numbered(4, 3), at, 7) == fetch(numbered(4, 3), at, REPEAT)).all()


def test_clipping_looks_at_both_axes():
    at = [[0, 0], [-1, 0], [0, -1], [4, 2], [3, 3], [3, 2]]
    assert (fetch(numbered(4, 3), at, CLIP)[:, 3] == [1, 0, 0, 0, 0, 1]).all()


PIXELS = np.array(
    [[200, 100, 50, 128], [10, 20, 30, 255], [255, 255, 255, 64], [0, 0, 0, 0], [90, 180, 250, 1], [33, 66, 99, 254]],
    np.uint8,
)


@pytest.mark.parametrize(
    "association, want",
    [
        (STORED, PIXELS[:, :3] / 255),
        (BYTES, np.array([[100, 50, 25], [10, 20, 30], [64, 64, 64], [0, 0, 0], [0, 0, 0], [32, 65, 98]]) / 255),
        (
            PRODUCT,
            [
                [0.3936948, 0.1968474, 0.0984237],
                [0.039215688, 0.078431375, 0.11764707],
                [0.2509804, 0.2509804, 0.2509804],
                [0, 0, 0],
                [0.0013840832, 0.0027681664, 0.0038446756],
                [0.12890428, 0.25780857, 0.38671285],
            ],
        ),
    ],
)
def test_association(association, want):
    at = [[x, 0] for x in range(len(PIXELS))]
    got = fetch(PIXELS[None], at, REPEAT, association)
    assert np.abs(got[:, :3] - want).max() < 1e-7
    assert np.abs(got[:, 3] - PIXELS[:, 3] / 255).max() < 1e-7


def test_association_of_all_bytes_is_exact():
    colour, alpha = np.meshgrid(np.arange(256), np.arange(256))
    texels = np.stack([colour, colour, colour, alpha], axis=-1).astype(np.uint8)
    at = np.stack([colour.ravel(), alpha.ravel()], axis=-1)
    got = fetch(texels, at, REPEAT, BYTES)[:, 0].reshape(256, 256)
    assert (np.round(got * 255) == colour * alpha // 255).all()
    assert np.abs(got * 255 - colour * alpha // 255).max() < 1e-4


def test_colours_above_one_keep_their_range():
    texels = np.float32([[[8.0, 2.0, -1.0, 0.5]]])
    assert (fetch(texels, [[0, 0]], REPEAT, PRODUCT) == [[4.0, 1.0, -0.5, 0.5]]).all()
    assert (fetch(texels, [[0, 0]], REPEAT, STORED) == texels[0]).all()


# ----------------------------------------------------------------------------------------------------
# Whole lookups with the filters of the generated text, on an image of 4 x 3 texels

LOOKUPS = [  # u, v, extension: Closest, Linear, Cubic
    (
        (0.3, 0.6),
        REPEAT,
        (0.3125, 0.5, 0.84375, 1),
        (0.36874998, 0.41375, 0.815625, 0.68499994),
        (0.36650002, 0.35937414, 0.81675005, 0.6068233),
    ),
    (
        (0.3, 0.6),
        EXTEND,
        (0.3125, 0.5, 0.84375, 1),
        (0.36874998, 0.41375, 0.815625, 0.68499994),
        (0.36790627, 0.36090282, 0.81604683, 0.6069538),
    ),
    (
        (0.3, 0.6),
        CLIP,
        (0.3125, 0.5, 0.84375, 1),
        (0.36874998, 0.41375, 0.815625, 0.68499994),
        (0.3640108, 0.3584525, 0.8090148, 0.6023436),
    ),
    (
        (0.3, 0.6),
        MIRROR,
        (0.3125, 0.5, 0.84375, 1),
        (0.36874998, 0.41375, 0.815625, 0.68499994),
        (0.36790627, 0.36090282, 0.81604683, 0.6069538),
    ),
    (
        (-0.05, 0.95),
        REPEAT,
        (0.6875, 0.25, 0.65625, 1),
        (0.45625004, 0.199375, 0.77187496, 0.6500001),
        (0.41411462, 0.18992753, 0.7929427, 0.59462327),
    ),
    (
        (-0.05, 0.95),
        EXTEND,
        (0.5, 0.125, 0.75, 1),
        (0.5, 0.125, 0.75, 1),
        (0.48883858, 0.13238312, 0.7555808, 0.97292364),
    ),
    (
        (-0.05, 0.95),
        CLIP,
        (0, 0, 0, 0),
        (0.09750002, 0.024375005, 0.14625002, 0.19500004),
        (0.1039423, 0.029975135, 0.16364048, 0.20509847),
    ),
    (
        (-0.05, 0.95),
        MIRROR,
        (0.5, 0.125, 0.75, 1),
        (0.5, 0.125, 0.75, 1),
        (0.49062502, 0.15433168, 0.75468755, 0.9167698),
    ),
    (
        (1.3, -0.4),
        REPEAT,
        (0.3125, 0.5, 0.84375, 1),
        (0.36874998, 0.41374996, 0.815625, 0.685),
        (0.36650002, 0.3593741, 0.81675, 0.60682344),
    ),
    ((1.3, -0.4), EXTEND, (0.1875, 0.25, 0.90625, 0), (0.1875, 0.25, 0.90625, 0), (0.18750001, 0.25, 0.90624994, 0)),
    ((1.3, -0.4), CLIP, (0, 0, 0, 0), (0, 0, 0, 0), (3.7968873e-06, 5.0625163e-06, 0.000018351622, 0)),
    (
        (1.3, -0.4),
        MIRROR,
        (0.375, 0.125, 0.8125, 0),
        (0.31875, 0.18874994, 0.8406249, 0.31499997),
        (0.3195938, 0.21319427, 0.84020317, 0.39304608),
    ),
]


def picture():
    y, x = np.mgrid[2:-1:-1, 0:4]
    n = x + 4 * y
    return np.stack([n / 16, n * n % 7 / 8, 1 - n / 32, n % 3 / 2], axis=-1).astype(np.float32)


def taps(uv, kind):
    """Pairs (texel from the top left, weight) of a filter."""

    def axis(s):
        if kind == "closest":
            return [(math.floor(s), 1.0)]
        i = math.floor(s - 0.5)
        f = s - 0.5 - i
        if kind == "linear":
            return [(i, 1 - f), (i + 1, f)]
        return [
            (i - 1, (1 - f) ** 3 / 6),
            (i, (3 * f**3 - 6 * f**2 + 4) / 6),
            (i + 1, (-3 * f**3 + 3 * f**2 + 3 * f + 1) / 6),
            (i + 2, f**3 / 6),
        ]

    across, down = axis(uv[0] * 4), axis((1 - uv[1]) * 3)
    return [((x, y), wx * wy) for x, wx in across for y, wy in down]


@pytest.mark.parametrize("kind", ["closest", "linear", "cubic"])
@pytest.mark.parametrize("uv, extension, closest, linear, cubic", LOOKUPS)
def test_filters(uv, extension, closest, linear, cubic, kind):
    want = {"closest": closest, "linear": linear, "cubic": cubic}[kind]
    tapped = taps(uv, kind)
    got = fetch(picture(), [at for at, _ in tapped], extension)
    assert np.abs(np.array([w for _, w in tapped]) @ got - want).max() < 1e-6


# ----------------------------------------------------------------------------------------------------
# Projections


def sphere(count, seed=1):
    v = np.random.default_rng(seed).normal(size=(count, 3))
    return v / np.linalg.norm(v, axis=1, keepdims=True)


@pytest.mark.parametrize(
    "normal, blend, want",
    [
        ((0, 0, 0), 0.0, (1, 0, 0)),
        ((0, 0, 0), 0.5, (1, 0, 0)),
        ((0, 1, 1), 0.0, (1, 0, 0)),
        ((0, -2, 0), 1.0, (0, 1, 0)),
        ((0, 1, 1), 0.5, (0, 0.5, 0.5)),
        ((1, 0, -1), 0.5, (0.5, 0, 0.5)),
        ((1, 1, 0), 1 / 1024, (0.5, 0.5, 0)),
        ((1, 1, 1), 0.5, (1 / 3, 1 / 3, 1 / 3)),
        ((1e-20, 1e-20, 0), 0.5, (0.5, 0.5, 0)),
    ],
)
def test_box_weights_at_the_edges(normal, blend, want):
    assert np.abs(evaluate("box_weights", [normal], [blend]) - want).max() < 1e-6


@pytest.mark.parametrize("blend", [0.0, 0.1, 0.5, 1.0])
def test_box_weights_share_one(blend):
    w = evaluate("box_weights", sphere(4000), blend)
    # Rounding errors are divided by the blend width, so they are large for a narrow blend.
    assert np.abs(w.sum(axis=1) - 1).max() < 5e-6 and w.min() > -1e-6
    permuted = evaluate("box_weights", sphere(4000)[:, [1, 2, 0]], blend)
    assert np.abs(permuted - w[:, [1, 2, 0]]).max() < 5e-6
    if blend == 0.0:
        assert (np.sort(w, axis=1) == [0, 0, 1]).all()
        assert (w.argmax(axis=1) == np.abs(sphere(4000)).argmax(axis=1)).all()


def test_sphere_and_equirect_over_all_directions():
    d = sphere(4000)
    polar, turn = np.arccos(d[:, 2]), np.arctan2(d[:, 1], d[:, 0])
    want = np.stack([0.5 - turn / (2 * np.pi), 1 - polar / np.pi], axis=-1)
    assert np.abs(evaluate("equirect_uv", d * 7) - want).max() < 2e-6
    want[:, 0] = 0.5 - np.arctan2(d[:, 0], d[:, 1]) / (2 * np.pi)
    assert np.abs(evaluate("map_to_sphere", d * 0.3) - want).max() < 2e-6
    want[:, 1] = (d[:, 2] + 1) / 2
    assert np.abs(evaluate("map_to_tube", d) - want).max() < 2e-6


@pytest.mark.parametrize(
    "name, p, want",
    [
        ("map_to_sphere", (0, 0, -2), (0, 0)),
        ("map_to_sphere", (-0.0, 0, 1), (0, 1)),
        ("map_to_sphere", (1e-3, 0, 1), (0.25, 1 - 1e-3 / math.pi)),
        ("map_to_sphere", (1e-25, 0, 0), (0, 0)),
        ("map_to_tube", (0, -0.0, -3), (0, 0)),
        ("equirect_uv", (0, 0, -1), (0.5, 0)),
        ("equirect_uv", (-0.0, 0, 3), (0.5, 1)),
        ("equirect_uv", (0, 1e-3, -1), (0.25, 1e-3 / math.pi)),
        ("mirrorball_uv", (0, 0, 0), (0.5, 0.5)),
        ("mirrorball_uv", (0, 1.0000001, 0), (0.5, 0.5)),
    ],
)
def test_projections_at_the_edges(name, p, want):
    assert np.abs(evaluate(name, [p]) - want).max() < 2e-6


def test_the_mirror_ball_reflects_the_direction():
    d = sphere(2000)
    uv = evaluate("mirrorball_uv", d)
    x, z = (2 * uv - 1).T.astype(np.float64)
    # The ball's normal at this place reflects the view direction, +y, into the result's direction.
    normal = np.stack([x, -np.sqrt(np.maximum(0, 1 - x * x - z * z)), z], axis=-1)
    mirrored = np.array([0, 1, 0]) - 2 * normal[:, 1:2] * normal
    assert np.abs(mirrored - d)[d[:, 1] < 0.9].max() < 5e-6
