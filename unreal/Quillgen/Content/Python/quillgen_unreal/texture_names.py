"""Where textures are kept, in the editor and in a text for the clipboard alike."""

from __future__ import annotations

from . import naming
from .exchange import Picture

FOLDER = "Textures"


def path(picture: Picture, content_path: str) -> str:
    """The asset's path. The file's name ends in its checksum: other pixels make another asset. A picture that wasn't
    exported has the name that its input has."""
    name = picture.path.stem if picture.path else picture.name
    return f"{content_path}/{FOLDER}/{naming.asset('T_', name)}"
