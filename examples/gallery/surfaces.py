"""The objects that show the materials: ray intersections and surface geometry.

An object is a shape in object space with a rotation, a position and a scale. A shape computes ray intersections and, at
a point, the normal, the tangent (the direction in which u grows) and the UV coordinate.
"""

from typing import NamedTuple

import numpy as np

from .camera import unit

NEVER = np.inf


class Shape(NamedTuple):
    name: str
    meet: object  # (origin, rays [n, 3], whether the far side) -> distances, NEVER for a miss
    frame: object  # points [n, 3] -> (normals, tangents)
    uv: object  # (points, normals) -> [n, 2]
    low: tuple  # bounds
    high: tuple


class Thing(NamedTuple):
    shape: Shape
    turn: np.ndarray = np.eye(3)  # the columns are the object's axes in world space
    place: tuple = (0.0, 0.0, 0.0)
    scale: float = 1.0
    far: bool = False  # shows the side that faces away from the viewer


def turned(degrees, axis="z"):
    """The matrix of a rotation about a world axis."""
    c, s = np.cos(np.radians(degrees)), np.sin(np.radians(degrees))
    i, j = {"x": (1, 2), "y": (2, 0), "z": (0, 1)}[axis]
    matrix = np.eye(3)
    matrix[i, i] = matrix[j, j] = c
    matrix[j, i], matrix[i, j] = s, -s
    return matrix


def sphere(radius=1.0):
    def meet(origin, rays, far):
        middle = -rays @ origin
        square = middle**2 - origin @ origin + radius**2
        reach = np.sqrt(np.maximum(square, 0)) * (1 if far else -1)
        return np.where((square > 0) & (middle + reach > 0), middle + reach, NEVER)

    def frame(points):
        normals = unit(points)
        east = np.cross((0.0, 0.0, 1.0), normals)
        return normals, unit(east + (1e-9, 0, 0))

    def uv(points, normals):
        n = unit(points)
        turn, tilt = np.arctan2(n[:, 0], -n[:, 1]), np.arccos(n[:, 2])
        return np.stack([turn / (2 * np.pi) + 0.5, 1 - tilt / np.pi], axis=1)

    return Shape("sphere", meet, frame, uv, (-radius,) * 3, (radius,) * 3)


def square(half=1.0, wide=1.0):
    """A square in the xy plane that faces up, with u along x. It is `wide` times as wide as the UV square, so its UVs
    exceed 0..1."""

    def meet(origin, rays, far):
        with np.errstate(divide="ignore", invalid="ignore"):
            distance = -origin[2] / rays[:, 2]
            inside = (np.abs(origin + distance[:, None] * rays)[:, :2] <= half * wide).all(axis=1)
        return np.where(inside & (distance > 0), distance, NEVER)

    def frame(points):
        return np.broadcast_to((0.0, 0.0, 1.0), points.shape), np.broadcast_to((1.0, 0.0, 0.0), points.shape)

    def uv(points, normals):
        return points[:, :2] / (2 * half) + 0.5

    # The bounds have some depth, because the generated coordinate is divided by it.
    return Shape("square", meet, frame, uv, (-half * wide, -half * wide, -0.01), (half * wide, half * wide, 0.01))


def box(half):
    """A cube. Each face has the whole UV square, upright on the sides."""

    def meet(origin, rays, far):
        with np.errstate(divide="ignore"):
            one, two = (-half - origin) / rays, (half - origin) / rays
        enter, leave = np.minimum(one, two).max(axis=1), np.maximum(one, two).min(axis=1)
        return np.where((enter <= leave) & (leave > 0), leave if far else enter, NEVER)

    def frame(points):
        axis = np.abs(points).argmax(axis=1)
        normals = np.eye(3)[axis] * np.sign(np.take_along_axis(points, axis[:, None], axis=1))
        along = np.cross((0.0, 0.0, 1.0), normals)
        return normals, np.where(np.abs(normals[:, 2:]) > 0.5, (1.0, 0.0, 0.0), along)

    def uv(points, normals):
        _, tangents = frame(points)
        return (
            np.stack([(points * t).sum(axis=1) for t in (tangents, np.cross(normals, tangents))], axis=1) / (2 * half)
            + 0.5
        )

    return Shape("box", meet, frame, uv, (-half,) * 3, (half,) * 3)


def meet(thing, eye, rays):
    """Distances along rays from the eye."""
    origin = to_local(thing, np.asarray(eye, dtype=float))
    return thing.shape.meet(origin, rays @ thing.turn, thing.far) * thing.scale


def to_local(thing, points):
    return (points - thing.place) @ thing.turn / thing.scale


def describe(thing, points):
    """{"local", "normal", "tangent", "bitangent", "uv"} at world space points; directions are in world space."""
    local = to_local(thing, points)
    normals, tangents = thing.shape.frame(local)
    return {
        "local": local,
        "normal": normals @ thing.turn.T,
        "tangent": tangents @ thing.turn.T,
        "bitangent": np.cross(normals, tangents) @ thing.turn.T,
        "uv": thing.shape.uv(local, normals),
    }
