"""The light that falls on what is shown, and what else stands there: the same for both renderers."""

from typing import NamedTuple

import numpy as np

SPHERE, BOX, NOTHING = 1, 2, 0


class Light(NamedTuple):
    """A square light that shines towards one place."""

    at: tuple
    size: float
    glow: tuple  # radiance
    towards: tuple = (0.0, 0.0, 0.0)


class Surroundings(NamedTuple):
    lights: tuple
    sky: tuple  # radiance from above the horizon
    ground: tuple  # and from below
    floor: tuple | None = None  # reflectance of the studio's floor and wall
    studio: tuple = (2.35, 2.23)  # where the floor begins to rise, radius of the rise
    blocker: int = NOTHING
    blocker_size: float = 1.0
    blocker_turn: np.ndarray = np.eye(3)
    blocker_base: tuple = (0.3, 0.3, 0.3)  # what its reflection in the floor looks like
    blocker_glow: tuple = (0.0, 0.0, 0.0)
