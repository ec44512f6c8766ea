"""Where textures are kept, in the editor and in a text for the clipboard alike."""

from __future__ import annotations

from . import naming

FOLDER = "Textures"


def path(picture, content_path):
    """The asset's path. The file's name ends in its checksum: other pixels make another asset. A picture that wasn't
    exported has the name that its input has."""
    name = picture.path.stem if picture.path else picture.name
    return f"{content_path}/{FOLDER}/{naming.asset('T_', name)}"
