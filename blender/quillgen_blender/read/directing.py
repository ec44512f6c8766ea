"""Nodes that route values instead of computing them: reroutes, and from Blender 5.0 on menus, repeat zones, closures
and bundles.

Blender resolves these nodes before it renders, and so does this module: whatever controls the routing has to be known
without evaluating the shader.
"""

from typing import Any

import bpy

from . import sources as s
from . import values
from .places import Place

MOST_TURNS = 128  # iterations of one repeat zone; they are unrolled


def reroute(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    return sources.passage(node.inputs[0], out, place)


def group_input(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    if place.outer is None:  # outside of a group: unlinked up to 4.5, zero from 5.0 on
        return None if s.BORDERS_CONVERT else s.Constant("VALUE", 0.0)
    return sources.border(s.named(place.node.inputs, out.identifier), place.outer, named=True)


def implicit_conversion(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    """Converts constants only, as a group border does."""
    return through(sources, node.inputs[0], out, place)


def scene_time(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    scene = bpy.context.scene
    sources.note(place, node, f"stands at frame {scene.frame_current}, the one that is shown", "near")
    frame = scene.frame_current_final
    return s.Constant("VALUE", frame if out.identifier == "Frame" else frame / scene.render.fps * scene.render.fps_base)


def attribute(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    """Without a name no attribute is found: the value is 0 and alpha is 1. The translator reads "" as the vertex
    colour."""
    if node.attribute_name or node.attribute_type != "GEOMETRY":
        return s.Linked(place, node, out)
    value = 1.0 if out.identifier == "Alpha" else values.zero(out.type)
    return s.Constant(out.type, value, linked=True)


def menu_switch(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    word = known(sources, node.inputs["Menu"], place)
    words = [item.name for item in node.enum_items]
    if word not in words:
        sources.note(place, node, "its menu is not known ahead: the first entry is taken")
        word = words[0] if words else None
    if out.identifier != "Output":
        return s.Constant("BOOLEAN", out.name == word)
    if word is None:
        return nothing(out)
    return through(sources, node.inputs[1 + words.index(word)], out, place)


def repeat_output(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    """The output of a repeat zone: its input if there are no iterations, else the result of the last one."""
    start = partner(node)
    if start is None:
        return nothing(out)
    turns = known(sources, start.inputs["Iterations"], place)
    if turns is None:
        sources.note(place, node, "its number of turns is not known ahead: one is made")
        turns = 1
    if turns > MOST_TURNS:
        sources.note(place, node, f"makes {MOST_TURNS} of its {turns} turns, the most that are written out")
    return after(sources, node, start, out.identifier, place, min(turns, MOST_TURNS))


def after(sources: s.Sources, zone: Any, start: Any, identifier: str, place: Place, turns: int) -> s.Source:
    """An item of a repeat zone after a number of iterations."""
    if turns <= 0:
        socket = s.named(start.inputs, identifier)
        return through(sources, socket, socket, place)
    socket = s.named(zone.inputs, identifier)
    return through(sources, socket, socket, place.turn_of(zone, inside(sources, start), turns - 1))


def repeat_input(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    if place.members is None or place.caller is not None:
        return nothing(out)  # read from outside of its zone
    if out.identifier == "Iteration":
        return s.Constant("INT", place.turn)
    return after(sources, place.node, node, out.identifier, place.outer, place.turn)


def evaluate_closure(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    """Continues inside the closure, at the item of the same name."""
    closure = sources.source(node.inputs["Closure"], place)
    if not isinstance(closure, s.Linked) or closure.node.bl_idname != "NodeClosureOutput":
        sources.note(place, node, "the closure that it calls is not known ahead: it gives 0")
        return nothing(out)
    socket = by_name(closure.node.inputs, out.name)
    if socket is None:
        return nothing(out)
    members = inside(sources, partner(closure.node))
    return through(sources, socket, out, closure.place.call(closure.node, members, node, place))


def closure_input(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    if place.caller is None:
        return nothing(out)
    socket = by_name(place.node.inputs, out.name)
    return nothing(out) if socket is None else through(sources, socket, out, place.caller)


def separate_bundle(sources: s.Sources, node: Any, out: Any, place: Place) -> s.Source:
    found = in_bundle(sources, sources.source(node.inputs["Bundle"], place), out.name)
    if found is None:
        return nothing(out)
    return through(sources, found[0], out, found[1])


def in_bundle(sources: s.Sources, bundle: Any, name: str) -> Any:
    """(socket, place) of the bundle's item with this name, None if it has none."""
    if not isinstance(bundle, s.Linked):
        return None
    node, place = bundle.node, bundle.place
    if node.bl_idname == "NodeCombineBundle":
        socket = by_name(node.inputs, name)
        return socket and (socket, place)
    if node.bl_idname == "NodeJoinBundle":
        ends = [link for link in node.id_data.links if link.to_node == node and link.is_valid and not link.is_muted]
        ends.sort(key=lambda link: link.multi_input_sort_id, reverse=True)  # the last one that has the name counts
        found = (in_bundle(sources, sources.output(link.from_node, link.from_socket, place), name) for link in ends)
        return next((one for one in found if one), None)
    sources.note(place, node, "gives no bundle that is known ahead")
    return None


def through(sources: s.Sources, socket: Any, out: Any, place: Place) -> s.Source:
    """What a socket reads, or its own value if it reads nothing."""
    found = sources.source(socket, place)
    if found is None:
        found = s.Constant(socket.type, values.default(socket), socket.hide_value)
    return s.cross(found, out)


def nothing(out: Any) -> s.Source:
    return s.Constant(out.type, values.zero(out.type))


def known(sources: s.Sources, socket: Any, place: Place) -> Any:
    """The value of a socket if it is a constant, else None."""
    found = sources.source(socket, place)
    if found is None:
        return values.default(socket)
    if isinstance(found, s.Linked):
        found = s.Constant(found.socket.type, values.held(found.node))
    return values.convert(found.value, found.type, socket.type)


def partner(output: Any) -> Any:
    """The input node of a zone."""
    return next((node for node in output.id_data.nodes if getattr(node, "paired_output", None) == output), None)


def inside(sources: s.Sources, start: Any) -> Any:
    """The nodes that depend on a zone's input, by pointer."""
    if start is None:
        return frozenset()
    key = start.as_pointer()
    if key not in sources.zones:
        readers: dict[int, list[int]] = {}
        for link in start.id_data.links:
            readers.setdefault(link.from_node.as_pointer(), []).append(link.to_node.as_pointer())
        found, waiting = {key}, [key]
        while waiting:
            more = [node for node in readers.get(waiting.pop(), ()) if node not in found]
            found.update(more)
            waiting += more
        sources.zones[key] = found
    return sources.zones[key]


def by_name(sockets: Any, name: str) -> Any:
    return next((socket for socket in sockets if socket.name == name and socket.type != "CUSTOM"), None)


TABLE = {
    "NodeReroute": reroute,
    "NodeGroupInput": group_input,
    "NodeImplicitConversion": implicit_conversion,
    "GeometryNodeInputSceneTime": scene_time,
    "GeometryNodeMenuSwitch": menu_switch,
    "GeometryNodeRepeatInput": repeat_input,
    "GeometryNodeRepeatOutput": repeat_output,
    "NodeClosureInput": closure_input,
    "NodeEvaluateClosure": evaluate_closure,
    "NodeSeparateBundle": separate_bundle,
    "ShaderNodeAttribute": attribute,
}
