"""Constants, channels and colour adjustments."""

import numpy as np
import pytest

import quillgen
from edge_cases import body, translated, unsupported, value_of
from golden.documents import link, material, node
from golden.node_types import TYPES


def test_constants_without_their_property():
    value, colour = node("Value", props={"value": None}), node("RGB", props={"color": None})
    assert translated(value)["ret"] == "((float3)(0.0))"
    assert translated(colour)["ret"] == "float3(0.5, 0.5, 0.5)"
    for n, name, recorded in (
        (value, "P_Value__value", ["scalar", 0.0]),
        (colour, "P_RGB__color", ["vector", [0.5, 0.5, 0.5, 1.0]]),
    ):
        assert quillgen.compile(material(n), "emission")["params"] == {name: recorded}


def test_constants_are_parameters_of_their_properties():
    assert translated(node("Value"), use_params=True)["ret"] == "((float3)(P_Value__value))"
    assert translated(node("RGB"), use_params=True)["ret"] == "P_RGB__color.xyz"


@pytest.mark.parametrize(
    "kind, outputs, source",
    [("SeparateXYZ", "X Y Z", "float3(0.5, -1.5, 2.5)"), ("SeparateColor", "Red Green Blue", "float3(0.8, 0.5, 0.25)")],
)
def test_separating_declares_one_variable(kind, outputs, source):
    for output, component in zip(outputs.split(), "xyz"):
        result = translated(node(kind), output=output)
        assert result["body"] == [f"float3 v1 = {source};", f"float v2 = v1.{component};"][:1]
        assert result["ret"] == f"((float3)(v1.{component}))"


def test_outputs_of_separating_are_pasted():
    parts = node("SeparateXYZ")
    assert body(node("Math", {"Value": link(parts, "Y")}), parts)[:2] == [
        "float3 v1 = float3(0.5, -1.5, 2.5);",
        "float v2 = v1.y;",
    ]
    assert len(body(node("Clamp", {"Value": link(parts, "Y")}), parts)) == 4


@pytest.mark.parametrize(
    "kind, mode, text, need",
    [
        ("CombineXYZ", None, "float3(0.25, -0.5, 1.5)", set()),
        ("CombineColor", "RGB", "float3(0.25, 0.5, 1.5)", set()),
        ("CombineColor", None, "float3(0.25, 0.5, 1.5)", set()),
        ("CombineColor", "NO_SUCH_WORD", "float3(0.25, 0.5, 1.5)", set()),
        ("CombineColor", "HSV", "L.hsv_to_rgb(float3(0.25, 0.5, 1.5))", {"hsv_to_rgb"}),
        ("CombineColor", "HSL", "L.hsl_to_rgb(float3(0.25, 0.5, 1.5))", {"hsl_to_rgb"}),
        ("SeparateColor", "NO_SUCH_WORD", "float3(0.8, 0.5, 0.25)", set()),
        ("SeparateColor", "HSV", "L.rgb_to_hsv(float3(0.8, 0.5, 0.25))", {"rgb_to_hsv"}),
        ("SeparateColor", "HSL", "L.rgb_to_hsl(float3(0.8, 0.5, 0.25))", {"rgb_to_hsl"}),
    ],
)
def test_modes(kind, mode, text, need):
    result = translated(node(kind, props={"mode": mode}))
    assert result["body"] == [f"float3 v1 = {text};"]
    assert result["need"] == need and result["warnings"] == []


@pytest.mark.parametrize(
    "colour, gamma, wanted",
    [
        ((0.0, 0.0, 0.0, 1.0), 0.0, (1.0, 1.0, 1.0)),
        ((-0.5, 0.25, 4.0, 1.0), 1.0, (-0.5, 0.25, 4.0)),
        ((-0.5, 0.0, 0.25, 1.0), 0.5, (-0.5, 0.0, 0.5)),
        ((0.5, 0.5, 0.5, 1.0), -1.0, (2.0, 2.0, 2.0)),
    ],
)
def test_gamma(colour, gamma, wanted):
    np.testing.assert_allclose(value_of(node("Gamma", {"Color": colour, "Gamma": gamma}))[0], wanted, rtol=1e-6)


def test_gamma_changes_its_variable_in_place():
    assert translated(node("Gamma"))["ret"] == "v1"


@pytest.mark.parametrize(
    "colour, wanted",
    [
        ((0.8, 0.5, 0.25, 1.0), (0.8, 0.5, 0.25)),
        ((0.2, 0.2, 0.2, 1.0), (0.2, 0.2, 0.2)),
        ((0.25, 1.5, 0.75, 1.0), (0.25, 1.5, 0.75)),
    ],
)
def test_neutral_hue_saturation(colour, wanted):
    n = node("HueSaturation", {"Hue": 0.5, "Saturation": 1.0, "Value": 1.0, "Fac": 1.0, "Color": colour})
    np.testing.assert_allclose(value_of(n)[0], wanted, atol=1e-6)


def test_hue_saturation_is_not_negative():
    n = node("HueSaturation", {"Value": -1.0, "Fac": 1.0})
    np.testing.assert_array_equal(value_of(n)[0], (0.0, 0.0, 0.0))


def test_bright_contrast_has_a_floor():
    n = node("BrightContrast", {"Color": (0.2, 0.5, 0.9, 1.0), "Bright": -0.5, "Contrast": 0.0})
    np.testing.assert_allclose(value_of(n)[0], (0.0, 0.0, 0.4), atol=1e-6)


def test_invert_is_not_clamped():
    n = node("Invert", {"Color": (0.25, 0.5, 2.0, 1.0), "Fac": 2.0})
    np.testing.assert_allclose(value_of(n)[0], (1.25, 0.5, -4.0), rtol=1e-6)


def test_luma():
    assert body(node("RGBToBW")) == ["float v1 = dot(float3(0.8, 0.5, 0.25), float3(0.2126, 0.7152, 0.0722));"]


KINDS = (
    "SeparateXYZ",
    "CombineXYZ",
    "SeparateColor",
    "CombineColor",
    "HueSaturation",
    "BrightContrast",
    "Gamma",
    "Invert",
    "RGBToBW",
)


@pytest.mark.parametrize("kind, socket", [(kind, s) for kind in KINDS for s in TYPES["ShaderNode" + kind][0]])
def test_every_socket_is_mandatory(kind, socket):
    with unsupported(f"ShaderNode{kind}: no input {socket}"):
        body(node(kind, without=[socket]))
