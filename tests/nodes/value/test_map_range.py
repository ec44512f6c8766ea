"""Map Range and Clamp."""

import numpy as np
import pytest

from edge_cases import ZERO, body, translated, unsupported, value_of
from golden.documents import link, node


def ranged(value=0.75, low=0.25, high=1.5, to=(-1.0, 2.0), steps=4.0, output="Result", **props):
    n = node(
        "MapRange",
        {"Value": value, "From Min": low, "From Max": high, "To Min": to[0], "To Max": to[1], "Steps": steps},
        props=props,
    )
    return value_of(n, output=output)[0][0]


@pytest.mark.parametrize(
    "clamp, to, wanted",
    [
        (False, (-1.0, 2.0), 0.0),
        (True, (-1.0, 2.0), 0.0),
        (True, (1.0, 2.0), 1.0),
        (True, (-2.0, -1.0), -1.0),
        (True, (2.0, 1.0), 1.0),
    ],
)
@pytest.mark.parametrize("word", ["LINEAR", "STEPPED"])
def test_empty_source_range(clamp, to, wanted, word):
    assert ranged(low=0.5, high=0.5, to=to, clamp=clamp, interpolation_type=word) == wanted


@pytest.mark.parametrize("steps", [0.0, -1.0])
def test_no_steps(steps):
    assert ranged(steps=steps, interpolation_type="STEPPED") == -1.0
    vector = node(
        "MapRange",
        {"Steps_FLOAT3": (steps, 4.0, steps)},
        props={"data_type": "FLOAT_VECTOR", "interpolation_type": "STEPPED", "clamp": False},
    )
    got = value_of(vector, output="Vector")[0]
    np.testing.assert_allclose(got[[0, 2]], (-1.1, -1.3), rtol=1e-6)
    assert abs(got[1] + 1.2) > 0.1


def test_float_is_the_default():
    assert body(node("MapRange", props={"data_type": None})) == body(node("MapRange"))
    assert body(node("MapRange", props={"data_type": "NO_SUCH_WORD"})) == body(node("MapRange"))


@pytest.mark.parametrize("word", ["SMOOTHSTEP", "SMOOTHERSTEP"])
def test_reversed_range_mirrors_the_curve(word):
    straight = ranged(0.6, 0.0, 1.0, (0.0, 1.0), interpolation_type=word)
    np.testing.assert_allclose(ranged(0.6, 1.0, 0.0, (0.0, 1.0), interpolation_type=word), 1.0 - straight, rtol=1e-6)
    np.testing.assert_allclose(ranged(0.4, 0.0, 1.0, (0.0, 1.0), interpolation_type=word), 1.0 - straight, rtol=1e-6)


@pytest.mark.parametrize("kind, output", [("FLOAT", "Result"), ("FLOAT_VECTOR", "Vector")])
@pytest.mark.parametrize("word", ["SMOOTHSTEP", "SMOOTHERSTEP"])
def test_smooth_modes_are_not_clamped(kind, output, word):
    props = {"data_type": kind, "interpolation_type": word}
    lines = body(node("MapRange", props={**props, "clamp": True}), output=output)
    assert lines == body(node("MapRange", props={**props, "clamp": False}), output=output)
    assert not any("clamp(" in line for line in lines)


@pytest.mark.parametrize("kind, output, text", [("FLOAT", "Vector", ZERO), ("FLOAT_VECTOR", "Result", "0.0")])
def test_the_other_output_is_neutral(kind, output, text):
    n = node("MapRange", props={"data_type": kind})
    reader = (
        node("Math", {"Value": link(n, output)})
        if output == "Result"
        else node("VectorMath", {"Vector": link(n, output)})
    )
    result = translated(reader, n)
    assert any(line.endswith(f" = {text};") for line in result["body"]) and result["warnings"] == []


@pytest.mark.parametrize("clamp_type", [None, "MINMAX", "NO_SUCH_WORD"])
def test_range_has_to_be_asked_for(clamp_type):
    assert body(node("Clamp", props={"clamp_type": clamp_type})) == [
        "float v1 = 0.25;",
        "float v2 = 0.5;",
        "float v3 = clamp(1.75, v1, v2);",
    ]


def test_range():
    assert body(node("Clamp", props={"clamp_type": "RANGE"}))[2] == (
        "float v3 = ((v1 > v2) ? clamp(1.75, v2, v1) : clamp(1.75, v1, v2));"
    )
    n = node("Clamp", {"Min": 1.0, "Max": 0.5}, props={"clamp_type": "RANGE"})
    assert value_of(n)[0][0] == 1.0


def test_unknown_words():
    smoother = body(node("MapRange", props={"interpolation_type": "SMOOTHERSTEP"}))
    assert body(node("MapRange", props={"interpolation_type": "NO_SUCH_WORD"})) == smoother
    vector = {"data_type": "FLOAT_VECTOR", "clamp": False}
    straight = body(node("MapRange", props={**vector, "interpolation_type": "LINEAR"}), output="Vector")
    for clamp in (False, True):
        props = {**vector, "clamp": clamp, "interpolation_type": "NO_SUCH_WORD"}
        assert body(node("MapRange", props=props), output="Vector") == straight
    assert body(node("MapRange", props={"interpolation_type": None})) == body(node("MapRange"))


def test_statements_of_the_stepped_float():
    lines = body(node("MapRange", props={"interpolation_type": "STEPPED"}))
    assert lines[5:] == [
        "float v6 = 0.0;",
        "float v7 = 4.0;",
        "v6 = (v1 - v2) / (v3 - v2); v6 = (v7 > 0.0) ? floor(v6 * (v7 + 1.0)) / v7 : 0.0;",
        "float v8 = (v3 != v2) ? v4 + v6 * (v5 - v4) : 0.0;",
        "v8 = (v4 > v5) ? clamp(v8, v5, v4) : clamp(v8, v4, v5);",
    ]


def test_steps_are_read_where_they_count():
    node_without = node("MapRange", without=["Steps"])
    body(node_without)
    node_without["props"]["interpolation_type"] = "STEPPED"
    with unsupported("ShaderNodeMapRange: no input Steps"):
        body(node_without)


@pytest.mark.parametrize(
    "kind, sockets",
    [
        ("FLOAT", ("Value", "From Min", "From Max", "To Min", "To Max")),
        ("FLOAT_VECTOR", ("Vector", "From_Min_FLOAT3", "From_Max_FLOAT3", "To_Min_FLOAT3", "To_Max_FLOAT3")),
    ],
)
def test_mandatory_sockets(kind, sockets):
    for socket in sockets:
        with unsupported(f"ShaderNodeMapRange: no input {socket}"):
            body(node("MapRange", without=[socket], props={"data_type": kind}))


def test_vector_range_is_divided_safely():
    n = node("MapRange", {"From_Max_FLOAT3": (0.1, 0.2, 0.3)}, props={"data_type": "FLOAT_VECTOR", "clamp": False})
    np.testing.assert_allclose(value_of(n, output="Vector")[0], (-1.1, -1.2, -1.3), rtol=1e-6)
