"""Where a node stands: in the material's own tree, in a group, in a turn of a repeat zone, in a call of a closure."""

from collections.abc import Set
from typing import Any


class Place:
    """One node can stand in many places, and each of them has a record of its own in the document.

    `outer` is the place that this one is left for, `node` the group node, the zone's output or the node that calls.
    `members` holds, in a zone, the nodes whose values differ from turn to turn and from call to call, by pointer:
    only they stand in this place, all others of the tree in the outer one. `caller` is the place of the calling node.
    `tree` is the node tree, `names` leads to it: the group nodes from the outermost in.
    """

    def __init__(
        self,
        outer: "Place | None" = None,
        node: Any = None,
        label: str = "",
        names: tuple[str, ...] = (),
        members: Set[int] | None = None,
        turn: int = 0,
        caller: "Place | None" = None,
    ) -> None:
        self.outer: Any = outer
        self.node, self.members, self.turn, self.caller = node, members, turn, caller
        self.prefix: str = f"{outer.prefix}{label}/" if outer else ""
        self.names = names
        self.inner: dict[Any, Place] = {}  # kept, so that a place is the same object whichever way leads to it
        self.tree: Any = outer.tree if outer else None
        self.links: dict[int, tuple[Any, Any]] | None = None  # what sources.py found out about the tree's links

    def group(self, node: Any) -> "Place":
        """The tree of a group node that stands here."""
        name = node.name
        if name not in self.inner:
            self.inner[name] = Place(self, node, name, (*self.names, name))
            self.inner[name].tree = node.node_tree
        return self.inner[name]

    def turn_of(self, zone: Any, members: Set[int], turn: int) -> "Place":
        """A turn of the repeat zone with this output node."""
        key = zone.name, turn
        if key not in self.inner:
            self.inner[key] = Place(self, zone, f"{zone.name} {turn + 1}", self.names, members, turn)
        return self.inner[key]

    def call(self, closure: Any, members: Set[int], node: Any, caller: "Place") -> "Place":
        """The inside of a closure that is defined here, as a node that stands in `caller` calls it."""
        key = closure.name, caller, node.name
        if key not in self.inner:
            label = f"{closure.name} {caller.prefix}{node.name}"
            self.inner[key] = Place(self, node, label, self.names, members, caller=caller)
        return self.inner[key]

    def all(self) -> "list[Place]":
        """This place and all that were met inside of it."""
        return [self, *(place for inner in self.inner.values() for place in inner.all())]
