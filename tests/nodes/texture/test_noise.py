"""Noise and White Noise."""

import numpy as np
import pytest

from edge_cases import body, key_error, translated, unsupported, value_of
from golden.documents import bare, link, node

GENERATED = "(((float3(lpos.x, -lpos.y, lpos.z) * 0.01) - "
NUMBER, SUM = node("Value"), node("Math")


def call(**settings):
    """Returns (function name, arguments after the coordinate) of a noise texture."""
    settings = {"output": "Fac", **settings}
    output = settings.pop("output")
    line = body(node("TexNoise", **settings), output=output)[-1]
    name, arguments = line.removesuffix(");").split(" = L.")[1].split("(", 1)
    return name, arguments.split(", ")


def test_defaults():
    nothing = {"props": dict.fromkeys(("noise_dimensions", "noise_type", "normalize"))}
    assert call(**nothing)[0] == "noise_texture3_FBM" and call(**nothing)[1][-3] == "1.0"
    assert translated(node("TexNoise", **nothing))["need"] == {"noise_texture3_FBM"}


@pytest.mark.parametrize(
    "normalize, output, flags",
    [
        (False, "Color", ["0.0", "1.0"]),
        (True, "Color", ["1.0", "1.0"]),
        (False, "Fac", ["0.0", "0.0"]),
        (None, "Fac", ["1.0", "0.0"]),
        (0, "Fac", ["0.0", "0.0"]),
    ],
)
def test_flags(normalize, output, flags):
    assert call(props={"normalize": normalize}, output=output)[1][-3:-1] == flags


def test_colour_that_nothing_reads_is_declared_all_the_same():
    result = translated(node("TexNoise"), output="Fac")
    assert "float3 c5;" in result["body"]
    assert call()[1][-1] == "c5"


def test_arguments_in_their_order():
    assert call()[1] == ["v2", "v3", "v4", "2.25", "0.125", "1.75", "0.4", "1.0", "0.0", "c5"]
    assert call(without=["Offset", "Gain"])[1][4:6] == ["0.0", "1.0"]


def test_one_dimension_leaves_the_vector_alone():
    n = node("TexNoise", {"Vector": link(SUM), "W": link(NUMBER)}, props={"noise_dimensions": "1D"})
    result = translated(n, SUM, NUMBER)
    assert result["body"][1] == "float v2 = (0.625 * v1);" and result["inputs"] == {}
    assert not any("0.75" in line for line in result["body"])


@pytest.mark.parametrize(
    "word, kind, text",
    [
        ("1D", "float", "(0.3 * v1)"),
        ("2D", "float2", "((float3(0.25, 0.5, 0.75)).xy * v1)"),
        ("3D", "float3", "(float3(0.25, 0.5, 0.75) * v1)"),
        ("4D", "float4", "(float4(float3(0.25, 0.5, 0.75), 0.3) * v1)"),
    ],
)
def test_coordinate(word, kind, text):
    n = node("TexNoise", {"Vector": link(node("RGB"))}, props={"noise_dimensions": word})
    assert body(n, node("RGB"))[1] == f"{kind} v2 = {text};"


@pytest.mark.parametrize("word, text", [("1D", "(0.0 * v1)"), ("4D", "(float4(float3(0.25, 0.5, 0.75), 0.0) * v1)")])
def test_absent_w(word, text):
    n = node("TexNoise", {"Vector": link(node("RGB"))}, props={"noise_dimensions": word}, without=["W"])
    assert body(n, node("RGB"))[1].endswith(f" = {text};")


@pytest.mark.parametrize("word", ["2D", "3D"])
def test_w_is_not_read_in_two_and_three_dimensions(word):
    n = node("TexNoise", {"W": link(node("Wireframe"))}, props={"noise_dimensions": word})
    assert translated(n, node("Wireframe"))["warnings"] == []


@pytest.mark.parametrize("word, read", [("1D", True), ("2D", True), ("3D", True), ("4D", True)])
def test_white_noise_always_evaluates_w(word, read):
    n = node(
        "TexWhiteNoise", {"W": link(node("Wireframe")), "Vector": link(node("RGB"))}, props={"noise_dimensions": word}
    )
    result = translated(n, node("Wireframe"), node("RGB"))
    assert bool(result["warnings"]) == read
    texts = {
        "1D": "float v1 = 0.0;",
        "2D": "float2 v1 = (float3(0.25, 0.5, 0.75)).xy;",
        "3D": "float3 v1 = float3(0.25, 0.5, 0.75);",
        "4D": "float4 v1 = float4(float3(0.25, 0.5, 0.75), 0.0);",
    }
    assert result["body"][0] == texts[word]


def test_w_of_a_white_noise_adds_statements_that_nothing_uses():
    n = node("TexWhiteNoise", {"W": link(SUM), "Vector": link(node("RGB"))})
    lines = body(n, SUM, node("RGB"))
    assert lines[3:] == [
        "float v4 = v1 + v2;",
        "float3 v5 = float3(0.25, 0.5, 0.75);",
        "float v6 = L.hash_float3_to_float(v5);",
    ]


@pytest.mark.parametrize("word, suffix", [("1D", "float"), ("2D", "float2"), ("3D", "float3"), ("4D", "float4")])
def test_white_noise_asks_for_both_hashes(word, suffix):
    n = node("TexWhiteNoise", props={"noise_dimensions": word})
    for output in ("Value", "Color"):
        assert translated(n, output=output)["need"] == {f"hash_{suffix}_to_float", f"hash_{suffix}_to_float3"}


def test_detail_is_limited_at_run_time():
    lines = body(node("TexNoise", {"Detail": 99.0, "Roughness": -1.0}))
    assert lines[2:4] == ["float v3 = clamp(99.0, 0.0, 15.0);", "float v4 = max(-1.0, 0.0);"]
    point = node("CombineXYZ", {"X": 0.3, "Y": 0.4, "Z": 0.5})
    most, more = (value_of(node("TexNoise", {"Detail": d, "Vector": link(point)}), point) for d in (15.0, 99.0))
    np.testing.assert_array_equal(most, more)


@pytest.mark.parametrize("kind", ["TexNoise", "TexWhiteNoise"])
def test_unknown_dimension(kind):
    with key_error("5D"):
        body(node(kind, props={"noise_dimensions": "5D"}))


def test_type_goes_into_the_name_as_it_stands():
    assert call(props={"noise_type": "Odd_Word"})[0] == "noise_texture3_Odd_Word"


@pytest.mark.parametrize("socket", ["Scale", "Detail", "Roughness", "Lacunarity", "Distortion"])
def test_mandatory_sockets(socket):
    with unsupported(f"ShaderNodeTexNoise: no input {socket}"):
        body(node("TexNoise", without=[socket]))


def test_white_noise_needs_no_socket():
    assert body(bare("TexWhiteNoise"))[0].startswith(f"float3 v1 = {GENERATED}")
    assert body(bare("TexWhiteNoise", props={"noise_dimensions": "1D"}))[0] == "float v1 = 0.0;"
