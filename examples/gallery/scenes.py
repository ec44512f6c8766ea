"""The scene of each material: objects, camera and lights that reproduce Blender's previews.

Cameras and lights were fitted to the previews: the cameras to the positions of the patterns, the lights to the
brightness of floor and objects and to the positions of the highlights.
"""

from typing import NamedTuple

from . import surfaces
from .camera import Camera
from .surroundings import BOX, SPHERE, Light, Surroundings


class Scene(NamedTuple):
    camera: Camera
    things: tuple
    around: Surroundings
    behind: tuple = ((0.0,) * 3,) * 2  # radiance of the background at the lower and the upper edge
    panel: dict | None = None  # surface values of an upright plane behind the object
    relief_rows: int = 0  # rows of the grid for real displacement, 0 for none


STUDIO_LIGHTS = (
    Light((-3.11, -3.27, 4.3), 2.4, (19.7, 19.1, 18.5)),
    Light((3.93, -3.48, 1.74), 3.0, (3.7, 4.0, 4.4)),
    Light((1.8, 3.04, 4.63), 2.2, (20.2, 20.5, 21.4)),
)
STUDIO = Surroundings(STUDIO_LIGHTS, sky=(0.092, 0.096, 0.12), ground=(0.05, 0.05, 0.05), floor=(0.338,) * 3)
STUDIO_CAMERA = Camera((0.0, -5.9, 1.4), (0.0, 0.0, -0.036), 74.0)
BALL = (surfaces.Thing(surfaces.sphere()),)


def dark(share):
    """The studio with a dark floor and dimmed lights, for emissive materials."""

    def less(color):
        return tuple(share * part for part in color)

    lights = tuple(light._replace(glow=less(light.glow)) for light in STUDIO.lights)
    return STUDIO._replace(
        lights=lights, sky=less(STUDIO.sky), ground=less(STUDIO.ground), floor=(0.085,) * 3, blocker=SPHERE
    )


def on_a_ball(**changes):
    return Scene(STUDIO_CAMERA, BALL, STUDIO._replace(blocker=SPHERE))._replace(**changes)


def scene(name):
    return SCENES.get(name, on_a_ball)()


def hologram():
    """The front and the back of a ball in the dark."""
    far_side = BALL[0]._replace(far=True)
    return on_a_ball(things=BALL + (far_side,), around=dark(0.005))


def lava():
    return on_a_ball(around=dark(0.25))


def mossy_rock():
    """A ball of 0.93 m with real displacement."""
    small = BALL[0]._replace(scale=0.93)
    around = STUDIO._replace(blocker=SPHERE, blocker_size=0.88)
    return on_a_ball(things=(small,), around=around, relief_rows=768)


def pbr_crate():
    turn = surfaces.turned(29.3)
    crate = surfaces.Thing(surfaces.box(0.75), turn, (0.0, 0.0, -0.25))
    around = STUDIO._replace(blocker=BOX, blocker_size=0.75, blocker_turn=turn)
    return Scene(Camera((0.0, -6.13, 2.3), (0.0, 0.0, -0.24), 73.0), (crate,), around)


WALL_HALF = 1.6
UPRIGHT = surfaces.Thing(surfaces.square(WALL_HALF), surfaces.turned(90, "x"))


def wall(eye=(0.57, -3.3, 0.35), **changes):
    """A wall 3.2 m wide. Positions are in units of half its width."""

    def metres(place):
        return tuple(WALL_HALF * part for part in place)

    lights = (
        Light(metres((-1.78, -1.3, 2.03)), 0.7 * WALL_HALF, (79.0,) * 3),
        Light(metres((3.0, -2.6, 1.5)), 1.5 * WALL_HALF, (6.0,) * 3),
    )
    around = Surroundings(lights, sky=(0.17,) * 3, ground=(0.17,) * 3)
    return Scene(Camera(metres(eye), (0.0, 0.0, 0.0), 65.0), (UPRIGHT,), around)._replace(**changes)


def brick_wall():
    return wall(relief_rows=1024)


def stained_glass():
    """A wall lit from behind."""
    return wall((0.42, -3.82, 0.2), behind=((0.3,) * 3, (0.7, 0.73, 0.8)))


def hazard_decal():
    metal = {"base": (0.25, 0.3, 0.34), "metallic": 1.0, "roughness": 0.4}
    return wall((0.95, -3.73, 0.77), panel=metal)


GROUND = surfaces.Thing(surfaces.square(5.0, wide=8.0))
GROUND_CAMERA = Camera((0.0, -7.08, 3.3), (0.0, -1.23, 0.0), 50.0)


def chequered_floor():
    """Under a large lamp and a uniform sky."""
    lamp = Light((-1.0, -3.3, 7.5), 5.0, (7.4, 7.0, 6.5), (-1.0, -3.3, 0.0))
    around = Surroundings((lamp,), sky=(0.45, 0.45, 0.46), ground=(1.3, 1.3, 1.3))
    return Scene(GROUND_CAMERA, (GROUND,), around)


def wet_asphalt():
    """Under a lamp at dusk, the horizon brighter than the sky."""
    lamp = Light((-4.0, -1.9, 5.0), 1.7, (75.0, 70.0, 64.0), (-0.6, -0.8, 0.0))
    around = Surroundings((lamp,), sky=(0.15, 0.18, 0.26), ground=(1.5, 1.46, 1.4))
    return Scene(GROUND_CAMERA, (GROUND,), around)


def maple_leaf():
    """Three floating cards. The right one shows its back."""
    cards = tuple(
        surfaces.Thing(surfaces.square(), _euler(*turn), place, size)
        for turn, place, size in (
            ((79.9, 16.9, 10.9), (-0.052, 0.0, 0.021), 1.0),
            ((91.2, 39.8, -6.8), (-1.068, 0.6, 0.361), 0.5),
            ((120.5, -34.0, 164.5), (0.845, 0.0, -0.38), 0.54),
        )
    )
    lights = (Light((-1.0, -1.0, 5.0), 4.0, (6.0, 6.0, 6.0)), Light((-3.1, -3.3, 3.0), 2.4, (9.0, 8.8, 8.5)))
    return Scene(STUDIO_CAMERA, cards, STUDIO._replace(lights=lights, floor=(0.4, 0.43, 0.41)))


def _euler(x, y, z):
    return surfaces.turned(z, "z") @ surfaces.turned(y, "y") @ surfaces.turned(x, "x")


# Hue directions that reproduce Blender's reference values. Current documents contain them, but these documents don't.
HUES = {
    "ramp_banner": {
        "Color Ramp.005": "NEAR",
        "Color Ramp.006": "FAR",
        "Color Ramp.007": "CW",
        "Color Ramp.008": "CCW",
        "Color Ramp.009": "NEAR",
    }
}


def with_hues(name, document):
    """The document with the hue directions of its ramps."""
    ways = HUES.get(name, {})
    nodes = [
        {**node, "ramp": {**node["ramp"], "hue": ways[node["id"]]}} if node["id"] in ways else node
        for node in document["nodes"]
    ]
    return {**document, "nodes": nodes}


SCENES = {
    "hologram": hologram,
    "lava": lava,
    "mossy_rock": mossy_rock,
    "pbr_crate": pbr_crate,
    "maple_leaf": maple_leaf,
    "brick_wall": brick_wall,
    "oak_planks": wall,
    "ramp_banner": wall,
    "rosette_tiles": wall,
    "stained_glass": stained_glass,
    "hazard_decal": hazard_decal,
    "chequered_floor": chequered_floor,
    "wet_asphalt": wet_asphalt,
}
