"""The Unreal material expression that feeds each kind of input. This is the only table of them.

The HLSL computes in Blender's coordinate system and converts its inputs itself: wire Unreal's raw values, in world
space and centimetres, with nothing flipped or scaled.
"""

from __future__ import annotations

from collections.abc import Mapping
from typing import Any, NamedTuple


class Wiring(NamedTuple):
    """How one kind of input is fed.

    `expression`: what to place and set, in words; a key of the record such as `{index}` is in braces. `node`: the class
    of the material expression. `pin`: its output pin, "" for the first. `width`: number of floats of the argument in
    the HLSL; 0 for a texture. `keys`: what a record of this kind has besides `kind`.
    """

    expression: str
    node: str
    width: int
    pin: str = ""
    keys: tuple[str, ...] = ()
    remark: str = ""


_ONE_WIDE_AXES = "x is (1, 0, 0), y is (0, 1, 0), z is (0, 0, 1); no Normalize behind it"

WIRING: dict[str, Wiring] = {
    "scalar": Wiring("Scalar Parameter", "ScalarParameter", 1, keys=("default",)),
    "vector": Wiring("Vector Parameter, all four channels", "VectorParameter", 4, "RGBA", ("default",)),
    "texture": Wiring(
        "Texture Object Parameter; sRGB off, no compression that changes bytes, no mip maps",
        "TextureObjectParameter",
        0,
        keys=("image", "srgb", "float", "extension", "interpolation"),
        remark="sampler type Linear Color; never streamed, never virtual: the text reads texels of mip 0",
    ),
    "texcoord": Wiring("Texture Coordinate {index}", "TextureCoordinate", 2, keys=("index",)),
    "ddx": Wiring("DDX of: {of}", "DDX", 0, keys=("of",), remark="as wide as what it is the derivative of"),
    "ddy": Wiring("DDY of: {of}", "DDY", 0, keys=("of",), remark="as wide as what it is the derivative of"),
    "world_position": Wiring("Absolute World Position", "WorldPosition", 3),
    "world_position_cr": Wiring("Camera Relative World Position", "WorldPosition", 3),
    "local_position": Wiring(
        "Local Position",
        "LocalPosition",
        3,
        remark="instance origin, without material offsets; before 5.5 a Transform Position from world to local space",
    ),
    "cycles_normal": Wiring(
        "Vertex Normal WS, corrected for non-uniform scale, never turned to the viewer",
        "VertexNormalWS",
        3,
        remark="the correction is a small Custom expression of its own; none is needed where the scale is uniform",
    ),
    "vertex_normal": Wiring("Vertex Normal WS", "VertexNormalWS", 3),
    "camera_vector": Wiring("Camera Vector WS", "CameraVectorWS", 3),
    "object_origin": Wiring(
        "Transform Position (0, 0, 0), Local Space to Absolute World Space",
        "TransformPosition",
        3,
        remark="not Object Position: that is the centre of the bounds",
    ),
    "object_axis": Wiring(
        "Transform Vector, the unit vector {axis}, Local Space to World Space",
        "Transform",
        3,
        keys=("axis",),
        remark=_ONE_WIDE_AXES,
    ),
    "local_bounds_min": Wiring("Object Local Bounds, Min", "ObjectLocalBounds", 3, "Min"),
    "local_bounds_max": Wiring("Object Local Bounds, Max", "ObjectLocalBounds", 3, "Max"),
    "vertex_color": Wiring(
        "Vertex Color, RGBA", "VertexColor", 4, remark="RGB and A joined by an Append Vector: three are too few"
    ),
    "two_sided_sign": Wiring("Two Sided Sign", "TwoSidedSign", 1),
    "tangent_world": Wiring("Vertex Tangent WS", "VertexTangentWS", 3),
    "bitangent_world": Wiring("Transform Vector (0, 1, 0), Tangent Space to World Space", "Transform", 3),
    "camera_position": Wiring("Camera Position WS", "CameraPositionWS", 3),
    "pixel_depth": Wiring("Pixel Depth", "PixelDepth", 1),
    "tan_half_fov": Wiring(
        "View Property Tan Half Field Of View", "ViewProperty", 2, "Property", remark="across and up"
    ),
    "view_size": Wiring("View Property View Size", "ViewProperty", 2, "Property"),
    "view_axis": Wiring(
        "Transform Vector, the unit vector {axis} (y up, z forwards), View Space to World Space",
        "Transform",
        3,
        keys=("axis",),
        remark=_ONE_WIDE_AXES,
    ),
    "pixel_position": Wiring("Screen Position, in pixels", "ScreenPosition", 2, "PixelPosition"),
    "temporal_index": Wiring("View Property Temporal Sample Index", "ViewProperty", 1, "Property"),
}


def expression(record: Mapping[str, Any]) -> str:
    """What to wire to an input, in words.

    `record`: an item of a result's `inputs`, or the record under `of`. Raises KeyError for an unknown kind.

    >>> expression({"name": "uv0_dx", "kind": "ddx", "of": {"kind": "texcoord", "index": 0}})
    'DDX of: Texture Coordinate 0'
    """
    inner = expression(record["of"]) if "of" in record else ""
    return WIRING[record["kind"]].expression.format(index=record.get("index"), axis=record.get("axis"), of=inner)


def width(record: Mapping[str, Any]) -> int:
    """The number of floats of the input; 0 for a texture.

    >>> width({"kind": "ddy", "of": {"kind": "vertex_color"}})
    4
    """
    return width(record["of"]) if "of" in record else WIRING[record["kind"]].width


# The input of Make Material Attributes for each output of the HLSL.
ATTRIBUTES = {
    "metallic": "Metallic",
    "roughness": "Roughness",
    "specular": "Specular",
    "emissive": "Emissive Color",
    "normal": "Normal",
    "opacity": "Opacity Mask where the blend mode is masked, else Opacity",
    "clear_coat": "Clear Coat",
    "clear_coat_roughness": "Clear Coat Roughness",
}


def main_property(material: Mapping[str, Any]) -> str:
    """The material property that takes the value that the HLSL returns.

    >>> main_property({"shading": "unlit"})
    'Emissive Color'
    """
    return "Emissive Color" if material["shading"] == "unlit" else "Base Color"
