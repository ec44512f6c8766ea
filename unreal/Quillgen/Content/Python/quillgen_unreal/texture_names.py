"""Paths of texture assets, the same for the editor and for the clipboard's text."""

from __future__ import annotations

from . import naming
from .exchange import Picture

FOLDER = "Textures"


def path(picture: Picture, content_path: str) -> str:
    """The asset's path. The file's name ends in its checksum, so different pixels make a different asset. A picture
    that wasn't exported has the name of its input."""
    name = picture.path.stem if picture.path else picture.name
    return f"{content_path}/{FOLDER}/{naming.asset('T_', name)}"
