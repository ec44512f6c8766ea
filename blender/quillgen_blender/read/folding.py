"""What Blender works out ahead, from 5.0 on: a node that reads nothing but constants becomes a constant itself before
anything is rendered. Such a value converts at every border that it crosses, as constants do, where that of any other
node counts by its two real ends only.
"""

from typing import Any

from . import values
from .places import Place
from .sources import Linked, Sources, named

# The types that Blender works out; all others stay nodes, whatever they read. A texture stands among them where its
# coordinate comes by a link: its own differs from place to place.
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
        self.kept: dict[tuple[Place, str], bool] = {}  # False, too, for nodes that are being looked at

    def constant(self, linked: Linked) -> bool:
        """Whether nothing varies among all that a node reads. A list instead of recursion: chains may be long."""
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
    """What the borders make of a constant: [(operation, type that its input counts as)], and the type that the value
    counts as at last."""
    found: list[tuple[str, str]] = []
    now = held = source  # as what it counts, and as what the last step gives it: a number spreads by itself
    for border in borders:
        before = held
        if border == "BOOLEAN" and now != "BOOLEAN":
            if now == "VECTOR":  # true unless all of it is zero
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
    """A node that does one step."""
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
