"""Computes the magnitude of real displacement from the ranges of the values that feed it.

The translator knows the range of a Displacement node whose Scale and Midlevel are plain values, for a height from 0 to
1. This pass over a result computes the range from what feeds the displacement, through constants and textures, and sets
a magnitude that fits it: offsets are not clipped, and most of the range is used. Only the last number of the generated
HLSL changes, and the parameters for Scale and Midlevel stay live.
"""

import math
from collections.abc import Collection
from typing import Any, NamedTuple

from ..notes import Note
from .intervals import Intervals
from .options import Options
from .parameters import number
from .scalar_intervals import Interval, Maybe, hull, mathematics, multiply, subtract

HEADROOM = 1.25  # textures can overshoot their range a little, and sliders move
SMALLEST = -4  # power of two of the smallest magnitude, in centimetres
LARGEST = 16  # power of two of the largest plausible magnitude: above 650 m the range counts as unknown
UNKNOWN = "displacement range unknown - Nanite displacement magnitude set to 1 m (offsets beyond +-50 cm are clipped)"


class Along(NamedTuple):
    """The range of a displacement along the normal, in metres; `assumed`: a height of unknown range was assumed to lie
    between 0 and 1."""

    metres: Interval
    assumed: bool


def set_magnitude(
    result: dict[str, Any], document: dict[str, Any], named: Collection[str], options: Options
) -> tuple[dict[str, Any], list[Note]]:
    displacement = result["displacement"]
    if not displacement or not options.find_range:
        return result, []
    source, output = document["out"]["displacement"][:2]
    found = along(Intervals(document), source, output)
    if found is None:
        return result, []
    magnitude = fitting(found.metres)
    tail = f" / {number(displacement['magnitude'])};"
    if magnitude is None or not displacement["code"].endswith(tail):
        return result, []
    code = displacement["code"].removesuffix(tail) + f" / {number(magnitude)};"
    warnings = [warning for warning in result["warnings"] if warning != UNKNOWN]
    changed = result | {"displacement": displacement | {"code": code, "magnitude": magnitude}, "warnings": warnings}
    low, high = (f"{100.0 * metres:.4g}" for metres in found.metres)
    text = f"displaces by {low} to {high} cm along the normal; the magnitude in Unreal is {magnitude:g} cm"
    if found.assumed:
        text += " (for a height between 0 and 1)"
    return changed, [Note(source, text, "info")]


def fitting(metres: Interval) -> float | None:
    """The smallest power of two, in centimetres, of which one half on either side contains the range and some
    headroom."""
    most = 2.0 * max(abs(metres[0]), abs(metres[1])) * 100.0 * HEADROOM
    if not math.isfinite(most):
        return None
    power = SMALLEST if most <= 2.0**SMALLEST else math.ceil(math.log2(most))
    return 2.0**power if power <= LARGEST else None


def along(at: Intervals, source: str, output: str) -> Along | None:
    """The range of an output that is read as a displacement."""
    node = at.nodes.get(source)
    rule = RULES.get(node["type"]) if node else None
    if rule and node:
        found: Along | None = rule(at, node)
        if found is not None:
            return found
    return any_way(at.fitted(at.output(source, output), None, 3))


def any_way(vector: list[Maybe]) -> Along | None:
    """The range of a vector in an unknown direction: its maximum length, to both sides."""
    parts = [mathematics("ABSOLUTE", [part]) for part in vector]
    if any(part is None for part in parts):
        return None
    length = math.hypot(*(part[1] for part in parts if part is not None))
    return Along((-length, length), False)


def input_along(at: Intervals, node: dict[str, Any], socket: str) -> Along | None:
    entry = node["in"].get(socket, {})
    if "link" in entry:
        return along(at, *entry["link"][:2])
    return any_way(at.vector(node, socket, 0.0))


def _displacement(at: Intervals, node: dict[str, Any]) -> Along | None:
    height, middle, scale = (at.number(node, name) for name in ("Height", "Midlevel", "Scale"))
    metres = multiply(subtract(height or (0.0, 1.0), middle), scale)
    if metres is None:
        return None
    if "link" in node["in"].get("Normal", ()):  # along a direction other than the mesh's own normal
        most = max(abs(metres[0]), abs(metres[1]))
        metres = -most, most
    return Along(metres, height is None)


