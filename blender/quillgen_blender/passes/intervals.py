"""Interval arithmetic: bounds for the values of the outputs of a graph.

Constants are computed exactly, through all nodes that are supported; textures are bounded by their nominal ranges.
Unknown values have no interval.
"""

from typing import Any

from .luma import weights
from .scalar_intervals import Interval, add, hull, limited, mathematics, multiply, product_sum, subtract

Value = list[Interval | None]  # one interval for a number, three for a vector or a colour
UNIT: Interval = (0.0, 1.0)
TRIPLES = ("VECTOR", "RGBA", "ROTATION")


class Intervals:
    """The intervals of one document. Each output is computed once."""

    def __init__(self, document: dict[str, Any]) -> None:
        self.nodes = {node["id"]: node for node in document["nodes"]}
        self.images = document.get("images", {})
        self.weights = weights(document.get("host", {}).get("blender", (5,)))
        self.found: dict[tuple[str, str], Value] = {}

    def number(self, node: dict[str, Any], socket: str, default: float | None = None) -> Interval | None:
        """The interval of an input that is read as a number."""
        return self.input(node, socket, 1, default)[0]

    def vector(self, node: dict[str, Any], socket: str, default: float | None = None) -> Value:
        """The intervals of an input's three components."""
        return self.input(node, socket, 3, default)

    def input(self, node: dict[str, Any], socket: str, width: int, default: float | None) -> Value:
        entry = node["in"].get(socket)
        if entry is None:
            return [None if default is None else (default, default)] * width
        if "link" in entry:
            source, output, kind = entry["link"]
            return self.fitted(self.output(source, output), kind, width)
        held = entry.get("v")
        if held is None:
            return [None] * width
        parts = list(held) if isinstance(held, (list, tuple)) else [held]
        return self.fitted([(float(part), float(part)) for part in parts[:3]], entry["t"], width)

    def fitted(self, value: Value, kind: str | None, width: int) -> Value:
        """Converts a value to one number or to three, as links do."""
        if len(value) == width:
            return value
        if width == 3:
            return value[:1] * 3
        shares = self.weights if kind == "RGBA" else (1 / 3, 1 / 3, 1 / 3)
        return [product_sum(value, [(share, share) for share in shares])]

    def output(self, source: str, output: str) -> Value:
        key = source, output
        if key not in self.found:
            self.found[key] = [None]  # the value that a cycle of links reads
            node = self.nodes.get(source)
            rule = RULES.get(node["type"]) if node else None
            self.found[key] = rule(self, node, output) if rule and node else [None]
        return self.found[key]


def _value(at: Intervals, node: dict[str, Any], output: str) -> Value:
    number = float(node["props"].get("value", 0.0))
    return [(number, number)]


def _color(at: Intervals, node: dict[str, Any], output: str) -> Value:
    return [(float(part), float(part)) for part in node["props"].get("color", (0.5, 0.5, 0.5))[:3]]


def _math(at: Intervals, node: dict[str, Any], output: str) -> Value:
    operands = [at.number(node, name, 0.0) for name in ("Value", "Value_001", "Value_002")]
    found = mathematics(node["props"].get("operation", "ADD"), operands)
    return [clamped(found) if node["props"].get("use_clamp") else found]


def _vector_math(at: Intervals, node: dict[str, Any], output: str) -> Value:
    operation = node["props"].get("operation", "ADD")
    a, b, c = (at.vector(node, name, 0.0) for name in ("Vector", "Vector_001", "Vector_002"))
    scale = at.number(node, "Scale", 1.0)
    if operation == "DOT_PRODUCT":
        return [product_sum(a, b)]
    if operation in ("LENGTH", "DISTANCE"):
        apart = a if operation == "LENGTH" else [subtract(x, y) for x, y in zip(a, b, strict=True)]
        return [mathematics("SQRT", [product_sum_of_squares(apart)])]
    if operation == "NORMALIZE":
        return [(-1.0, 1.0)] * 3
    if operation == "SCALE":
        return [multiply(x, scale) for x in a]
    word = {"FRACTION": "FRACT"}.get(operation, operation)
    return [mathematics(word, [x, y, z]) for x, y, z in zip(a, b, c, strict=True)]


def product_sum_of_squares(vector: Value) -> Interval | None:
    squares = [mathematics("MULTIPLY", [size, size]) for size in (mathematics("ABSOLUTE", [part]) for part in vector)]
    return add(add(squares[0], squares[1]), squares[2])


