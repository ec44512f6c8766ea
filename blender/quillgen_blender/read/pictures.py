"""Saves pictures as textures with the values that the generated HLSL expects."""

from __future__ import annotations

import errno
import shutil
from pathlib import Path
from typing import Any

import bpy
import numpy as np

from . import colour

MODES_COUNT = bpy.app.version >= (5, 1, 0)  # whether Cycles respects the alpha modes of images
# Formats that are copied unchanged, because Unreal reads the same bytes or floats from them, and the extensions by
# which Unreal recognizes them. The file may have another extension: Blender looks at the content.
BYTES = {"PNG": ".png", "TARGA": ".tga", "TARGA_RAW": ".tga", "BMP": ".bmp", "JPEG": ".jpg"}
FLOATS = {"OPEN_EXR": ".exr", "HDR": ".hdr"}


def record(picture: Any) -> dict[str, Any]:
    """An image's record in a document: how the HLSL has to read the file that `save_picture` writes. `stored` is
    Blender's colour space if the file has another."""
    space, is_float = picture.colorspace_settings.name, picture.is_float
    found = {"name": picture.name, "colorspace": space, "alpha": alpha(picture), "float": is_float}
    if colour.converted(space, is_float):
        is_float = is_float or multiplied(picture) or not colour.fits(space, colour.working_space())
        found |= {"colorspace": colour.LINEAR if is_float else "sRGB", "float": is_float, "stored": space}
    return found


def alpha(picture: Any) -> str:
    """The alpha mode with which the translator shows what Cycles shows.

    From Blender 5.1 on it is the image's own mode. Up to 5.0 Cycles multiplies bytes by their alpha for Premultiplied
    too, and never float pixels.
    """
    mode = picture.alpha_mode
    if mode in ("STRAIGHT", "PREMUL") and not MODES_COUNT:
        return "PREMUL" if picture.is_float else "STRAIGHT"
    return mode


def multiplied(picture: Any) -> bool:
    """Whether the HLSL multiplies colours by alpha. With bytes it would do so before decoding them; Cycles does that
    only with bytes that it doesn't convert."""
    return alpha(picture) in ("STRAIGHT", "PREMUL") and picture.depth in (0, 32)


def save_picture(picture: Any, folder: Path, stem: str) -> tuple[Path, dict[str, Any]]:
    """Saves an image as the HLSL reads it. Returns the file, named `stem` with the format's extension, and the image's
    record. Bytes stay bytes if bytes can hold them; all else becomes OpenEXR with 32 bits.

    A file on disk is copied unchanged if it holds the values that the HLSL expects. All others are written from the
    pixels in Blender, which converts those in other colour spaces. Raises FileNotFoundError if there are no pixels.
    """
    if not has_pixels(picture):
        raise FileNotFoundError(errno.ENOENT, "A picture has no pixels", picture.filepath or picture.name)
    found = record(picture)
    stored = Path(bpy.path.abspath(picture.filepath_from_user())) if picture.filepath else None
    if plain(picture, found) and stored and stored.is_file():
        path = folder / (stem + {**BYTES, **FLOATS}[picture.file_format])
        shutil.copyfile(stored, path)
        return path, found
    path = folder / (stem + (".exr" if found["float"] else ".png"))
    colour.save(as_read(picture, found), path, found["float"])
    return path, found


def plain(picture: Any, found: dict[str, Any]) -> bool:
    """Whether the image's file holds the values that the HLSL expects."""
    formats = FLOATS if picture.is_float else BYTES
    return untouched(picture) and picture.file_format in formats and "stored" not in found


def has_pixels(picture: Any) -> bool:
    """Whether there is something to save. Loads the file if it was not loaded yet; of a sequence Blender loads what a
    window shows."""
    return picture.has_data or len(picture.pixels) > 0


def missing(picture: Any) -> bool:
    """Whether the picture's file is missing; Blender then shows magenta."""
    if picture.source != "FILE" or picture.packed_file or picture.is_dirty:
        return False
    return not file_of(picture).is_file()


def file_of(picture: Any) -> Path:
    """The path of the file; the path of a linked image is relative to its library."""
    return Path(bpy.path.abspath(picture.filepath, library=picture.library))


def untouched(picture: Any) -> bool:
    """Whether the picture is the same as its file on disk; Cycles then loads the file itself."""
    return picture.source == "FILE" and not picture.is_dirty and not picture.packed_file


def from_file(picture: Any) -> bool:
    """Whether Cycles loads the file itself and uses its values unchanged. Up to 5.0 it multiplies floats of formats
    other than OpenEXR as Blender does."""
    return untouched(picture) and (MODES_COUNT or not picture.is_float or picture.file_format in FLOATS)


def as_read(picture: Any, found: dict[str, Any]) -> np.ndarray:
    """The values [height, width, 4] that the HLSL expects of an image."""
    space = picture.colorspace_settings.name
    values = colour.stored(picture, file_of(picture)) if from_file(picture) else colour.pixels(picture)
    if picture.is_float:  # in the working space already
        if untouched(picture):
            values[..., :3] *= colour.CYCLES_OWN.get(space, 1)
        matrix = colour.to_rec709()
        if matrix is not None and space not in colour.DATA:
            values[..., :3] = values[..., :3] @ matrix
    elif "stored" in found:
        flat = values.reshape(-1, 4)
        each, places = np.unique(np.rint(flat[:, :3] * 255).astype(np.uint8), axis=0, return_inverse=True)
        each = colour.linear(each / 255, space) * colour.CYCLES_OWN.get(space, 1)
        each = each.astype(np.float16) if found["float"] else colour.encoded(each)  # Cycles stores half floats, too
        values[..., :3] = each[places.ravel()].reshape(*values.shape[:2], 3)
    return values
