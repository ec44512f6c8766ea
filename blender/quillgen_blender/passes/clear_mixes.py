"""Mix Shaders with a transparent side.

In Blender the other side keeps its colours and is only thinner. The translator interpolates all values of the two
sides, and the transparent one is black; Unreal then multiplies by the opacity once more, so soft edges are dark. This
pass removes such a Mix Shader where it is the surface: the other side gets its factor as opacity. In other places, as
below a Mix Shader of two surfaces, one opacity can't say what is seen of which side, and nothing changes.
"""

from collections import Counter
from typing import Any

from ..notes import Note
from . import made
from .made import Operand, is_linked
from .options import Options
from .shaders import principled

Record = dict[str, Any]
CLEAR = ("ShaderNodeBsdfTransparent", "ShaderNodeHoldout")
MIX = "ShaderNodeMixShader"
SIDES = ("Shader", "Shader_001")
BLACK = [0.0, 0.0, 0.0, 1.0]


def run(document: Record, options: Options) -> tuple[Record, list[Note]]:
    surface = document["out"].get("surface")
    if not options.clear_mixes or not surface or not any(node["type"] in CLEAR for node in document["nodes"]):
        return document, []
    thinner = Thinner(document)
    if not thinner.is_clear_mix(surface[0]) or not thinner.can_thin(surface[0]):
        return document, []
    source = thinner.thin(surface[0], 1.0)
    nodes = [thinner.changed.get(node["id"], node) for node in document["nodes"]] + thinner.nodes
    return document | {"nodes": nodes, "out": document["out"] | {"surface": source[:2]}}, []


class Thinner(made.Builder):
    """Multiplies the opacity of shaders. `changed`: the records that take the place of those with the same ids."""

    def __init__(self, document: Record) -> None:
        super().__init__(document)
        self.records = {node["id"]: node for node in document["nodes"]}
        self.changed: dict[str, Record] = {}
        links = [entry["link"][0] for node in document["nodes"] for entry in node["in"].values() if "link" in entry]
        links += [source[0] for source in document["out"].values() if source]
        self.single = {identity for identity, times in Counter(links).items() if times == 1}

    def sides(self, identity: str) -> list[str]:
        """The ids of the shaders that are linked to a Mix Shader."""
        sockets = self.records[identity]["in"]
        return [sockets[name]["link"][0] for name in SIDES if is_linked(sockets.get(name))]

    def is_clear(self, identity: str) -> bool:
        return identity in self.records and self.records[identity]["type"] in CLEAR

    def is_clear_mix(self, identity: str) -> bool:
        """Whether it is a Mix Shader with one transparent side and another shader."""
        if identity not in self.records or self.records[identity]["type"] != MIX:
            return False
        sides = self.sides(identity)
        return len(sides) == 2 and self.is_clear(sides[0]) != self.is_clear(sides[1])

    def can_thin(self, identity: str) -> bool:
        """Whether the shader and all that it mixes are known, and nothing else reads them."""
        if self.is_clear(identity):
            return True
        if identity not in self.single or identity not in self.records:
            return False
        kind, sockets = self.records[identity]["type"], self.records[identity]["in"].keys()
        if kind == MIX:
            sides = self.sides(identity)
            return "Fac" in sockets and len(sides) == 2 and all(map(self.can_thin, sides))
        return kind in SHADERS and SHADERS[kind][1] <= sockets

    def thin(self, identity: str, weight: Operand, below_mix: bool = False) -> list[str]:
        """The link to the shader with its opacity multiplied by `weight`."""
        node = self.records[identity]
        if self.is_clear(identity):
            return [identity, next(iter(node["outs"]), "BSDF"), "SHADER"]
        if self.is_clear_mix(identity) and not below_mix:
            first, second = self.sides(identity)
            falling = self.is_clear(second)
            share = self.product(f"{identity} Opacity", weight, self.share(node, falling))
            return self.thin(first if falling else second, share)
        if node["type"] == MIX:
            thinned = {
                name: {"t": "SHADER", "link": self.thin(node["in"][name]["link"][0], weight, below_mix=True)}
                for name in SIDES
            }
            self.changed[identity] = node | {"in": node["in"] | thinned}
            return [identity, "Shader", "SHADER"]
        change, _ = SHADERS[node["type"]]
        self.changed[identity] = change(self, node, weight)
        return [identity, "BSDF", "SHADER"]

    def share(self, mix: Record, falling: bool) -> Operand:
        """The factor of a Mix Shader, from 0 to 1, as the share of its second side or of its first. A Math node takes
        the place of the Mix Shader, so that a parameter stays with it."""
        factor = mix["in"]["Fac"]
        operands = (made.value(1.0), factor) if falling else (factor, made.value(0.0))
        self.changed[mix["id"]] = {
            "id": mix["id"],
            "type": "ShaderNodeMath",
            "in": dict(zip(("Value", "Value_001"), operands, strict=True)),
            "outs": {"Value": "VALUE"},
            "props": {"operation": "SUBTRACT" if falling else "ADD", "use_clamp": True},
        }
        return made.link(mix["id"], "Value", "VALUE")

    def opacity(self, node: Record, weight: Operand) -> Record:
        """The entry of Alpha."""
        alpha = node["in"].get("Alpha")
        if is_linked(alpha):
            limits = {"Value": alpha, "Value_001": made.value(0.0)}
            name = f"{node['id']} Alpha Limit"
            alpha = self.add(name, "ShaderNodeMath", limits, "Value", "VALUE", operation="ADD", use_clamp=True)
        return self.entry(self.product(f"{node['id']} Alpha", made.number(alpha, 1.0), weight))


def thin_principled(thinner: Thinner, node: Record, weight: Operand) -> Record:
    return node | {"in": node["in"] | {"Alpha": thinner.opacity(node, weight)}}


def thin_diffuse(thinner: Thinner, node: Record, weight: Operand) -> Record:
    return principled(
        node,
        Base_Color=node["in"]["Color"],
        Specular_IOR_Level=made.value(0.0),
        Alpha=thinner.entry(weight),
    )


def thin_metal(thinner: Thinner, node: Record, weight: Operand) -> Record:
    sockets = node["in"]
    color = sockets["Color"] if "Color" in sockets else sockets["Base Color"]
    metal = {"Metallic": made.value(1.0), "Roughness": sockets["Roughness"]}
    return principled(node, Base_Color=color, **metal, Alpha=thinner.entry(weight))


def thin_emission(thinner: Thinner, node: Record, weight: Operand) -> Record:
    return principled(
        node,
        Base_Color=made.value(BLACK, "RGBA"),
        Roughness=made.value(0.5),
        Specular_IOR_Level=made.value(0.0),
        Emission_Color=node["in"]["Color"],
        Emission_Strength=node["in"]["Strength"],
        Alpha=thinner.entry(weight),
    )


# How each shader is thinned, and the sockets that this needs. The translator names those that a document lacks.
SHADERS: dict[str, tuple[Any, set[str]]] = {
    "ShaderNodeBsdfPrincipled": (thin_principled, set()),
    "ShaderNodeBsdfDiffuse": (thin_diffuse, {"Color"}),
    "ShaderNodeBsdfAnisotropic": (thin_metal, {"Color", "Roughness"}),
    "ShaderNodeBsdfMetallic": (thin_metal, {"Base Color", "Roughness"}),
    "ShaderNodeEmission": (thin_emission, {"Color", "Strength"}),
    "ShaderNodeBackground": (thin_emission, {"Color", "Strength"}),
}
