"""Finds the Material Output that Blender renders. It can also be inside a group, whether or not the group is linked.

* up to 4.5 the output of every tree counts, the innermost first. A socket without a link leaves its part to the next
  output, and so does a muted output;
* from 5.0 on one output counts: one for Cycles before one for all engines, then the active one, then the outermost and
  first.
"""

from typing import Any

import bpy

from .places import Place
from .sources import BORDERS_CONVERT

End = tuple[Place, Any]  # an output node and its place
Found = list[tuple[tuple[Any, ...], Any]]


def ends(root: Place) -> list[End]:
    """The outputs that Blender renders. Of each socket the first one with a link counts."""
    found = below(root.tree, {})
    if BORDERS_CONVERT:
        found = [(groups, end) for groups, end in found if not end.mute]
    else:
        found = sorted(found, key=lambda one: (one[1].target != "CYCLES", not one[1].is_active_output))[:1]
    return [(place(root, groups), end) for groups, end in found]


def below(tree: Any, kept: dict[Any, Found]) -> Found:
    """The outputs of a tree and of the groups in it, each with the group nodes on the way to it."""
    if tree not in kept:
        end = tree.get_output_node("CYCLES")
        own: Found = [((), end)] if end else []
        groups = [node for node in tree.nodes if not node.mute and has_nodes(node)]
        inner: Found = [((node, *way), end) for node in groups for way, end in below(node.node_tree, kept)]
        kept[tree] = inner + own if BORDERS_CONVERT else own + inner
    return kept[tree]


def has_nodes(node: Any) -> bool:
    """Whether it is a group node with a tree. The tree of a library that is gone is no shader tree."""
    return isinstance(getattr(node, "node_tree", None), bpy.types.ShaderNodeTree)


def place(root: Place, groups: tuple[Any, ...]) -> Place:
    for node in groups:
        root = root.group(node)
    return root


def linked(found: list[End], name: str) -> tuple[Any, Place] | None:
    """The socket of this name that Blender renders, and its place; None if nothing is linked. A World or Light Output,
    if it is the active one, has fewer sockets."""
    sockets = ((end.inputs[name], place) for place, end in found if name in end.inputs)
    return next((one for one in sockets if one[0].is_linked), None)
