"""The lights and the surroundings of an object, which both renderers share."""

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
    ground: tuple  # radiance from below the horizon
    floor: tuple | None = None  # reflectance of the studio's floor and wall
    studio: tuple = (2.35, 2.23)  # y where the floor begins to curve up, radius of the curve
    blocker: int = NOTHING
    blocker_size: float = 1.0
    blocker_turn: np.ndarray = np.eye(3)
    blocker_base: tuple = (0.3, 0.3, 0.3)  # colour of its reflection in the floor
    blocker_glow: tuple = (0.0, 0.0, 0.0)
