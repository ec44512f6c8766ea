"""Gabor and Radial Tiling."""

import numpy as np
import pytest

from edge_cases import body, translated, unsupported, value_of
from golden.documents import bare, link, node


@pytest.mark.parametrize("word, dimensions", [("3D", 3), ("2D", 2), (None, 2), ("NO_SUCH_WORD", 2)])
def test_dimensions_of_gabor(word, dimensions):
    result = translated(node("TexGabor", props={"gabor_type": word}))
    assert result["body"][0].endswith(f", 5.0, 2.0, 0.875, 0.7, float3(1.0, 2.0, 3.0), {dimensions});")
    assert result["need"] == {"gabor"}


def test_absent_orientations():
    lines = body(node("TexGabor", without=["Orientation 2D", "Orientation 3D"]))
    assert lines[0].endswith(", 0.785398163, float3(1.41421356, 1.41421356, 0.0), 2);")


def test_both_orientations_are_evaluated():
    n = node("TexGabor", {"Orientation 3D": link(node("Wireframe")), "Orientation 2D": link(node("Squeeze"))})
    for word in ("2D", "3D"):
        n["props"]["gabor_type"] = word
        assert len(translated(n, node("Wireframe"), node("Squeeze"))["warnings"]) == 2


@pytest.mark.parametrize("output, component", [("Value", "x"), ("Phase", "y"), ("Intensity", "z")])
def test_outputs_of_gabor_are_pasted(output, component):
    result = translated(node("TexGabor"), output=output)
    assert result["ret"] == f"((float3)(v1.{component}))" and len(result["body"]) == 1


@pytest.mark.parametrize("socket", ["Scale", "Frequency", "Anisotropy"])
def test_mandatory_sockets_of_gabor(socket):
    with unsupported(f"ShaderNodeTexGabor: no input {socket}"):
        body(node("TexGabor", without=[socket]))


def test_sides_are_limited_at_run_time():
    lines = body(node("RadialTiling", {"Sides": 1.0, "Roundness": 9.0}))
    assert lines[:3] == [
        "float3 v1 = float3(0.5, -1.5, 2.5);",
        "float v2 = max(1.0, 2.0);",
        "float v3 = clamp(9.0, 0.0, 1.0);",
    ]
    for output in ("Segment Coordinates", "Segment Width", "Segment Rotation"):
        one, two = (value_of(node("RadialTiling", {"Sides": s}), output=output) for s in (1.0, 2.0))
        np.testing.assert_array_equal(one, two)


def test_segment_id_is_computed_for_a_reader_only():
    alone = translated(node("RadialTiling"))
    assert not any("calculate_out_segment_id" in line for line in alone["body"])
    reader = node("Math", {"Value": link(node("RadialTiling"), "Segment ID")})
    read = body(node("RadialTiling"), reader)
    assert read == [*alone["body"], "float v6 = L.calculate_out_segment_id(v2, v1.xy);"]


@pytest.mark.parametrize("normalize, word", [(True, "true"), (1, "true"), (False, "false"), (None, "false")])
def test_normalize(normalize, word):
    lines = body(node("RadialTiling", props={"normalize": normalize}))
    assert lines[3:] == [
        f"float4 v4 = L.calculate_out_variables(true, true, {word}, v2, v3, v1.xy);",
        "float3 v5 = float3(v4.y, v4.x, 0.0);",
    ]


def test_unlinked_vector_of_the_tiling_is_its_value():
    assert translated(node("RadialTiling"))["inputs"] == {}


@pytest.mark.parametrize("socket", ["Vector", "Sides", "Roundness"])
def test_mandatory_sockets_of_the_tiling(socket):
    with unsupported(f"ShaderNodeRadialTiling: no input {socket}"):
        body(node("RadialTiling", without=[socket]))


def test_vector_of_gabor_may_be_absent():
    assert "lpos" in translated(bare("TexGabor", {"Scale": 1.0, "Frequency": 2.0, "Anisotropy": 1.0}))["inputs"]
