"""Nodes that the document stores differently: nodes of older Blenders as their successors, constants of newer ones as
plain values, and nodes whose formula depends on the version with a compensation."""

import math
from typing import Any

import bpy

from . import records, values

VERSION = bpy.app.version
# Old node -> (successor, mode, renamed sockets).
SUCCESSORS = {
    "ShaderNodeSeparateRGB": (
        "ShaderNodeSeparateColor",
        "RGB",
        {"Image": "Color", "R": "Red", "G": "Green", "B": "Blue"},
    ),
    "ShaderNodeSeparateHSV": ("ShaderNodeSeparateColor", "HSV", {"H": "Red", "S": "Green", "V": "Blue"}),
    "ShaderNodeCombineRGB": (
        "ShaderNodeCombineColor",
        "RGB",
        {"Image": "Color", "R": "Red", "G": "Green", "B": "Blue"},
    ),
    "ShaderNodeCombineHSV": ("ShaderNodeCombineColor", "HSV", {"H": "Red", "S": "Green", "V": "Blue"}),
}
NUMBERS = ("FunctionNodeInputInt", "FunctionNodeInputBool")
OUTPUT_NAMES = frozenset((*SUCCESSORS, *NUMBERS, "ShaderNodeUVMap"))


def output_name(writer: Any, node: Any, name: str) -> Any:
    """The document's name of an output of a node whose type is in OUTPUT_NAMES."""
    kind = node.bl_idname
    if kind in SUCCESSORS:
        return SUCCESSORS[kind][2].get(name, name)
    if kind in NUMBERS:
        return "Value"
    return "Vector" if other_uv_map(writer, node) is not None else name


def adapt(writer: Any, node: Any, record: dict[str, Any]) -> None:
    """Changes a record if the translator knows its node by another name or formula."""
    change = CHANGES.get(record["type"])
    if change:
        change(writer, node, record)


def successor(writer: Any, node: Any, record: dict[str, Any]) -> None:
    kind, mode, names = SUCCESSORS[record["type"]]
    record["type"], record["props"] = kind, {"mode": mode}
    for sockets in ("in", "outs"):
        record[sockets] = {names.get(name, name): entry for name, entry in record[sockets].items()}


def number(writer: Any, node: Any, record: dict[str, Any]) -> None:
    held = values.held(node)
    record |= {"type": "ShaderNodeValue", "props": {"value": float(held)}, "outs": {"Value": "VALUE"}}


def vector(writer: Any, node: Any, record: dict[str, Any]) -> None:
    record |= records.combined(record["id"], values.held(node))


def uv_map(writer: Any, node: Any, record: dict[str, Any]) -> None:
    """A UV Map node that reads another map than the first becomes an Attribute node, which looks the map up by name."""
    name = other_uv_map(writer, node)
    if name is not None:
        record |= {
            "type": "ShaderNodeAttribute",
            "in": {},
            "outs": {"Color": "RGBA", "Vector": "VECTOR", "Fac": "VALUE", "Alpha": "VALUE"},
            "props": {"attribute_type": "GEOMETRY", "attribute_name": name},
        }


def other_uv_map(writer: Any, node: Any) -> Any:
    """The UV map that a UV Map node reads, if it is not the first, which needs no name; else None."""
    name = node.uv_map if node.bl_idname == "ShaderNodeUVMap" else ""
    return name if name in writer.uv_maps[1:] else None


def magic(writer: Any, node: Any, record: dict[str, Any]) -> None:
    """Up to 5.1 Blender takes the coordinate modulo 2 pi, since 5.2 coordinate times Scale. The results differ for
    coordinates outside of the first period, unless 5 times Scale is an integer."""
    coordinate, scale = record["in"]["Vector"], record["in"]["Scale"]
    if "link" not in coordinate or ("v" in scale and float(5 * scale["v"]).is_integer()):
        return
    identity = writer.put_in("Vector", record["id"])
    turn = [2 * math.pi] * 3
    writer.nodes.append(
        {
            "id": identity,
            "type": "ShaderNodeVectorMath",
            "in": {"Vector": dict(coordinate), "Vector_001": {"t": "VECTOR", "v": turn}},
            "outs": {"Vector": "VECTOR"},
            "props": {"operation": "MODULO"},
        }
    )
    coordinate["link"] = [identity, "Vector", "VECTOR"]


def bump(writer: Any, node: Any, record: dict[str, Any]) -> None:
    """Before Bump had a Filter Width, its heights were a whole pixel apart. Newer Blenders give nodes of such files a
    width of 1; without the socket the translator takes the default of new nodes, 0.1."""
    record["in"].setdefault("Filter Width", {"t": "VALUE", "v": 1.0})


def voronoi(writer: Any, node: Any, record: dict[str, Any]) -> None:
    if record["props"]["voronoi_dimensions"] != "1D":
        writer.note(record["id"], "its cells lie as in Blender 5.0 and later, where this Blender has others", "near")


CHANGES = {
    **dict.fromkeys(SUCCESSORS, successor),
    **dict.fromkeys(NUMBERS, number),
    "FunctionNodeInputVector": vector,
    "ShaderNodeUVMap": uv_map,
}
if VERSION < (5, 2, 0):
    CHANGES["ShaderNodeTexMagic"] = magic
if VERSION < (5, 0, 0):
    CHANGES["ShaderNodeBump"] = bump
    CHANGES["ShaderNodeTexVoronoi"] = voronoi
