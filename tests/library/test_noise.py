"""Noise textures: Blender's values, a double precision reference, and edge cases."""

import math

import numpy as np
import pytest

import library
import noise_reference
from agreement import table

VALUES = table("noise")
KINDS = list(noise_reference.FRACTALS)
# The tables are from Blender 5.0, which rounds the offsets of distortion and colour twice. Six of the offsets differ by
# one ulp, and slope, distortion and octaves amplify the difference.
OTHER_OFFSETS = 2e-4
# detail, roughness, lacunarity, offset, gain, distortion, normalize
PLAIN = (2.0, 0.5, 2.0, 0.25, 1.5, 0.0, 1.0)


def texture(name, co, settings, want_colour=1.0):
    """Returns (value, colour) at the points. Each setting is a number or an array."""
    arrays = [np.broadcast_to(np.float32(s), len(co)) for s in (*settings, want_colour)]
    return library.call(name, co, *map(np.ascontiguousarray, arrays), result="float", out_args=("float3",))


def columns(rows):
    co = np.array([row[0] for row in rows], np.float32)
    settings = [np.array([row[i] for row in rows], np.float32) for i in range(1, 8)]
    return co, settings, np.array([row[8] for row in rows], np.float32)


def points(d, n, seed, extent=40.0):
    """Random points whose coordinates are multiples of 1/256, which are exact in float32 and stay so when doubled."""
    p = np.round(np.random.default_rng(seed).uniform(-extent, extent, (n, d)) * 256.0) / 256.0
    return p.astype(np.float32)


def flat(co):
    return np.ascontiguousarray(co[:, 0]) if co.shape[1] == 1 else co


@pytest.mark.parametrize("name", VALUES["signed"])
def test_signed_noise_of_the_table(name):
    rows = VALUES["signed"][name]
    got = library.call(name, np.float32([row[0] for row in rows]), result="float")
    # Some values in the table have only four digits.
    want = np.array([row[1] for row in rows])
    short = np.array([len(repr(row[1])) < 8 and abs(row[1]) * 1e4 % 1 == 0 for row in rows])
    assert (np.abs(got - want) <= np.where(short, 5e-5, 2e-7)).all(), (got, want)


@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_signed_noise_everywhere(d):
    co = np.concatenate([points(d, 3000, d), points(d, 500, d + 10, 90000.0)])
    got = library.call(f"noise_signed{d}", flat(co), result="float")
    assert np.abs(got - noise_reference.signed_noise(np.float64(co))).max() <= 6e-7


@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_signed_noise_of_huge_coordinates(d):
    rng = np.random.default_rng(d)
    co = (rng.choice([-1.0, 1.0], (4000, d)) * 10.0 ** rng.uniform(4.9, 12.3, (4000, d))).astype(np.float32)
    # Multiples of the period, and the adjacent floats on both sides.
    exact = np.repeat(np.float32(rng.integers(1, 10000, (300, 1)) * 100000), d, axis=1)
    beside = [np.nextafter(exact, np.float32(towards)) for towards in (0, np.inf)]
    co = np.concatenate([co, exact, *beside])
    got = library.call(f"noise_signed{d}", flat(co), result="float")
    assert np.abs(got - noise_reference.signed_noise(np.float64(co))).max() <= 6e-7


@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_noise_is_zero_at_whole_coordinates(d):
    co = np.round(points(d, 500, d))
    assert (library.call(f"noise_signed{d}", flat(co), result="float") == 0.0).all()


@pytest.mark.parametrize("name", VALUES["textures"])
@pytest.mark.parametrize("want_colour", [0.0, 1.0])
def test_textures_of_the_table(name, want_colour):
    co, settings, want = columns(VALUES["textures"][name])
    value, colour = texture(name, co, settings, want_colour)
    distorted = settings[5] != 0.0
    assert (np.abs(value - want) <= np.where(distorted, OTHER_OFFSETS, 2e-6)).all()
    assert np.array_equal(colour[:, 0], value) if want_colour else (colour == 0.0).all()


@pytest.mark.parametrize("name", VALUES["colours"])
def test_colours_of_the_table(name):
    co, settings, want = columns(VALUES["colours"][name])
    assert np.abs(texture(name, co, settings)[1] - want).max() <= OTHER_OFFSETS


