"""Labels of parameters: readers of Blender make them for a node's sockets, and writers put them into a file."""

from typing import NamedTuple


class Label(NamedTuple):
    """One socket, or one value of a node, as the node editor shows it.

    `header`: the text in the node's header. `node`: the node's name, unique in its tree. `groups`: the headers of the
    group nodes around it, the outermost first. `socket`: the socket's name, "" if the node is nothing but its value.
    `minimum` and `maximum`: the soft range, None if there is none. `description`: the tooltip. `order`: the position in
    its node, from the top.
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
