"""What each material is shown on: the objects, the camera and the lights of Blender's previews.

Cameras and lights were found from the previews themselves: the cameras so that the patterns lie where they lie there,
the lights so that floor, objects and highlights are as bright and lie where they do.
"""
from typing import NamedTuple

from . import shade, surfaces
from .camera import Camera
from .shade import Light, Surroundings


class Scene(NamedTuple):
    camera: Camera
    things: tuple
    around: Surroundings
    behind: tuple = (0.0, 0.0, 0.0)  # what is seen where there is nothing, as radiance
    relief_rows: int = 0             # rows of the grid of real displacement, 0 for none
    premultiplied: bool = False      # whether the text's colours are multiplied by the opacity already


STUDIO_LIGHTS = (Light((-3.11, -3.27, 4.3), 2.5, (18.2, 17.6, 17.0)), Light((3.93, -3.48, 1.74), 3.8, (2.3, 2.5, 2.74)),
                 Light((1.8, 3.04, 4.63), 2.2, (20.2, 20.5, 21.4)))
STUDIO = Surroundings(STUDIO_LIGHTS, sky=(0.092, 0.096, 0.12), ground=(0.05, 0.05, 0.05), floor=0.338)
STUDIO_CAMERA = Camera((0.0, -5.9, 1.4), (0.0, 0.0, -0.045), 73.0)
BALL = (surfaces.Thing(surfaces.sphere()),)


def dimmed(around, share, glow=(0.0, 0.0, 0.0)):
    """The studio with the lights turned down, and an object that glows."""
    lights = tuple(light._replace(glow=tuple(share * g for g in light.glow)) for light in around.lights)
    return around._replace(lights=lights, sky=tuple(share * s for s in around.sky), blocker_glow=glow)


def on_a_ball(**changes):
    return Scene(STUDIO_CAMERA, BALL, STUDIO._replace(blocker=shade.SPHERE))._replace(**changes)


def scene(name):
    return SCENES.get(name, on_a_ball)()


SCENES = {}
