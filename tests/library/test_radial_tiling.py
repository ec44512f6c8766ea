"""Radial tiling: Blender's values, a double precision reference, and edge cases."""

import numpy as np
import pytest

import library
import radial_tiling_reference as reference
from agreement import table

VALUES = table("radial_tiling")
NEED = {"radial_tiling"}


def variables(normalize, sides, roundness, p, flags=(True, True)):
    p = np.float32(p).reshape(-1, 2)
    sides, roundness = (np.float32(np.broadcast_to(v, len(p))) for v in (sides, roundness))
    return library.call("calculate_out_variables", *flags, normalize, sides, roundness, p, result="float4", need=NEED)


def segment_id(sides, p):
    p = np.float32(p).reshape(-1, 2)
    sides = np.float32(np.broadcast_to(sides, len(p)))
    return library.call("calculate_out_segment_id", sides, p, result="float", need=NEED)


@pytest.mark.parametrize("row", VALUES["calculate_out_variables"], ids=lambda row: f"{row[2:6]}")
def test_values_of_the_table(row):
    assert np.abs(variables(*row[2:6])[0] - row[6]).max() <= 4e-6


def test_segments_of_the_table():
    rows = VALUES["calculate_out_segment_id"]
    got = segment_id([row[0] for row in rows], [row[1] for row in rows])
    assert got.tolist() == [row[2] for row in rows]


def apart(got, want):
    """The largest difference of the results, absolute up to 1, relative above."""
    off = np.abs(got - want) / np.maximum(np.abs(want), 1.0)
    return off.max()


def inner_points(n, sides, seed):
    """Points far enough from borders that rounding doesn't change their segment."""
    p = np.float32(np.random.default_rng(seed).uniform(-1.5, 1.5, (2 * n, 2)))
    kept = [x for x in p if reference.from_border(sides, *map(float, x)) > 1e-4 and np.hypot(*x) > 0.05]
    return np.array(kept[:n])


SIDES = [2.0, 2.125, 2.5, 2.96875, 3.0, 3.5, 4.0, 4.25, 5.0, 6.75, 7.0, 12.5, 31.0, 100.0625]
# Two sides with a partial roundness are omitted, because they are NaN in Blender (see below).
CASES = [
    (sides, roundness)
    for sides in SIDES
    for roundness in (0.0, 0.015625, 0.25, 0.5, 0.875, 1.0)
    if sides > 2.0 or roundness in (0.0, 1.0)
]


@pytest.mark.parametrize("normalize", [False, True])
@pytest.mark.parametrize("sides, roundness", CASES)
def test_values_everywhere(sides, roundness, normalize):
    p = inner_points(400, sides, int(sides * 8))
    want = [reference.variables(normalize, sides, roundness, float(x), float(y)) for x, y in p]
    # The device's trigonometric functions have an absolute accuracy of about 1e-6, however small a segment's angle is.
    assert apart(variables(normalize, sides, roundness, p), want) <= 8e-6 + 1.5e-6 * sides


@pytest.mark.parametrize("sides", SIDES)
def test_segments_everywhere(sides):
    p = inner_points(2000, sides, 1)
    want = [reference.segment_id(sides, float(x), float(y)) for x, y in p]
    assert segment_id(sides, p).tolist() == want


@pytest.mark.parametrize("normalize, radial, middle", [(True, 0.0, 0.5), (False, -1.0, 0.0)])
@pytest.mark.parametrize("sides", [2.0, 3.0, 4.5])
@pytest.mark.parametrize("roundness", [0.0, 0.5, 1.0])
def test_the_origin_is_the_middle_of_the_first_segment(normalize, radial, middle, sides, roundness):
    got = variables(normalize, sides, roundness, (0.0, 0.0))[0]
    assert got[:2].tolist() == [radial, middle] and got[3] == pytest.approx(np.pi / sides, rel=1e-6)
    assert segment_id(sides, (0.0, 0.0)).tolist() == [0.0]


@pytest.mark.parametrize("normalize", [False, True])
def test_rounded_strips_are_finite(normalize):
    """Two sides with a partial roundness are NaN in Blender. Here they are parallel lines, as with roundness 0."""
    p = np.random.default_rng(2).uniform(-2.0, 2.0, (500, 2))
    for roundness in (0.015625, 0.5, 0.96875):
        got = variables(normalize, 2.0, roundness, p)
        np.testing.assert_array_equal(got, variables(normalize, 2.0, 0.0, p))
        assert np.isfinite(got).all()


@pytest.mark.parametrize("normalize", [False, True])
@pytest.mark.parametrize("sides", [3.0, 5.0, 4.5])
@pytest.mark.parametrize("roundness", [1e-3, 1e-4, 1e-5])
def test_tiny_corners_are_finite(normalize, sides, roundness):
    """The radius of such a corner is as small as the rounding error."""
    angles = np.linspace(0.0, 4.0 * roundness, 500)
    angles = np.concatenate([angles, -angles[1:]])
    angles = np.concatenate([angles, angles + 2.0 * np.pi / sides])
    got = variables(normalize, sides, roundness, np.stack([np.cos(angles), np.sin(angles)], axis=1))
    assert np.isfinite(got).all()
    if normalize:
        assert got[:, 1].min() > -1e-3 and got[:, 1].max() < 1.001


def test_the_flags_make_no_difference():
    p = np.random.default_rng(3).uniform(-2.0, 2.0, (100, 2))
    want = variables(True, 4.5, 0.5, p)
    for flags in ((False, False), (True, False), (False, True)):
        np.testing.assert_array_equal(variables(True, 4.5, 0.5, p, flags), want)


def test_points_without_sense_come_to_an_end():
    wild = np.float32([np.nan, np.inf, -np.inf, 1e30, -3e38, 0.5])
    for sides in (2.0, 5.0, 4.5):
        got = variables(True, sides, 0.5, np.stack([wild, wild[::-1]], axis=1))
        assert got.shape == (6, 4)
    assert np.isfinite(variables(True, 4.5, 0.5, [(1e-30, 1e-30), (1e10, -1e10)])).all()


@pytest.mark.parametrize(
    "sides, roundness, limit",
    [("float", "float", 220), ("4.5", "0.5", 150), ("5.0", "0.5", 96), ("5.0", "1.0", 70), ("5.0", "0.0", 56)],
)
def test_cost(sides, roundness, limit):
    """The code of cases that constant arguments exclude is removed."""
    kinds = ["true", "true", "bool" if sides == "float" else "true", sides, roundness, "float2"]
    assert library.cost("calculate_out_variables", *kinds, result="float4", need=NEED) <= limit
