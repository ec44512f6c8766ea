"""The camera. Everything here and in `surfaces` is in Blender's frame: right-handed, metres, z up."""

from typing import NamedTuple

import numpy as np


class Camera(NamedTuple):
    eye: tuple
    target: tuple
    lens: float  # in millimetres, on a sensor 36 mm wide
    pixels: int = 256  # the width of the square picture


def axes(camera):
    """The camera's own axes in the world: right, up, forward."""
    forward = unit(np.subtract(camera.target, camera.eye))
    right = unit(np.cross(forward, (0.0, 0.0, 1.0)))
    return right, np.cross(right, forward), forward


def tan_half_fov(camera):
    return 18.0 / camera.lens


def positions(camera, subdivision):
    """Where rays go through the picture, in pixels from the upper left: [n, 2], subdivision^2 for each pixel."""
    line = (np.arange(camera.pixels * subdivision) + 0.5) / subdivision
    y, x = np.meshgrid(line, line, indexing="ij")
    return np.stack([x.ravel(), y.ravel()], axis=1)


def rays(camera, places):
    """Directions through places in the picture, of length 1."""
    right, up, forward = axes(camera)
    offset = (places / camera.pixels * 2 - 1) * tan_half_fov(camera)
    return unit(offset[:, :1] * right - offset[:, 1:] * up + forward)


def unit(vectors):
    return vectors / np.linalg.norm(vectors, axis=-1, keepdims=True)
