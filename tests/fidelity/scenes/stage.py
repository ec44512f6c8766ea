"""The objects and the camera of the scenes. Runs inside Blender."""

import math
from typing import NamedTuple

import bpy
import numpy as np
from mathutils import Euler, Matrix, Vector

PIXELS = 32


class Scene(NamedTuple):
    name: str
    make: object
    rotation: tuple = (0.0, 0.0, 0.0)
    scale: tuple = (1.0, 1.0, 1.0)
    place: tuple = (0.0, 0.0, 0.0)

    @property
    def smooth(self):
        return self.make is not grid

    @property
    def behind(self):
        """Whether the camera sees back faces of the surface."""
        return self.make is sheet or "behind" in self.name


def shell():
    """A smooth bent sheet whose outside is visible."""
    return bent("Shell", 4.4, 1.5)


def sheet():
    """A smooth sheet that is bent so far that its inside is visible too."""
    return bent("Sheet", 2.6, 4.2)


def bent(name, begin, turn):
    across, up = 26, 18
    points, uvs = [], []
    for t in np.linspace(0, 1, up + 1):
        for s in np.linspace(0, 1, across + 1):
            angle, radius = begin + turn * s, 0.85 + 0.08 * math.sin(9 * t) + 0.06 * math.cos(7 * s + 2 * t)
            points.append((radius * math.cos(angle), radius * math.sin(angle), 1.9 * t - 0.95 + 0.15 * math.sin(5 * s)))
            uvs.append((s + 0.1 * t, t - 0.06 * math.sin(6 * s)))
    return mesh(name, points, uvs, across, up, True)


def grid():
    """A flat grid."""
    across, up = 8, 6
    places = [(s, t) for t in np.linspace(0, 1, up + 1) for s in np.linspace(0, 1, across + 1)]
    points = [(2.4 * s - 1.2, 2.0 * t - 1.0, 0.0) for s, t in places]
    uvs = [(0.9 * s + 0.2 * t, 1.1 * t - 0.3 * s) for s, t in places]
    return mesh("Grid", points, uvs, across, up, False)


def mesh(name, points, uvs, across, up, smooth):
    """A mesh of triangles between rows of points, with two UV maps and a colour attribute."""
    faces = []
    for row in range(up):
        for column in range(across):
            a = row * (across + 1) + column
            b, c, d = a + 1, a + across + 2, a + across + 1
            faces += [(a, b, c), (a, c, d)]
    made = bpy.data.meshes.new(name)
    made.from_pydata(points, [], faces)
    made.polygons.foreach_set("use_smooth", [smooth] * len(faces))
    uvs = np.float32(uvs)[np.array(faces).ravel()]
    turned = np.stack([1.5 * uvs[:, 1] + 0.25, -0.75 * uvs[:, 0]], axis=1)
    for layer, values in (("UVMap", uvs), ("Second", turned)):
        made.uv_layers.new(name=layer).data.foreach_set("uv", values.ravel())
    colours = made.color_attributes.new("Col", "FLOAT_COLOR", "CORNER")
    x, y = uvs[:, 0], uvs[:, 1]
    colours.data.foreach_set(
        "color",
        np.stack([x, 0.5 + 0.5 * np.sin(5 * y), 0.3 * x + y * y, 1 - 0.6 * y], axis=1).astype(np.float32).ravel(),
    )
    made.update()
    return made


SCENES = [
    Scene("shell", shell),
    Scene("shell turned", shell, (0.3, -0.2, 0.5), place=(0.2, -0.1, 0.15)),
    Scene("shell stretched", shell, (0.2, -0.3, 0.3), (0.8, 1.3, 1.1), (-0.1, 0.2, 0.05)),
    Scene("shell mirrored", shell, (0.2, 0.3, 1.7), (-1.0, 1.2, 0.85), (0.1, 0.0, 0.1)),
    Scene("sheet", sheet),
    Scene("sheet stretched", sheet, (0.2, -0.3, 0.4), (0.7, 1.2, 1.0), (-0.1, 0.2, 0.05)),
    Scene("grid", grid, (0.3, 0.2, 0.5), (1.0, 1.0, 1.0), (0.1, 0.2, 0.0)),
    Scene("grid stretched", grid, (0.5, -0.3, 0.7), (1.3, 0.6, 2.0), (0.0, -0.2, 0.3)),
    Scene("grid from behind", grid, (3.6, 0.3, 0.2), (0.9, 1.1, 1.0), (0.1, 0.0, 0.2)),
    Scene("grid mirrored", grid, (0.4, 0.3, 0.3), (-1.1, 0.9, 1.0), (0.0, 0.1, 0.1)),
    Scene("grid far away", grid, (0.3, 0.2, 0.5), (1.0, 1.0, 1.0), (21.0, -34.0, 8.0)),
]


def build(scene):
    """Adds the object and the camera of a scene to the open file."""
    thing = bpy.data.objects.new(scene.name, scene.make())
    thing.matrix_world = Matrix.LocRotScale(Vector(scene.place), Euler(scene.rotation), Vector(scene.scale))
    lens = bpy.data.cameras.new("Camera")
    lens.lens = 65.0
    camera = bpy.data.objects.new("Camera", lens)
    focus = Vector(scene.place) if "far" in scene.name else Vector()
    towards = Vector((-2.6, 3.1, -2.2))
    turn = towards.to_track_quat("-Z", "Y") @ Euler((0.0, 0.0, 0.2)).to_quaternion()
    camera.matrix_world = Matrix.Translation(focus - towards) @ turn.to_matrix().to_4x4()
    collection = bpy.context.scene.collection
    for one in (thing, camera):
        collection.objects.link(one)
    bpy.context.scene.camera = camera
    bpy.context.view_layer.update()
    return thing, camera