def clamped(interval: Interval | None) -> Interval | None:
    return UNIT if interval is None else limited(interval, UNIT)


def mixed(factor: Interval | None, one: Interval | None, two: Interval | None) -> Interval | None:
    """The interval of a + t (b - a). With t between 0 and 1 it lies between a and b."""
    if factor is not None and factor[0] == factor[1]:
        return add(multiply(one, subtract((1.0, 1.0), factor)), multiply(two, factor))
    if factor is not None and factor[0] >= 0.0 and factor[1] <= 1.0:
        return hull(one, two)
    return add(one, multiply(factor, subtract(two, one)))


def _mix(at: Intervals, node: dict[str, Any], output: str) -> Value:
    props = node["props"]
    kind = props.get("data_type", "FLOAT")
    if kind == "VECTOR" and props.get("factor_mode") == "NON_UNIFORM":
        factors: Value = at.vector(node, "Factor_Vector")
    else:
        factors = [at.number(node, "Factor_Float")] * 3
    if props.get("clamp_factor"):
        factors = [clamped(factor) for factor in factors]
    if kind == "FLOAT":
        return [mixed(factors[0], at.number(node, "A_Float"), at.number(node, "B_Float"))]
    word = {"VECTOR": "Vector", "RGBA": "Color"}.get(kind)
    if word is None:
        return [None]
    one, two = at.vector(node, f"A_{word}"), at.vector(node, f"B_{word}")
    blend = props.get("blend_type", "MIX") if kind == "RGBA" else "MIX"
    return blended(blend, factors, one, two, bool(kind == "RGBA" and props.get("clamp_result")))


def _mix_rgb(at: Intervals, node: dict[str, Any], output: str) -> Value:
    factors = [clamped(at.number(node, "Fac"))] * 3
    one, two = at.vector(node, "Color1"), at.vector(node, "Color2")
    return blended(node["props"].get("blend_type", "MIX"), factors, one, two, bool(node["props"].get("use_clamp")))


BLENDS = {"ADD": "ADD", "SUBTRACT": "SUBTRACT", "MULTIPLY": "MULTIPLY", "DARKEN": "MINIMUM", "LIGHTEN": "MAXIMUM"}


def blended(blend: str, factors: Value, one: Value, two: Value, clamp: bool) -> Value:
    if blend in BLENDS:
        two = [mathematics(BLENDS[blend], [x, y]) for x, y in zip(one, two, strict=True)]
    elif blend != "MIX":
        two = [None] * 3
    found = [mixed(factor, x, y) for factor, x, y in zip(factors, one, two, strict=True)]
    return [clamped(part) for part in found] if clamp else found


def _map_range(at: Intervals, node: dict[str, Any], output: str) -> Value:
    props = node["props"]
    kind = props.get("interpolation_type", "LINEAR")
    if props.get("data_type") == "FLOAT_VECTOR":
        names = ("Vector", "From_Min_FLOAT3", "From_Max_FLOAT3", "To_Min_FLOAT3", "To_Max_FLOAT3")
        parts = list(zip(*(at.vector(node, name) for name in names), strict=True))
    else:
        parts = [tuple(at.number(node, name) for name in ("Value", "From Min", "From Max", "To Min", "To Max"))]
    found: Value = []
    for part, low, high, start, end in parts:
        share = mathematics("DIVIDE", [subtract(part, low), subtract(high, low)])
        if kind in ("SMOOTHSTEP", "SMOOTHERSTEP") or (props.get("clamp") and share is None):
            share = UNIT
        elif props.get("clamp"):
            share = clamped(share)
        found.append(mixed(share, start, end))
    return found


def _clamp(at: Intervals, node: dict[str, Any], output: str) -> Value:
    value, low, high = (at.number(node, name) for name in ("Value", "Min", "Max"))
    limits = hull(low, high)
    return [limits if value is None or limits is None else limited(value, limits)]


def _separate(names: tuple[str, ...], socket: str) -> Any:
    def rule(at: Intervals, node: dict[str, Any], output: str) -> Value:
        if node["props"].get("mode", "RGB") != "RGB" or output not in names:
            return [None]
        return [at.vector(node, socket)[names.index(output)]]

    return rule


def _combine(names: tuple[str, ...]) -> Any:
    def rule(at: Intervals, node: dict[str, Any], output: str) -> Value:
        if node["props"].get("mode", "RGB") != "RGB":
            return [None] * 3
        return [at.number(node, name) for name in names]

    return rule


