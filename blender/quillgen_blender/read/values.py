"""Socket values as plain numbers and lists, and the conversions that Blender makes between socket types."""

import math
from typing import Any

import bpy

from ..passes import luma

KINDS = {
    **dict.fromkeys(("VALUE", "INT", "BOOLEAN"), "scalar"),
    **dict.fromkeys(("VECTOR", "RGBA", "ROTATION"), "triple"),
}
LUMA = luma.weights(bpy.app.version)
# Node types that hold a constant: the attribute that holds it.
HOLDERS = {
    "FunctionNodeInputInt": "integer",
    "FunctionNodeInputBool": "boolean",
    "FunctionNodeInputVector": "vector",
    "FunctionNodeInputMenu": "value",
}


def kind(socket_type: str) -> str | None:
    """ "scalar", "triple" or None: what a conversion has to know of a type."""
    return KINDS.get(socket_type)


def default(socket: Any) -> Any:
    """The value of an unlinked socket; None if it has none."""
    socket_type = socket.type
    form = KINDS.get(socket_type)
    if form == "scalar":
        return socket.default_value
    if form == "triple":
        value = list(socket.default_value)
        return value if socket_type == "RGBA" else triple(value)
    return socket.default_value if socket_type == "MENU" else None


def triple(value: Any) -> list[float]:
    return (list(value) + [0.0, 0.0, 0.0])[:3]


def held(node: Any) -> Any:
    """The constant that a node holds, None if it is no such node."""
    if node.bl_idname in HOLDERS:
        value = getattr(node, HOLDERS[node.bl_idname])
        return triple(value) if node.bl_idname == "FunctionNodeInputVector" else value
    if node.bl_idname in ("ShaderNodeValue", "ShaderNodeRGB"):
        return default(node.outputs[0])
    return None


def zero(socket_type: str) -> Any:
    return {
        "RGBA": [0.0, 0.0, 0.0, 1.0],
        "VECTOR": [0.0, 0.0, 0.0],
        "ROTATION": [0.0, 0.0, 0.0],
        "VALUE": 0.0,
        "INT": 0,
        "BOOLEAN": False,
    }.get(socket_type)


def convert(value: Any, source: str, target: str) -> Any:
    """Converts a constant from one socket type to another."""
    if value is None or kind(target) is None:
        return value if source == target else None
    if target == "BOOLEAN" and bpy.app.version < (5, 0, 0):
        target = "INT"  # Cycles uses an integer instead
    if target == "BOOLEAN" and source == "VECTOR":
        return any(value[:3])
    if kind(source) == "triple" and kind(target) == "scalar":
        weights = LUMA if source == "RGBA" else (1 / 3, 1 / 3, 1 / 3)
        value = sum(part * weight for part, weight in zip(value, weights, strict=False))
    if kind(source) == "scalar" and kind(target) == "triple":
        value = [float(value)] * 3
    if kind(target) == "triple":
        return [*value[:3], 1.0] if target == "RGBA" else value[:3]
    if target == "BOOLEAN":
        return value > 0
    if target == "INT":
        return int(value) if math.isfinite(value) else 0
    return float(value)
