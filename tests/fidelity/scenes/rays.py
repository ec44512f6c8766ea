"""Traces the camera rays of a scene in double precision and computes the inputs that Unreal would pass to the material
there: left-handed (y negated), in centimetres, v flipped. Runs inside Blender."""

import numpy as np

from scenes.stage import PIXELS

FLIP = np.array([1.0, -1.0, 1.0])
FLAT_MARGIN = 0.5  # metres by which the bounds of a flat object are enlarged


class View:
    """The camera: origin and direction of each pixel's ray."""

    def __init__(self, camera, jitter):
        matrix = np.array(camera.matrix_world)
        self.eye, self.right, self.up, self.forward = (
            matrix[:3, 3],
            matrix[:3, 0],
            matrix[:3, 1],
            -matrix[:3, 2],
        )
        self.tangent = 0.5 * camera.data.sensor_width / camera.data.lens
        self.jitter = jitter

    def rays(self, columns, rows):
        x = ((columns + 0.5 + self.jitter[0]) / PIXELS * 2 - 1) * self.tangent
        y = ((rows + 0.5 + self.jitter[1]) / PIXELS * 2 - 1) * self.tangent
        return x[:, None] * self.right + y[:, None] * self.up + self.forward

    def pixel(self, points):
        """Projects points to pixels, counted from the lower left corner."""
        away = points - self.eye
        depth = away @ self.forward
        return np.stack(
            [(away @ axis / depth / self.tangent + 1) / 2 * PIXELS for axis in (self.right, self.up)], axis=1
        )


class Surface:
    """The triangles of an object, in world space."""

    def __init__(self, thing):
        self.matrix = np.array(thing.matrix_world)
        mesh = thing.data
        self.local = take(mesh.vertices, "co", 3)
        self.corners = take(mesh.loops, "vertex_index", 1, np.int32).reshape(-1, 3)
        self.world = self.local @ self.matrix[:3, :3].T + self.matrix[:3, 3]
        self.layers = {layer.name: take(layer.data, "uv", 2) for layer in mesh.uv_layers}
        self.colours = take(mesh.color_attributes["Col"].data, "color", 4)
        self.normals = take(mesh.corner_normals, "vector", 3)
        mesh.calc_tangents(uvmap="UVMap")
        self.tangents = take(mesh.loops, "tangent", 3)
        self.bitangents = take(mesh.loops, "bitangent", 3)
        mesh.free_tangents()

    def solve(self, triangles, eye, rays):
        """Intersects rays with the planes of triangles. Returns (distance, weights of the three corners)."""
        a, b, c = (self.world[self.corners[triangles, n]] for n in range(3))
        system = np.stack([-rays, b - a, c - a], axis=-1)
        answer = np.linalg.solve(system, (eye - a)[..., None])[..., 0]
        distance, u, v = answer[..., 0], answer[..., 1], answer[..., 2]
        return distance, np.stack([1 - u - v, u, v], axis=-1)

    def hit(self, eye, rays):
        """The index of the nearest triangle that each ray hits, or -1."""
        count = len(self.corners)
        found, best = np.full(len(rays), -1), np.full(len(rays), np.inf)
        for number, ray in enumerate(rays):
            distance, weights = self.solve(np.arange(count), eye, np.broadcast_to(ray, (count, 3)))
            distance = np.where((weights >= 0).all(axis=1) & (distance > 0), distance, np.inf)
            nearest = np.argmin(distance)
            if np.isfinite(distance[nearest]):
                found[number], best[number] = nearest, distance[nearest]
        return found

    def mix(self, per_corner, triangles, weights):
        """Values of the corners, interpolated with the weights."""
        parts = per_corner.reshape(len(self.corners), 3, -1)[triangles]
        return np.einsum("pck,pc->pk", parts, weights)


def take(collection, name, width, kind=np.float32):
    values = np.empty(len(collection) * width, kind)
    collection.foreach_get(name, values)
    values = values.reshape(-1, width) if width > 1 else values
    return values if kind == np.int32 else values.astype(float)


def unit(vectors):
    return vectors / np.linalg.norm(vectors, axis=-1, keepdims=True)


def look(surface, view):
    """Returns (columns, rows, triangles) of the pixels that see the surface."""
    rows, columns = (part.ravel() for part in np.mgrid[:PIXELS, :PIXELS])
    triangles = surface.hit(view.eye, view.rays(columns, rows))
    seen = triangles >= 0
    return columns[seen], rows[seen], triangles[seen]


