"""Signals (values read from the scene): the expressions and inputs of each."""

import pytest

from edge_cases import body, bumped_normal, surface, translated
from golden.documents import IMAGES, link, node

UV1 = {"props": {"attribute_name": "Detail"}}
MAPS = {"uv_maps": ["UVMap", "Detail"]}
AXES = {f"oa{a}": {"kind": "object_axis", "axis": a} for a in "xyz"}
OX, OY, OZ = ("(float3(oax.x, -oax.y, oax.z))", "(-float3(oay.x, -oay.y, oay.z))", "(float3(oaz.x, -oaz.y, oaz.z))")
NV = "L.safe_normalize(L.rot_to_obj(float3(vnorm.x, -vnorm.y, vnorm.z), " + f"{OX}, {OY}, {OZ}))"
N = "normalize(float3(cnorm.x, -cnorm.y, cnorm.z))"
I = "normalize(float3(camvec.x, -camvec.y, camvec.z))"
NF = f"({N} * ((tsign < 0.0) ? -1.0 : 1.0))"
AXIS_Y = "float3(vax{a}.x, -vax{a}.y, vax{a}.z)"

NORMAL = {"cnorm": {"kind": "cycles_normal"}}
SIGN = {"tsign": {"kind": "two_sided_sign"}}
INCOMING = {"camvec": {"kind": "camera_vector"}}
LOCAL = {"lpos": {"kind": "local_position"}}
BOUNDS = {"bmin": {"kind": "local_bounds_min"}, "bmax": {"kind": "local_bounds_max"}}
DERIVATIVES = {f"wpcr_d{a}": {"kind": f"dd{a}", "of": {"kind": "world_position_cr"}} for a in "xy"}

# Node outputs that are only a signal -> its text and its inputs, in order.
SIGNALS = {
    ("NewGeometry", "Position"): ("(float3(wpos.x, -wpos.y, wpos.z) * 0.01)", {"wpos": {"kind": "world_position"}}),
    ("NewGeometry", "Normal"): (NF, NORMAL | SIGN),
    ("NewGeometry", "Incoming"): (I, INCOMING),
    ("NewGeometry", "True Normal"): (
        "L.facing_normal(normalize(cross((float3(wpcr_dx.x, -wpcr_dx.y, wpcr_dx.z) * 0.01), "
        "(float3(wpcr_dy.x, -wpcr_dy.y, wpcr_dy.z) * 0.01))), " + f"{I})",
        DERIVATIVES | INCOMING,
    ),
    ("TexCoord", "Object"): ("(float3(lpos.x, -lpos.y, lpos.z) * 0.01)", LOCAL),
    ("TexCoord", "UV"): ("float3(uv0.x, 1.0 - uv0.y, 0.0)", {"uv0": {"kind": "texcoord", "index": 0}}),
    ("TexCoord", "Normal"): (
        f"L.safe_normalize(float3(dot({NF}, {OX}), dot({NF}, {OY}), dot({NF}, {OZ})))",
        NORMAL | SIGN | AXES,
    ),
    ("TexCoord", "Generated"): (
        "(((float3(lpos.x, -lpos.y, lpos.z) * 0.01) - (float3(bmin.x, -bmax.y, bmin.z) * 0.01)) / "
        "max((float3(bmax.x, -bmin.y, bmax.z) * 0.01) - (float3(bmin.x, -bmax.y, bmin.z) * 0.01), "
        "float3(1e-8, 1e-8, 1e-8)))",
        BOUNDS | LOCAL,
    ),
    ("TexCoord", "Reflection"): (f"reflect(-{I}, {N})", NORMAL | INCOMING),
    ("Bevel", "Normal"): (N, NORMAL),
    ("ObjectInfo", "Location"): ("(float3(opos.x, -opos.y, opos.z) * 0.01)", {"opos": {"kind": "object_origin"}}),
    ("CameraData", "View Vector"): (
        "(float3(dot(wpos - cpos, vaxx), dot(wpos - cpos, vaxy), dot(wpos - cpos, vaxz)) * 0.01)",
        {f"vax{a}": {"kind": "view_axis", "axis": a} for a in "xyz"}
        | {"wpos": {"kind": "world_position"}, "cpos": {"kind": "camera_position"}},
    ),
}


@pytest.mark.parametrize("kind, output", SIGNALS)
def test_signal(kind, output):
    text, inputs = SIGNALS[kind, output]
    result = translated(node(kind), output=output)
    assert result["body"][0] == f"float3 v1 = {text};"
    if kind == "NewGeometry":  # always reads the two-sided sign, for Backfacing
        inputs = inputs | SIGN
    assert list(result["inputs"].items()) == list(inputs.items())


