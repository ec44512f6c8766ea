"""Colour models, blends and spectra: Blender's values, colorsys, and edge cases."""

import colorsys
import math

import numpy as np
import pytest

from agreement import check, evaluate, same, table

VALUES = table("colour")
BLENDS = [name for name in VALUES if name.startswith("mix_")]
ULP = 2.0**-23

# Tolerances relative to the largest component. All others agree to a few units in the last place.
LOOSER = {
    "srgb_to_linear3": 1e-6,
    "blackbody_rec709": 1e-6,
    "wavelength_xyz": 1e-6,
    "mix_hue": 1e-6,
    "mix_saturation": 1e-6,
    "mix_color": 1e-6,
    "mix_value": 1e-6,
}

CUBE = np.stack(np.meshgrid(*[np.linspace(0, 1, 12)] * 3), axis=-1).reshape(-1, 3).astype(np.float32)


@pytest.mark.parametrize("name", VALUES)
def test_agrees_with_blender(name):
    check(name, VALUES[name], LOOSER.get(name, 4 * ULP))


def test_every_blend_of_the_mix_nodes_is_there():
    assert len(BLENDS) == 19


@pytest.mark.parametrize(
    "name, row",
    [
        ("rgb_to_hsv", [[0.0, -1.0, -2.0], [0.0, 0.0, 0.0]]),
        ("rgb_to_hsv", [[0.5, 0.2, 0.3], [0.944444444, 0.6, 0.5]]),
        ("rgb_to_hsv", [[-0.2, -0.2, -0.2], [0.0, 0.0, -0.2]]),
        ("rgb_to_hsv", [[0.7, 0.7, 0.2], [1.0 / 6.0, 0.714285714, 0.7]]),
        ("hsv_to_rgb", [[math.inf, 0.0, 0.3], [0.3, 0.3, 0.3]]),
        ("hsv_to_rgb", [[7.0, 1.0, 1.0], [1.0, 0.0, 1.0]]),
        ("rgb_to_hsl", [[0.9, 0.1, 0.5], [11.0 / 12.0, 0.8, 0.5]]),
        ("rgb_to_hsl", [[0.9, 0.9, 0.9], [0.0, 0.0, 0.9]]),
        ("rgb_to_hsl", [[3.0, 3.0, 3.0], [0.0, 0.0, 1.0]]),
        ("hsl_to_rgb", [[2.0, 1.0, 0.5], [1.0, 0.0, 0.0]]),
        ("hsl_to_rgb", [[-1.0, 1.0, 0.5], [1.0, 0.0, 0.0]]),
        ("srgb_to_linear3", [[-1e30, -0.0, 0.0], [0.0, 0.0, 0.0]]),
        ("srgb_to_linear3", [[-0.055, -0.06, 1e-3], [0.0, 0.0, 1e-3 / 12.92]]),
        ("mix_burn", [1.0, [0.5, 0.5, 2.0], [0.0, -1.0, 1.0], [0.0, 0.0, 1.0]]),
        ("mix_burn", [0.0, [0.5, -0.5, 1.5], [0.0, 0.0, 0.0], [0.5, 0.0, 1.0]]),
        ("mix_dodge", [1.0, [0.0, 0.5, -0.5], [1.0, 2.0, 0.5], [0.0, 1.0, -1.0]]),
        ("mix_overlay", [1.0, [0.5, 0.49999997, -1.0], [0.25, 0.25, 0.25], [0.25, 0.24999999, -0.5]]),
        ("mix_overlay", [1.0, [0.5004, 0.4996, 0.5004], [0.0, 0.0, 1.0], [0.0008, 0.0, 1.0]]),
        ("mix_exclusion", [1.0, [-1.0, 1.0, 0.0], [-1.0, 1.0, 0.0], [0.0, 0.0, 0.0]]),
        ("mix_divide", [1.0, [0.5, -0.5, 0.0], [0.0, -0.0, 0.0], [0.5, -0.5, 0.0]]),
        ("mix_mix", [2.0, [0.0, 1.0, 2.0], [1.0, 0.0, 2.0], [2.0, -1.0, 2.0]]),
        ("mix_add", [-1.0, [0.0, 1.0, 2.0], [1.0, 1.0, 1.0], [-1.0, 0.0, 1.0]]),
        ("mix_hue", [1.0, [0.9, 0.2, 0.1], [0.5, 0.5, 0.5], [0.9, 0.2, 0.1]]),
        ("mix_saturation", [1.0, [-1.0, -1.0, -1.0], [0.9, 0.2, 0.1], [-1.0, -1.0, -1.0]]),
        ("mix_color", [0.5, [0.9, 0.2, 0.1], [0.0, 0.0, 0.0], [0.9, 0.2, 0.1]]),
        ("mix_value", [1.0, [0.4, 0.2, 0.2], [0.0, 0.0, 0.0], [0.0, 0.0, 0.0]]),
        ("blackbody_rec709", [math.inf, [0.8262954810, 0.9945080501, 1.5663077103]]),
        ("blackbody_rec709", [-math.inf, [5.4132944901, -0.2031939003, -0.0822535242]]),
        (
            "blackbody_rec709",
            [
                1300.0,
                [
                    3.34143193e3 / 1300 - 4.86551192e-4 * 1300 + 1.76486769,
                    -1.02363977e3 / 1300 + 1.20223470e-4 * 1300 + 9.36662319e-1,
                    ((-1.40949732e-11 * 1300 + 1.89878968e-7) * 1300 - 3.56632824e-4) * 1300 + 9.10767778e-2,
                ],
            ],
        ),
        ("wavelength_xyz", [375.0, [0.0, 0.0, 0.0]]),
        ("wavelength_xyz", [math.nan, [0.0, 0.0, 0.0]]),
        ("wavelength_xyz", [math.inf, [0.0, 0.0, 0.0]]),
        ("wavelength_xyz", [-1e30, [0.0, 0.0, 0.0]]),
    ],
)
def test_edges(name, row):
    check(name, [row], LOOSER.get(name, 4 * ULP))


