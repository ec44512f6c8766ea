"""Facts about node types, looked up once per session: they depend on Blender, not on the document."""

from collections.abc import Callable
from typing import Any, NamedTuple

import bpy

from . import known, records, values

PLAIN = ("ENUM", "BOOLEAN", "INT", "FLOAT", "STRING")
COMMON = frozenset(bpy.types.ShaderNode.bl_rna.properties.keys())
# While unlinked, these sockets mean "the surface's own". A constant from a group therefore can't be stored as their
# value: it has to arrive by a link.
COORDINATE_TEXTURES = (
    "ShaderNodeTexGradient",
    "ShaderNodeTexChecker",
    "ShaderNodeTexBrick",
    "ShaderNodeTexMagic",
    "ShaderNodeTexWave",
    "ShaderNodeTexNoise",
    "ShaderNodeTexVoronoi",
    "ShaderNodeTexGabor",
    "ShaderNodeTexImage",
)
SURFACE_NAMES = ("Normal", "Coat Normal", "Clearcoat Normal", "Tangent")


class NodeType(NamedTuple):
    """`properties` are (name, convert) pairs; `convert` is None if the value is plain data already. `inputs` and
    `outputs` are (identifier, type) pairs; inputs also have the form of their value. `implicit` and `surface` are the
    inputs that stand for a coordinate or a direction of the surface while unlinked. `own` are functions that add
    further data to a record. `unknown` are properties and sockets that known.py lacks."""

    name: str
    properties: tuple[tuple[str, Callable[[Any], Any] | None], ...]
    inputs: tuple[tuple[str, str, str | None], ...]
    outputs: tuple[tuple[str, str], ...]
    implicit: frozenset[str]
    surface: frozenset[str]
    group: bool
    own: tuple[Callable[..., None], ...]
    unknown: tuple[str, ...]


KEPT: dict[str, NodeType] = {}
BLENDERS_OWN = ("ShaderNode", "Node", "FunctionNode", "GeometryNode")
VARYING = ("ShaderNodeScript", "ShaderNodeRaycast")  # types whose sockets differ from node to node


def of(node: Any) -> NodeType:
    name = node.bl_idname
    found = KEPT.get(name)
    if found is None:
        found = look(node)
        if name.startswith(BLENDERS_OWN) and name not in VARYING:  # nodes of an add-on may vary
            KEPT[name] = found
    return found


def look(node: Any) -> NodeType:
    name = node.bl_idname
    props = [prop for prop in node.bl_rna.properties if prop.identifier not in COMMON]
    pointers = {prop.identifier for prop in props if prop.type == "POINTER"}
    inputs = list(node.inputs)
    return NodeType(
        name,
        tuple((prop.identifier, converter(prop)) for prop in props if prop.type in PLAIN and not prop.is_readonly),
        tuple((socket.identifier, socket.type, values.KINDS.get(socket.type)) for socket in inputs),
        tuple((socket.identifier, socket.type) for socket in node.outputs),
        frozenset(("Vector",) if name in COORDINATE_TEXTURES else ()),
        frozenset(socket.identifier for socket in inputs if is_surface_socket(name, socket)),
        "node_tree" in pointers,
        records.own(name, pointers),
        known.unknown(name, [prop.identifier for prop in props] + [socket.identifier for socket in inputs]),
    )


def converter(prop: Any) -> Callable[[Any], Any] | None:
    """The function that converts a property's value to plain data; None if it is plain."""
    if getattr(prop, "is_array", False):
        return list
    return sorted if prop.type == "ENUM" and prop.is_enum_flag else None


def is_surface_socket(name: str, socket: Any) -> bool:
    if name == "ShaderNodeTexEnvironment":
        return socket.identifier == "Vector"
    return socket.hide_value and socket.identifier in SURFACE_NAMES
