"""Colour ramps: the order of stops, directions of hue interpolation, splines as linear stops."""

import copy
import time

import pytest
from records import document, link, node, value
from shown import difference, shown

from quillgen_blender.passes import Options, hues, polyline, ramp_values, ramps

A, B, C = [1.0, 0.0, 0.0, 1.0], [0.0, 1.0, 0.0, 1.0], [0.0, 0.0, 1.0, 0.5]


def ramp(*stops, interp="LINEAR", mode="RGB", hue="NEAR"):
    record = node("Color Ramp", "ValToRGB", {"Fac": value(0.5)})
    return record | {"ramp": {"stops": [list(stop) for stop in stops], "interp": interp, "mode": mode, "hue": hue}}


def prepared(*stops, options=None, **words):
    return ramps.prepared(ramp(*stops, **words), options)["ramp"]


def test_stops_in_order_stay_as_they_are():
    found = prepared((0.1, A), (0.5, B), (0.9, C))
    assert found == {"stops": [[0.1, A], [0.5, B], [0.9, C]], "interp": "LINEAR", "mode": "RGB"}


def test_a_constant_ramp_shows_its_first_stop_below_the_greatest_position():
    # As in Blender: the first stop in the list with a position above 0.26 is the first one.
    found = prepared((0.6, A), (0.2, B), (0.8, C), interp="CONSTANT")
    for factor, colour in ((0.1, A), (0.26, A), (0.59, A), (0.7, B), (0.85, C)):
        assert shown(found, factor) == colour
    assert "origin" not in found


def test_beyond_all_stops_the_last_of_the_list_counts():
    found = prepared((0.2, A), (0.8, B), (0.4, C))
    assert shown(found, 0.9) == C and shown(found, 0.8) == C and shown(found, 0.79) != C
    assert "origin" not in found


def test_a_way_that_is_cut_off_starts_at_its_value_there():
    found = prepared((0.5, A), (0.0, B), (1.0, C))
    assert shown(found, 0.25) == A
    middle = [(x + y) / 2 for x, y in zip(B, C, strict=True)]  # halfway between B at 0 and C at 1
    assert shown(found, 0.500002) == pytest.approx(middle, abs=1e-5)
    assert found["origin"] == [0, None, 2]


def test_stops_of_the_first_ones_place_follow_it():
    found = prepared((0.0, A), (0.0, B), (1.0, C))
    assert shown(found, 0.0) == A and shown(found, 1e-5) == pytest.approx(B, abs=1e-4)


def test_hues_go_the_way_that_is_named():
    red, green = [1.0, 0.0, 0.1, 1.0], [0.0, 1.0, 0.0, 1.0]
    near = shown(prepared((0.0, red), (1.0, green), mode="HSV", hue="NEAR"), 0.5)
    far = shown(prepared((0.0, red), (1.0, green), mode="HSV", hue="FAR"), 0.5)
    assert near[2] < 0.1 and far[2] > 0.9
    assert prepared((0.0, red), (1.0, green), mode="HSV", interp="B_SPLINE")["interp"] == "LINEAR"
    assert hues.turned(0.9, 0.1, "NEAR") == 1


@pytest.mark.parametrize("interp", ["B_SPLINE", "CARDINAL"])
def test_splines_become_linear_stops_within_a_thousandth_of_the_table(interp):
    stops = ((0.1, A), (0.35, C), (0.6, B), (0.8, A))
    found = prepared(*stops, interp=interp)
    assert found["interp"] == "LINEAR" and found["fitted"] and set(found["origin"]) == {None}
    table = ramp_values.table([list(stop) for stop in stops], interp)
    worst = max(difference(shown(found, step / 256), colour) for step, colour in enumerate(table))
    assert 5e-4 < worst <= 1e-3
    coarse = prepared(*stops, interp=interp, options=Options(ramp_tolerance=1e-2))
    assert len(coarse["stops"]) < 0.5 * len(found["stops"])
    plain = prepared(*stops, interp=interp, options=Options(smooth_ramps=False))
    assert plain["stops"] == [list(stop) for stop in stops] and plain["interp"] == interp


def test_an_ease_stays_unless_a_stop_out_of_order_cuts_it_off():
    assert prepared((0.0, A), (0.05, B), interp="EASE")["interp"] == "EASE"
    assert prepared((0.5, A), (0.2, B), (0.9, C), interp="EASE")["fitted"]


