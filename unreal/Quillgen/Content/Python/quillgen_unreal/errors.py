"""Errors of an import. Their messages name the file and the material."""

from __future__ import annotations

from pathlib import Path


class Refused(Exception):
    """The material can't be imported. The assets are unchanged."""

    def __init__(self, material: str, file: str | Path, what: str) -> None:
        super().__init__(f"{material}: {what} ({file})" if file else f"{material}: {what}")
        self.material = material
        self.file = str(file)
        self.what = what


class Unfinished(Refused):
    """The files don't match yet: an export is in progress."""


class Cancelled(Exception):
    """The user pressed Cancel."""
