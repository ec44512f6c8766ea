"""The outcomes of this session's exports. They are not saved with a file."""

import time
from collections.abc import Iterable
from typing import Any

import bpy

from ..exporting import Outcome
from . import log


def local_clock(when: float) -> str:
    return time.strftime("%H:%M:%S", time.localtime(when))


clock = local_clock
_outcomes: dict[int, Outcome] = {}  # by the material's session_uid


def keep(uid: int, outcome: Outcome) -> None:
    """`uid`: the material's session_uid. The material itself may have been removed."""
    _outcomes[uid] = outcome
    log.tell(outcome)
    redraw()


def last(material: Any) -> Outcome | None:
    return _outcomes.get(material.session_uid) if material else None


def has_failed(uid: int) -> bool:
    """Whether the last export ended with an error."""
    return uid in _outcomes and bool(_outcomes[uid].error)


def forget() -> None:
    _outcomes.clear()


def redraw(kinds: Iterable[str] = ("PROPERTIES", "NODE_EDITOR")) -> None:
    """Redraws the editors that show one of our panels."""
    for window in bpy.context.window_manager.windows:
        for area in window.screen.areas:
            if area.type in kinds:
                area.tag_redraw()
