"""Geometry, Tangent, Fresnel and Layer Weight."""

import numpy as np
import pytest

from edge_cases import DX, DY, ZERO, body, bumped_normal, key_error, translated, unsupported, value_of
from golden.documents import link, node

OX, OY, OZ = ("(float3(oax.x, -oax.y, oax.z))", "(-float3(oay.x, -oay.y, oay.z))", "(float3(oaz.x, -oaz.y, oaz.z))")
N = "normalize(float3(cnorm.x, -cnorm.y, cnorm.z))"
NF = f"({N} * ((tsign < 0.0) ? -1.0 : 1.0))"
INCOMING = "normalize(float3(camvec.x, -camvec.y, camvec.z))"

FRONT = {"cnorm": (0.0, 0.6, 0.8), "camvec": (0.0, 0.0, 1.0), "tsign": 1.0}  # the cosine is 0.8
BACK = {**FRONT, "tsign": -1.0}


def test_backfacing_alone():
    result = translated(node("NewGeometry"), output="Backfacing")
    assert result["inputs"] == {"tsign": {"kind": "two_sided_sign"}} and result["need"] == set()
    assert (result["body"], result["ret"]) == ([], "((float3)(((tsign < 0.0) ? 1.0 : 0.0)))")


def test_tangent_of_the_geometry_is_radial():
    result = translated(node("NewGeometry"), output="Tangent")
    assert result["need"] == {"n_obj_to_world"}
    assert not {"ttan", "tbit", "vnorm"} & set(result["inputs"]) and {"bmin", "bmax", "lpos"} <= set(result["inputs"])
    assert result["body"][1:] == [
        f"float3 v2 = L.n_obj_to_world(float3(-(v1.y - 0.5), (v1.x - 0.5), 0.0), {OX}, {OY}, {OZ});",
        f"float3 v3 = cross({NF}, normalize(cross(v2, {NF})));",
    ]


@pytest.mark.parametrize(
    "axis, text",
    [
        ("X", "float3(0.0, -(v1.z - 0.5), (v1.y - 0.5))"),
        ("Y", "float3(-(v1.z - 0.5), 0.0, (v1.x - 0.5))"),
        ("Z", "float3(-(v1.y - 0.5), (v1.x - 0.5), 0.0)"),
        (None, "float3(-(v1.y - 0.5), (v1.x - 0.5), 0.0)"),
    ],
)
@pytest.mark.parametrize("direction", ["RADIAL", "NO_SUCH_WORD", None])
def test_radial_tangents(axis, text, direction):
    lines = body(node("Tangent", props={"axis": axis, "direction_type": direction}))
    assert lines[1] == f"float3 v2 = L.n_obj_to_world({text}, {OX}, {OY}, {OZ});"


def test_only_the_uv_tangent_reads_that_of_the_mesh():
    result = translated(node("Tangent", props={"direction_type": "UV_MAP", "axis": "NO_SUCH_WORD"}))
    assert "ttan" in result["inputs"] and "bmin" not in result["inputs"]
    assert result["body"] == [
        "float3 v1 = L.n_obj_to_world(L.rot_to_obj(float3(ttan.x, -ttan.y, ttan.z), "
        f"{OX}, {OY}, {OZ}), {OX}, {OY}, {OZ});",
        f"float3 v2 = cross({NF}, normalize(cross(v1, {NF})));",
    ]
    with key_error("NO_SUCH_WORD"):
        body(node("Tangent", props={"axis": "NO_SUCH_WORD"}))


FIXED = {
    "Parametric": ("Parametric", ZERO),
    "Pointiness": ("Pointiness (Cycles only)", "((float3)(0.5))"),
    "Random Per Island": ("Random Per Island", "((float3)(0.0))"),
}


@pytest.mark.parametrize("output", FIXED)
def test_outputs_that_unreal_has_not(output):
    why, text = FIXED[output]
    result = translated(node("NewGeometry", id="Odd one"), output=output)
    assert result["warnings"] == [f"Odd one: Geometry {why} is not available in Unreal"]
    assert (result["body"], result["ret"]) == ([], text)


def test_warnings_come_in_their_order():
    geometry = node("NewGeometry")
    reader = node("Reader", {name: link(geometry, name) for name in reversed(FIXED)})
    warnings = translated(geometry, reader, output="Position")["warnings"]
    assert warnings == [f"NewGeometry: Geometry {why} is not available in Unreal" for why, _ in FIXED.values()]


def test_unread_outputs_stay_free_of_inputs():
    result = translated(node("NewGeometry"), output="Position")
    assert list(result["inputs"]) == ["wpos", "tsign"] and result["need"] == set()


def test_fresnel():
    assert body(node("Fresnel")) == [
        "float v1 = max(1.45, 1e-5);",
        "if (tsign < 0.0) v1 = 1.0 / v1;",
        f"float v2 = L.fresnel_dielectric_cos(dot({INCOMING}, {NF}), v1);",
    ]


def reflectance(cosine, eta):
    g = eta * eta - 1 + cosine * cosine
    if g <= 0:
        return 1.0
    g = np.sqrt(g)
    a, b = (g - cosine) / (g + cosine), (cosine * (g + cosine) - 1) / (cosine * (g - cosine) + 1)
    return 0.5 * a * a * (1 + b * b)


