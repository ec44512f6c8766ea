"""Places where a node occurs: in the material's own tree, a group, an iteration of a repeat zone, a call of a
closure."""

from collections.abc import Set
from typing import Any


class Place:
    """A node can occur in many places, and has a record of its own in the document for each.

    `outer` is the enclosing place, `node` the group node, the zone's output node or the calling node. `members` holds,
    in a zone, the nodes whose values differ between iterations or calls, as pointers: only they are in this place, all
    other nodes of the tree are in the outer one. `caller` is the place of the calling node. `tree` is the node tree,
    `names` are the names of the enclosing group nodes, the outermost first.
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
        self.inner: dict[Any, Place] = {}  # cached, so that each place is one object
        self.tree: Any = outer.tree if outer else None
        self.links: dict[int, tuple[Any, Any]] | None = None  # the tree's links, cached by sources.py

    def group(self, node: Any) -> "Place":
        """The tree of a group node that is in this place."""
        name = node.name
        if name not in self.inner:
            self.inner[name] = Place(self, node, name, (*self.names, name))
            self.inner[name].tree = node.node_tree
        return self.inner[name]

    def turn_of(self, zone: Any, members: Set[int], turn: int) -> "Place":
        """An iteration of the repeat zone with this output node."""
        key = zone.name, turn
        if key not in self.inner:
            self.inner[key] = Place(self, zone, f"{zone.name} {turn + 1}", self.names, members, turn)
        return self.inner[key]

    def call(self, closure: Any, members: Set[int], node: Any, caller: "Place") -> "Place":
        """The inside of a closure that is defined here, for the call by a node in `caller`."""
        key = closure.name, caller, node.name
        if key not in self.inner:
            label = f"{closure.name} {caller.prefix}{node.name}"
            self.inner[key] = Place(self, node, label, self.names, members, caller=caller)
        return self.inner[key]

    def all(self) -> "list[Place]":
        """This place and all places that were found inside it."""
        return [self, *(place for inner in self.inner.values() for place in inner.all())]
