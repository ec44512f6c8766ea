"""Draws the architecture diagram: the folders of the repository ("rooms") and their includes and imports, read from the
sources.

An arrow from A to B means that files of A include or import files of B; its width grows with their number. Rooms are
arranged in the order in which a material passes through them.
"""

from __future__ import annotations

import re
from collections import Counter
from html import escape
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]


class Room(NamedTuple):
    folder: str
    column: int
    row: int
    says: str


ROOMS = (
    Room("blender/quillgen_blender/ui", 0, 0, "panels, operators"),
    Room("blender/quillgen_blender", 0, 1, "pipeline: the whole way"),
    Room("blender/quillgen_blender/read", 0, 2, "material to document"),
    Room("blender/quillgen_blender/passes", 0, 3, "document to document"),
    Room("blender/quillgen_blender/write", 0, 4, "result to files"),
    Room("unreal", 0, 5, "files to materials"),
    Room("binding", 1, 0, "what Python calls"),
    Room("closures", 1, 1, "shaders, whole texts"),
    Room("core/gen", 1, 2, "statements, sockets"),
    Room("core/document", 1, 3, "Python's values"),
    Room("lib", 1, 4, "the HLSL library"),
    Room("nodes/texture", 2, 1, "textures, coordinates"),
    Room("nodes/value", 2, 2, "values, colours"),
    Room("nodes/surface", 2, 3, "normals, bump, scene"),
    Room("binding/python/quillgen_tools", 2, 5, "wiring, tables, command"),
)
# Data that passes between rooms without an include or import.
FLOWS = (
    ("blender/quillgen_blender", "binding", "document"),
    ("blender/quillgen_blender/write", "unreal", "files"),
    ("core/gen", "lib", "names of functions"),
)
COLOURS = {"blender": "#e8f1e4", "unreal": "#fbf0e0"}  # by top-level folder; all others belong to the translator
WIDTH, HEIGHT, GAP_X, GAP_Y, MARGIN = 204, 62, 150, 44, 24
ANY_INCLUDE = re.compile(r'^\s*#include "([^"]+)"', re.MULTILINE)
RELATIVE = re.compile(r"^\s*from (\.+)([\w.]*) import (\w+)", re.MULTILINE)


def room_of(path: str) -> str | None:
    """The innermost room that contains a path."""
    fitting = [room.folder for room in ROOMS if path.startswith(room.folder + "/")]
    return max(fitting, key=len) if fitting else None


def arrows() -> Counter[tuple[str, str]]:
    """(from, to) -> number of includes or imports."""
    found: Counter[tuple[str, str]] = Counter()
    for room in ROOMS:
        for path in (ROOT / room.folder).rglob("*"):
            place = path.relative_to(ROOT).as_posix()
            if path.suffix not in (".cpp", ".h", ".py") or room_of(place) != room.folder:
                continue
            for target in targets(path, place):
                to = room_of(target)
                if to and to != room.folder:
                    found[room.folder, to] += 1
    return found


def targets(path: Path, place: str) -> list[str]:
    source = path.read_text(encoding="utf-8")
    found = ANY_INCLUDE.findall(source)
    for dots, module, name in RELATIVE.findall(source):
        folder = Path(place).parents[len(dots) - 1]
        parts = [part for part in module.split(".") if part] or [name]
        found.append((folder / "/".join(parts) / "x").as_posix())
    return found


def svg() -> str:
    width = 2 * MARGIN + 3 * WIDTH + 2 * GAP_X
    rows = max(room.row for room in ROOMS) + 1
    height = 2 * MARGIN + rows * HEIGHT + (rows - 1) * GAP_Y
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
        'font-family="sans-serif" font-size="13">',
        "<title>The rooms of quillgen and who uses whom</title>",
        '<defs><marker id="head" viewBox="0 0 8 8" refX="7" refY="4" markerWidth="7" markerHeight="7" orient="auto" '
        'markerUnits="userSpaceOnUse"><path d="M0 0 L8 4 L0 8 z" fill="#5b6b7b"/></marker></defs>',
    ]
    by_folder = {room.folder: room for room in ROOMS}
    for (start, end), count in sorted(arrows().items()):
        parts.append(arrow(by_folder[start], by_folder[end], "", min(0.8 + count / 12, 3.0)))
    parts += [arrow(by_folder[start], by_folder[end], words, 1.2) for start, end, words in FLOWS]
    parts += [box(room) for room in ROOMS]
    return "\n".join([*parts, "</svg>"]) + "\n"


def corner(room: Room) -> tuple[float, float]:
    return MARGIN + room.column * (WIDTH + GAP_X), MARGIN + room.row * (HEIGHT + GAP_Y)


def box(room: Room) -> str:
    x, y = corner(room)
    colour = COLOURS.get(room.folder.split("/")[0], "#e6eefb")
    name = room.folder.removeprefix("blender/").removeprefix("binding/python/")
    middle = x + WIDTH / 2
    return (
        f'<rect x="{x}" y="{y}" width="{WIDTH}" height="{HEIGHT}" rx="6" fill="{colour}" stroke="#8796a5"/>'
        f'<text x="{middle}" y="{y + 27}" text-anchor="middle" font-weight="bold" fill="#1d2833">{escape(name)}</text>'
        f'<text x="{middle}" y="{y + 46}" text-anchor="middle" fill="#445566">{escape(room.says)}</text>'
    )


def arrow(start: Room, end: Room, words: str, width: float) -> str:
    (ax, ay), (bx, by) = corner(start), corner(end)
    dashed = ' stroke-dasharray="6 4"' if words else ""
    if start.column == end.column:
        down = by > ay
        near = abs(start.row - end.row) == 1
        if near:
            x = ax + WIDTH / 2 + (14 if down else -14)
            path = f"M{x} {ay + (HEIGHT if down else 0)} L{x} {by + (0 if down else HEIGHT)}"
            place = (x + 8, (ay + by + HEIGHT) / 2 + 4, "start")
        else:
            side = ax + WIDTH if start.column < 2 else ax
            reach = 16 + 14 * abs(start.row - end.row)  # keeps arrows of different lengths apart
            bow = side + (reach if start.column < 2 else -reach)
            path = (
                f"M{side} {ay + HEIGHT / 2} C{bow} {ay + HEIGHT / 2} {bow} {by + HEIGHT / 2} {side} {by + HEIGHT / 2}"
            )
            place = (bow, (ay + 3 * by) / 4 + HEIGHT / 2 + 4, "start" if start.column < 2 else "end")
    else:
        right = end.column > start.column
        sx, ex = (ax + WIDTH, bx) if right else (ax, bx + WIDTH)
        bend = (ex - sx) / 2
        sy, ey = ay + HEIGHT / 2, by + HEIGHT / 2
        path = f"M{sx} {sy} C{sx + bend} {sy} {ex - bend} {ey} {ex} {ey}"
        place = ((sx + ex) / 2 + 8, (sy + ey) / 2 + 4, "start")
    x, y, anchor = place
    label = f'<text x="{x:.0f}" y="{y:.0f}" text-anchor="{anchor}" fill="#5b6b7b">{escape(words)}</text>'
    stroke = f'stroke="#5b6b7b" stroke-width="{width:.1f}"{dashed}'
    return f'<path d="{path}" fill="none" {stroke} marker-end="url(#head)"/>{label if words else ""}'
