"""RGB, Vector and Float Curves."""

import numpy as np
import pytest

from edge_cases import body, key_error, translated, unsupported, value_of
from golden.documents import node

SMALL = [[0.0, 0.25, 1.0], [0.5, 0.5, 0.0], [1.0, 0.75, 0.25]]
KINDS = ("RGBCurve", "VectorCurve", "FloatCurve")


def curve(kind="FloatCurve", tables=SMALL, low=0.0, high=1.0, inputs=None, **further):
    return node(kind, inputs, curve={"tables": tables, "min": low, "max": high, **further})


def lookup(table, f, n1, n2, extrapolate=True):
    """The expected expression of a table lookup."""
    ex = "&& true" if extrapolate else "&& false"
    at = f"clamp(int(saturate({f}) * {n1}), 0, {n1})"
    after = f"clamp(int(saturate({f}) * {n1}) + 1, 0, {n1})"
    return (
        f"((({f}) < 0.0 || ({f}) > 1.0) {ex} ? ((({f}) < 0.0) ? {table}[0] + "
        f"({table}[0] - {table}[1]) * (-({f})) "
        f"* {n1} : {table}[{n1}] + ({table}[{n1}] - {table}[{n2}]) * (({f}) - 1.0) * {n1}) : "
        f"lerp({table}[{at}], "
        f"{table}[{after}], saturate({f}) * {n1} - float({at})))"
    )


def test_float_curve():
    assert body(curve()) == [
        "const float ct1[3] = {0.0, 0.25, 1.0};",
        "float v2 = 0.9;",
        "float v3 = 0.35;",
        "float v4 = (v3 - 0.0) / 1.0;",
        f"float v5 = {lookup('ct1', 'v4', 2, 1)};",
        "float v6 = (1.0 - v2) * v3 + v2 * v5;",
    ]


@pytest.mark.parametrize(
    "kind, source", [("RGBCurve", "float3(0.8, 0.5, 0.25)"), ("VectorCurve", "float3(0.5, -1.5, 2.5)")]
)
def test_three_curves(kind, source):
    assert body(curve(kind)) == [
        "const float ct1[3] = {0.0, 0.25, 1.0};",
        "const float ct2[3] = {0.5, 0.5, 0.0};",
        "const float ct3[3] = {1.0, 0.75, 0.25};",
        "float v4 = 0.9;",
        f"float3 v5 = {source};",
        "float3 v6 = (v5 - (float3)0.0) / 1.0;",
        *(f"float v{7 + i} = {lookup(f'ct{1 + i}', f'v6.{axis}', 2, 1)};" for i, axis in enumerate("xyz")),
        "float3 v10 = (1.0 - v4) * v5 + v4 * float3(v7, v8, v9);",
    ]


@pytest.mark.parametrize(
    "low, high, text",
    [
        (0.5, 0.5, "0.5) / 0.0"),
        (1.0, -1.0, "1.0) / -2.0"),
        (0, 1, "0.0) / 1.0"),
        (-2, 3, "-2.0) / 5.0"),
        (0.1, 0.3, "0.1) / 0.19999999999999998"),
        ("0.5", "1.5", "0.5) / 1.0"),
        (True, 3, "1.0) / 2.0"),
    ],
)
@pytest.mark.parametrize("kind", KINDS)
def test_limits(kind, low, high, text):
    result = translated(curve(kind, low=low, high=high))
    assert sum(line.endswith(f"{text};") for line in result["body"]) == 1 and result["warnings"] == []


@pytest.mark.parametrize(
    "further, extrapolate",
    [({}, True), ({"extend": "EXTRAPOLATED"}, True), ({"extend": "HORIZONTAL"}, False), ({"extend": None}, False)],
)
@pytest.mark.parametrize("kind", KINDS)
def test_extend(kind, further, extrapolate):
    text = "".join(body(curve(kind, **further)))
    assert ("&& true" in text, "&& false" in text) == (extrapolate, not extrapolate)


@pytest.mark.parametrize("size, n1, n2", [(1, 0, -1), (2, 1, 0), (257, 256, 255)])
def test_sizes(size, n1, n2):
    line = body(curve(tables=[[0.5] * size]))
    assert line[0] == f"const float ct1[{size}] = {{{', '.join(['0.5'] * size)}}};"
    assert line[4] == f"float v5 = {lookup('ct1', 'v4', n1, n2)};"


def test_more_tables_than_are_used():
    lines = body(curve("RGBCurve", tables=[*SMALL, [7.0, 8.0, 9.0]]))
    assert sum("const float" in line for line in lines) == 4
    assert sum("ct4" in line for line in lines) == 1
    lines = body(curve(tables=SMALL[:2]))
    assert sum("const float" in line for line in lines) == 1


def test_every_array_has_its_own_length_and_the_lookup_that_of_the_first():
    lines = body(curve("RGBCurve", tables=[[0.0, 1.0], [0.0, 0.5, 1.0], [0.5]]))
    assert [line.split("]")[0] for line in lines[:3]] == [f"const float ct{i + 1}[{n}" for i, n in enumerate((2, 3, 1))]
    assert lines[7] == f"float v8 = {lookup('ct2', 'v6.y', 1, 0)};"


@pytest.mark.parametrize(
    "tables, error",
    [([], IndexError), ([[0.0]], IndexError), ([[0.0], [1.0]], IndexError), (None, TypeError), ([None], TypeError)],
)
def test_too_few_tables(tables, error):
    for kind in ("RGBCurve", "VectorCurve"):
        with pytest.raises(error):
            body(curve(kind, tables=tables))


def test_no_tables_of_a_float_curve():
    with pytest.raises(IndexError):
        body(curve(tables=[]))


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("key", ["tables", "min", "max"])
def test_mandatory_keys(kind, key):
    n = curve(kind)
    del n["curve"][key]
    with key_error(key):
        body(n)
    del n["curve"]
    with key_error("curve"):
        body(n)


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.parametrize("limit, error", [(None, TypeError), ("a", ValueError), ([], TypeError)])
def test_limits_that_are_no_numbers(kind, limit, error):
    for key in ("low", "high"):
        with pytest.raises(error):
            body(curve(kind, **{key: limit}))


@pytest.mark.parametrize("kind", KINDS)
def test_mandatory_sockets(kind):
    for socket in node(kind)["in"]:
        with unsupported(f"ShaderNode{kind}: no input {socket}"):
            body(node(kind, without=[socket]))


@pytest.mark.parametrize(
    "value, extend, wanted",
    [
        (0.25, "EXTRAPOLATED", 0.125),
        (0.75, "EXTRAPOLATED", 0.625),
        (1.0, "HORIZONTAL", 1.0),
        (0.0, "HORIZONTAL", 0.0),
        (-1.0, "EXTRAPOLATED", -0.5),
        (-1.0, "HORIZONTAL", 0.0),
        (2.0, "EXTRAPOLATED", 2.5),
        (2.0, "HORIZONTAL", 1.0),
    ],
)
def test_value_at_run_time(value, extend, wanted):
    n = curve(inputs={"Factor": 1.0, "Value": value}, extend=extend)
    np.testing.assert_allclose(value_of(n)[0], [wanted] * 3, rtol=1e-6)


def test_factor_blends_with_the_input():
    n = curve(inputs={"Factor": 0.5, "Value": 0.5})
    np.testing.assert_allclose(value_of(n)[0], [0.375] * 3, rtol=1e-6)
