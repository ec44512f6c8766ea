"""Live import: while it is on, exports from Blender to a folder are imported automatically.

A tick checks the files about twice a second and imports one material at a time, so that the editor stays responsive. If
only values have changed, the import sets them on the instance and compiles nothing.
"""

from __future__ import annotations

import time
from pathlib import Path
from typing import Any

import unreal

from . import exchange, importer, naming
from .errors import Refused, Unfinished

INTERVAL = 0.5  # seconds between two checks
FILES = (exchange.MANIFEST, "parameters.json")
LATE = 10.0  # seconds after which an incomplete export is reported


Stamp = tuple[tuple[int, int], ...]  # see `stamp`


class Watch:
    """The state of a folder. `done`: material folder -> stamp of its files at the last import."""

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
            pass  # the import reports it
        self.waiting.pop(folder, None)
        self.done[folder] = seen  # even if it fails: an error is reported once, until the files change
        return importer.attempt(folder, self.content_path, instanced=self.instanced, patience=0.0)


def stamp(folder: Path) -> Stamp | None:
    """Modification times and sizes of the files that an export writes last; None if one is missing."""
    try:
        stats = [(folder / name).stat() for name in FILES]
    except OSError:
        return None
    return tuple((s.st_mtime_ns, s.st_size) for s in stats)


_running: list[tuple[Any, Watch]] = []  # [(handle of the callback, Watch)], at most one


def running() -> Watch | None:
    """The active Watch, or None."""
    return _running[0][1] if _running else None


def start(folder: str | Path, content_path: str, instanced: bool = False) -> None:
    """Starts live import, or switches it to another folder."""
    stop()
    watch = Watch(folder, content_path, instanced)
    importer.folders(folder)  # raises Refused at once if the folder is missing

    def tick(delta: float) -> None:
        try:
            outcome = watch.tick(time.monotonic())
        except Exception as error:  # otherwise the exception would be raised in every frame
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
