"""Follows a folder: while it is on, what Blender exports there is imported by itself.

A tick looks at the files about twice a second and imports one material at a time, so that the editor stays usable.
Where only values have changed, the import sets them on the instance and compiles nothing.
"""

from __future__ import annotations

import time
from pathlib import Path
from typing import Any

import unreal

from . import exchange, importer, naming
from .errors import Refused, Unfinished

INTERVAL = 0.5  # seconds between two looks
FILES = (exchange.MANIFEST, "parameters.json")
LATE = 10.0  # seconds after which an export that isn't whole is reported


Stamp = tuple[tuple[int, int], ...]  # see `stamp`


class Watch:
    """What was seen of a folder: material folder -> when its files were changed, as it was when last imported."""

    def __init__(self, root: str | Path, content_path: str, instanced: bool = False) -> None:
        self.root, self.content_path, self.instanced = Path(root), naming.content_path(content_path), instanced
        self.done: dict[Path, Stamp] = {}
        self.waiting: dict[Path, tuple[Stamp, float]] = {}
        self.next_look = 0.0

    def tick(self, now: float) -> importer.Outcome | None:
        """Imports at most one material that has changed. Returns its Outcome, or None."""
        if now < self.next_look:
            return None
        self.next_look = now + INTERVAL
        for folder in self._folders():
            seen = stamp(folder)
            if seen and self.done.get(folder) != seen:
                outcome = self._import(folder, seen, now)
                if outcome:
                    return outcome
        return None

    def _folders(self) -> list[Path]:
        try:
            return importer.folders(self.root)
        except Refused:
            return []  # a drive may come back

    def _import(self, folder: Path, seen: Stamp, now: float) -> importer.Outcome | None:
        try:
            exchange.read(folder)
        except Unfinished:
            since = self.waiting.get(folder, (seen, now))
            self.waiting[folder] = since if since[0] == seen else (seen, now)
            if now - self.waiting[folder][1] < LATE:
                return None
        except Refused:
            pass  # the import says it
        self.waiting.pop(folder, None)
        self.done[folder] = seen  # also where it fails: an error is said once, until the files change
        return importer.attempt(folder, self.content_path, instanced=self.instanced, patience=0.0)


def stamp(folder: Path) -> Stamp | None:
    """When the files that change last were changed, and their sizes; None while one is missing."""
    try:
        stats = [(folder / name).stat() for name in FILES]
    except OSError:
        return None
    return tuple((s.st_mtime_ns, s.st_size) for s in stats)


_running: list[tuple[Any, Watch]] = []  # [(handle of the callback, Watch)], at most one


def running() -> Watch | None:
    """The Watch that is on, or None."""
    return _running[0][1] if _running else None


def start(folder: str | Path, content_path: str, instanced: bool = False) -> None:
    """Switches it on, or over to another folder."""
    stop()
    watch = Watch(folder, content_path, instanced)
    importer.folders(folder)  # a folder that isn't there is refused at once

    def tick(delta: float) -> None:
        try:
            outcome = watch.tick(time.monotonic())
        except Exception as error:  # an exception would be raised again in every frame
            unreal.log_error(f"Quillgen: live: {type(error).__name__}: {error}; it is switched off")
            stop()
            return
        if outcome and outcome.status not in ("failed", "unchanged"):
            importer.summarise([outcome], folder)

    _running.append((unreal.register_slate_post_tick_callback(tick), watch))
    unreal.log(f"Quillgen: live: following {folder}")


def stop() -> None:
    while _running:
        handle, watch = _running.pop()
        unreal.unregister_slate_post_tick_callback(handle)
        unreal.log(f"Quillgen: live: no longer following {watch.root}")
