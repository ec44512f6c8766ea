"""Displacement and Vector Displacement nodes."""

import numpy as np
import pytest

from edge_cases import body, key_error, translated, unsupported, value_of
from golden.documents import link, node

OX, OY, OZ = ("(float3(oax.x, -oax.y, oax.z))", "(-float3(oay.x, -oay.y, oay.z))", "(float3(oaz.x, -oaz.y, oaz.z))")
NF = "(normalize(float3(cnorm.x, -cnorm.y, cnorm.z)) * ((tsign < 0.0) ? -1.0 : 1.0))"
AXES = {"oax", "oay", "oaz"}
SCENE = {"cnorm": (0.0, 0.0, 1.0), "tsign": 1.0, "oax": (1.0, 0.0, 0.0), "oay": (0.0, 1.0, 0.0), "oaz": (0.0, 0.0, 1.0)}
FRAME = {"vnorm": (0.0, 0.0, 1.0), "ttan": (1.0, 0.0, 0.0), "tbit": (0.0, 1.0, 0.0)}


@pytest.mark.parametrize("space", ["WORLD", "NO_SUCH_WORD"])
def test_world_space_reads_no_axis(space):
    result = translated(node("Displacement", props={"space": space}))
    assert result["body"] == ["float v1 = (0.7 - 0.4) * 0.3;", f"float3 v2 = {NF};", "float3 v3 = (v2 * v1);"]
    assert list(result["inputs"]) == ["cnorm", "tsign"] and result["need"] == set() and result["warnings"] == []


@pytest.mark.parametrize("space", ["OBJECT", None])
def test_object_space(space):
    result = translated(node("Displacement", props={"space": space}))
    assert result["body"][2:] == [
        f"float3 v3 = L.safe_normalize(float3(dot(v2, {OX}), dot(v2, {OY}), dot(v2, {OZ}))) * v1;",
        f"float3 v4 = (v3.x * {OX} + v3.y * {OY} + v3.z * {OZ});",
    ]
    assert result["need"] == {"safe_normalize"} and set(result["inputs"]) >= AXES


@pytest.mark.parametrize("space", ["WORLD", "OBJECT"])
def test_height_at_the_mid_level(space):
    n = node("Displacement", {"Height": 0.5, "Midlevel": 0.5}, props={"space": space})
    assert body(n)[0] == "float v1 = (0.5 - 0.5) * 0.3;"
    values = SCENE if space == "OBJECT" else {k: SCENE[k] for k in ("cnorm", "tsign")}
    np.testing.assert_array_equal(value_of(n, values=values)[0], (0.0, 0.0, 0.0))


def test_linked_sockets():
    sources = [node("Value", id=name, props={"value": v}) for name, v in (("a", 0.9), ("b", 0.4), ("c", 2.0))]
    inputs = dict(zip(("Height", "Midlevel", "Scale"), map(link, sources)))
    assert body(node("Displacement", inputs), *sources)[0] == "float v1 = (0.9 - 0.4) * 2.0;"


def test_vector_in_world_space_reads_the_axes_all_the_same():
    result = translated(node("VectorDisplacement", props={"space": "WORLD"}))
    assert result["body"] == [
        "float v1 = 0.4;",
        "float3 v2 = (float3(0.1, 0.2, 0.3) - float3(v1, v1, v1)) * 0.3;",
        "float3 v3 = v2;",
    ]
    assert set(result["inputs"]) == AXES and result["need"] == set()


@pytest.mark.parametrize("space", ["OBJECT", "NO_SUCH_WORD"])
def test_vector_in_object_space(space):
    result = translated(node("VectorDisplacement", props={"space": space}))
    assert result["body"][2] == f"float3 v3 = (v2.x * {OX} + v2.y * {OY} + v2.z * {OZ});"
    assert result["need"] == set() and result["warnings"] == []


def test_vector_in_tangent_space():
    to_object = f"{OX}, {OY}, {OZ}"
    normal = f"L.safe_normalize(L.rot_to_obj(float3(vnorm.x, -vnorm.y, vnorm.z), {to_object}))"
    for space in ("TANGENT", None):
        lines = body(node("VectorDisplacement", props={"space": space}))
        assert lines[2:] == [
            f"float3 v3 = L.safe_normalize(float3(dot({NF}, {OX}), dot({NF}, {OY}), dot({NF}, {OZ})));",
            f"float3 v4 = L.rot_to_obj(float3(ttan.x, -ttan.y, ttan.z), {to_object});",
            "float3 v5 = L.safe_normalize(cross(v3, v4));",
            f"if (dot(cross(L.safe_normalize({normal}), v4), "
            f"L.rot_to_obj(-(float3(tbit.x, -tbit.y, tbit.z)), {to_object})) < 0.0) v5 = -v5;",
            "float3 v6 = v4 * v2.x + v3 * v2.y + v5 * v2.z;",
            f"float3 v7 = (v6.x * {OX} + v6.y * {OY} + v6.z * {OZ});",
        ]


def displaced(**values):
    n = node("VectorDisplacement", {"Vector": (0.25, 0.5, 0.125, 1.0), "Midlevel": 0.0, "Scale": 1.0})
    return value_of(n, values={**SCENE, **FRAME, **values})[0]


def test_bitangent_that_disagrees_turns_the_third_axis():
    """y is along the normal, z along the bitangent, whose sign depends on the mesh."""
    one, other = displaced(tbit=(0.0, 1.0, 0.0)), displaced(tbit=(0.0, -1.0, 0.0))
    np.testing.assert_allclose((one[0], one[2]), (0.25, 0.5), atol=1e-6)
    np.testing.assert_allclose((other[0], other[2]), (0.25, 0.5), atol=1e-6)
    np.testing.assert_allclose((abs(one[1]), one[1]), (0.125, -other[1]), atol=1e-6)


def test_normal_of_a_moved_height_does_not_move():
    noise, coordinates = node("TexNoise", {"Vector": link("TexCoord", "Object", "VECTOR")}), node("TexCoord")
    n = node("Displacement", {"Height": link(noise)}, props={"space": "WORLD"})
    lines = body(node("Emission"), n, noise, coordinates, mode="surface", displacement=n)
    assert sum("L.noise_texture3_FBM(" in line for line in lines) == 3
    readings = [line for line in lines if "lpos.x" in line]
    assert ["L.dir_world_to_obj(" in line for line in readings] == [True, True, False]
    assert sum(line.endswith(f" = {NF};") for line in lines) == 4, "the frame's normal, and three copies of the node's"


def test_linked_normal():
    colour = node("RGB")
    n = node("Displacement", {"Normal": link(colour)}, props={"space": "WORLD"})
    assert body(n, colour)[1] == "float3 v2 = float3(0.25, 0.5, 0.75);"
    assert body(node("Displacement", without=["Normal"])) == body(node("Displacement"))


@pytest.mark.parametrize(
    "kind, socket",
    [
        (k, s)
        for k, first in (("Displacement", "Height"), ("VectorDisplacement", "Vector"))
        for s in (first, "Midlevel", "Scale")
    ],
)
def test_mandatory_sockets(kind, socket):
    with unsupported(f"ShaderNode{kind}: no input {socket}"):
        body(node(kind, without=[socket]))


@pytest.mark.parametrize("kind", ["Displacement", "VectorDisplacement"])
def test_properties_are_mandatory(kind):
    n = node(kind)
    del n["props"]
    with key_error("props"):
        body(n)
