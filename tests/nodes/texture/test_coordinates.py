"""Coordinates and the simple procedural textures."""

import numpy as np
import pytest

from edge_cases import ZERO, body, key_error, translated, unsupported, value_of
from golden.documents import link, node
from golden.node_types import TYPES

UV = "float3(uv0.x, 1.0 - uv0.y, 0.0)"


def test_coordinates_that_nothing_reads():
    coordinates = node("TexCoord")
    with unsupported("ShaderNodeTexCoord has no output Odd"):
        translated(coordinates, output="Odd")
    result = translated(coordinates, output="UV")
    assert result["body"] == [f"float3 v1 = {UV};"] and list(result["inputs"]) == ["uv0"]


@pytest.mark.parametrize(
    "given, output, warnings",
    [
        ({}, "Object", []),
        ({"object_matrix": None}, "Object", []),
        ({"object_matrix": []}, "Object", []),
        ({"object_matrix": [[1.0]]}, "Generated", []),
        ({"object_matrix": True}, "UV", []),
        (
            {"object_matrix": [[1.0]]},
            "Object",
            ["TexCoord: Texture Coordinate with a custom object uses this object's own space"],
        ),
    ],
)
def test_custom_object(given, output, warnings):
    result = translated(node("TexCoord", **given), output=output)
    assert result["warnings"] == warnings
    assert result["body"] == body(node("TexCoord"), output=output)


def test_matrix_among_the_properties_says_nothing():
    assert translated(node("TexCoord", props={"object_matrix": True}), output="Object")["warnings"] == []


def test_reflection_is_there():
    result = translated(node("TexCoord"), output="Reflection")
    assert result["warnings"] == [] and result["body"][0].startswith("float3 v1 = reflect(-normalize(float3(camvec.x")


@pytest.mark.parametrize("output", ["Camera", "Window"])
def test_outputs_that_unreal_has_not(output):
    result = translated(node("TexCoord", id="Odd one"), output=output)
    assert result["warnings"] == [f"Odd one: Texture Coordinate {output} is not available in Unreal - 0"]
    assert (result["body"], result["ret"], result["inputs"]) == ([], ZERO, {})


def test_both_passes_in_their_order():
    names = ("Reflection", "Window", "Camera", "Normal", "UV")
    reader = node("Reader", {name: link(node("TexCoord"), name) for name in names})
    result = translated(node("TexCoord"), reader, output="UV")
    assert [line.split(" = ")[1][:14] for line in result["body"]] == [UV[:14], "L.safe_normali", "reflect(-norma"]
    assert [warning.split()[3] for warning in result["warnings"]] == ["Camera", "Window"]


@pytest.mark.parametrize("at, wanted", [((0.1, 0.1, 0.1), (0.3, 0.9, 0.4)), ((0.3, 0.1, 0.1), (0.8, 0.1, 0.2))])
def test_checker_picks_a_colour(at, wanted):
    point = node("CombineXYZ", dict(zip("XYZ", at)))
    got = value_of(node("TexChecker", {"Vector": link(point)}), point, output="Color")[0]
    one = value_of(node("TexChecker", {"Vector": link(point)}), point, output="Fac")[0][0]
    assert one in (0.0, 1.0)
    np.testing.assert_allclose(got, (0.8, 0.1, 0.2) if one == 1.0 else (0.3, 0.9, 0.4), rtol=1e-6)
    np.testing.assert_allclose(got, wanted, rtol=1e-6)


def test_text_of_the_checker():
    lines = body(node("TexChecker", {"Vector": link(node("RGB"))}), node("RGB"))
    assert lines == [
        "float v1 = L.tex_checker(float3(0.25, 0.5, 0.75) * 5.0);",
        "float3 v2 = ((v1 == 1.0) ? float3(0.8, 0.1, 0.2) : float3(0.3, 0.9, 0.4));",
    ]


