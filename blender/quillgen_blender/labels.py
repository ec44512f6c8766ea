"""How an artist reads a parameter: what readers of Blender tell about a node's socket, and writers put into a file."""

from typing import NamedTuple


class Label(NamedTuple):
    """One socket, or one value of a node, as the node editor shows it.

    `header`: what the node's header reads. `node`: the node's name, which no other node of its tree has. `groups`: what
    the headers of the group nodes around it read, the outermost first. `socket`: the socket's name, "" where the node
    is nothing but its value. `minimum` and `maximum`: the soft range, None where there is none. `description`: the
    tooltip. `order`: the place in its node, from the top.
    """

    header: str
    node: str
    groups: tuple[str, ...] = ()
    socket: str = ""
    color: bool = False
    minimum: float | None = None
    maximum: float | None = None
    description: str = ""
    order: int = 0
