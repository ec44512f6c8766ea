"""Converts a Blender material to one flat document: nodes, links, images and settings."""

import re
from collections.abc import Iterator
from typing import Any, NamedTuple

import bpy

from ..notes import Note
from . import outputs, working_space
from .writer import Writer

NODE = re.compile(r'nodes\["((?:[^"\\]|\\.)*)"\]')  # the start of the data path of a node's value


class Reading(NamedTuple):
    """The result of flatten. `document` is plain data, as in JSON. `paths` maps the id of a record to the name of its
    node, preceded by the names of the enclosing group nodes, the outermost first; nodes that the reader inserted have
    the path of the node that they feed. `pictures` maps the image names of the document to Blender's images."""

    document: dict[str, Any]
    notes: list[Note]
    paths: dict[str, tuple[str, ...]]
    pictures: dict[str, Any]


def flatten(material: Any, mesh: Any = None) -> Reading:
    """Returns the document of a material. `mesh` supplies the UV maps (by default the first mesh that uses the
    material)."""
    if material.node_tree is None:
        raise ValueError(f"{material.name} has no nodes")
    mesh = mesh or worn_by(material)
    uv_maps = [layer.name for layer in mesh.uv_layers] if mesh else []
    writer = Writer(uv_maps, settings(material))
    if mesh and uv_maps and not mesh.uv_layers[0].active_render:
        writer.note("", f"{mesh.name}: the UV map for rendering is not the first one, which Unreal takes", "near")
    writer.root.tree = material.node_tree
    ends = outputs.ends(writer.root)
    shown = {name: outputs.linked(ends, name) for name in ("Surface", "Displacement", "Volume")}
    parts = {name.lower(): found for name, found in shown.items() if found and name != "Volume"}
    out = {name: writer.output(*found) for name, found in parts.items()}
    writer.finish()
    writer.aov_outputs()
    working_space.to_rec709(writer)
    document = {
        "nodes": writer.nodes,
        "out": {name: source for name, source in out.items() if source},
        "images": writer.images,
        "uv_maps": uv_maps,
        "settings": writer.settings,
        "host": host(bool(ends), shown, mesh, writer),
    }
    return Reading(document, writer.notes, writer.paths, writer.pictures)


def worn_by(material: Any) -> Any:
    """The first mesh with the material in one of its slots."""
    return next(
        (
            thing.data
            for thing in bpy.data.objects
            if thing.type == "MESH" and any(slot.material == material for slot in thing.material_slots)
        ),
        None,
    )


def settings(material: Any) -> dict[str, Any]:
    found = {"backface_culling": material.use_backface_culling, "displacement": material.displacement_method}
    if material.surface_render_method == "BLENDED":
        found["blend"] = "BLENDED"
    return found


def host(has_output: bool, shown: dict[str, Any], mesh: Any, writer: Writer) -> dict[str, Any]:
    """Facts beside the node graph: the version, whether there is a Material Output and what is linked to it, which
    nodes are driven or animated, and the colour attributes of the mesh."""
    found = {
        "blender": list(bpy.app.version),
        "output": has_output,
        "surface": bool(shown["Surface"]),
        "volume": bool(shown["Volume"]),
        "drivers": driven(writer),
    }
    if mesh:
        found["color_attributes"] = [layer.name for layer in mesh.color_attributes]
        index = mesh.color_attributes.render_color_index
        found["active_color"] = mesh.color_attributes[index].name if index >= 0 else ""
    return found


def driven(writer: Writer) -> list[str]:
    """The ids of the nodes with a value that a driver or an animation changes."""
    names = {place: driven_in(place.tree.animation_data) for place in writer.root.all() if place.tree.animation_data}
    return sorted(identity for (place, name), identity in writer.ids.items() if name in names.get(place, ()))


def driven_in(data: Any) -> set[str]:
    """The names of the nodes that a tree's animation data changes."""
    found = (NODE.match(curve.data_path) for curve in (*data.drivers, *animated(data)))
    return {bpy.utils.unescape_identifier(match[1]) for match in found if match}


def animated(data: Any) -> list[Any]:
    """The F-curves of the active action and of the actions in unmuted strips of the nonlinear animation."""
    played = (strip for track in data.nla_tracks if not track.mute for strip in strips(track))
    return [curve for user in (data, *played) if user.action for curve in curves(user)]


def strips(owner: Any) -> Iterator[Any]:
    """The unmuted strips of a track or of a meta strip, including nested ones."""
    for strip in owner.strips:
        if not strip.mute:
            yield strip
            yield from strips(strip)


def curves(user: Any) -> list[Any]:
    """The F-curves of the action that animation data or a strip uses. Since Blender 4.4 an action has a slot with
    curves for each animated data-block."""
    action = user.action
    if not hasattr(user, "action_slot"):
        return list(action.fcurves)
    parts = (strip for layer in action.layers for strip in layer.strips)
    bags = (part.channelbag(user.action_slot) for part in parts if user.action_slot)
    return [curve for bag in bags if bag for curve in bag.fcurves]
