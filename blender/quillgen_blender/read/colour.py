"""Colour spaces: converts pictures and socket values to Linear Rec.709, the space of the generated HLSL."""

from __future__ import annotations

import itertools
import tempfile
from functools import cache
from pathlib import Path
from typing import Any

import bpy
import numpy as np
from mathutils import Color

LINEAR = "Linear Rec.709"
WORKING = "scene_linear"
# DATA: spaces that hold no colours. AS_BYTES, AS_FLOATS: spaces that the generated HLSL decodes itself.
DATA = ("Non-Color", "Raw", "Generic Data", "Data")
# Blender scales images in these spaces so that white at 203 nits is 1. Cycles, where it loads the file itself, maps 100
# nits to 1.
CYCLES_OWN = {"Rec.2100-HLG": 2.03, "Rec.2100-PQ": 2.03}
AS_BYTES, AS_FLOATS = ("sRGB", LINEAR, "Linear"), (LINEAR, "Linear")


def working_space() -> str:
    """The colour space of socket values and of loaded float pictures; a setting of the file since Blender 5.0."""
    data = getattr(bpy.data, "colorspace", None)
    return data.working_space if data else LINEAR


def to_rec709() -> np.ndarray | None:
    """The matrix from the working space to Linear Rec.709, for rows of colours; None if the two are the same."""
    if working_space() == LINEAR:
        return None
    return np.array([Color(unit).from_scene_linear_to_rec709_linear()[:] for unit in np.eye(3).tolist()], np.float64)


def converted(space: str, is_float: bool) -> bool:
    """Whether pictures in a space must be converted when they are saved. The generated HLSL reads all but a few spaces
    as linear."""
    if space == WORKING:
        return working_space() != LINEAR
    return space not in DATA and space not in (AS_FLOATS if is_float else AS_BYTES)


@cache
def fits(space: str, working: str) -> bool:
    """Whether all byte colours of a space lie between 0 and 1 in Rec.709, so that bytes can hold them. `working`, the
    working space of the file, is only part of the cache key: the result depends on colour management, not on the
    document."""
    corners = np.array(list(itertools.product((0, 0.5, 1), repeat=3)), np.float64)
    found = linear(corners, space)
    return bool(found.min() > -0.5 / 255 and found.max() < 1 + 0.5 / 255)


def linear(colours: np.ndarray, space: str) -> np.ndarray:
    """Converts colours [n, 3] from a space to Linear Rec.709 with Blender's own colour management: Blender converts a
    float picture when it loads it."""
    with tempfile.TemporaryDirectory() as folder:
        path = Path(folder) / "colours.exr"
        save(np.column_stack([colours, np.ones(len(colours))])[None], path, True)
        loaded = bpy.data.images.load(str(path))
        loaded.colorspace_settings.name = space
        found = pixels(loaded)[0, :, :3].astype(np.float64)
        bpy.data.images.remove(loaded)
    matrix = to_rec709()
    return found if matrix is None else found @ matrix


def encoded(colours: np.ndarray) -> np.ndarray:
    """Encodes Linear Rec.709 as sRGB."""
    colours = np.clip(colours, 0, 1)
    return np.where(colours < 0.0031308, colours * 12.92, 1.055 * colours ** (1 / 2.4) - 0.055)


def pixels(picture: Any) -> np.ndarray:
    """[height, width, 4] as Blender holds them, row 0 at the bottom."""
    found = np.empty(len(picture.pixels), np.float32)
    picture.pixels.foreach_get(found)
    return found.reshape(picture.size[1], picture.size[0], 4)


def stored(picture: Any, file: Path) -> np.ndarray:
    """The same for the picture's file, as Cycles reads it: colours are neither multiplied nor divided by alpha."""
    copy = bpy.data.images.load(str(file))
    try:
        copy.alpha_mode = "CHANNEL_PACKED"
        copy.colorspace_settings.name = picture.colorspace_settings.name
        return pixels(copy)
    finally:
        bpy.data.images.remove(copy)


def save(values: np.ndarray, path: Path, is_float: bool) -> None:
    """Saves [height, width, 4] unchanged, as OpenEXR with 32 bits or as PNG with 8."""
    copy = bpy.data.images.new("quillgen copy", values.shape[1], values.shape[0], alpha=True, float_buffer=is_float)
    try:
        copy.alpha_mode = "CHANNEL_PACKED"  # no multiplication by alpha
        copy.colorspace_settings.name = "Non-Color"
        copy.pixels.foreach_set(np.ascontiguousarray(values, np.float32).ravel())
        copy.file_format = "OPEN_EXR" if is_float else "PNG"
        copy.save(filepath=str(path))
    finally:
        bpy.data.images.remove(copy)
