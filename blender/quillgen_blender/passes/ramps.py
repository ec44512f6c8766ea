"""Colour ramps as the translator takes them, from their raw facts.

Blender keeps stops in the order of their list, sorts them for nobody, interpolates in HSV and HSL linearly whatever
is set, and goes round the circle of hues in the way that `hue` names. The translator takes ascending stops and knows
the straight way between two hues. What it can't interpolate gets linear stops that stay close to the curve.

A ramp whose stops are not those of its list gets the key `origin`: for each stop its place in the list, or None where
the stop was computed. Computed stops never become parameters.
"""

from functools import lru_cache
from typing import Any

from ..notes import Note
from . import hues, polyline, ramp_values
from .options import Options
from .ramp_values import Stop
from .support import note

Placed = tuple[Stop, int | None]  # a stop and its place in the list, None if it is a new one

# Behind the first stop's position Blender shows what follows, at it the first stop itself: stops of the same place
# as the first stand this much behind it.
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
    """Whether the translator has no interpolation of that kind. It has Blender's ease, between two stops that it sees
    whole: not where a stop out of order cuts the way off."""
    if interpolation == "EASE":
        return any(second[0] < first[0] for first, second in zip(stops, stops[1:], strict=False))
    return interpolation in ramp_values.WEIGHTS and len(stops) > 1


@lru_cache(maxsize=64)
def fitted(
    stops: tuple[tuple[float, ...], ...], interpolation: str, tolerance: float
) -> tuple[tuple[float, tuple[float, ...]], ...]:
    """Linear stops that stay within the tolerance of Cycles' table. Kept for the ramps seen last: they take more
    time than all other passes, and while an artist moves a slider they stay what they are."""
    samples = ramp_values.table([[place, list(colour)] for place, *colour in stops], interpolation)
    corners = polyline.polyline(samples, 0.999 * tolerance)  # some is left for the rounding of single floats
    return tuple((step / ramp_values.STEPS, tuple(values)) for step, values in corners)


def in_order(stops: list[Stop], interpolation: str, mode: str, way: str) -> list[Placed]:
    """Ascending stops that show what those of a list do in whatever order, each with its place in the list.

    Between two stops that exceed all before them, Blender goes to the second one from the stop that precedes it in
    the list. Where that is not the first of the two, the way is cut off at the first one's position.
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
    """The pieces of a way from a position on; the first stop is a new one."""
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
