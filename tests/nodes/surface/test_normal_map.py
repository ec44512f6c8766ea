"""Normal maps."""

import re

import numpy as np
import pytest

from edge_cases import body, bumped_normal, key_error, translated, unsupported, value_of
from golden.documents import node

UNTURNED = {
    "oax": (1.0, 0.0, 0.0),
    "oay": (0.0, 1.0, 0.0),
    "oaz": (0.0, 0.0, 1.0),
    "vnorm": (0.0, 0.0, 1.0),
    "ttan": (1.0, 0.0, 0.0),
    "tbit": (0.0, 1.0, 0.0),
    "tsign": 1.0,
    "cnorm": (0.6, 0.0, 0.8),
}
FRAME = ("vnorm", "ttan", "tbit")
BLENDS = ("OBJECT", "WORLD", "BLENDER_OBJECT", "BLENDER_WORLD", "NO_SUCH_WORD")


def normal(colour, strength=1.0, space="TANGENT", convention="OPENGL", **values):
    n = node(
        "NormalMap", {"Color": (*colour, 1.0), "Strength": strength}, props={"space": space, "convention": convention}
    )
    given = {**UNTURNED, **values}
    if space != "TANGENT":
        given = {k: v for k, v in given.items() if k not in FRAME}
    return value_of(n, values=given)[0]


def unit(*vector):
    return np.array(vector) / np.linalg.norm(vector)


def test_two_flips_in_their_order():
    lines = body(node("NormalMap", props={"space": "BLENDER_OBJECT", "convention": "DIRECTX"}))
    assert lines[1] == "v1.y = -v1.y;" and lines[4] == "v1.y = -v1.y; v1.z = -v1.z;"
    got = normal((0.75, 0.625, 0.25), space="BLENDER_OBJECT", convention="DIRECTX")
    np.testing.assert_allclose(got, unit(0.5, 0.25, 0.5), atol=1e-6)


@pytest.mark.parametrize("convention", ["DIRECTX", "OPENGL", None, "NO_SUCH_WORD"])
@pytest.mark.parametrize("space", ["TANGENT", *BLENDS])
def test_convention(space, convention):
    lines = body(node("NormalMap", props={"space": space, "convention": convention}))
    assert lines.count("v1.y = -v1.y;") == (convention == "DIRECTX")
    assert lines.count("v1.y = -v1.y; v1.z = -v1.z;") == space.startswith("BLENDER")


@pytest.mark.parametrize(
    "strength, wanted",
    [
        (1.0, (0.5, 0.25, 0.5)),
        (0.0, (0.0, 0.0, 1.0)),
        (2.0, (1.0, 0.5, 0.5)),
        (-1.0, (-0.5, -0.25, 1.0)),
        (0.5, (0.25, 0.125, 0.75)),
    ],
)
def test_strength_in_tangent_space(strength, wanted):
    """The statement is the same for all strengths and doesn't use the surface's normal."""
    np.testing.assert_allclose(normal((0.75, 0.625, 0.75), strength), unit(*wanted), atol=1e-6)
    lines = body(node("NormalMap", {"Strength": strength}))
    assert lines[8] == "v1.x *= v2; v1.y *= v2; v1.z = lerp(1.0, v1.z, saturate(v2));"


def test_strength_zero_in_tangent_space_is_the_vertex_normal():
    np.testing.assert_allclose(normal((0.75, 0.625, 0.75), 0.0, vnorm=(0.0, 0.6, 0.8)), (0.0, -0.6, 0.8), atol=1e-6)
    np.testing.assert_allclose(normal((0.75, 0.625, 0.75), 0.0, tsign=-1.0), (0.0, 0.0, -1.0), atol=1e-6)


@pytest.mark.parametrize("space", ["OBJECT", "WORLD"])
@pytest.mark.parametrize("strength", [0.0, -1.0])
def test_no_strength_in_other_spaces_is_the_surface_normal(space, strength):
    np.testing.assert_allclose(normal((0.75, 0.625, 0.75), strength, space), UNTURNED["cnorm"], atol=1e-6)
    np.testing.assert_allclose(normal((0.75, 0.625, 0.75), strength, space, tsign=-1.0), (-0.6, 0.0, -0.8), atol=1e-6)