def _grey(at: Intervals, node: dict[str, Any], output: str) -> Value:
    return at.fitted(at.vector(node, "Color"), "RGBA", 1)


def _invert(at: Intervals, node: dict[str, Any], output: str) -> Value:
    factor = at.number(node, "Fac")
    return [mixed(factor, part, subtract((1.0, 1.0), part)) for part in at.vector(node, "Color")]


def _ramp(at: Intervals, node: dict[str, Any], output: str) -> Value:
    colours = list(zip(*(colour for _, colour in node["ramp"]["stops"]), strict=True))
    parts: Value = [(min(part), max(part)) for part in colours]
    if node["ramp"]["mode"] != "RGB":
        parts = [UNIT] * 4
    return parts[3:] if output == "Alpha" else parts[:3]


def _float_curve(at: Intervals, node: dict[str, Any], output: str) -> Value:
    curve = node["curve"]
    value = at.number(node, "Value")
    inside = value is not None and value[0] >= curve["min"] and value[1] <= curve["max"]
    if not inside and curve.get("extend", "EXTRAPOLATED") == "EXTRAPOLATED":
        return [None]
    return [mixed(at.number(node, "Factor"), value, (min(curve["tables"][0]), max(curve["tables"][0])))]


def _noise(at: Intervals, node: dict[str, Any], output: str) -> Value:
    props = node["props"]
    plain = props.get("noise_type", "FBM") in ("FBM", "HETERO_TERRAIN", "MULTIFRACTAL") and props.get("normalize", True)
    return [UNIT if plain else None] * (3 if output == "Color" else 1)


def _voronoi(at: Intervals, node: dict[str, Any], output: str) -> Value:
    if output in ("Color", "Position"):
        return [UNIT if output == "Color" else None] * 3
    return [UNIT if node["props"].get("normalize") and output == "Distance" else None]


def _brick(at: Intervals, node: dict[str, Any], output: str) -> Value:
    if output == "Fac":
        return [UNIT]
    colours = [at.vector(node, name) for name in ("Color1", "Color2", "Mortar")]
    return [hull(hull(one, two), three) for one, two, three in zip(*colours, strict=True)]


def _checker(at: Intervals, node: dict[str, Any], output: str) -> Value:
    if output == "Fac":
        return [UNIT]
    return [hull(x, y) for x, y in zip(at.vector(node, "Color1"), at.vector(node, "Color2"), strict=True)]


def _image(at: Intervals, node: dict[str, Any], output: str) -> Value:
    plain = not at.images.get(node["props"].get("image"), {}).get("float")
    return [UNIT if plain else None] * (1 if output == "Alpha" else 3)


def _unit(at: Intervals, node: dict[str, Any], output: str) -> Value:
    return [UNIT] * (3 if output == "Color" else 1)


RULES: dict[str, Any] = {
    "ShaderNodeValue": _value,
    "ShaderNodeRGB": _color,
    "ShaderNodeMath": _math,
    "ShaderNodeVectorMath": _vector_math,
    "ShaderNodeMix": _mix,
    "ShaderNodeMixRGB": _mix_rgb,
    "ShaderNodeMapRange": _map_range,
    "ShaderNodeClamp": _clamp,
    "ShaderNodeSeparateXYZ": _separate(("X", "Y", "Z"), "Vector"),
    "ShaderNodeSeparateColor": _separate(("Red", "Green", "Blue"), "Color"),
    "ShaderNodeCombineXYZ": _combine(("X", "Y", "Z")),
    "ShaderNodeCombineColor": _combine(("Red", "Green", "Blue")),
    "ShaderNodeRGBToBW": _grey,
    "ShaderNodeInvert": _invert,
    "ShaderNodeValToRGB": _ramp,
    "ShaderNodeFloatCurve": _float_curve,
    "ShaderNodeTexNoise": _noise,
    "ShaderNodeTexVoronoi": _voronoi,
    "ShaderNodeTexBrick": _brick,
    "ShaderNodeTexChecker": _checker,
    "ShaderNodeTexImage": _image,
    **dict.fromkeys(
        (
            "ShaderNodeTexWhiteNoise",
            "ShaderNodeTexWave",
            "ShaderNodeTexGradient",
            "ShaderNodeTexMagic",
            "ShaderNodeFresnel",
            "ShaderNodeLayerWeight",
        ),
        _unit,
    ),
}