def test_signal_of_the_vertex_colour_and_of_the_side():
    assert translated(node("VertexColor"))["ret"] == "vcol.rgb"
    assert translated(node("VertexColor"))["inputs"] == {"vcol": {"kind": "vertex_color"}}
    assert translated(node("NewGeometry"), output="Backfacing")["ret"] == "((float3)(((tsign < 0.0) ? 1.0 : 0.0)))"


def test_graph_without_signals_declares_none():
    noise = node("BsdfPrincipled", {"Base Color": link(mix := node("MixRGB"))})
    assert translated(noise, mix, mode="surface")["inputs"] == {}
    names = translated(noise, mix, mode="surface", use_params=True)["inputs"]
    assert {record["kind"] for record in names.values()} == {"scalar", "vector"}


def test_tangent_in_object_space_declares_the_whole_frame():
    result = translated(node("Tangent", props={"direction_type": "UV_MAP"}))
    frame = {"vnorm": {"kind": "vertex_normal"}, "ttan": {"kind": "tangent_world"}, "tbit": {"kind": "bitangent_world"}}
    assert result["inputs"] == NORMAL | SIGN | frame | AXES
    assert result["need"] == {"n_obj_to_world", "rot_to_obj", "safe_normalize"}
    assert "safe_normalize" not in "".join(result["body"])
    assert f"L.rot_to_obj(float3(ttan.x, -ttan.y, ttan.z), {OX}, {OY}, {OZ})" in result["body"][0]


def test_frame_of_a_normal_map():
    lines = body(node("NormalMap"))
    assert f"float3 v5 = {NV};" in lines
    assert f"float3 v7 = L.rot_to_obj(-(float3(tbit.x, -tbit.y, tbit.z)), {OX}, {OY}, {OZ});" in lines


@pytest.mark.parametrize(
    "bias, text",
    [
        ((0.5, 0.25), "float3(uv1.x + 0.5, 1.0 - uv1.y + 0.25, 0.0)"),
        ([1, -2], "float3(uv1.x + 1.0, 1.0 - uv1.y + -2.0, 0.0)"),
        *((false, "float3(uv1.x, 1.0 - uv1.y, 0.0)") for false in (None, (), [], 0, False, "")),
    ],
)
def test_bias_of_the_uvs(bias, text):
    assert body(node("Attribute", **UV1), uv_bias=bias, **MAPS) == [f"float3 v1 = {text};"]


def test_bias_plays_no_part_in_derivatives():
    picture = node("TexImage")
    lines = body(node("Bump", {"Height": link(picture)}), picture, uv_bias=(0.5, 0.25), images=IMAGES)
    assert any("float3(uv0_dx.x, -uv0_dx.y, 0.0)" in line for line in lines)


def displaced(reader, output):
    """Returns (statements, name of the bumped normal, result) of a surface that reads a bumped normal."""
    n, bsdf = node("Displacement"), node("BsdfPrincipled", {"Base Color": link(reader, output)})
    result = translated(bsdf, reader, n, mode="surface", displacement=n)
    name, lines = bumped_normal(result["body"])
    return lines, name, result


def test_bumped_normal_is_the_one_that_faces_the_viewer():
    lines, name, result = displaced(node("NewGeometry"), "Normal")
    assert lines[1] == f"float3 v{int(name[1:]) + 2} = {name};"
    assert f"float3 {name} = L.safe_normalize(0.1 * " in "".join(result["body"])


def test_raw_normal_is_the_bumped_one_with_the_sign():
    lines, name, result = displaced(node("Bevel"), "Normal")
    assert lines[1].endswith(f" = ({name} * ((tsign < 0.0) ? -1.0 : 1.0));")
    assert "tsign" in result["inputs"]


def test_normals_of_the_displacement_stage():
    for reader, output, signed in (
        (node("Bevel"), "Normal", False),
        (node("NewGeometry"), "Incoming", True),
        (node("Tangent", props={"direction_type": "UV_MAP"}), "Tangent", True),
    ):
        displaced = node("Displacement", {"Normal": link(reader, output)}, props={"space": "WORLD"})
        record = surface(
            node("BsdfPrincipled"), displaced, reader, displacement=displaced, settings={"displacement": "DISPLACEMENT"}
        )["displacement"]
        names = {i["name"] for i in record["inputs"]}
        assert {"vnorm", "ttan", "tbit", "oax", "oay", "oaz"} <= names and "cnorm" not in names
        assert ("tsign" in names) == signed


def test_normal_of_the_displacement_stage_is_that_of_the_vertex():
    displaced = node("Displacement", props={"space": "WORLD"})
    code = surface(node("BsdfPrincipled"), displaced, displacement=displaced, settings={"displacement": "BOTH"})[
        "displacement"
    ]["code"]
    assert f"float3 v2 = (L.n_obj_to_world({NV}, {OX}, {OY}, {OZ}) * ((tsign < 0.0) ? -1.0 : 1.0));" in code
