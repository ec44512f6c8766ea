"""Converts Blender's colour ramps to the form that the translator takes.

Blender keeps stops in list order and doesn't sort them, interpolates linearly in HSV and HSL whatever is set, and goes
around the hue circle in the way that `hue` names. The translator takes ascending stops and interpolates linearly
between two hues. Interpolations that it lacks are replaced by linear stops that stay close to the curve.

A ramp whose stops differ from its list gets the key `origin`: for each stop its index in the list, or None if the stop
was computed. Computed stops never become parameters.
"""

from functools import lru_cache
from typing import Any

from ..notes import Note
from . import hues, polyline, ramp_values
from .options import Options
from .ramp_values import Stop
from .support import note

Placed = tuple[Stop, int | None]  # a stop and its index in the list, None for a new stop

# At the first stop's position Blender shows the first stop, beyond it what follows. Stops with the same position as the
# first are therefore moved this much beyond it.
BEHIND = 1e-6


def run(document: dict[str, Any], options: Options) -> tuple[dict[str, Any], list[Note]]:
    notes = []
    nodes = []
    for record in document["nodes"]:
        changed = prepared(record, options) if "ramp" in record else record
        nodes.append(changed)
        if changed is not record and record["ramp"]["interp"] != "EASE" and changed["ramp"].get("fitted"):
            notes.append(note(record["id"], "ShaderNodeValToRGB", "B-Spline"))
    same = all(old is new for old, new in zip(document["nodes"], nodes, strict=True))
    return (document if same else document | {"nodes": nodes}), notes


def prepared(record: dict[str, Any], options: Options | None = None) -> dict[str, Any]:
    """The node's record with a ramp for the translator. Without the key `hue` the stops are in order already."""
    options = options or Options()
    ramp = record.get("ramp")
    if ramp is None:
        return record
    stops, mode = ramp["stops"], ramp["mode"]
    interpolation = ramp["interp"] if mode == "RGB" else "LINEAR"
    plain = {key: value for key, value in ramp.items() if key != "hue"} | {"interp": interpolation}
    if options.smooth_ramps and needs_fit(stops, interpolation):
        corners = fitted(tuple((place, *colour) for place, colour in stops), interpolation, options.ramp_tolerance)
        plain |= {
            "stops": [[place, list(colour)] for place, colour in corners],
            "interp": "LINEAR",
            "origin": [None] * len(corners),
            "fitted": True,
        }
        return record | {"ramp": plain}
    if "hue" not in ramp:
        return record
    ordered = in_order(stops, interpolation, mode, ramp["hue"])
    if [origin for _, origin in ordered] != list(range(len(stops))):
        plain["origin"] = [origin for _, origin in ordered]
    return record | {"ramp": plain | {"stops": [stop for stop, _ in ordered]}}


def needs_fit(stops: list[Stop], interpolation: str) -> bool:
    """Whether the translator lacks the interpolation. It has Blender's ease between two complete stops, but not if a
    stop out of order cuts the interpolation off."""
    if interpolation == "EASE":
        return any(second[0] < first[0] for first, second in zip(stops, stops[1:], strict=False))
    return interpolation in ramp_values.WEIGHTS and len(stops) > 1


@lru_cache(maxsize=64)
def fitted(
    stops: tuple[tuple[float, ...], ...], interpolation: str, tolerance: float
) -> tuple[tuple[float, tuple[float, ...]], ...]:
    """Linear stops that stay within the tolerance of Cycles' table. Cached for the last ramps: they take more time than
    all other passes, and don't change while an artist moves a slider."""
    samples = ramp_values.table([[place, list(colour)] for place, *colour in stops], interpolation)
    corners = polyline.polyline(samples, 0.999 * tolerance)  # the rest is for the rounding of single floats
    return tuple((step / ramp_values.STEPS, tuple(values)) for step, values in corners)


def in_order(stops: list[Stop], interpolation: str, mode: str, way: str) -> list[Placed]:
    """Ascending stops that show the same as those of a list in any order, each with its index in the list.

    Between two stops that exceed all before them, Blender interpolates to the second one from its predecessor in the
    list. If that is not the first of the two, the interpolation is cut off at the first one's position.
    """
    found: list[Placed] = [(stops[0], 0)]
    top = 0  # the last stop that exceeded all before it
    for place in range(1, len(stops) + 1):
        if place < len(stops) and stops[place][0] <= stops[top][0]:
            continue
        start = stops[top][0] + (BEHIND if top == 0 else 0.0)
        before = place - 1
        if place == len(stops):
            if before != top:
                found.append(([start, stops[before][1]], before))
            break
        pieces: list[Placed] = [(stops[before], before), (stops[place], place)]
        if mode != "RGB":
            between = hues.through_the_seam([stops[before], stops[place]], mode, way)[1:-1]
            pieces[1:1] = [(stop, None) for stop in between]
        if before != top:
            pieces = cut(pieces, start, interpolation, mode)
            found.append(pieces[0])
        found += pieces[1:]
        top = place
    return found


def cut(pieces: list[Placed], start: float, interpolation: str, mode: str) -> list[Placed]:
    """The pieces of an interpolation from a position on; the first stop is a new one."""
    while len(pieces) > 2 and pieces[1][0][0] <= start:
        pieces = pieces[1:]
    (left, first), origin = pieces[0]
    (right, second), _ = pieces[1]
    if interpolation == "CONSTANT" or left == start:
        return [([start, first], origin)] + pieces[1:]
    share = (start - left) / (right - left)
    if mode == "RGB":
        colour = [x + (y - x) * share for x, y in zip(first, second, strict=True)]
    else:
        one, two = hues.split(first, mode), hues.split(second, mode)
        colour = hues.join([x + (y - x) * share for x, y in zip(one, two, strict=True)], mode)
    return [([start, colour], None)] + pieces[1:]
