"""Values of every kind of input that Unreal passes to a text at points of an object, left-handed and in centimetres."""

import numpy as np

from . import camera as cameras
from . import surfaces

FLIP = np.array([1.0, -1.0, 1.0])


def inputs(thing, camera, places, points, normals=None, faces=None):
    """Kind -> array [n, width] or [1, width].

    `places`: positions of the points in the picture. `normals`: the shading normals, and `faces` the geometric normals,
    if they differ from those of the shape.
    """
    found = surfaces.describe(thing, points)
    normals = found["normal"] if normals is None else normals
    faces = normals if faces is None else faces
    away = points - camera.eye
    front = np.where((away * faces).sum(axis=1) < 0, 1.0, -1.0)[:, None]
    _, _, forward = cameras.axes(camera)
    varying = {
        "world_position": 100 * points * FLIP,
        "world_position_cr": 100 * away * FLIP,
        "local_position": 100 * found["local"] * FLIP,
        "camera_vector": -cameras.unit(away) * FLIP,
        "cycles_normal": normals * FLIP,
        "vertex_normal": normals * FLIP,
        "tangent_world": found["tangent"] * FLIP,
        "bitangent_world": -found["bitangent"] * FLIP,
        "texcoord:0": unreal_uv(found["uv"]),
        "texcoord:1": unreal_uv(found["uv"]),
        "two_sided_sign": front,
        "pixel_depth": 100 * (away @ forward)[:, None],
        "pixel_position": places,
        "vertex_color": np.ones((1, 4)),
    }
    return varying | derivatives(thing, camera, places, points, faces) | fixed(thing, camera)


def unreal_uv(uv):
    """Converts UVs to Unreal's, where v points down."""
    return np.stack([uv[:, 0], 1 - uv[:, 1]], axis=1)


def derivatives(thing, camera, places, points, faces):
    """The differences to the pixels on the right and below, on the tangent plane of the surface."""
    found = {}
    here = surfaces.describe(thing, points)["uv"]
    for word, step in (("ddx", (1, 0)), ("ddy", (0, 1))):
        rays = cameras.rays(camera, places + step)
        reach = ((points - camera.eye) * faces).sum(axis=1) / (rays * faces).sum(axis=1)
        beside = camera.eye + reach[:, None] * rays
        uv = surfaces.describe(thing, beside)["uv"] - here
        found[f"{word}:world_position_cr"] = 100 * (beside - points) * FLIP
        found[f"{word}:texcoord:0"] = found[f"{word}:texcoord:1"] = uv * (1, -1)
        found[f"{word}:vertex_color"] = np.zeros((1, 4))
    return found


def fixed(thing, camera):
    """The inputs that are the same for all points."""
    (lx, ly, lz), (hx, hy, hz) = thing.shape.low, thing.shape.high
    right, up, forward = cameras.axes(camera)
    x, y, z = thing.scale * thing.turn.T
    values = {
        "object_origin": np.multiply(100, thing.place) * FLIP,
        "camera_position": np.multiply(100, camera.eye) * FLIP,
        "object_axis:x": x * FLIP,
        "object_axis:y": -y * FLIP,
        "object_axis:z": z * FLIP,
        "view_axis:x": right * FLIP,
        "view_axis:y": up * FLIP,
        "view_axis:z": forward * FLIP,
        "local_bounds_min": np.multiply(100, (lx, -hy, lz)),
        "local_bounds_max": np.multiply(100, (hx, -ly, hz)),
        "tan_half_fov": (cameras.tan_half_fov(camera),) * 2,
        "view_size": (camera.pixels, camera.pixels),
        "temporal_index": (0,),
    }
    return {kind: np.float64([value]) for kind, value in values.items()}
