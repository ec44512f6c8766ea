"""A bar in the status bar while many materials are exported."""

from dataclasses import dataclass
from typing import Any

import bpy


@dataclass
class Progress:
    text: str = ""
    done: int = 0
    of: int = 0


_now = Progress()


def draw(header: Any, context: Any) -> None:
    row = header.layout.row()
    row.label(text="Stop", icon="EVENT_ESC")
    row.progress(factor=_now.done / max(_now.of, 1), text=f"{_now.done} of {_now.of}: {_now.text}", type="BAR")
    row.separator_spacer()


def show(text: str, done: int, of: int) -> None:
    _now.text, _now.done, _now.of = text, done, of
    for window in bpy.context.window_manager.windows:
        window.workspace.status_text_set(draw)


def hide() -> None:
    for window in bpy.context.window_manager.windows:
        window.workspace.status_text_set(None)