def fewest_separate_lines(samples, tolerance):
    """The fewest separate line segments within the tolerance. This is a lower bound for a connected polyline."""
    column = [sample[0] for sample in samples]
    lines, start = 0, 0
    while start < len(column) - 1:
        end = start + 1
        while end < len(column) - 1 and fits(column[start : end + 2], tolerance):
            end += 1
        lines, start = lines + 1, end
    return lines


def fits(column, tolerance):
    pairs = [(p, q) for p in range(len(column)) for q in range(p + 1, len(column))]
    low = max((column[q] - column[p] - 2 * tolerance) / (q - p) for p, q in pairs)
    return low <= min((column[q] - column[p] + 2 * tolerance) / (q - p) for p, q in pairs)


def test_there_are_hardly_more_corners_than_the_fewest():
    grey = [(place, [shade] * 3 + [1.0]) for place, shade in ((0.0, 0.0), (0.3, 0.9), (0.7, 0.2), (1.0, 1.0))]
    for interp in ("B_SPLINE", "CARDINAL", "EASE"):
        samples = ramp_values.table([list(stop) for stop in grey], interp)
        corners = polyline.polyline(samples, 1e-3)
        assert len(corners) <= fewest_separate_lines(samples, 1e-3) + 2, interp


def test_polylines_of_flat_and_straight_curves():
    assert len(polyline.polyline([(0.5,)] * 257, 1e-3)) == 1
    straight = polyline.polyline([(step / 256, 1.0) for step in range(257)], 1e-3)
    assert len(straight) == 2 and straight[-1][0] >= 255
    jump = polyline.polyline([(0.0,)] * 100 + [(1.0,)] * 157, 1e-3)
    assert [corner for corner, _ in jump] == [99, 100]


def test_a_document_is_never_changed_and_only_splines_are_noted():
    spline = ramp((0.0, A), (1.0, B), interp="B_SPLINE")
    other = node("Math", "Math", {"Value": link("Color Ramp", "Alpha", "VALUE")})
    before = document(spline, other)
    kept = copy.deepcopy(before)
    after, notes = ramps.run(before, Options())
    assert before == kept and after["nodes"][1] is other
    assert [(note.node, note.loss) for note in notes] == [("Color Ramp", "near")]
    again, notes = ramps.run(after, Options())
    assert again is after and notes == []


def test_a_ramp_that_comes_again_costs_next_to_nothing():
    record = ramp((0.0, A), (0.31, B), (1.0, C), interp="CARDINAL")
    ramps.prepared(record)
    start = time.process_time()
    for _ in range(100):
        ramps.prepared(record)
    assert time.process_time() - start < 0.05


# Measured with ColorRamp.evaluate of Blender 5.2: interpolation, stops, and colours at factors.
MEASURED = (
    (
        "B_SPLINE",
        [
            [0.132643, [0.603629, 0.066287, 0.924, 0.069079]],
            [0.476845, [0.046885, 0.397907, 0.581799, 0.620671]],
            [0.713036, [0.538496, 0.018527, 0.245386, 0.751308]],
        ],
        {
            0.0625: [0.593921, 0.072069, 0.918034, 0.078696],
            0.390625: [0.258454, 0.265814, 0.667028, 0.454406],
            0.5: [0.223214, 0.273821, 0.54958, 0.581976],
            0.78125: [0.502202, 0.046535, 0.270222, 0.741664],
        },
    ),
    (
        "CARDINAL",
        [
            [0.2, [0.754348, 0.74473, 0.384659, 0.631229]],
            [0.4, [0.762703, 0.984395, 0.753818, 0.855072]],
            [0.8, [0.778653, 0.982695, 0.118239, 0.098147]],
        ],
        {
            0.0625: [0.75395, 0.733305, 0.367061, 0.620559],
            0.390625: [0.761927, 0.976026, 0.760064, 0.870093],
            0.5: [0.76709, 1.0, 0.649061, 0.708769],
            0.78125: [0.778105, 0.983111, 0.141118, 0.125073],
        },
    ),
)


@pytest.mark.parametrize(("interp", "stops", "colours"), MEASURED)
def test_splines_are_blenders(interp, stops, colours):
    found = ramp_values.evaluated(stops, interp, list(colours))
    for ours, colour in zip(found, colours.values(), strict=True):
        assert ours == pytest.approx(colour, abs=3e-6)
