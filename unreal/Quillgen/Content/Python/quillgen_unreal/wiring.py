"""The expressions for every kind of input.

The HLSL of a material takes Unreal's raw values: world space, centimetres, V pointing down, nothing flipped or
normalised. It converts the coordinate system itself. Each kind is therefore one expression, or a short chain if no
single one yields the value; comments say which similar expressions are wrong.
"""

from __future__ import annotations

from collections.abc import Iterable, Mapping
from typing import Any, Callable, NamedTuple

from . import engine
from .plan import Color, Graph, Inputs, Source

Record = Mapping[str, Any]  # an input: `kind` and its further keys


class Row(NamedTuple):
    """A kind with a single expression: its class, properties, and output pin."""

    kind: str
    settings: dict[str, object]
    pin: str = ""


PLAIN = {
    "world_position": Row("WorldPosition", {"world_position_shader_offset": engine.WORLD_POSITION["WPT_DEFAULT"]}),
    "world_position_cr": Row(
        "WorldPosition", {"world_position_shader_offset": engine.WORLD_POSITION["WPT_CAMERA_RELATIVE"]}
    ),
    "vertex_normal": Row("VertexNormalWS", {}),
    "tangent_world": Row("VertexTangentWS", {}),
    "camera_vector": Row("CameraVectorWS", {}),
    "camera_position": Row("CameraPositionWS", {}),
    # An actor may extend the mesh's own bounds: generated coordinates follow the extended ones.
    "local_bounds_min": Row("ObjectLocalBounds", {}, "Min"),
    "local_bounds_max": Row("ObjectLocalBounds", {}, "Max"),
    "two_sided_sign": Row("TwoSidedSign", {}),
    "pixel_depth": Row("PixelDepth", {}),
    "tan_half_fov": Row("ViewProperty", {"property": engine.VIEW_PROPERTY["MEVP_TAN_HALF_FIELD_OF_VIEW"]}),
    "view_size": Row("ViewProperty", {"property": engine.VIEW_PROPERTY["MEVP_VIEW_SIZE"]}),
    "temporal_index": Row("ViewProperty", {"property": engine.VIEW_PROPERTY["MEVP_TEMPORAL_SAMPLE_INDEX"]}),
    # The first output would be the position in the viewport from 0 to 1.
    "pixel_position": Row("ScreenPosition", {}, "PixelPosition"),
}

AXES = {"x": (1.0, 0.0, 0.0), "y": (0.0, 1.0, 0.0), "z": (0.0, 0.0, 1.0)}

# Unreal transforms the vertex normal by the rotation only; Blender also applies the scale, by the inverse transpose. X,
# Y, Z are the object's axes with their scale. The matrix of their cross products is the inverse transpose up to a
# factor, which is negative for a mirrored object.
SCALED_NORMAL = """float3 c = cross(Y, Z);
float3 n = float3(dot(N, normalize(X)), dot(N, normalize(Y)), dot(N, normalize(Z)));
n = n.x * c + n.y * cross(Z, X) + n.z * cross(X, Y);
return normalize(dot(X, c) < 0.0 ? -n : n);"""


class Setting(NamedTuple):
    """What the choice of expressions depends on apart from the input itself."""

    features: engine.Features
    masked: bool = False  # the opacity also counts in shadow passes
    instanced: bool = False  # the mesh is drawn as instances: local space is that of the instance


def source(graph: Graph, record: Record, setting: Setting) -> Source:
    """The output for an input with this record (`kind` and its further keys)."""
    row = PLAIN.get(record["kind"])
    if row:
        return graph.add(row.kind, row.settings)._replace(pin=row.pin)
    return CHAINS[record["kind"]](graph, record, setting)


def _texcoord(graph: Graph, record: Record, setting: Setting) -> Source:
    settings = {"coordinate_index": record["index"], "u_tiling": 1.0, "v_tiling": 1.0}
    return graph.add("TextureCoordinate", settings)


def _constant(graph: Graph, value: tuple[float, float, float]) -> Source:
    return graph.add("Constant3Vector", {"constant": Color(*value, 0.0)})


def _transform(graph: Graph, value: tuple[float, float, float], space: str, comment: str) -> Source:
    settings = {
        "transform_source_type": engine.VECTOR_SOURCE[f"TRANSFORMSOURCE_{space}"],
        "transform_type": engine.VECTOR_TARGET["TRANSFORM_WORLD"],
    }
    return graph.add("Transform", settings, [("", _constant(graph, value))], comment)


def _object_axis(graph: Graph, record: Record, setting: Setting) -> Source:
    """A column of the object's matrix, with its scale: it is not normalised."""
    axis = record["axis"]
    space = "INSTANCE" if setting.instanced else "LOCAL"
    return _transform(graph, AXES[axis], space, f"The object's {axis.upper()} axis in the world, with its scale")


def _view_axis(graph: Graph, record: Record, setting: Setting) -> Source:
    """In shadow passes the view is the light's. If the opacity is needed there, the camera's axes are used instead."""
    axis = record["axis"]
    space = "CAMERA" if setting.masked else "VIEW"
    return _transform(graph, AXES[axis], space, f"The camera's {axis.upper()} axis in the world")


