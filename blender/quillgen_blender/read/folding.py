"""Constant folding in Blender 5.0 and later: a node that reads only constants becomes a constant before rendering. Its
value is converted at every group border that it crosses, like any constant. The value of any other node is converted
only from the type of its output to the type of the input that reads it."""

from typing import Any

from . import values
from .places import Place
from .sources import Linked, Sources, named

# The node types that Blender folds; all others stay nodes, whatever they read. A texture is folded only if its
# coordinate is linked or not used: the default coordinate varies over the surface.
TYPES = frozenset(
    (
        "FunctionNodeInputBool",
        "FunctionNodeInputInt",
        "FunctionNodeInputVector",
        "ShaderNodeBlackbody",
        "ShaderNodeClamp",
        "ShaderNodeCombineXYZ",
        "ShaderNodeFloatCurve",
        "ShaderNodeGamma",
        "ShaderNodeMapRange",
        "ShaderNodeMath",
        "ShaderNodeMix",
        "ShaderNodeMixRGB",
        "ShaderNodeRGBCurve",
        "ShaderNodeRadialTiling",
        "ShaderNodeSeparateXYZ",
        "ShaderNodeTexBrick",
        "ShaderNodeTexChecker",
        "ShaderNodeTexGabor",
        "ShaderNodeTexGradient",
        "ShaderNodeTexMagic",
        "ShaderNodeTexNoise",
        "ShaderNodeTexVoronoi",
        "ShaderNodeTexWave",
        "ShaderNodeTexWhiteNoise",
        "ShaderNodeValToRGB",
        "ShaderNodeValue",
        "ShaderNodeVectorCurve",
        "ShaderNodeVectorMath",
        "ShaderNodeVectorRotate",
    )
)


class Folding:
    def __init__(self, sources: Sources) -> None:
        self.sources = sources
        self.kept: dict[tuple[Place, str], bool] = {}  # also False for nodes that are being visited

    def constant(self, linked: Linked) -> bool:
        """Whether Blender folds a node: all that it reads is constant. Uses a stack, not recursion: chains may be
        long."""
        waiting = [linked]
        while waiting:
            one = waiting[-1]
            key = one.place, one.node.name
            first = key not in self.kept
            found = self.foldable(one)
            if first and found:
                self.kept[key] = False
                unknown = [read for read in self.read(one) if (read.place, read.node.name) not in self.kept]
                if unknown:
                    waiting += unknown
                    continue
            if first or not self.kept[key]:
                self.kept[key] = found and all(self.kept[read.place, read.node.name] for read in self.read(one))
            waiting.pop()
        return self.kept[linked.place, linked.node.name]

    def foldable(self, one: Linked) -> bool:
        name = one.node.bl_idname
        if name not in TYPES or not name.startswith("ShaderNodeTex"):
            return name in TYPES
        coordinate = named(one.node.inputs, "Vector")
        return not coordinate.enabled or self.sources.source(coordinate, one.place) is not None

    def read(self, one: Linked) -> list[Linked]:
        """The real nodes that feed a node."""
        found = (self.sources.source(socket, one.place) for socket in one.node.inputs)
        return [source for source in found if isinstance(source, Linked)]


def steps(borders: tuple[str, ...], source: str) -> tuple[list[tuple[str, str]], str]:
    """The conversions that the borders apply to a constant: [(operation, type of its input)], and the final type of the
    value."""
    found: list[tuple[str, str]] = []
    # `now`: the type at the last border. `held`: the type that the last step returns; a number becomes a vector without
    # a step.
    now = held = source
    for border in borders:
        before = held
        if border == "BOOLEAN" and now != "BOOLEAN":
            if now == "VECTOR":  # true if any component is not zero
                found.append(("LENGTH" if values.kind(held) == "triple" else "ABSOLUTE", held))
                before = "VALUE"
            found.append(("GREATER_THAN", before))
            held = "VALUE"
        elif border == "INT" and now not in ("INT", "BOOLEAN"):
            found.append(("TRUNC", held))
            held = "VALUE"
        elif values.kind(border) == "scalar" and values.kind(held) == "triple":
            found.append(("ADD", held))
            held = "VALUE"
        elif values.kind(border) == "triple" and values.kind(held) == "triple":
            held = border
        now = border
    return found, held


def record(identity: str, operation: str, link: list[Any]) -> dict[str, Any]:
    """The record of a node that performs one step."""
    if operation == "LENGTH":
        kind, reads, others = "ShaderNodeVectorMath", "Vector", {}
    else:
        kind, reads, others = "ShaderNodeMath", "Value", {"Value_001": {"t": "VALUE", "v": 0.0}}
    return {
        "id": identity,
        "type": kind,
        "in": {reads: {"t": "VECTOR" if reads == "Vector" else "VALUE", "link": link}, **others},
        "outs": {"Value": "VALUE"},
        "props": {"operation": operation},
    }
