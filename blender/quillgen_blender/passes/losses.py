"""Notes on what is lost without a warning from the translator, with the node's name."""

from collections.abc import Iterator
from functools import cached_property
from typing import Any

from ..notes import Note
from .made import acts, is_linked
from .options import Options
from .support import note

WHITE = [1.0, 1.0, 1.0]
Node = dict[str, Any]


def run(document: dict[str, Any], options: Options) -> tuple[dict[str, Any], list[Note]]:
    """Returns the same document, and the notes."""
    material = Material(document)
    notes = [found for node in document["nodes"] if node["type"] in TELLERS for found in told(material, node)]
    host = document.get("host", {})
    if host.get("volume"):
        notes.append(note("", "ShaderNodeOutputMaterial", "Volume"))
    notes += [note(driven, "ShaderNodeValue", "Driver") for driven in host.get("drivers", ())]
    return document, notes


def told(material: "Material", node: Node) -> Iterator[Note]:
    for found in TELLERS[node["type"]](material, node):
        yield found if isinstance(found, Note) else note(node["id"], node["type"], found)


class Material:
    """Facts about a document as a whole that the notes depend on."""

    def __init__(self, document: dict[str, Any]) -> None:
        self.document = document
        self.uv_maps = document.get("uv_maps", [])

    @cached_property
    def used(self) -> set[tuple[str, str]]:
        """The outputs that something reads."""
        entries = (entry for node in self.document["nodes"] for entry in node["in"].values())
        links = {(entry["link"][0], entry["link"][1]) for entry in entries if "link" in entry}
        return links | {(source[0], source[1]) for source in self.document["out"].values() if source}

    def reads(self, node: Node, *outputs: str) -> list[str]:
        """Those of the outputs that something reads."""
        return [output for output in outputs if (node["id"], output) in self.used]

    @cached_property
    def vertex_colour(self) -> str:
        """The name of the attribute that is exported to Unreal as the vertex colour: the mesh's active one if the
        material reads it, else the first one that the material reads and the mesh has; "" if it reads none."""
        host = self.document.get("host", {})
        active, layers = host.get("active_color", ""), host.get("color_attributes")
        asked = [name for node in self.document["nodes"] if (name := attribute(self, node)) is not None]
        if active and (active in asked or "" in asked):
            return str(active)
        return next((name for name in asked if name and (layers is None or name in layers)), "")


def attribute(material: Material, node: Node) -> str | None:
    """The name of the vertex colour that a node reads, "" for the active one; None if it reads none."""
    if node["type"] == "ShaderNodeVertexColor":
        return str(node["props"].get("layer_name", ""))
    if node["type"] == "ShaderNodeAttribute" and node["props"].get("attribute_type", "GEOMETRY") == "GEOMETRY":
        name = node["props"].get("attribute_name", "")
        return None if name in material.uv_maps else str(name)
    return None


def _attribute(material: Material, node: Node) -> Iterator[str | Note]:
    name, read = attribute(material, node), material.vertex_colour
    if node["type"] == "ShaderNodeAttribute" and node["props"].get("attribute_type", "GEOMETRY") != "GEOMETRY":
        yield "Property"
        return
    if name is None:
        return
    layers = material.document.get("host", {}).get("color_attributes")
    if name and name != read:
        instead = f"{read} is read instead" if read else "the mesh's vertex colour is read instead"
        yield Note(node["id"], f"{name}: a mesh in Unreal has one vertex colour, {instead}", "lost")
    elif name and layers is not None and name not in layers:
        yield Note(node["id"], f"{name} is no colour attribute of the mesh: the vertex colour is read instead", "lost")
    elif read and read != material.document.get("host", {}).get("active_color", read):
        yield Note(node["id"], f"{read}: make it the active colour attribute, which Unreal gets", "near")


def _principled(material: Material, node: Node) -> Iterator[str]:
    sockets = node["in"]
    if differs(sockets.get("Anisotropic"), 0.0):
        yield "Anisotropy"
    if acts(sockets.get("Thin Film Thickness")):
        yield "Thin Film"
    if coloured(sockets.get("Specular Tint")):
        yield "Tint"
    if acts(sockets.get("Coat Weight")) and (
        coloured(sockets.get("Coat Tint"))
        or is_linked(sockets.get("Coat Normal"))
        or differs(sockets.get("Coat IOR"), 1.5)
    ):
        yield "Coat Tint"


def _anisotropic(material: Material, node: Node) -> Iterator[str]:
    if differs(node["in"].get("Anisotropy"), 0.0):
        yield "Anisotropy"


def _light_path(material: Material, node: Node) -> Iterator[str | Note]:
    outputs = material.reads(node, *(name for name in node.get("outs", {}) if name != "Is Camera Ray"))
    if outputs:
        yield Note(node["id"], f"{', '.join(outputs)}: 0, since a material sees camera rays alone", "near")


def _object_info(material: Material, node: Node) -> Iterator[str | Note]:
    fixed = {"Color": "white", "Alpha": "1", "Object Index": "0", "Material Index": "0"}
    for output in material.reads(node, *fixed):
        yield Note(node["id"], f"{output}: {fixed[output]}, since Unreal knows none of an object", "lost")


def _occlusion(material: Material, node: Node) -> Iterator[str]:
    if material.reads(node, "AO", "Color"):
        yield ""


def _always(material: Material, node: Node) -> Iterator[str]:
    yield ""


def differs(entry: Node | None, number: float) -> bool:
    """Whether an input is linked or differs from a number by more than rounding."""
    return is_linked(entry) or bool(entry and abs((entry.get("v") or 0.0) - number) > 1e-6)


def coloured(entry: Node | None) -> bool:
    """Whether an input is linked or holds a colour other than white."""
    return is_linked(entry) or bool(entry and entry.get("v") and entry["v"][:3] != WHITE)


TELLERS: dict[str, Any] = {
    "ShaderNodeAttribute": _attribute,
    "ShaderNodeVertexColor": _attribute,
    "ShaderNodeBsdfPrincipled": _principled,
    "ShaderNodeBsdfAnisotropic": _anisotropic,
    "ShaderNodeBsdfMetallic": _anisotropic,
    "ShaderNodeLightPath": _light_path,
    "ShaderNodeObjectInfo": _object_info,
    "ShaderNodeAmbientOcclusion": _occlusion,
    "ShaderNodeBevel": _always,
    "ShaderNodeHoldout": _always,
}