def _bitangent_world(graph: Graph, record: Record, setting: Setting) -> Source:
    """Uses the transform, which keeps the handedness of mirrored UVs."""
    return _transform(graph, AXES["y"], "TANGENT", "The bitangent in the world")


def _position_transform(graph: Graph, begin: Source, source_space: str, target_space: str, comment: str) -> Source:
    settings = {
        "transform_source_type": engine.POSITION_SPACE[f"TRANSFORMPOSSOURCE_{source_space}"],
        "transform_type": engine.POSITION_SPACE[f"TRANSFORMPOSSOURCE_{target_space}"],
    }
    return graph.add("TransformPosition", settings, [("", begin)], comment)


def _object_origin(graph: Graph, record: Record, setting: Setting) -> Source:
    """The pivot. ObjectPositionWS is a different point, the centre of the bounds."""
    space = "INSTANCE" if setting.instanced else "LOCAL"
    return _position_transform(graph, _constant(graph, (0.0, 0.0, 0.0)), space, "WORLD", "The object's pivot")


def _local_position(graph: Graph, record: Record, setting: Setting) -> Source:
    """The position in the mesh, without displacement or world position offset."""
    if setting.features.local_position:
        settings = {
            "local_origin": engine.LOCAL_ORIGIN["INSTANCE"],
            "included_offsets": engine.INCLUDED_OFFSETS["EXCLUDE_OFFSETS"],
        }
        return graph.add("LocalPosition", settings)
    offset = engine.WORLD_POSITION["WPT_EXCLUDE_ALL_SHADER_OFFSETS"]
    world = graph.add("WorldPosition", {"world_position_shader_offset": offset})
    space = "INSTANCE" if setting.instanced else "LOCAL"
    return _position_transform(graph, world, "WORLD", space, "The position in the mesh")


def _cycles_normal(graph: Graph, record: Record, setting: Setting) -> Source:
    """Not PixelNormalWS, which may not feed the normal."""
    settings = (
        ("code", SCALED_NORMAL),
        ("output_type", engine.FLOATS["float3"]),
        ("description", "Normal with the object's scale"),
        ("inputs", Inputs(("N", "X", "Y", "Z"))),
    )
    wires = [("N", source(graph, {"kind": "vertex_normal"}, setting))]
    wires += [(axis.upper(), _object_axis(graph, {"axis": axis}, setting)) for axis in AXES]
    return graph.add("Custom", settings, wires, "The vertex normal as the object's scale turns it")


def _vertex_color(graph: Graph, record: Record, setting: Setting) -> Source:
    """Four components: the first output of the vertex colour has no alpha."""
    color = graph.add("VertexColor")
    wires = [("A", color), ("B", color._replace(pin="A"))]
    return graph.add("AppendVector", (), wires, "The vertex colour with its alpha")


def _derivative(graph: Graph, record: Record, setting: Setting) -> Source:
    """Ray tracing has no neighbouring pixels: both derivatives are zero, so they don't span the surface's plane, which
    bumps need. For a position, the tangent and the bitangent span the same plane and are used instead."""
    kind, of = record["kind"], record["of"]
    found = graph.add(kind.upper(), (), [("Value", source(graph, of, setting))])
    if of["kind"] != "world_position_cr":
        return found
    plane = {"ddx": "tangent_world", "ddy": "bitangent_world"}[kind]
    wires = [("Normal", found), ("RayTraced", source(graph, {"kind": plane}, setting))]
    return graph.add("RayTracingQualitySwitch", (), wires, "Ray tracing has no derivatives: the tangent plane instead")


CHAINS: dict[str, Callable[[Graph, Record, Setting], Source]] = {
    "texcoord": _texcoord,
    "object_axis": _object_axis,
    "view_axis": _view_axis,
    "bitangent_world": _bitangent_world,
    "object_origin": _object_origin,
    "local_position": _local_position,
    "cycles_normal": _cycles_normal,
    "vertex_color": _vertex_color,
    "ddx": _derivative,
    "ddy": _derivative,
}

# Kinds with values of the material itself. `build` wires them.
PARAMETERS = ("scalar", "vector", "texture")


def unknown(record: Record) -> str:
    """Describes what can't be wired in this record, "" for a valid record."""
    kind = record.get("kind")
    if kind in PLAIN or kind in PARAMETERS:
        return ""
    if kind not in CHAINS:
        return f"the kind {kind!r}"
    if kind == "texcoord" and not (type(record.get("index")) is int and 0 <= record["index"] < 8):
        return f"the UV channel {record.get('index')!r}"
    if kind in ("object_axis", "view_axis") and record.get("axis") not in AXES:
        return f"the axis {record.get('axis')!r}"
    if kind in ("ddx", "ddy"):
        of = record.get("of")
        if not isinstance(of, dict) or of.get("kind") in (*PARAMETERS, "ddx", "ddy"):
            return f"the derivative of {of!r}"
        return unknown(of)
    return ""


def parameter(graph: Graph, kind: str, name: str, settings: Iterable[tuple[str, object]]) -> Source:
    """A Scalar or Vector Parameter. The HLSL reads four components of a vector, but its first output has only three."""
    found = graph.add(f"{kind.capitalize()}Parameter", (("parameter_name", name), *settings))
    return Source(found.expression, "RGBA") if kind == "vector" else found
