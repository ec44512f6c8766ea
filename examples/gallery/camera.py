"""The camera. Everything here and in `surfaces` is in Blender's frame: right-handed, metres, z up."""

from typing import NamedTuple

import numpy as np


class Camera(NamedTuple):
    eye: tuple
    target: tuple
    lens: float  # in millimetres, on a sensor 36 mm wide
    pixels: int = 512  # the width of the square picture


class Part(NamedTuple):
    """A rectangle of a picture, in pixels from the upper left."""

    left: int
    top: int
    width: int
    height: int

    def grown(self, border, camera):
        """The rectangle enlarged by `border` pixels on each side, clipped to the picture."""
        left, top = max(self.left - border, 0), max(self.top - border, 0)
        right = min(self.left + self.width + border, camera.pixels)
        bottom = min(self.top + self.height + border, camera.pixels)
        return Part(left, top, right - left, bottom - top)


def whole(camera):
    return Part(0, 0, camera.pixels, camera.pixels)


def axes(camera):
    """The camera's axes in world space: right, up, forward."""
    forward = unit(np.subtract(camera.target, camera.eye))
    right = unit(np.cross(forward, (0.0, 0.0, 1.0)))
    return right, np.cross(right, forward), forward


def tan_half_fov(camera):
    return 18.0 / camera.lens


def positions(camera, subdivision, part=None):
    """The positions of rays in the picture or a part of it: [n, 2], in pixels from the upper left of the whole picture,
    subdivision^2 per pixel, row by row."""
    left, top, width, height = part or whole(camera)
    x = (np.arange(left * subdivision, (left + width) * subdivision) + 0.5) / subdivision
    y = (np.arange(top * subdivision, (top + height) * subdivision) + 0.5) / subdivision
    y, x = np.meshgrid(y, x, indexing="ij")
    return np.stack([x.ravel(), y.ravel()], axis=1)


def numbers(camera, subdivision, places):
    """The indices of rays in the whole picture, independent of the part: [n]."""
    x, y = np.int64(np.floor(places * subdivision)).T
    return y * camera.pixels * subdivision + x


def rays(camera, places):
    """Unit directions of the rays through positions in the picture."""
    right, up, forward = axes(camera)
    offset = (places / camera.pixels * 2 - 1) * tan_half_fov(camera)
    return unit(offset[:, :1] * right - offset[:, 1:] * up + forward)


def unit(vectors):
    return vectors / np.linalg.norm(vectors, axis=-1, keepdims=True)