def inputs(surface, view, columns, rows, triangles):
    """Values of every kind of input: {name: array [pixels, width]}. A name is the kind, followed by a colon and the
    index or axis if it has one; derivatives have the prefix "ddx:" or "ddy:"."""
    _, weights = surface.solve(triangles, view.eye, view.rays(columns, rows))
    found = varying(surface, view, triangles, weights)
    # Unreal's screen y points down. Neighbouring pixels use the plane of the same triangle, as in a 2x2 pixel quad.
    for name, (dx, dy) in {"ddx": (1, 0), "ddy": (0, -1)}.items():
        _, beside = surface.solve(triangles, view.eye, view.rays(columns + dx, rows + dy))
        there = varying(surface, view, triangles, beside)
        found |= {
            f"{name}:{kind}": there[kind] - found[kind]
            for kind in ("texcoord:0", "texcoord:1", "vertex_color", "world_position_cr")
        }
    found |= normals(surface, view, triangles, weights)
    found |= fixed(surface, view)
    return {name: np.atleast_2d(value).astype(np.float32) for name, value in found.items()}


def varying(surface, view, triangles, weights):
    local = surface.mix(surface.local[surface.corners.ravel()], triangles, weights)
    world = surface.mix(surface.world[surface.corners.ravel()], triangles, weights)
    found = {
        "local_position": 100 * local * FLIP,
        "world_position": 100 * world * FLIP,
        "world_position_cr": 100 * (world - view.eye) * FLIP,
        "camera_vector": unit(view.eye - world) * FLIP,
        "pixel_depth": 100 * ((world - view.eye) @ view.forward)[:, None],
        "vertex_color": surface.mix(surface.colours, triangles, weights),
    }
    for number, layer in enumerate(surface.layers.values()):
        uv = surface.mix(layer, triangles, weights)
        found[f"texcoord:{number}"] = np.stack([uv[:, 0], 1 - uv[:, 1]], axis=1)
    return found


def normals(surface, view, triangles, weights):
    """Cycles' shading normal, which is correct on scaled objects, and Unreal's tangent frame, which is rotated with the
    object but ignores its scale."""
    linear = surface.matrix[:3, :3]
    upright = np.linalg.inv(linear).T
    rotation = linear / np.linalg.norm(linear, axis=0)
    a, b, c = (surface.local[surface.corners[triangles, n]] for n in range(3))
    faces = np.cross(b - a, c - a) @ upright.T
    world = surface.mix(surface.world[surface.corners.ravel()], triangles, weights)
    front = np.einsum("pk,pk->p", faces, view.eye - world) >= 0

    def turned(vectors, matrix):
        return surface.mix(vectors, triangles, weights) @ matrix.T * FLIP

    corners = unit(surface.normals @ upright.T)
    return {
        "cycles_normal": unit(surface.mix(corners, triangles, weights)) * FLIP,
        "vertex_normal": turned(surface.normals, rotation),
        "tangent_world": turned(surface.tangents, rotation),
        "bitangent_world": -turned(surface.bitangents, rotation),
        "two_sided_sign": np.where(front, 1.0, -1.0)[:, None],
    }


def fixed(surface, view):
    """The inputs that are the same for all pixels."""
    low, high = surface.local.min(axis=0), surface.local.max(axis=0)
    flat = (high - low) == 0
    low, high = low - FLAT_MARGIN * flat, high + FLAT_MARGIN * flat
    axes = surface.matrix[:3, :3].T
    return {
        "object_origin": 100 * surface.matrix[:3, 3] * FLIP,
        "camera_position": 100 * view.eye * FLIP,
        "local_bounds_min": 100 * np.array([low[0], -high[1], low[2]]),
        "local_bounds_max": 100 * np.array([high[0], -low[1], high[2]]),
        "object_axis:x": axes[0] * FLIP,
        "object_axis:y": -axes[1] * FLIP,
        "object_axis:z": axes[2] * FLIP,
        "view_axis:x": view.right * FLIP,
        "view_axis:y": view.up * FLIP,
        "view_axis:z": view.forward * FLIP,
        "tan_half_fov": np.array([view.tangent, view.tangent]),
        "view_size": np.array([PIXELS, PIXELS], float),
    }
