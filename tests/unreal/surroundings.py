"""Values of material expressions at points of an object, determined only by class and properties.

The code doesn't know the purpose of an expression, so a wrong class, property, pin or wire results in wrong numbers.
"""

import numpy as np

from examples.gallery import camera as cameras
from examples.gallery import surfaces

FLIP = np.array([1.0, -1.0, 1.0])  # between Blender's frame and Unreal's


def vector(color):
    return np.array([[color.r, color.g, color.b]], float)


class Surroundings:
    """An object, a camera and visible points of the object, in Blender's frame. Methods return values in Unreal's."""

    def __init__(self, thing, camera, places, points, faces=None, raytraced=False):
        self.thing, self.camera, self.places, self.points = thing, camera, places, points
        self.found = surfaces.describe(thing, points)
        self.faces = self.found["normal"] if faces is None else faces
        self.raytraced = raytraced
        self.matrix = 100 * thing.scale * (thing.turn * FLIP).T * FLIP / 100  # rows: the axes in the world
        self.origin = 100 * np.asarray(thing.place, float) * FLIP

    def beside(self, step):
        """The surroundings one pixel further, on the tangent planes of the surface."""
        places = self.places + step
        rays = cameras.rays(self.camera, places)
        reach = ((self.points - self.camera.eye) * self.faces).sum(axis=1) / (rays * self.faces).sum(axis=1)
        points = self.camera.eye + reach[:, None] * rays
        return Surroundings(self.thing, self.camera, places, points, self.faces, self.raytraced)

    # Each of the following takes the expression and returns the values of its outputs in order.

    def world_position(self, e):
        offset = e.world_position_shader_offset.name
        relative = self.camera.eye if offset.startswith("WPT_CAMERA_RELATIVE") else (0, 0, 0)
        return [100 * (self.points - relative) * FLIP]

    def local_position(self, e):
        assert e.included_offsets.name == "EXCLUDE_OFFSETS" and e.local_origin.name == "INSTANCE"
        return [100 * self.found["local"] * FLIP]

    def texture_coordinate(self, e):
        return [self.uv(e.coordinate_index) * (e.u_tiling, e.v_tiling)]

    def uv(self, index):
        """Texture coordinates. Each channel has a smaller scale than the previous one. v points down."""
        return (self.found["uv"] * (1, -1) + (0, 1)) / (1 + 0.25 * index)

    def vertex_normal(self, e):
        return [self.found["normal"] * FLIP]

    def vertex_tangent(self, e):
        return [self.found["tangent"] * FLIP]

    def bitangent(self):
        return -self.found["bitangent"] * FLIP

    def camera_vector(self, e):
        return [cameras.unit(self.camera.eye - self.points) * FLIP]

    def camera_position(self, e):
        return [100 * np.asarray(self.camera.eye, float)[None] * FLIP]

    def bounds(self, e):
        (lx, ly, lz), (hx, hy, hz) = self.thing.shape.low, self.thing.shape.high
        low, high = 100 * np.array([[lx, -hy, lz]]), 100 * np.array([[hx, -ly, hz]])
        return [(high - low) / 2, high - low, low, high]

    def vertex_color(self, e):
        color = self.color()
        return [color[:, :3], *(color[:, k : k + 1] for k in range(4))]

    def color(self):
        local = self.found["local"]
        return np.stack([*(0.5 + 0.3 * np.sin(3 * local.T)), 0.6 + 0.2 * np.cos(local.sum(axis=1))], axis=1)

    def two_sided_sign(self, e):
        front = ((self.points - self.camera.eye) * self.faces).sum(axis=1) < 0
        return [np.where(front, 1.0, -1.0)[:, None]]

    def pixel_depth(self, e):
        return [100 * ((self.points - self.camera.eye) @ cameras.axes(self.camera)[2])[:, None]]

    def view_property(self, e):
        tangent = cameras.tan_half_fov(self.camera)
        found = {
            "MEVP_TAN_HALF_FIELD_OF_VIEW": [[tangent, tangent]],
            "MEVP_TEMPORAL_SAMPLE_INDEX": [[0.0]],
            "MEVP_VIEW_SIZE": [[self.camera.pixels, self.camera.pixels]],
        }[e.property.name]
        return [np.array(found, float), 1 / np.maximum(found, 1e-9)]

    def screen_position(self, e):
        return [self.places / self.camera.pixels, self.places]

    def transform(self, e, given):
        """Transforms a direction from one space to another."""
        assert e.transform_type.name == "TRANSFORM_WORLD"
        source = e.transform_source_type.name.removeprefix("TRANSFORMSOURCE_")
        if source in ("LOCAL", "INSTANCE"):
            return [given @ self.matrix]
        if source in ("VIEW", "CAMERA"):
            return [given @ (np.array(cameras.axes(self.camera)) * FLIP)]
        assert source == "TANGENT"
        frame = [self.vertex_tangent(e)[0], self.bitangent(), self.vertex_normal(e)[0]]
        return [sum(given[:, k : k + 1] * frame[k] for k in range(3))]

    def transform_position(self, e, given):
        source = e.transform_source_type.name.removeprefix("TRANSFORMPOSSOURCE_")
        target = e.transform_type.name.removeprefix("TRANSFORMPOSSOURCE_")
        if target == "WORLD" and source in ("LOCAL", "INSTANCE"):
            return [given @ self.matrix + self.origin]
        assert source == "WORLD" and target in ("LOCAL", "INSTANCE")
        return [(given - self.origin) @ np.linalg.inv(self.matrix)]


# Classes whose values depend on nothing else, and those with one input.
PLAIN = {
    "WorldPosition": Surroundings.world_position,
    "LocalPosition": Surroundings.local_position,
    "TextureCoordinate": Surroundings.texture_coordinate,
    "VertexNormalWS": Surroundings.vertex_normal,
    "VertexTangentWS": Surroundings.vertex_tangent,
    "CameraVectorWS": Surroundings.camera_vector,
    "CameraPositionWS": Surroundings.camera_position,
    "ObjectLocalBounds": Surroundings.bounds,
    "VertexColor": Surroundings.vertex_color,
    "TwoSidedSign": Surroundings.two_sided_sign,
    "PixelDepth": Surroundings.pixel_depth,
    "ViewProperty": Surroundings.view_property,
    "ScreenPosition": Surroundings.screen_position,
}
TRANSFORMS = {"Transform": Surroundings.transform, "TransformPosition": Surroundings.transform_position}