@pytest.mark.parametrize("ior, front, back", [(1.5, 1.5, 1 / 1.5), (0.0, 1e-5, 1e5), (1.0, 1.0, 1.0)])
def test_fresnel_at_run_time(ior, front, back):
    for values, eta in ((FRONT, front), (BACK, back)):
        got = value_of(node("Fresnel", {"IOR": ior}), values=values)[0][0]
        np.testing.assert_allclose(got, reflectance(0.8, eta), atol=2e-6)


@pytest.mark.parametrize("blend, front, back", [(0.25, 1 / 0.75, 0.75), (1.0, 1e5, 1e-5)])
def test_fresnel_of_the_layer_weight(blend, front, back):
    n = node("LayerWeight", {"Blend": blend})
    for values, eta in ((FRONT, front), (BACK, back)):
        np.testing.assert_allclose(value_of(n, output="Fresnel", values=values)[0][0], reflectance(0.8, eta), atol=2e-6)


@pytest.mark.parametrize(
    "blend, wanted",
    [
        (0.5, 1 - 0.8),
        (0.25, 1 - 0.8**0.5),
        (0.75, 1 - 0.8**2),
        (0.0, 0.0),
        (-3.0, 0.0),
        (1.0, 1 - 0.8 ** (0.5 / 1e-5)),
        (9.0, 1 - 0.8 ** (0.5 / 1e-5)),
    ],
)
def test_facing_at_run_time(blend, wanted):
    for values in (FRONT, BACK):
        got = value_of(node("LayerWeight", {"Blend": blend}), output="Facing", values=values)[0][0]
        np.testing.assert_allclose(got, wanted, atol=1e-6)


def test_layer_weight():
    assert body(node("LayerWeight"), output="Facing") == [
        "float v1 = 0.3;",
        f"float3 v2 = {NF};",
        "float v3 = max(1.0 - v1, 1e-5);",
        "v3 = (tsign < 0.0) ? v3 : 1.0 / v3;",
        f"float v4 = abs(dot({INCOMING}, v2));",
        "float v5 = v1;",
        "if (v5 != 0.5) { v5 = clamp(v5, 0.0, 1.0 - 1e-5); v5 = (v5 < 0.5) ? 2.0 * v5 : 0.5 / (1.0 - v5); "
        "v4 = pow(v4, v5); }",
        "float v6 = 1.0 - v4;",
    ]


@pytest.mark.parametrize("kind, output", [("Fresnel", "Fac"), ("LayerWeight", "Facing")])
def test_linked_normal_as_it_stands(kind, output):
    colour = node("RGB")
    result = translated(node(kind, {"Normal": link(colour)}), colour, output=output)
    assert "cnorm" not in result["inputs"]
    text = "float3(0.25, 0.5, 0.75)" if kind == "Fresnel" else "v2"
    assert any(f"dot({INCOMING}, {text})" in line for line in result["body"])


def readings(output, signal):
    """The expressions by which a bump's height reads a vector: at the two offset positions and without offset."""
    geometry = node("NewGeometry")
    lines = body(node("Bump", {"Height": link(geometry, output)}), geometry)
    start = next(i for i, line in enumerate(lines) if line.startswith(f"float {DY['b']} = ")) + 1
    return [line.split(" = ", 1)[1] for line in lines[start:] if signal in line]


def test_position_moves_and_directions_do_not():
    here = "(float3(wpos.x, -wpos.y, wpos.z) * 0.01)"
    assert readings("Position", "wpos.x") == [f"({here} + {DX['w']});", f"({here} + {DY['w']});", f"{here};"]
    assert readings("Normal", "cnorm.x") == [f"{NF};"] * 3
    assert readings("Incoming", "camvec.x") == [f"{INCOMING};"] * 3
    assert sum("tsign" in text for text in readings("Backfacing", "tsign")) == 3


def test_radial_tangent_moves_through_the_generated_coordinate():
    texts = readings("Tangent", "bmin.x")
    assert [f"L.dir_world_to_obj({DX['w']}, " in text for text in texts] == [True, False, False]
    assert [f"L.dir_world_to_obj({DY['w']}, " in text for text in texts] == [False, True, False]


def test_displaced_surface_gives_its_normal_to_all():
    displaced, uv = node("Displacement"), {"direction_type": "UV_MAP"}
    readers = [
        (node("NewGeometry"), "Normal"),
        (node("NewGeometry"), "Tangent"),
        (node("Tangent", props=uv), "Tangent"),
        (node("Fresnel"), "Fac"),
        (node("LayerWeight"), "Facing"),
    ]
    for reader, output in readers:
        name, lines = bumped_normal(body(reader, displaced, output=output, displacement=displaced))
        assert not any("cnorm" in line for line in lines) and any(name in line for line in lines)


@pytest.mark.parametrize("kind, socket", [("Fresnel", "IOR"), ("LayerWeight", "Blend")])
def test_mandatory_sockets(kind, socket):
    with unsupported(f"ShaderNode{kind}: no input {socket}"):
        body(node(kind, without=[socket]))


def test_tangent_needs_its_properties():
    n = node("Tangent")
    del n["props"]
    with key_error("props"):
        body(n)