def test_mortar_keeps_the_first_colour_untinted():
    lines = body(node("TexBrick"))
    assert lines[2] == "if (v1.y != 1.0) v2 = (1.0 - v1.x) * v2 + v1.x * float3(0.3, 0.9, 0.4);"
    assert lines[3] == "float3 v3 = v2 * (1.0 - v1.y) + float3(0.05, 0.15, 0.25) * v1.y;"
    origin = node("CombineXYZ", {"X": 0.0, "Y": 0.0, "Z": 0.0})
    brick = node("TexBrick", {"Vector": link(origin), "Mortar Smooth": 0.0, "Mortar": (0.0, 0.0, 1.0, 1.0)})
    assert value_of(brick, origin, output="Fac")[0][0] == 1.0
    np.testing.assert_array_equal(value_of(brick, origin, output="Color")[0], (0.0, 0.0, 1.0))


@pytest.mark.parametrize(
    "given, texts",
    [
        ({"offset_frequency": 3.0, "squash_frequency": 2.9}, "0.25, 3, 1.5, 2"),
        ({"offset_frequency": "3", "offset": 1, "squash": 2}, "1.0, 3, 2.0, 4"),
        (dict.fromkeys(("offset", "offset_frequency", "squash", "squash_frequency")), "0.5, 2, 1.0, 2"),
        ({"offset_frequency": True, "squash_frequency": -1}, "0.25, 1, 1.5, -1"),
    ],
)
def test_properties_of_the_brick(given, texts):
    assert body(node("TexBrick", props=given))[0].endswith(f" * 5.0, 0.02, 0.1, -0.25, 0.5, 0.125, {texts});")


@pytest.mark.parametrize("given, depth", [(None, 2), (3.0, 3), (0, 0), (2**70, 2**70)])
def test_depth_of_magic(given, depth):
    line = body(node("TexMagic", props={"turbulence_depth": given}))[0]
    assert line.endswith(f", 5.0, {depth}, 1.5);")


@pytest.mark.parametrize("word, code", [("BANDS", 0), ("RINGS", 1), ("NO_SUCH_WORD", 1), ("", 1), (None, 0)])
def test_wave_type(word, code):
    assert body(node("TexWave", props={"wave_type": word}))[0].startswith(f"float v1 = L.tex_wave({code}, 0, 0, 0, ")


def test_words_of_the_wave():
    props = {"bands_direction": "DIAGONAL", "rings_direction": "SPHERICAL", "wave_profile": "TRI"}
    assert body(node("TexWave", props=props))[0].startswith("float v1 = L.tex_wave(0, 3, 3, 2, ")


@pytest.mark.parametrize(
    "kind, prop",
    [
        ("TexGradient", "gradient_type"),
        ("TexWave", "bands_direction"),
        ("TexWave", "rings_direction"),
        ("TexWave", "wave_profile"),
    ],
)
def test_unknown_words(kind, prop):
    with key_error("NO_SUCH_WORD"):
        body(node(kind, props={prop: "NO_SUCH_WORD"}))


@pytest.mark.parametrize("kind, prop", [("TexBrick", "offset_frequency"), ("TexMagic", "turbulence_depth")])
def test_what_is_no_whole_number(kind, prop):
    for value, error in (("a", ValueError), ([], TypeError), (float("nan"), ValueError), (float("inf"), OverflowError)):
        with pytest.raises(error):
            body(node(kind, props={prop: value}))


def test_gradient_is_saturated():
    point = node("CombineXYZ", {"X": 7.0})
    assert value_of(node("TexGradient", {"Vector": link(point)}), point)[0][0] == 1.0


@pytest.mark.parametrize("kind", ["TexGradient", "TexChecker", "TexBrick", "TexMagic", "TexWave"])
def test_unlinked_vector_is_the_generated_coordinate(kind):
    for settings in ({}, {"without": ["Vector"]}):
        result = translated(node(kind, **settings), use_params=True)
        assert {"bmin", "bmax", "lpos"} <= set(result["inputs"])
        assert f"P_{kind}__Vector" not in result["inputs"]


KINDS = ("TexChecker", "TexBrick", "TexMagic", "TexWave")


@pytest.mark.parametrize("kind, socket", [(k, s) for k in KINDS for s in TYPES["ShaderNode" + k][0] if s != "Vector"])
def test_other_sockets_are_mandatory(kind, socket):
    with unsupported(f"ShaderNode{kind}: no input {socket}"):
        body(node(kind, without=[socket]))


def test_first_uv_map_whatever_is_named():
    assert body(node("UVMap", props={"uv_map": "Detail"}), uv_maps=["UVMap", "Detail"]) == [f"float3 v1 = {UV};"]