def test_offsets_are_rounded_once():
    seeds, columns = np.float32([[s for s in range(6) for _ in range(4)], [0, 1, 2, 3] * 6])
    want = np.float32(100.0 + 100.0 * noise_reference.float_hash(seeds, columns).astype(np.float64))
    got = library.call("noise_offset4", np.int32(range(6)), result="float4")
    assert np.array_equal(got.ravel(), want)


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("d", [1, 2, 3, 4])
@pytest.mark.parametrize(
    "settings",
    [
        PLAIN,
        (0.0, 0.5, 2.0, 1.0, 2.0, 0.0, 0.0),
        (0.625, 1.5, 2.0, -0.5, 1.0, 0.0, 0.0),
        (3.25, 0.75, 4.0, 0.5, -2.0, 0.0, 1.0),
        (4.0, 0.0, 0.5, 1.0, 3.0, 0.0, 1.0),
        (2.9375, 0.5, -2.0, 0.0, 1.0, 0.0, 0.0),
    ],
)
def test_value_in_double_precision(kind, d, settings):
    co = points(d, 300, d)
    value, _ = texture(f"noise_texture{d}_{kind}", flat(co), settings, 0.0)
    want = noise_reference.texture(kind, co, *settings)[:, 0]
    assert (np.abs(value - want) <= 3e-6 * np.maximum(1.0, np.abs(want))).all()


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_colour_and_distortion_in_double_precision(kind, d):
    settings = (1.5, 0.5, 2.0, 0.5, 1.5, 0.75, 1.0)
    co = points(d, 300, d + 20, 8.0)
    value, colour = texture(f"noise_texture{d}_{kind}", flat(co), settings)
    want = noise_reference.texture(kind, co, *settings)
    # The coordinates of the second and third channel are rounded to 1.5e-5, which slope and octaves amplify.
    assert np.abs(colour - want).max() <= 5e-4
    assert np.array_equal(colour[:, 0], value)


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("want_colour", [0.0, 1.0])
def test_neighbours_whose_loops_are_longer_change_nothing(kind, want_colour):
    co = points(3, 64, 6, 8.0)
    details, distortions = np.float32([0.0, 1.5, 4.0, 2.0]), np.float32([0.0, 0.75])
    detail, distortion = np.resize(details, 64), np.repeat(np.resize(distortions, 16), 4)
    value, colour = texture(f"noise_texture3_{kind}", co, (detail, *PLAIN[1:5], distortion, 1.0), want_colour)
    for alike in details:
        for shared in distortions:
            own = (detail == alike) & (distortion == shared)
            assert own.sum() == 8
            settings = (alike, *PLAIN[1:5], shared, 1.0)
            lone, lone_colour = texture(f"noise_texture3_{kind}", co[own], settings, want_colour)
            assert np.array_equal(value[own], lone) and np.array_equal(colour[own], lone_colour)


@pytest.mark.parametrize("d", [1, 2, 3, 4])
def test_fifteen_octaves(d):
    co = points(d, 200, d)
    settings = (15.0, 0.875, 2.0, 0.0, 1.0, 0.0, 1.0)
    value, _ = texture(f"noise_texture{d}_FBM", flat(co), settings, 0.0)
    assert np.abs(value - noise_reference.texture("FBM", co, *settings)[:, 0]).max() <= 2e-6


@pytest.mark.parametrize("kind", KINDS)
def test_the_settings_that_a_fractal_does_not_use(kind):
    co = points(3, 50, 5)
    unused = {
        "FBM": {3, 4},
        "MULTIFRACTAL": {3, 4, 6},
        "HYBRID_MULTIFRACTAL": {6},
        "RIDGED_MULTIFRACTAL": {6},
        "HETERO_TERRAIN": {4, 6},
    }[kind]
    before, _ = texture(f"noise_texture3_{kind}", co, PLAIN)
    for place, other in ((3, 0.75), (4, 0.375), (6, 0.0)):
        settings = [other if i == place else s for i, s in enumerate(PLAIN)]
        after, _ = texture(f"noise_texture3_{kind}", co, settings)
        assert np.array_equal(before, after) == (place in unused), place


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("bad", [math.inf, -math.inf, math.nan, 3e38])
def test_ends_whatever_it_is_given(kind, bad):
    co = np.float32([[bad, 0.5, 0.5], [0.5, 0.5, 0.5]])
    value, _ = texture(f"noise_texture3_{kind}", co, PLAIN)
    want = noise_reference.texture(kind, co[1:], *PLAIN)[0, 0]
    assert abs(value[1] - want) <= 2e-6
    for place in range(1, 6):
        settings = [bad if i == place else s for i, s in enumerate(PLAIN)]
        assert len(texture(f"noise_texture3_{kind}", co, settings)[0]) == 2


FLOATS = ["float"] * 8


@pytest.mark.parametrize("d, most", [(1, 205), (2, 340), (3, 380), (4, 780)])
@pytest.mark.parametrize("kind", KINDS)
def test_cost(kind, d, most):
    name = f"noise_texture{d}_{kind}"
    co = "float" if d == 1 else f"float{d}"
    assert library.cost(name, co, *FLOATS, result="float", out_args=("float3",)) <= most


def test_the_flags_of_a_generated_text_cut_what_is_not_asked_for():
    def cost(distortion, normalize, want):
        return library.cost(
            "noise_texture3_FBM",
            "float3",
            *FLOATS[:5],
            distortion,
            normalize,
            want,
            result="float",
            out_args=("float3",),
        )

    flags = [("0.0", "0.0", "0.0"), ("0.0", "1.0", "0.0"), ("0.0", "1.0", "1.0")]
    bare, normalized, coloured = (cost(*f) for f in flags)
    assert bare < normalized < coloured < cost(*FLOATS[:3])
    # Without colour and distortion the loop over them is removed.
    assert bare <= library.cost("noise_signed3", "float3", result="float") + 30