def _vector_displacement(at: Intervals, node: dict[str, Any]) -> Along | None:
    middle, scale = at.number(node, "Midlevel"), at.number(node, "Scale")
    vector = [part or (0.0, 1.0) for part in at.vector(node, "Vector")]
    assumed = None in at.vector(node, "Vector")
    parts = [multiply(subtract(part, middle), scale) for part in vector]
    if node["props"].get("space", "TANGENT") == "TANGENT":  # y is along the normal
        return None if parts[1] is None else Along(parts[1], assumed)
    found = any_way(parts)
    return found and found._replace(assumed=assumed)


def _vector_math(at: Intervals, node: dict[str, Any]) -> Along | None:
    operation = node["props"].get("operation", "ADD")
    if operation == "SCALE":
        return scaled(input_along(at, node, "Vector"), at.number(node, "Scale", 1.0))
    if operation in ("ADD", "SUBTRACT"):
        one, two = (input_along(at, node, name) for name in ("Vector", "Vector_001"))
        return one and two and plus(one, scaled(two, (1.0, 1.0) if operation == "ADD" else (-1.0, -1.0)))
    if operation in ("MULTIPLY", "MULTIPLY_ADD"):
        product = multiplied(at, node, "Vector", "Vector_001") or multiplied(at, node, "Vector_001", "Vector")
        if operation == "MULTIPLY":
            return product
        rest = input_along(at, node, "Vector_002")
        return product and rest and plus(product, rest)
    return None


def multiplied(at: Intervals, node: dict[str, Any], socket: str, by: str) -> Along | None:
    """The range of a displacement times a vector. Equal factors on all axes keep the direction."""
    found, factors = input_along(at, node, socket), at.vector(node, by, 0.0)
    if found is None or any(factor is None for factor in factors):
        return None
    if factors[0] == factors[1] == factors[2]:
        return scaled(found, factors[0])
    factor = max(abs(end) for ends in factors if ends for end in ends)
    length = max(abs(end) for end in found.metres)
    return Along((-factor * length, factor * length), found.assumed)


def _mix(at: Intervals, node: dict[str, Any]) -> Along | None:
    props = node["props"]
    kind = props.get("data_type", "FLOAT")
    if node["type"] == "ShaderNodeMixRGB":
        sockets, clamp, factor = ("Color1", "Color2"), props.get("use_clamp"), at.number(node, "Fac")
    elif kind == "FLOAT" or props.get("factor_mode") == "NON_UNIFORM":
        return None
    else:
        word = "Vector" if kind == "VECTOR" else "Color"
        sockets, clamp, factor = (f"A_{word}", f"B_{word}"), props.get("clamp_result"), at.number(node, "Factor_Float")
    if clamp or (kind != "VECTOR" and props.get("blend_type", "MIX") != "MIX"):
        return None
    inside = props.get("clamp_factor") or node["type"] == "ShaderNodeMixRGB"
    one, two = (input_along(at, node, name) for name in sockets)
    if one is None or two is None or (not inside and (factor is None or factor[0] < 0.0 or factor[1] > 1.0)):
        return None
    if factor is not None and factor[0] == factor[1]:
        share = min(max(factor[0], 0.0), 1.0)
        first = scaled(one, (1.0 - share, 1.0 - share))
        second = scaled(two, (share, share))
        return first and second and plus(first, second)
    metres = hull(one.metres, two.metres)
    return metres and Along(metres, one.assumed or two.assumed)


def scaled(found: Along | None, factor: Maybe) -> Along | None:
    metres = multiply(found.metres, factor) if found else None
    return Along(metres, found.assumed) if found and metres else None


def plus(one: Along, two: Along | None) -> Along | None:
    if two is None:
        return None
    metres = one.metres[0] + two.metres[0], one.metres[1] + two.metres[1]
    return Along(metres, one.assumed or two.assumed)


RULES: dict[str, Any] = {
    "ShaderNodeDisplacement": _displacement,
    "ShaderNodeVectorDisplacement": _vector_displacement,
    "ShaderNodeVectorMath": _vector_math,
    "ShaderNodeMix": _mix,
    "ShaderNodeMixRGB": _mix,
}
