"""The contents of a material as plain data: expressions, their properties and the wires between them.

Nothing here needs the editor. `apply` builds the material from it, `clipboard` a text that can be pasted.
"""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from typing import NamedTuple


class Enum(NamedTuple):
    """A member of an enumeration: its type and name in Python, and its name in the editor's texts."""

    type: str
    member: str
    text: str


class Color(NamedTuple):
    r: float
    g: float
    b: float
    a: float


class Texture(NamedTuple):
    """A texture asset by its path, such as /Game/Blender/Textures/T_Oak."""

    path: str


class Displacement(NamedTuple):
    """The range of a displacement of 0 to 1, in centimetres, and the value that doesn't move the surface."""

    magnitude: float
    center: float


class Inputs(NamedTuple):
    """The names of a Custom expression's inputs."""

    names: tuple[str, ...]


class Outputs(NamedTuple):
    """A Custom expression's additional outputs: pairs of a name and a type."""

    pairs: tuple[tuple[str, Enum], ...]


class Source(NamedTuple):
    """The start of a wire: an expression and the name of its output pin, "" for the first one."""

    expression: str
    pin: str = ""


class Wire(NamedTuple):
    """A wire into the input pin `pin`, "" for the first one."""

    pin: str
    source: Source


Properties = tuple[tuple[str, object], ...]  # (property, value) in the order in which they are set


class Expression(NamedTuple):
    key: str
    kind: str  # the class, without the prefix MaterialExpression
    settings: Properties
    wires: tuple[Wire, ...]
    comment: str  # its purpose, shown in the graph


class Graph:
    """Expressions in topological order, sources first. Equal expressions are created only once."""

    def __init__(self) -> None:
        self.expressions: dict[str, Expression] = {}
        self._known: dict[object, str] = {}
        self._counts: dict[str, int] = {}

    def add(
        self,
        kind: str,
        settings: Mapping[str, object] | Iterable[tuple[str, object]] = (),
        wires: Iterable[tuple[str, Source]] = (),
        comment: str = "",
    ) -> Source:
        """The first output of the expression with these properties and wires."""
        properties = tuple(settings.items()) if isinstance(settings, Mapping) else tuple(settings)
        ends = tuple(Wire(pin, source) for pin, source in wires)
        content = (kind, properties, ends)
        key = self._known.get(content)
        if key is None:
            count = self._counts.get(kind, 0)
            self._counts[kind] = count + 1
            key = self._known[content] = f"{kind}_{count}"
            self.expressions[key] = Expression(key, kind, properties, ends, comment)
        return Source(key)


class Plan(NamedTuple):
    """A whole material: the graph, what feeds the material's attributes, and the material's own properties."""

    graph: Graph
    root: Source
    settings: Properties
    remarks: tuple[str, ...]  # what this version of the editor doesn't support