@pytest.mark.parametrize("space", ["OBJECT", "WORLD"])
def test_strength_beyond_one_in_other_spaces(space):
    mapped, surface = unit(0.5, 0.25, 0.5), np.array(UNTURNED["cnorm"])
    got = normal((0.75, 0.625, 0.75), 2.0, space)
    np.testing.assert_allclose(got, unit(*(surface + (mapped - surface) * 2.0)), atol=1e-6)


@pytest.mark.parametrize(
    "space, strength, wanted",
    [
        ("WORLD", 1.0, UNTURNED["cnorm"]),
        ("OBJECT", 1.0, UNTURNED["cnorm"]),
        ("TANGENT", 1.0, UNTURNED["cnorm"]),
        ("TANGENT", 2.0, UNTURNED["cnorm"]),
        ("TANGENT", 0.5, (0.0, 0.0, 1.0)),
    ],
)
def test_grey_decodes_to_zero(space, strength, wanted):
    np.testing.assert_allclose(normal((0.5, 0.5, 0.5), strength, space), wanted, atol=1e-6)


@pytest.mark.parametrize("space", ["TANGENT", *BLENDS])
def test_unlinked_colour_takes_no_shortcut(space):
    lines = body(node("NormalMap", {"Color": (0.5, 0.5, 1.0, 1.0), "Strength": 1.0}, props={"space": space}))
    assert lines[0] == "float3 v1 = 2.0 * (float3(0.5, 0.5, 1.0) - float3(0.5, 0.5, 0.5));"
    assert lines[-1] == "if (dot(nm4, nm4) == 0.0 || any(isnan(nm4)) || any(isinf(nm4))) nm4 = v3;"
    if space != "TANGENT":
        assert lines[-2] == "if (v2 != 1.0) nm4 = L.safe_normalize(v3 + (nm4 - v3) * max(v2, 0.0));"
    assert sum(line == "if (tsign < 0.0) nm4 = -nm4;" for line in lines) == 1


@pytest.mark.parametrize("space", ["TANGENT", *BLENDS])
def test_library_names_are_always_the_same(space):
    need = translated(node("NormalMap", props={"space": space}))["need"]
    assert need == {"n_obj_to_world", "safe_normalize"} | ({"rot_to_obj"} if space == "TANGENT" else set())


@pytest.mark.parametrize(
    "space, text",
    [
        ("OBJECT", "float3 nm4 = L.n_obj_to_world(v1, "),
        ("BLENDER_OBJECT", "float3 nm4 = L.n_obj_to_world(v1, "),
        ("WORLD", "float3 nm4 = L.safe_normalize(v1);"),
        ("BLENDER_WORLD", "float3 nm4 = L.safe_normalize(v1);"),
        ("NO_SUCH_WORD", "float3 nm4 = L.safe_normalize(v1);"),
    ],
)
def test_spaces(space, text):
    result = translated(node("NormalMap", props={"space": space}))
    assert sum(line.startswith(text) for line in result["body"]) == 1 and result["warnings"] == []
    assert not set(FRAME) & set(result["inputs"])


def test_tangent_is_the_default():
    assert translated(node("NormalMap", props={"space": None})) == translated(node("NormalMap"))


def test_mirrored_frame():
    """The mesh's bitangent determines the sign of the second axis."""
    straight, mirrored = (normal((0.5, 0.75, 0.75), tbit=(0.0, sign, 0.0)) for sign in (1.0, -1.0))
    np.testing.assert_allclose(straight[1], -mirrored[1], atol=1e-6)
    np.testing.assert_allclose(straight[2], mirrored[2], atol=1e-6)
    assert abs(straight[1]) > 0.5


def test_displaced_surface():
    """The blend and the guard use the bumped normal."""
    displaced = node("Displacement")
    lines = body(node("NormalMap", props={"space": "WORLD"}), displaced, displacement=displaced)
    name, lines = bumped_normal(lines)
    nm, surface = re.search(r" (nm\d+) = L\.safe_normalize\((v\d+) \+ ", lines[-2]).groups()
    assert f"float3 {surface} = {name};" in lines
    assert f"({nm} - {surface}) * max(" in lines[-2] and lines[-1].endswith(f" {nm} = {surface};")


@pytest.mark.parametrize("socket", ["Color", "Strength"])
def test_mandatory_sockets(socket):
    with unsupported(f"ShaderNodeNormalMap: no input {socket}"):
        body(node("NormalMap", without=[socket]))


def test_properties_are_mandatory():
    n = node("NormalMap")
    del n["props"]
    with key_error("props"):
        body(n)
