"""What feeds a socket, once groups, reroutes and muted nodes are out of the way.

Two generations of Blender disagree about what happens on the way:

* up to 4.5 every border of a group, reroute and muted node is a socket of its own. A value that crosses takes
  the border's type (a colour that passes through a float socket comes out grey), and a reroute or muted node
  with nothing behind it yields zero;
* from 5.0 on the groups are dissolved before anything is evaluated. Only the two real ends count, unless the
  value is a constant, and a dead end is as if there were no link.
"""

from typing import NamedTuple

import bpy

from . import values

BORDERS_CONVERT = bpy.app.version < (5, 0, 0)


class Linked(NamedTuple):
    """An output of a real node, and the types of the borders behind it, the nearest to the node first."""

    path: tuple
    node: object
    socket: object
    borders: tuple = ()


class Constant(NamedTuple):
    """The value of an unlinked socket on a group's border; `hidden` where the interface shows no field for
    it."""

    type: str
    value: object
    hidden: bool = False


class Tree:
    """Finds sources within one material. Looking up a socket's links costs a walk over the whole tree, so the
    links of each tree are sorted once."""

    def __init__(self):
        self.links = {}

    def link(self, socket):
        """The link into an input that counts: one that is neither muted nor part of a cycle nor on a socket
        that the node doesn't show in its present mode."""
        tree = socket.id_data
        if tree not in self.links:
            self.links[tree] = {
                link.to_socket.as_pointer(): link
                for link in tree.links
                if link.is_valid and not link.is_muted and link.from_socket.enabled and link.to_socket.enabled
            }
        return self.links[tree].get(socket.as_pointer())

    def source(self, socket, path):
        """The Linked or Constant that an input reads, or None where it is left with its own value. `path`
        holds the group nodes around the socket, outermost first."""
        link = self.link(socket)
        if link is None:
            return None
        node, out = link.from_node, link.from_socket
        if node.mute:
            inner = next((way.from_socket for way in node.internal_links if way.to_socket == out), None)
            return inner and self.passage(inner, out, path)
        if node.bl_idname == "NodeReroute":
            return self.passage(node.inputs[0], out, path)
        if node.bl_idname == "NodeGroupInput":
            return self.border(named(path[-1].inputs, out.identifier), path[:-1])
        if hasattr(node, "node_tree"):
            end = group_end(node.node_tree)
            if end is None:
                return Constant(out.type, values.zero(out.type))
            return self.border(named(end.inputs, out.identifier), path + (node,))
        return Linked(path, node, out)

    def passage(self, inner, out, path):
        """Through a reroute or a muted node."""
        found = self.source(inner, path)
        if found is None:
            return Constant(out.type, values.zero(out.type)) if BORDERS_CONVERT else None
        return cross(found, out)

    def border(self, socket, path):
        """Into or out of a group; the border's own value stands in where nothing is linked."""
        found = self.source(socket, path)
        if found is None:
            return Constant(socket.type, values.default(socket), socket.hide_value)
        return cross(found, socket)


def cross(found, socket):
    if isinstance(found, Constant):
        return Constant(socket.type, values.convert(found.value, found.type, socket.type), found.hidden)
    return found._replace(borders=found.borders + (socket.type,)) if BORDERS_CONVERT else found


def named(sockets, identifier):
    return next(socket for socket in sockets if socket.identifier == identifier)


def group_end(tree):
    """The Group Output that counts."""
    ends = [node for node in tree.nodes if node.bl_idname == "NodeGroupOutput"] if tree else []
    return next((node for node in ends if node.is_active_output), None)


def narrow(borders, source, target):
    """What the borders leave of a value on its way from a socket type to another, as (type, narrowed, whole):
    the type that the value counts as at last, whether it shrank to a single number on the way and has to
    spread again, and whether it lost its fraction."""
    now, narrowed, whole = source, False, False
    for border in borders:
        if values.kind(border) == "scalar":
            narrowed = narrowed or values.kind(now) == "triple"
            whole = whole or border in ("INT", "BOOLEAN") and source not in ("INT", "BOOLEAN")
        elif values.kind(border) == "triple" and not narrowed and values.kind(now) == "triple":
            now = border
    return now, narrowed and values.kind(target) == "triple", whole
