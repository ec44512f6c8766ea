"""Pictures as textures: which file holds the numbers that the translated text expects."""

from __future__ import annotations

import errno
import shutil
from pathlib import Path
from typing import Any

import bpy
import numpy as np

from . import colour

MODES_COUNT = bpy.app.version >= (5, 1, 0)  # whether Cycles goes by the alpha modes of images
# Formats that are copied as they are, since Unreal reads the same bytes or floats from them, and the endings by which
# it knows them. The file may have another: Blender goes by what is in it.
BYTES = {"PNG": ".png", "TARGA": ".tga", "TARGA_RAW": ".tga", "BMP": ".bmp", "JPEG": ".jpg"}
FLOATS = {"OPEN_EXR": ".exr", "HDR": ".hdr"}


def record(picture: Any) -> dict[str, Any]:
    """An image's record in a document: how the text has to read the file that `save_picture` makes. `stored` is
    Blender's own colour space where the file has another."""
    space, is_float = picture.colorspace_settings.name, picture.is_float
    found = {"name": picture.name, "colorspace": space, "alpha": alpha(picture), "float": is_float}
    if colour.converted(space, is_float):
        is_float = is_float or multiplied(picture) or not colour.fits(space, colour.working_space())
        found |= {"colorspace": colour.LINEAR if is_float else "sRGB", "float": is_float, "stored": space}
    return found


def alpha(picture: Any) -> str:
    """The alpha mode under which the translator shows what Cycles shows.

    From Blender 5.1 on that is the image's own mode. Up to 5.0 Cycles multiplies bytes by their alpha under
    Premultiplied too, and float pixels never.
    """
    mode = picture.alpha_mode
    if mode in ("STRAIGHT", "PREMUL") and not MODES_COUNT:
        return "PREMUL" if picture.is_float else "STRAIGHT"
    return mode


def multiplied(picture: Any) -> bool:
    """Whether the text multiplies colours by alpha: in bytes that would come before they are decoded, and Cycles does
    so only with those that it doesn't convert."""
    return alpha(picture) in ("STRAIGHT", "PREMUL") and picture.depth in (0, 32)


def save_picture(picture: Any, folder: Path, stem: str) -> tuple[Path, dict[str, Any]]:
    """Saves an image as the text reads it and returns the file, named by `stem` and the format's ending, with the
    image's record. Bytes stay bytes where bytes can hold them; all else becomes OpenEXR with 32 bits.

    A file on the disk goes as it is where its numbers are what the text expects. All others are written from the pixels
    that Blender holds, those in foreign colour spaces by way of Blender's colour management. Raises FileNotFoundError
    where there are no pixels.
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
    """Whether the image's file holds the numbers that the text expects."""
    formats = FLOATS if picture.is_float else BYTES
    return untouched(picture) and picture.file_format in formats and "stored" not in found


def has_pixels(picture: Any) -> bool:
    """Whether there is something to save. A file is read if it was not yet; of a sequence Blender reads what a window
    shows."""
    return picture.has_data or len(picture.pixels) > 0


def missing(picture: Any) -> bool:
    """Whether the picture's file is not there; Blender then shows magenta."""
    if picture.source != "FILE" or picture.packed_file or picture.is_dirty:
        return False
    return not file_of(picture).is_file()


def file_of(picture: Any) -> Path:
    """Where the file lies; the path of a linked image is relative to its library."""
    return Path(bpy.path.abspath(picture.filepath, library=picture.library))


def untouched(picture: Any) -> bool:
    """Whether the picture is what its file on the disk holds; Cycles then loads that by itself."""
    return picture.source == "FILE" and not picture.is_dirty and not picture.packed_file


def from_file(picture: Any) -> bool:
    """Whether Cycles reads the file by itself and shows its numbers. Up to 5.0 it multiplies floats of other formats
    than OpenEXR as Blender does."""
    return untouched(picture) and (MODES_COUNT or not picture.is_float or picture.file_format in FLOATS)


def as_read(picture: Any, found: dict[str, Any]) -> np.ndarray:
    """The numbers [height, width, 4] that the text expects of an image."""
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
        each = each.astype(np.float16) if found["float"] else colour.encoded(each)  # Cycles too holds half floats
        values[..., :3] = each[places.ravel()].reshape(*values.shape[:2], 3)
    return values
