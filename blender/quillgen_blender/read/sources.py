"""Finds what feeds a socket. Looks through groups, reroutes, muted nodes and other nodes that only route values.

Blender versions differ in how they convert a value on its way:

* up to 4.5 every border of a group, reroute and muted node is a socket of its own. A value that crosses it is converted
  to the border's type (a colour that passes through a float socket becomes grey), and a reroute or muted node without
  input yields zero;
* from 5.0 on groups are dissolved before evaluation. Only the types of the two real ends count, unless the value is a
  constant or depends on constants alone (folding.py), and a dead end counts as no link.
"""

from collections.abc import Callable, Mapping
from typing import Any, NamedTuple

import bpy

from . import node_types, values
from .places import Place

BORDERS_CONVERT = bpy.app.version < (5, 0, 0)


class Linked(NamedTuple):
    """An output of a real node, and the types of the borders that its value crosses, the nearest to the node first."""

    place: Place
    node: Any
    socket: Any
    borders: tuple[str, ...] = ()


class Constant(NamedTuple):
    """A value that no node holds, such as that of an unlinked socket on a group's border. `hidden`: the interface shows
    no field for it. `named`: the artist chose it, as an input of a group. `linked`: it comes from a node nevertheless,
    so the socket that it feeds counts as linked."""

    type: str
    value: Any
    hidden: bool = False
    named: bool = False
    linked: bool = False


Links = dict[int, tuple[Any, Any]]
Source = Linked | Constant | None


class Sources:
    """Finds sources within one material. `directing` has a function for each node type that only routes values;
    `note(place, node, text, loss)` is called for what can't be resolved."""

    def __init__(self, directing: "Directing", note: Callable[..., None]) -> None:
        self.directing, self.note = directing, note
        self.trees: dict[Any, Links] = {}
        self.zones: dict[int, set[int]] = {}

    def links(self, tree: Any) -> Links:
        """{input: (node, output)} of a tree, the inputs as pointers. Reading a socket's links walks the whole tree, so
        they are indexed once. Ignores links that are muted, part of a cycle, or on a socket that the node doesn't show
        in its current mode."""
        found = self.trees.get(tree)
        if found is None:
            found = self.trees[tree] = {}
            for link in tree.links:
                if link.is_valid and not link.is_muted:
                    start, end = link.from_socket, link.to_socket
                    if start.enabled and end.enabled:
                        found[end.as_pointer()] = link.from_node, start
        return found

    def source(self, socket: Any, place: Place) -> Source:
        """The Linked or Constant that an input reads, or None if the input uses its own value."""
        if not socket.is_linked:
            return None
        if place.links is None:
            place.links = self.links(place.tree)
        found = place.links.get(socket.as_pointer())
        return self.output(*found, place) if found else None

    def output(self, node: Any, out: Any, place: Place) -> Source:
        """The same for a node's output."""
        while place.members is not None and node.as_pointer() not in place.members:
            place = place.outer
        if node.mute:
            inner = next((way.from_socket for way in node.internal_links if way.to_socket == out), None)
            return inner and self.passage(inner, out, place)
        kind = node_types.of(node)
        if kind.name in self.directing:
            return self.directing[kind.name](self, node, out, place)
        return self.group(node, out, place) if kind.group else Linked(place, node, out)

    def group(self, node: Any, out: Any, place: Place) -> Source:
        end = group_end(node.node_tree)
        if end is None:
            return Constant(out.type, values.zero(out.type))
        return self.border(named(end.inputs, out.identifier), place.group(node))

    def passage(self, inner: Any, out: Any, place: Place) -> Source:
        """Follows a node that passes on what it reads, such as a reroute."""
        found = self.source(inner, place)
        if found is None:
            return Constant(out.type, values.zero(out.type)) if BORDERS_CONVERT else None
        return cross(found, out)

    def border(self, socket: Any, place: Place, named: bool = False) -> Source:
        """Follows a link into or out of a group; the border's own value is used if nothing is linked."""
        found = self.source(socket, place)
        if found is None:
            return Constant(socket.type, values.default(socket), socket.hide_value, named)
        return cross(found, socket)


def cross(found: Linked | Constant, socket: Any) -> Linked | Constant:
    if isinstance(found, Constant):
        if socket.type == "SHADER" and values.kind(found.type):
            return found  # becomes an emission where a shader reads it
        return found._replace(type=socket.type, value=values.convert(found.value, found.type, socket.type))
    return found._replace(borders=(*found.borders, socket.type))


def is_value(found: Source) -> bool:
    """Whether a source holds a number, a vector or a colour."""
    if isinstance(found, Linked):
        return values.kind(found.socket.type) is not None
    return found is not None and found.value is not None and values.kind(found.type) is not None


def named(sockets: Any, identifier: str) -> Any:
    return next(socket for socket in sockets if socket.identifier == identifier)


def group_end(tree: Any) -> Any:
    """The active Group Output."""
    ends = [node for node in tree.nodes if node.bl_idname == "NodeGroupOutput"] if tree else []
    return next((node for node in ends if node.is_active_output), None)


def narrow(borders: tuple[str, ...], source: str, target: str) -> tuple[str, bool, bool]:
    """What the borders do to a value on its way from one socket type to another, as (type, narrowed, whole): the final
    type of the value, whether it was reduced to a single number and has to become a vector again, and whether it lost
    its fraction."""
    now, narrowed, whole = source, False, False
    for border in borders:
        if values.kind(border) == "scalar":
            narrowed = narrowed or values.kind(now) == "triple"
            whole = whole or border in ("INT", "BOOLEAN") and source not in ("INT", "BOOLEAN")
        elif values.kind(border) == "triple" and not narrowed and values.kind(now) == "triple":
            now = border
    return now, narrowed and values.kind(target) == "triple", whole


Directing = Mapping[str, Callable[[Sources, Any, Any, Place], Source]]