@pytest.mark.parametrize(
    "name, model",
    [
        ("rgb_to_hsv", colorsys.rgb_to_hsv),
        ("hsv_to_rgb", colorsys.hsv_to_rgb),
        ("rgb_to_hsl", lambda r, g, b: tuple(colorsys.rgb_to_hls(r, g, b)[i] for i in (0, 2, 1))),
        ("hsl_to_rgb", lambda h, s, l: colorsys.hls_to_rgb(h, l, s)),
    ],
)
def test_models_over_the_whole_cube(name, model):
    want = np.array([model(*map(float, c)) for c in CUBE])
    got = evaluate(name, CUBE)
    # A colour that differs from grey only by rounding can have any hue.
    sure = np.ptp(CUBE, axis=1) > 1e-4 if name.startswith("rgb") else np.full(len(CUBE), True)
    assert np.abs(got - want)[sure].max() < 1e-6


@pytest.mark.parametrize("there, back", [("rgb_to_hsv", "hsv_to_rgb"), ("rgb_to_hsl", "hsl_to_rgb")])
def test_round_trips(there, back):
    assert np.abs(evaluate(back, evaluate(there, CUBE)) - CUBE).max() < 1e-6


def test_the_transfer_curve_reverses_its_inverse():
    linear = np.linspace(0, 4, 3000)
    coded = np.where(linear <= 0.0031308, 12.92 * linear, 1.055 * linear ** (1 / 2.4) - 0.055)
    got = evaluate("srgb_to_linear3", np.stack([coded, coded[::-1], coded], axis=-1))
    assert np.abs(got[:, 0] - linear).max() < 1e-6 * 4
    assert (got[::-1, 1] == got[:, 0]).all()


@pytest.mark.parametrize("name", BLENDS)
def test_without_a_factor_the_first_colour_stays(name):
    a, b = CUBE, CUBE[::-1].copy()
    assert np.abs(evaluate(name, 0.0, a, b) - a).max() < 1e-6


def test_whole_blends():
    a, b = CUBE, np.roll(CUBE, 77, axis=0)
    for name, want in {
        "mix_mix": b,
        "mix_darken": np.minimum(a, b),
        "mix_lighten": np.maximum(a, b),
        "mix_multiply": a * b,
        "mix_screen": a + b - a * b,
        "mix_add": a + b,
        "mix_subtract": a - b,
        "mix_difference": np.abs(a - b),
        "mix_exclusion": a + b - 2 * a * b,
        "mix_linear_light": a + 2 * b - 1,
        "mix_overlay": np.where(a < 0.5, 2 * a * b, 1 - 2 * (1 - a) * (1 - b)),
        "mix_soft_light": a * (1 - (1 - a) * (1 - b)) + (1 - a) * a * b,
        "mix_divide": np.where(b == 0, a, a / np.where(b == 0, 1, b)),
    }.items():
        assert np.abs(evaluate(name, 1.0, a, b) - want).max() < 4e-6, name


def test_hsv_blends_move_what_they_say():
    rng = np.random.default_rng(3)
    a, b = rng.uniform(0.05, 1.0, size=(2, 400, 3)).astype(np.float32)
    of = [np.array([colorsys.rgb_to_hsv(*map(float, c)) for c in colours]) for colours in (a, b)]
    for name, parts in {
        "mix_hue": (1, 0, 0),
        "mix_saturation": (0, 1, 0),
        "mix_color": (1, 1, 0),
        "mix_value": (0, 0, 1),
    }.items():
        mixed = np.where(parts, of[1], of[0])
        want = np.array([colorsys.hsv_to_rgb(*c) for c in mixed])
        assert np.abs(evaluate(name, 1.0, a, b) - want).max() < 2e-6, name


def test_each_component_of_the_black_body_is_exact():
    want = np.array([row[-1] for row in VALUES["blackbody_rec709"]])
    got = evaluate("blackbody_rec709", [row[0] for row in VALUES["blackbody_rec709"]])
    assert (np.abs(got - want) <= 1e-6 * np.abs(want) + 2e-7).all()


def test_the_black_body_curve_joins_its_pieces():
    limits = np.float32([965, 1167, 1449, 1902, 3315, 6365])
    below, at, above = (
        evaluate("blackbody_rec709", t)
        for t in (np.nextafter(limits, np.float32(0)), limits, np.nextafter(limits, np.float32(1e6)))
    )
    jumps = np.abs(below - at).max(axis=1)
    # The limit itself belongs to the segment above it.
    assert (jumps > 1e-4).all() and (jumps < 2e-3).all() and np.abs(above - at).max() < 1e-5
    got = evaluate("blackbody_rec709", np.linspace(900, 12000, 5000))
    assert (np.diff(got[:, 2]) > -2e-3).all() and (np.diff(got[:, 0]) < 2e-3).all()


def test_the_samples_of_all_wavelengths():
    got = evaluate("wavelength_xyz", 380.0 + 5.0 * np.arange(80))
    # The three functions have equal integrals and one peak each (the first has two).
    same([got.sum(axis=0)], [[21.3714, 21.3714, 21.3715]], 3e-5)
    turns = [(np.diff(np.sign(np.diff(c[c > 2e-3]))) != 0).sum() for c in got.T]
    assert turns == [3, 1, 1]
    between = evaluate("wavelength_xyz", 382.5 + 5.0 * np.arange(79))
    same(between, (got[:-1] + got[1:]) / 2, 2e-6)
