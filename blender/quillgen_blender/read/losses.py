"""Notes on features of nodes that the document cannot express."""

from collections.abc import Iterator
from typing import Any

from ..notes import Loss


def tell(writer: Any, record: dict[str, Any]) -> None:
    """Adds the notes on a complete record."""
    kind = record["type"]
    if kind in _TELLERS:
        for text, loss in _TELLERS[kind](writer, record["props"], record["in"]):
            writer.note(record["id"], text, loss)


def _normal_map(writer: Any, props: dict[str, Any], sockets: dict[str, Any]) -> Iterator[tuple[str, Loss]]:
    if props["space"] != "TANGENT":
        return
    if props.get("base") == "DISPLACED" and writer.settings["displacement"] == "DISPLACEMENT":
        yield "stands on the surface as it is before displacement, in Blender on the displaced one", "near"
    yield from _other_map(writer, props, "tangents")


def _tangent(writer: Any, props: dict[str, Any], sockets: dict[str, Any]) -> Iterator[tuple[str, Loss]]:
    if props["direction_type"] == "UV_MAP":
        yield from _other_map(writer, props, "tangents")


def _other_map(writer: Any, props: dict[str, Any], what: str) -> Iterator[tuple[str, Loss]]:
    if props["uv_map"] in writer.uv_maps[1:]:
        yield f"takes the {what} of the first UV map, not of {props['uv_map']}", "near"


def _principled(writer: Any, props: dict[str, Any], sockets: dict[str, Any]) -> Iterator[tuple[str, Loss]]:
    wall = sockets.get("Thin Wall", {})
    acting = any("link" in sockets[name] or sockets[name]["v"] for name in ("Transmission Weight", "Subsurface Weight"))
    if acting and ("link" in wall or wall.get("v")):
        yield "the walls are as thick as the mesh: Thin Wall has no effect", "lost"


def _instancer(writer: Any, props: dict[str, Any], sockets: dict[str, Any]) -> Iterator[tuple[str, Loss]]:
    if props.get("from_instancer"):
        yield "reads the object's own coordinates, not those of what makes instances of it", "lost"


def _mix(writer: Any, props: dict[str, Any], sockets: dict[str, Any]) -> Iterator[tuple[str, Loss]]:
    if props["data_type"] == "ROTATION":
        yield "rotations are not translated", "lost"


_TELLERS = {
    "ShaderNodeNormalMap": _normal_map,
    "ShaderNodeTangent": _tangent,
    "ShaderNodeBsdfPrincipled": _principled,
    "ShaderNodeTexCoord": _instancer,
    "ShaderNodeUVMap": _instancer,
    "ShaderNodeMix": _mix,
}
