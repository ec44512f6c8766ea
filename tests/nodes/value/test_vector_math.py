"""The Vector Math node."""

import numpy as np
import pytest

from edge_cases import ZERO, body, translated, unsupported, value_of
from golden.documents import bare, link, node

OPERANDS = [
    "float3 v1 = float3(0.5, -1.5, 2.5);",
    "float3 v2 = float3(1.25, 0.75, -0.5);",
    "float3 v3 = float3(3.0, 2.0, 1.0);",
    "float v4 = 1.75;",
]


@pytest.mark.parametrize("operation", ["SCALE", "ADD"])
def test_absent_operands(operation):
    n = bare("VectorMath", {"Vector": (0.5, -1.5, 2.5)}, props={"operation": operation})
    assert body(n)[1:4] == [f"float3 v2 = {ZERO};", f"float3 v3 = {ZERO};", "float v4 = 1.0;"]
    np.testing.assert_array_equal(value_of(n)[0], (0.5, -1.5, 2.5))


def test_length_is_a_value():
    n = node("VectorMath", props={"operation": "LENGTH"})
    assert body(n, output="Value") == [*OPERANDS, "float v5 = length(v1);"]
    result = translated(n, output="Vector")
    assert (result["body"], result["ret"]) == (OPERANDS, ZERO)


def test_normalize_of_the_zero_vector():
    n = node("VectorMath", {"Vector": (0.0, 0.0, 0.0)}, props={"operation": "NORMALIZE"})
    assert body(n)[-1] == "float3 v5 = L.safe_normalize(v1);"
    np.testing.assert_array_equal(value_of(n)[0], (0.0, 0.0, 0.0))


@pytest.mark.parametrize(
    "operation, output, text",
    [("DOT_PRODUCT", "Vector", ZERO), ("DISTANCE", "Vector", ZERO), ("ADD", "Value", "0.0"), ("SINE", "Value", "0.0")],
)
def test_the_other_output_is_neutral(operation, output, text):
    n = node("VectorMath", props={"operation": operation})
    reader = node("VectorMath" if output == "Vector" else "Math", id="Reader")
    socket = next(iter(reader["in"]))
    reader["in"][socket] = link(n, output)
    result = translated(reader, n)
    assert result["body"][4].endswith(f" v5 = {text};") and result["warnings"] == []


@pytest.mark.parametrize("word", ["FRACT", "FLOORED_MODULO", "PINGPONG", "TRUNC", "SQRT", "NO_SUCH_WORD"])
def test_words_without_a_row(word):
    result = translated(node("VectorMath", props={"operation": word}))
    assert result["body"] == [*OPERANDS, f"float3 v5 = {ZERO};"]
    assert result["need"] == set() and result["warnings"] == []
    assert translated(node("VectorMath", props={"operation": word}), output="Value")["ret"] == "((float3)(0.0))"


def test_add_is_the_default():
    assert body(node("VectorMath", props={"operation": None}))[-1] == "float3 v5 = v1 + v2;"


@pytest.mark.parametrize(
    "operation, text, need",
    [
        ("REFLECT", "L.reflect3(v1, L.safe_normalize(v2))", {"reflect3", "safe_normalize"}),
        ("REFRACT", "L.refract3(v1, L.safe_normalize(v2), v4)", {"refract3", "safe_normalize"}),
        ("FACEFORWARD", "L.faceforward3(v1, v2, v3)", {"faceforward3"}),
        ("WRAP", "L.wrap3(v1, v2, v3)", {"wrap3"}),
        ("SNAP", "floor(L.safe_divide3(v1, v2)) * v2", {"safe_divide3"}),
        ("MODULO", "L.safe_fmod3(v1, v2)", {"safe_fmod3"}),
        ("FRACTION", "v1 - floor(v1)", set()),
        ("MULTIPLY_ADD", "v1 * v2 + v3", set()),
        ("ABSOLUTE", "abs(v1)", set()),
    ],
)
def test_templates(operation, text, need):
    result = translated(node("VectorMath", props={"operation": operation}))
    assert result["body"][-1] == f"float3 v5 = {text};" and result["need"] == need


def test_there_is_no_clamp():
    assert body(node("VectorMath", props={"use_clamp": True}))[-1] == "float3 v5 = v1 + v2;"


def test_vector_is_mandatory():
    with unsupported("ShaderNodeVectorMath: no input Vector"):
        body(node("VectorMath", without=["Vector"]))
