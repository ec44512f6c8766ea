"""Positions for the expressions of a graph: columns by purpose, read from left to right.

what signals are made of | signals | textures | parameters | Custom expressions | attributes
"""

from __future__ import annotations

from typing import NamedTuple

from .plan import Expression, Graph

GAP_X, GAP_Y = 160, 32
MARGIN, TITLE = 40, 90  # of a comment around its nodes
LETTER, LINE, HEAD = 8, 24, 56  # sizes of nodes in the material editor, rounded up
PREVIEW = 130  # a picture or a colour below the pins
PREVIEWED = ("TextureObjectParameter", "VectorParameter", "Constant3Vector")
ROWS = 16  # maximum number of nodes in one line of a column

SIGNALS = "What Unreal knows of the surface"
HEADINGS = {
    "attributes": "Attributes",
    "custom": "Blender's node tree",
    "parameters": "Parameters",
    "textures": "Textures",
}
ORDER = ("attributes", "custom", "parameters", "textures")


class Box(NamedTuple):
    """A rectangle of the graph: a node, or a comment around nodes."""

    x: int
    y: int
    width: int
    height: int


def size(expression: Expression) -> tuple[int, int]:
    """An upper estimate of a node's width and height."""
    settings = dict(expression.settings)
    left = [wire.pin for wire in expression.wires]
    right = [name for name, _ in getattr(settings.get("additional_outputs"), "pairs", ())]
    title = str(settings.get("parameter_name") or settings.get("description") or expression.kind)
    across = LETTER * (max(map(len, left), default=0) + max(map(len, right), default=0) + 6)
    width = max(160, across, LETTER * (len(title) + 4))
    height = HEAD + LINE * max(len(left), len(right) + 1, 6 if expression.kind == "VectorParameter" else 2)
    return width, height + (PREVIEW if expression.kind in PREVIEWED else 0)


def columns(graph: Graph) -> dict[str, list[str]]:
    """Columns from right to left: name -> keys of its expressions."""
    found: dict[str, list[str]] = {name: [] for name in ORDER}
    depth: dict[str, int] = {}
    for key in reversed(graph.expressions):  # users are visited before their sources
        expression = graph.expressions[key]
        depth.setdefault(key, 0)
        name = _column(expression, depth[key])
        below = 0 if name in ("attributes", "custom") else depth[key] + 1
        for wire in expression.wires:
            source = wire.source.expression
            depth[source] = max(depth.get(source, 0), below)
        found.setdefault(name, []).append(key)
    order = sorted((name for name in found if name not in ORDER), key=lambda name: int(name.split()[-1]))
    return {name: list(reversed(found[name])) for name in (*ORDER, *order) if found[name]}


def _column(expression: Expression, depth: int) -> str:
    if expression.kind == "MakeMaterialAttributes":
        return "attributes"
    if any(name == "additional_outputs" for name, _ in expression.settings):
        return "custom"
    if expression.kind in ("ScalarParameter", "VectorParameter"):
        return "parameters"
    if expression.kind == "TextureObjectParameter":
        return "textures"
    return f"signals {depth}"


def place(graph: Graph) -> tuple[dict[str, Box], list[tuple[str, Box]]]:
    """Key -> Box for every expression, and (heading, Box) for the comment around every column."""
    boxes: dict[str, Box] = {}
    comments: list[tuple[str, Box]] = []
    right = -300
    for name, keys in columns(graph).items():
        lines = [keys[begin : begin + ROWS] for begin in range(0, len(keys), ROWS)]
        end, bottom = right, 0
        for line in reversed(lines):
            sizes = {key: size(graph.expressions[key]) for key in line}
            width = max(w for w, _ in sizes.values())
            x, y = right - width, 0
            for key in line:
                boxes[key] = Box(x, y, width, sizes[key][1])
                y += sizes[key][1] + GAP_Y
            right, bottom = x - GAP_X, max(bottom, y)
        comments.append((HEADINGS.get(name, SIGNALS), Box(x - MARGIN, -TITLE, end - x + 2 * MARGIN, bottom + TITLE)))
    return boxes, comments
