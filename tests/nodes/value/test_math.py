"""The Math node."""

import numpy as np
import pytest

from edge_cases import body, translated, unsupported, value_of
from golden.documents import bare, node

OPERANDS = ["float v1 = 0.75;", "float v2 = -1.5;", "float v3 = 0.125;"]


def result_line(**props):
    lines = body(node("Math", props=props))
    assert lines[:-1] == OPERANDS
    return lines[-1]


def test_absent_operands_are_zero():
    assert body(bare("Math", {"Value": 0.75})) == [
        "float v1 = 0.75;",
        "float v2 = 0.0;",
        "float v3 = 0.0;",
        "float v4 = v1 + v2;",
    ]


def test_add_is_the_default():
    assert result_line(operation=None) == result_line(operation="ADD") == "float v4 = v1 + v2;"


def test_clamped_comparison():
    assert result_line(operation="LESS_THAN", use_clamp=True) == "float v4 = saturate(((v1 < v2) ? 1.0 : 0.0));"


@pytest.mark.parametrize(
    "operation, text",
    [
        ("COMPARE", "(((v1 == v2) || (abs(v1 - v2) <= max(v3, 1.192092896e-07))) ? 1.0 : 0.0)"),
        ("WRAP", "L.wrapf(v1, v2, v3)"),
        ("MULTIPLY_ADD", "(v1 * v2 + v3)"),
        ("SMOOTH_MIN", "L.smoothminf(v1, v2, v3)"),
        ("SMOOTH_MAX", "(-L.smoothminf(-v1, -v2, v3))"),
    ],
)
def test_operations_with_a_third_operand(operation, text):
    assert result_line(operation=operation) == f"float v4 = {text};"
    lines = body(node("Math", without=["Value_002"], props={"operation": operation}))
    assert lines[2:] == ["float v3 = 0.0;", f"float v4 = {text};"]


@pytest.mark.parametrize("operation", ["SMOOTH_MIN", "SMOOTH_MAX"])
def test_smooth_operations_need_one_name(operation):
    assert translated(node("Math", props={"operation": operation}))["need"] == {"smoothminf"}


# a, b and c stand for operands only as separate words.
@pytest.mark.parametrize(
    "operation, text",
    [
        ("ABSOLUTE", "abs(v1)"),
        ("ARCCOSINE", "acos(clamp(v1, -1.0, 1.0))"),
        ("CEIL", "ceil(v1)"),
        ("TRUNC", "((v1 >= 0.0) ? floor(v1) : ceil(v1))"),
        ("SNAP", "(floor(L.safe_divide(v1, v2)) * v2)"),
        ("RADIANS", "v1 * (3.14159265358979323846 / 180.0)"),
        ("DEGREES", "v1 * (180.0 / 3.14159265358979323846)"),
        ("ARCTAN2", "L.compatible_atan2(v1, v2)"),
        ("FRACT", "(v1 - floor(v1))"),
    ],
)
def test_names_in_the_templates_stay(operation, text):
    assert result_line(operation=operation) == f"float v4 = {text};"


@pytest.mark.parametrize("clamp, text", [(False, "0.0"), (True, "saturate(0.0)")])
def test_unknown_operation(clamp, text):
    result = translated(node("Math", props={"operation": "NO_SUCH_WORD", "use_clamp": clamp}))
    assert result["body"] == [*OPERANDS, f"float v4 = {text};"]
    assert result["warnings"] == [] and result["need"] == set()


def test_value_is_mandatory():
    with unsupported("ShaderNodeMath: no input Value"):
        body(node("Math", without=["Value"]))


@pytest.mark.parametrize(
    "operation, a, b, c, wanted",
    [
        ("DIVIDE", 1.0, 0.0, 0.0, 0.0),
        ("ROUND", -1.5, 0.0, 0.0, -1.0),
        ("ROUND", 1.5, 0.0, 0.0, 2.0),
        ("TRUNC", -1.5, 0.0, 0.0, -1.0),
        ("COMPARE", 1.0, 1.0, -1.0, 1.0),
        ("COMPARE", 1.0, 1.5, 0.5, 1.0),
        ("COMPARE", 1.0, 1.5, 0.25, 0.0),
        ("SNAP", 1.0, 0.0, 0.0, 0.0),
        ("SMOOTH_MAX", 1.0, 2.0, 0.0, 2.0),
        ("SMOOTH_MIN", 1.0, 2.0, 0.0, 1.0),
        ("ARCSINE", 2.0, 0.0, 0.0, np.pi / 2),
        ("ARCCOSINE", -3.0, 0.0, 0.0, np.pi),
        ("FRACT", -0.25, 0.0, 0.0, 0.75),
        ("SQRT", -1.0, 0.0, 0.0, 0.0),
        ("SIGN", -0.0, 0.0, 0.0, 0.0),
    ],
)
def test_value_at_run_time(operation, a, b, c, wanted):
    n = node("Math", {"Value": a, "Value_001": b, "Value_002": c}, props={"operation": operation})
    np.testing.assert_allclose(value_of(n)[0], wanted, atol=4e-4)
