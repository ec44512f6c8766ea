"""The shapes of quillgen's documents and results, for type checkers and for readers.

    from quillgen_tools.types import Document, Result

    def translate(document: Document) -> Result:
        return quillgen.compile(document)

All are plain dicts, lists, strings and numbers at run time. A document may have further keys anywhere, which are
ignored.
"""

from typing import Any, Literal, NotRequired, Required, TypeAlias, TypedDict

# Documents

SocketType: TypeAlias = Literal["VALUE", "INT", "BOOLEAN", "VECTOR", "RGBA", "SHADER", "ROTATION"]
AlphaMode: TypeAlias = Literal["STRAIGHT", "PREMUL", "CHANNEL_PACKED", "NONE"]
DisplacementMethod: TypeAlias = Literal["BUMP", "DISPLACEMENT", "BOTH"]
Mode: TypeAlias = Literal["surface", "emission"]

# A source: the id of a node and the name of one of its outputs. JSON makes lists of what Python writes as tuples.
Source: TypeAlias = tuple[str, str] | list[str]


class Socket(TypedDict, total=False):
    """An input of a node."""

    t: Required[SocketType | str]  # a type that the translator doesn't know counts as VALUE
    v: float | list[float] | tuple[float, ...] | Any  # the value while it isn't linked; colours are scene-linear
    link: tuple[str, str, str | None] | list[str | None]  # node id, output, its type; only on a linked socket


class Ramp(TypedDict):
    """The stops of a Color Ramp: pairs of position and colour, in order of position."""

    stops: list[tuple[float, list[float]]] | list[list[Any]]
    interp: str  # CONSTANT, LINEAR, EASE, CARDINAL, B_SPLINE
    mode: str  # RGB, HSV, HSL


class Curve(TypedDict):
    """Sampled curves: one table for each, all of one length, at even steps from `min` to `max`."""

    tables: list[list[float]]
    min: float
    max: float
    extend: NotRequired[str]  # EXTRAPOLATED, or HORIZONTAL


Node = TypedDict(
    "Node",
    {
        "id": Required[str],  # unique in the document; parameter names are derived from it
        "type": Required[str],  # Blender's, such as ShaderNodeTexNoise
        "in": Required[dict[str, Socket]],  # by identifier of the socket
        "outs": dict[str, SocketType | str],
        "props": dict[str, Any],  # Blender's properties of the node
        "ramp": Ramp,
        "curve": Curve,
        "object_matrix": Any,  # Texture Coordinate: true if it names an object
    },
    total=False,
)


class Outputs(TypedDict):
    """What is linked to the material output."""

    surface: Source
    displacement: NotRequired[Source | None]


class Settings(TypedDict, total=False):
    """The material's settings."""

    backface_culling: bool
    blend: str  # BLENDED, or anything else
    displacement: DisplacementMethod | str


class Image(TypedDict, total=False):
    """A picture that nodes name by its key in `images`."""

    name: str
    colorspace: str  # Blender's name, such as sRGB or Non-Color
    alpha: AlphaMode | str
    float: bool  # whether its pixels are floats


class Document(TypedDict, total=False):
    """One shader node tree, flattened: no groups, reroutes or muted nodes."""

    nodes: Required[list[Node]]
    out: Required[Outputs]
    settings: Settings
    images: dict[str, Image]
    uv_maps: list[str]  # the index of a name is its texture coordinate's index


# Inputs of the HLSL. A record says what to wire; an input is a record with its name in the HLSL.

PlainKind: TypeAlias = Literal[
    "world_position",
    "world_position_cr",
    "local_position",
    "cycles_normal",
    "vertex_normal",
    "camera_vector",
    "object_origin",
    "vertex_color",
    "two_sided_sign",
    "tangent_world",
    "bitangent_world",
    "camera_position",
    "pixel_depth",
    "tan_half_fov",
    "view_size",
    "local_bounds_min",
    "local_bounds_max",
    "pixel_position",
    "temporal_index",
]
AxisKind: TypeAlias = Literal["view_axis", "object_axis"]
DerivativeKind: TypeAlias = Literal["ddx", "ddy"]
Kind: TypeAlias = PlainKind | AxisKind | DerivativeKind | Literal["scalar", "vector", "texture", "texcoord"]
Axis: TypeAlias = Literal["x", "y", "z"]


class ScalarRecord(TypedDict):
    kind: Literal["scalar"]
    default: float


class VectorRecord(TypedDict):
    kind: Literal["vector"]
    default: list[float]  # four numbers


class TextureRecord(TypedDict):
    kind: Literal["texture"]
    image: str  # the key in the document's `images`
    srgb: bool  # always False: the HLSL decodes
    float: bool
    extension: str  # REPEAT, EXTEND, CLIP, MIRROR
    interpolation: str  # Linear, Closest, Cubic, Smart


class TexcoordRecord(TypedDict):
    kind: Literal["texcoord"]
    index: int


class AxisRecord(TypedDict):
    kind: AxisKind
    axis: Axis


class PlainRecord(TypedDict):
    kind: PlainKind


class DerivativeRecord(TypedDict):
    kind: DerivativeKind
    of: TexcoordRecord | PlainRecord


InputRecord: TypeAlias = (
    ScalarRecord | VectorRecord | TextureRecord | TexcoordRecord | AxisRecord | PlainRecord | DerivativeRecord
)


class ScalarInput(ScalarRecord):
    name: str


class VectorInput(VectorRecord):
    name: str


class TextureInput(TextureRecord):
    name: str


class TexcoordInput(TexcoordRecord):
    name: str


class AxisInput(AxisRecord):
    name: str


class PlainInput(PlainRecord):
    name: str


class DerivativeInput(DerivativeRecord):
    name: str


Input: TypeAlias = ScalarInput | VectorInput | TextureInput | TexcoordInput | AxisInput | PlainInput | DerivativeInput

# Results

Property: TypeAlias = Literal[
    "metallic", "roughness", "specular", "emissive", "normal", "opacity", "clear_coat", "clear_coat_roughness"
]


class Output(TypedDict):
    """An additional output of the Custom expression."""

    name: str
    type: Literal["float", "float3"]
    property: Property  # of the material
    expr: str  # what the HLSL assigns to it


class Material(TypedDict):
    """The settings that the material in Unreal needs."""

    shading: Literal["default_lit", "clear_coat", "unlit"]
    blend: Literal["opaque", "masked", "translucent"]
    two_sided: bool
    tangent_space_normal: bool
    clip: NotRequired[float]  # if it is masked


class Displacement(TypedDict):
    """A second HLSL text, for displacement with Nanite. It returns a number that is centred at 0.5."""

    code: str
    inputs: list[Input]
    magnitude: float  # centimetres


# A pair of kind and value: ["scalar", 0.5] or ["vector", [0.8, 0.2, 0.1, 1.0]].
Parameter: TypeAlias = list[str | float | list[float]]


class Result(TypedDict):
    """What `quillgen.compile` returns."""

    code: str
    inputs: list[Input]  # sorted by name
    outputs: list[Output]
    material: Material
    warnings: list[str]
    params: dict[str, Parameter]
    displacement: Displacement | None


class Parts(TypedDict):
    """What `quillgen.parts` returns."""

    body: list[str]
    ret: str
    need: set[str]
    structs: set[str]
    inputs: dict[str, InputRecord]
    warnings: list[str]
