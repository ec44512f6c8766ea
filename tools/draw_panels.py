"""Draws the extension's panels from their definitions to docs/extension/panels.svg, because there is no screen to take
a screenshot of. Runs in a Python with bpy.

    .venv-blender-5.2/bin/python tools/draw_panels.py [FILE.svg]
"""

import os
import sys
import tempfile
import textwrap
from collections.abc import Iterator
from dataclasses import replace
from html import escape
from pathlib import Path
from typing import Any

ROOT = Path(__file__).resolve().parents[1]
sys.path[:0] = [str(ROOT / "tests" / "extension"), str(ROOT / "blender")]

DRAWING = ROOT / "docs" / "extension" / "panels.svg"
WIDTH, LINE, GAP, PAD = 320, 22, 4, 8
ICONS = {
    "CANCEL": "\u2716",
    "CHECKMARK": "\u2714",
    "COPYDOWN": "\u2398",
    "ERROR": "\u26a0",
    "EXPORT": "\u2191",
    "FILE_REFRESH": "\u21bb",
    "INFO": "\u24d8",
    "RESTRICT_SELECT_OFF": "\u27a4",
    "VIEWZOOM": "\u2315",
}
STYLE = (
    "text{font:12px sans-serif;fill:#e6e6e6}.small{fill:#b0b0b0}.panel{fill:#3d3d3d}.head{fill:#303030}"
    ".button{fill:#545454}.field{fill:#1d1d1d}.box{fill:#2b2b2b}.on{fill:#4772b3}"
)


def main(path: Path = DRAWING) -> None:
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(drawing(), encoding="utf-8")


def drawing() -> str:
    """The panels of a material that was just exported. The numbers are fixed, to make the drawing reproducible."""
    import bpy
    import materials  # type: ignore[import-not-found]
    from recording import context_of, drawn  # type: ignore[import-not-found]

    from quillgen_blender.ui import panels, state

    bpy.ops.wm.read_factory_settings(use_empty=True)
    materials.build()
    material = bpy.data.materials["Wire"]
    bpy.context.object.active_material_index = bpy.context.object.material_slots.find("Wire")
    bpy.context.scene.quillgen.folder = tempfile.gettempdir()
    material.node_tree.nodes.active = material.node_tree.nodes["My Wire"]
    bpy.ops.quillgen.check()
    outcome = state.last(material)
    assert outcome
    remarks = [remark for remark in outcome.remarks if remark["node"] == "My Wire"][:1]
    outcome = replace(outcome, at=43200.0, seconds=0.012, changed="all", inputs=9, parameters=7, remarks=remarks)
    state.keep(material.session_uid, outcome)
    state.clock = lambda when: "12:00:00"
    try:
        layouts = [drawn(panel, context_of(panel, material, WIDTH)) for panel in panels.CLASSES[:3]]
    finally:
        state.clock = state.local_clock
    bpy.context.scene.quillgen.folder = ""
    labels = [getattr(panel, "bl_label", "") for panel in panels.CLASSES[:3]]
    return svg([(label, layout) for label, layout in zip(labels, layouts) if layout])


def svg(layouts: list[tuple[str, Any]]) -> str:
    parts: list[str] = []
    y = 0.0
    for label, layout in layouts:
        parts.append(rectangle("head", 0, y, WIDTH, LINE) + text(PAD, y, f"\u25be  {label}"))
        inner, height = column(layout, PAD, y + LINE + PAD, WIDTH - 2 * PAD)
        parts.append(rectangle("panel", 0, y + LINE, WIDTH, height + 2 * PAD))
        parts += inner
        y += LINE + height + 2 * PAD + GAP
    head = f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {y:g}" width="{WIDTH}" height="{y:g}">'
    return "\n".join([head, f"<style>{STYLE}</style>", *parts, "</svg>", ""])


def column(layout: Any, x: float, y: float, width: float) -> tuple[list[str], float]:
    """The shapes of a layout's items, stacked vertically, and their total height."""
    parts: list[str] = []
    start = y
    gap = 1 if layout.align else GAP
    for item in layout.children:
        shapes, height = shape(item, x, y, width)
        parts += shapes
        y += height + gap
    return parts, max(y - gap - start, 0)


def shape(item: Any, x: float, y: float, width: float) -> tuple[list[str], float]:
    if item.kind == "column":
        return column(item.layout, x, y, width)
    if item.kind == "box":
        inner, height = column(item.layout, x + PAD, y + GAP, width - 2 * PAD)
        return [rectangle("box", x, y, width, height + 2 * GAP), *inner], height + 2 * GAP
    if item.kind == "row":
        return row(item.layout, x, y, width)
    return list(single(item, x, y, width)), LINE


def row(layout: Any, x: float, y: float, width: float) -> tuple[list[str], float]:
    """The shapes of items side by side, and their height. A button without text is as wide as its icon."""
    narrow = [item.kind == "operator" and not item.text for item in layout.children]
    gap = 1 if layout.align else GAP
    wide = (width - sum(narrow) * (LINE + gap)) / max(len(narrow) - sum(narrow), 1)
    parts: list[str] = []
    tallest = 0.0
    for item, small in zip(layout.children, narrow):
        own = LINE if small else wide - (0 if item is layout.children[-1] else gap)
        shapes, height = shape(item, x, y, own)
        parts += shapes
        tallest = max(tallest, height)
        x += own + gap
    return parts, tallest


def single(item: Any, x: float, y: float, width: float) -> Iterator[str]:
    icon = ICONS.get(item.icon, "")
    words = f"{icon} {item.text}".strip()
    if item.kind == "operator":
        if item.text:
            yield rectangle("button", x, y, width, LINE)
        yield text(x + width / 2, y, words, anchor="middle")
    elif item.kind == "prop":
        yield from field(item, words, x, y, width)
    elif item.kind == "label":
        yield text(x, y, words, "" if icon else "small")


def field(item: Any, words: str, x: float, y: float, width: float) -> Iterator[str]:
    rna = item.data.bl_rna.properties[item.name]
    value = getattr(item.data, item.name)
    if rna.type == "BOOLEAN":
        yield rectangle("on" if value else "field", x, y + 4, 14, 14)
        yield text(x + 2, y, "\u2713" if value else "") + text(x + 20, y, words)
        return
    if rna.type == "ENUM":
        value = f"{rna.enum_items[value].name}  \u25be"
    if rna.type == "STRING":
        value = "//unreal" if rna.subtype == "DIR_PATH" else value
    yield text(x, y, words) + rectangle("field", x + width * 0.4, y, width * 0.6, LINE)
    yield text(x + width * 0.4 + 6, y, textwrap.shorten(str(value), 30))


def rectangle(kind: str, x: float, y: float, width: float, height: float) -> str:
    return f'<rect class="{kind}" x="{x:g}" y="{y:g}" width="{width:g}" height="{height:g}" rx="3"/>'


def text(x: float, y: float, words: str, kind: str = "", anchor: str = "start") -> str:
    return (
        f'<text class="{kind}" x="{x:g}" y="{y + 15:g}" text-anchor="{anchor}">{escape(words)}</text>' if words else ""
    )


if __name__ == "__main__":
    import quillgen_blender

    quillgen_blender.register()
    main(*map(Path, sys.argv[1:]))
    sys.stdout.flush()
    os._exit(0)  # bpy 4.2 as a module crashes at exit if a property had an update function
