"""The two Mix nodes."""

import pytest

from edge_cases import body, translated, unsupported
from golden.documents import link, node

COLOURS = "float3(0.8, 0.5, 0.25), float3(0.1, 0.9, 0.4)"
LEGACY_COLOURS = "float3(0.8, 0.1, 0.2), float3(0.3, 0.9, 0.4)"


def colour_mix(**props):
    return translated(node("Mix", props={"data_type": "RGBA", **props}), output="Result_Color")


def legacy_mix(**props):
    return translated(node("MixRGB", props=props))


@pytest.mark.parametrize(
    "props",
    [{"data_type": None}, {"data_type": "FLOAT"}, {"factor_mode": "NON_UNIFORM"}, {"factor_mode": "NO_SUCH_WORD"}],
)
def test_float_is_the_default_and_has_one_factor(props):
    assert body(node("Mix", props=props), output="Result_Float") == [
        "float v1 = saturate(0.3);",
        "float v2 = (1.25) * (1.0 - v1) + (2.5) * v1;",
    ]


@pytest.mark.parametrize("clamp, text", [(None, "0.3"), (False, "0.3"), (True, "saturate(0.3)")])
def test_factor_is_clamped_if_asked_for(clamp, text):
    assert colour_mix(clamp_factor=clamp)["body"][0] == f"float v1 = {text};"


def test_legacy_factor_is_always_clamped():
    assert legacy_mix()["body"][0] == "float v1 = saturate(0.3);"


@pytest.mark.parametrize(
    "word, name",
    [("MIX", "mix_mix"), ("LINEAR_LIGHT", "mix_linear_light"), (None, "mix_mix"), ("Odd_Word", "mix_odd_word")],
)
def test_blend_word_is_lower_cased(word, name):
    new, old = colour_mix(blend_type=word), legacy_mix(blend_type=word)
    assert new["body"][1] == f"float3 v2 = L.{name}(v1, {COLOURS});" and new["need"] == {name}
    assert old["body"][1] == f"float3 v2 = L.{name}(v1, {LEGACY_COLOURS});" and old["need"] == {name}


@pytest.mark.parametrize("clamp, factor", [(False, "0.3"), (True, "saturate(0.3)")])
def test_clamped_result(clamp, factor):
    assert colour_mix(clamp_result=True, clamp_factor=clamp)["body"] == [
        f"float v1 = {factor};",
        f"float3 v2 = saturate(L.mix_mix(v1, {COLOURS}));",
    ]
    assert legacy_mix(use_clamp=True)["body"][1] == f"float3 v2 = saturate(L.mix_mix(v1, {LEGACY_COLOURS}));"


def test_result_clamp_is_of_colours_only():
    for kind, output in (("FLOAT", "Result_Float"), ("VECTOR", "Result_Vector")):
        lines = body(node("Mix", props={"data_type": kind, "clamp_result": True, "clamp_factor": False}), output=output)
        assert not any("saturate" in line for line in lines)


def test_uniform_vector_declares_the_factor_first():
    colour, number = node("RGB"), node("Math")
    n = node("Mix", {"Factor_Float": link(number), "A_Vector": link(colour)}, props={"data_type": "VECTOR"})
    lines = body(n, colour, number, output="Result_Vector")
    assert lines[4:] == [
        "float v5 = saturate(v4);",
        "float3 v6 = (float3(0.25, 0.5, 0.75)) * (float3(1.0, 1.0, 1.0) - v5) + (float3(3.0, 2.0, 1.0)) * v5;",
    ]


def test_non_uniform_vector_declares_the_factor_last():
    number = node("Math")
    n = node("Mix", {"A_Vector": link(number)}, props={"data_type": "VECTOR", "factor_mode": "NON_UNIFORM"})
    assert body(n, number, output="Result_Vector")[4:] == [
        "float3 v5 = saturate(float3(0.2, 0.4, 0.6));",
        "float3 v6 = (((float3)(v4))) * (float3(1.0, 1.0, 1.0) - v5) + (float3(3.0, 2.0, 1.0)) * v5;",
    ]


@pytest.mark.parametrize("word", ["ROTATION", "INT", ""])
def test_other_data_types(word):
    with unsupported(f"Mix node in {word} mode"):
        body(node("Mix", props={"data_type": word}), output="Result_Float")


def test_factor_is_read_before_the_data_type_is_refused():
    with unsupported("ShaderNodeMix: no input Factor_Float"):
        body(node("Mix", without=["Factor_Float"], props={"data_type": "ROTATION"}), output="Result_Float")


@pytest.mark.parametrize(
    "props, sockets, output",
    [
        ({}, ("Factor_Float", "A_Float", "B_Float"), "Result_Float"),
        ({"data_type": "VECTOR"}, ("Factor_Float", "A_Vector", "B_Vector"), "Result_Vector"),
        (
            {"data_type": "VECTOR", "factor_mode": "NON_UNIFORM"},
            ("Factor_Vector", "A_Vector", "B_Vector"),
            "Result_Vector",
        ),
        ({"data_type": "RGBA"}, ("Factor_Float", "A_Color", "B_Color"), "Result_Color"),
    ],
)
def test_sockets_that_are_read(props, sockets, output):
    others = set(node("Mix")["in"]) - set(sockets)
    assert body(node("Mix", props=props, without=others), output=output) == body(
        node("Mix", props=props), output=output
    )
    for socket in sockets:
        with unsupported(f"ShaderNodeMix: no input {socket}"):
            body(node("Mix", props=props, without=[socket]), output=output)


@pytest.mark.parametrize("socket", ["Fac", "Color1", "Color2"])
def test_legacy_sockets(socket):
    with unsupported(f"ShaderNodeMixRGB: no input {socket}"):
        body(node("MixRGB", without=[socket]))
