"""The materials of the checklist: each compares some kinds of Unreal's inputs with their expected values, and is green
if they match, else red. Plain data; `checklist` makes the level."""

from __future__ import annotations

from pathlib import Path
from typing import NamedTuple

from .exchange import Export, Record, Text


class Check(NamedTuple):
    name: str
    shows: str  # what the artist must see
    inputs: dict[str, Record]  # name in the code -> record of the input
    good: str  # an HLSL condition
    scale: tuple[float, float, float] = (1.0, 1.0, 1.0)
    mesh: str = "Sphere"


AXES: dict[str, Record] = {f"oa{a}": {"kind": "object_axis", "axis": a} for a in "xyz"}
VIEW: dict[str, Record] = {f"va{a}": {"kind": "view_axis", "axis": a} for a in "xyz"}
WORLD: dict[str, Record] = {"wpos": {"kind": "world_position"}}
CAMERA: dict[str, Record] = {"cpos": {"kind": "camera_position"}}
LOCAL: dict[str, Record] = {"lpos": {"kind": "local_position"}}
NORMAL: dict[str, Record] = {"vnorm": {"kind": "vertex_normal"}}
STEPS: dict[str, Record] = {f"wpcr_d{a}": {"kind": f"dd{a}", "of": {"kind": "world_position_cr"}} for a in "xy"}
UNEVEN = (1.0, 0.6, 1.4)

CHECKS = (
    Check(
        "Object axes, origin, local position",
        "green, also where you move, turn and scale the actor",
        {**WORLD, **LOCAL, **AXES, "opos": {"kind": "object_origin"}},
        "length(oax * lpos.x + oay * lpos.y + oaz * lpos.z + opos - wpos) < 0.1",
        UNEVEN,
    ),
    Check(
        "Camera position and camera vector",
        "green from everywhere",
        {**WORLD, **CAMERA, "camvec": {"kind": "camera_vector"}},
        "dot(normalize(cpos - wpos), camvec) > 0.999",
    ),
    Check(
        "Camera-relative position",
        "green from everywhere",
        {**WORLD, **CAMERA, "wpcr": {"kind": "world_position_cr"}},
        "length(wpcr - (wpos - cpos)) < 0.1",
    ),
    Check(
        "View axes, field of view, view size, pixel position",
        "green, also in a viewport of another shape and with another field of view",
        {
            **WORLD,
            **CAMERA,
            **VIEW,
            "thfov": {"kind": "tan_half_fov"},
            "vsz": {"kind": "view_size"},
            "pixpos": {"kind": "pixel_position"},
        },
        "length(float2(dot(wpos - cpos, vax), -dot(wpos - cpos, vay)) / (dot(wpos - cpos, vaz) * thfov)"
        " - (pixpos / vsz * 2.0 - 1.0)) < 0.02",
    ),
    Check(
        "Pixel depth",
        "green from everywhere",
        {**WORLD, **CAMERA, "vaz": VIEW["vaz"], "pdepth": {"kind": "pixel_depth"}},
        "abs(dot(wpos - cpos, vaz) - pdepth) < 0.01 * pdepth",
    ),
    Check(
        "Vertex normal",
        "green, also where you turn the actor",
        {**LOCAL, **AXES, **NORMAL},
        "dot(normalize(normalize(oax) * lpos.x + normalize(oay) * lpos.y + normalize(oaz) * lpos.z), vnorm) > 0.99",
    ),
    Check(
        "Normal with the object's scale",
        "green, also where you scale the actor along one axis, or by -1",
        {**LOCAL, **AXES, "cnorm": {"kind": "cycles_normal"}},
        "dot(normalize(oax * lpos.x / dot(oax, oax) + oay * lpos.y / dot(oay, oay) + oaz * lpos.z / dot(oaz, oaz)),"
        " cnorm) > 0.99",
        UNEVEN,
    ),
    Check(
        "Tangent and bitangent",
        "green",
        {**NORMAL, "ttan": {"kind": "tangent_world"}, "tbit": {"kind": "bitangent_world"}},
        "abs(dot(cross(vnorm, ttan), tbit)) > 0.9 && abs(dot(vnorm, ttan)) < 0.1",
    ),
    Check(
        "Derivatives of the position",
        "green but for the rim; in the path tracer as well: there they are the tangents",
        {**NORMAL, **STEPS},
        "abs(dot(normalize(cross(wpcr_dx, wpcr_dy)), vnorm)) > 0.9",
    ),
    Check(
        "Local bounds",
        "green, also where you move, turn and scale the actor",
        {"bmin": {"kind": "local_bounds_min"}, "bmax": {"kind": "local_bounds_max"}},
        "all(abs(bmin + 50.0) < 1.0) && all(abs(bmax - 50.0) < 1.0)",
        UNEVEN,
    ),
    Check(
        "Texture coordinate and its derivatives",
        "green but for seams and poles",
        {
            "uv0": {"kind": "texcoord", "index": 0},
            "uv0_dx": {"kind": "ddx", "of": {"kind": "texcoord", "index": 0}},
            "uv0_dy": {"kind": "ddy", "of": {"kind": "texcoord", "index": 0}},
        },
        "all(uv0 >= -0.01) && all(uv0 <= 1.01) && length(uv0_dx) + length(uv0_dy) > 0.0"
        " && length(uv0_dx) + length(uv0_dy) < 0.5",
    ),
    Check(
        "Vertex colour",
        "green: the sphere's vertices are white",
        {"vcol": {"kind": "vertex_color"}},
        "all(vcol > 0.99)",
    ),
    Check(
        "Two-sided sign",
        "green from above, red from below",
        {"tsign": {"kind": "two_sided_sign"}},
        "tsign > 0.0",
        mesh="Plane",
    ),
    Check(
        "Temporal index",
        "green; it has to be a whole number from 0 on",
        {"taaidx": {"kind": "temporal_index"}},
        "taaidx >= 0.0 && frac(taaidx) == 0.0",
    ),
)


def export(check: Check) -> Export:
    """Returns an Export as if it had been read from a folder."""
    code = f"  return ({check.good}) ? float3(0.0, 1.0, 0.0) : float3(1.0, 0.0, 0.0);"
    inputs = tuple({"name": name, **check.inputs[name]} for name in sorted(check.inputs))
    settings = {"shading": "unlit", "blend": "opaque", "two_sided": True, "tangent_space_normal": True}
    return Export(
        folder=Path(check.name),
        name=f"Check {check.name}",
        library="",
        mode="emission",
        settings=settings,
        surface=Text(code, inputs, ()),
        displacement=None,
        magnitude=0.0,
        parameters=(),
        pictures=(),
        values={},
        remarks=(),
    )
