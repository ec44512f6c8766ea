"""Sockets: literals, parameters, defaults, and type conversions."""

import itertools
import math

import pytest

import quillgen
from edge_cases import body, surface, translated, unsupported
from golden.documents import bare, link, material, node

FLOATS, VECTORS = ("VALUE", "INT", "BOOLEAN", "STRING"), ("VECTOR", "ROTATION")
LUMA = "dot({e}, float3(0.2126, 0.7152, 0.0722))"
MEAN = "(({e}).x + ({e}).y + ({e}).z) * (1.0 / 3.0)"
CAST = "((float3)({e}))"

# Type -> a node that reads a socket as this type, and the line that contains the value.
READERS = {
    "VALUE": ("Math", "Value", "float v1 = {e};"),
    "VECTOR": ("VectorMath", "Vector", "float3 v1 = {e};"),
    "RGBA": ("Gamma", "Color", "float3 v1 = {e};"),
    "SHADER": ("AddShader", "Shader", None),
}


def converted(source, target):
    """The template that converts an expression {e} from one type to another."""
    if source in FLOATS:
        return "{e}" if target == "VALUE" else CAST
    return "{e}" if target != "VALUE" else LUMA if source == "RGBA" else MEAN


@pytest.mark.parametrize("source, target", itertools.product((*FLOATS, *VECTORS, "RGBA"), ("VALUE", "VECTOR", "RGBA")))
def test_linked_types_meet(source, target):
    kind, socket, line = READERS[target]
    odd = node("ObjectInfo")
    entry = {"t": target, "link": [odd["id"], "Alpha", source]}
    expected = line.format(e=converted(source, target).format(e="1.0"))
    assert body(node(kind, {socket: entry}), odd)[0] == expected


@pytest.mark.parametrize("source", (*FLOATS, *VECTORS, "RGBA"))
def test_value_into_a_shader(source):
    with unsupported(f"a {source} value plugged into a shader socket"):
        body(
            node("AddShader", {"Shader": {"t": "SHADER", "link": ["ObjectInfo", "Alpha", source]}}), node("ObjectInfo")
        )


@pytest.mark.parametrize("target", ["VALUE", "VECTOR", "RGBA"])
def test_shader_into_a_value(target):
    kind, socket, line = READERS[target]
    glow = node("Emission")
    with unsupported(f"a shader plugged into a {target} socket"):
        body(node(kind, {socket: link(glow)}), glow)
    assert body(node(kind, {socket: {"t": "SHADER"}}))[0] == line.format(e="0.0")


@pytest.mark.parametrize("params, text", [(False, "((float3)(0.5))"), (True, "((float3)(P_N1__Scale))")])
def test_value_socket_read_as_a_vector(params, text):
    n = node("Mapping", {"Scale": {"t": "VALUE", "v": 0.5}}, id="N1")
    assert translated(n, use_params=params)["ret"].endswith("v1")
    assert body(n, use_params=params)[0].endswith(f", {text});")


def test_colour_socket_read_as_a_value():
    n = node("Math", {"Value": {"t": "RGBA", "v": [1.0, 0.5, 0.25, 1.0]}}, id="N1")
    assert body(n, use_params=True)[0] == "float v1 = dot(P_N1__Value.xyz, float3(0.2126, 0.7152, 0.0722));"


def test_vector_socket_read_as_a_value():
    n = node("Math", {"Value": {"t": "VECTOR", "v": [1.0, 0.5, 0.25]}}, id="N1")
    e = "P_N1__Value.xyz"
    assert body(n, use_params=True)[0] == f"float v1 = (({e}).x + ({e}).y + ({e}).z) * (1.0 / 3.0);"


@pytest.mark.parametrize(
    "entry, text",
    [
        ({"t": "ROTATION", "v": [1.0, 2.0, 3.0]}, "0.0"),
        ({"t": "STRING", "v": "text"}, "0.0"),
        ({"t": "SHADER"}, "0.0"),
        ({"t": "VALUE"}, "0.0"),
        ({"t": "VALUE", "v": None}, "0.0"),
        ({"t": "VALUE", "link": ["Value", "Value", "VALUE"]}, "0.625"),
    ],
)
def test_default_serves_an_absent_entry_only(entry, text):
    scale = 3
    n = node("VectorMath", {"Scale": entry})
    assert body(n, node("Value"))[scale] == f"float v4 = {text};"
    assert body(node("VectorMath", without=["Scale"]))[scale] == "float v4 = 1.0;"


@pytest.mark.parametrize("params", [False, True])
def test_unlinked_rotation_is_zero(params):
    for target in ("VALUE", "VECTOR", "RGBA"):
        kind, socket, line = READERS[target]
        n = node(kind, {socket: {"t": "ROTATION", "v": [1.0, 2.0, 3.0]}})
        assert body(n, use_params=params)[0] == line.format(e="0.0")


def test_unlinked_shader_is_an_empty_closure():
    lines = body(node("AddShader", {"Shader_001": {"t": "SHADER"}}), mode="surface")
    assert lines[0] == "QWKClosure v1 = L.closure_add(L.closure_none(), L.closure_none());"


def test_missing_socket():
    with unsupported("ShaderNodeMath: no input Value"):
        body(node("Math", without=["Value"]))


def test_unlinked_entry_without_a_type():
    with pytest.raises(KeyError, match="^'t'$"):
        body(node("Math", {"Value": {"v": 1.0}}))
    assert body(node("Math", {"Value": {"link": ["Value", "Value", None]}}), node("Value"))[0] == "float v1 = 0.625;"


def test_type_of_the_source_serves_where_the_link_has_none():
    for kind in (None, ""):
        entry = {"t": "VALUE", "link": ["RGB", "Color", kind]}
        line = body(node("Math", {"Value": entry}), node("RGB"))[0]
        assert line == "float v1 = dot(float3(0.25, 0.5, 0.75), float3(0.2126, 0.7152, 0.0722));"


# ---- numbers --------------------------------------------------------------------------------------

NUMBERS = [
    (1, "1.0"),
    (True, "1.0"),
    (False, "0.0"),
    (1e20, "1e+20"),
    (1e-5, "1e-05"),
    (math.nan, "0.0"),
    (-math.inf, "-3.402823466e+38"),
    (math.inf, "3.402823466e+38"),
    (0.5, "0.5"),
    (-3.25, "-3.25"),
    (0.0001, "0.0001"),
    (1000000.0, "1000000.0"),
    (1e16, "1e+16"),
    (9999999999999998.0, "9999999999999998.0"),
    (1.5e300, "1.5e+300"),
    (-0.0, "-0.0"),
    (0.800000011920929, "0.800000011920929"),
    ("0.5", "0.5"),
    ([0.25, 9], "0.25"),
    ((0.25, 9), "0.25"),
    (None, "0.0"),
    ([None, 2.0], "0.0"),
    (5e-324, "5e-324"),
]


@pytest.mark.parametrize("value, text", NUMBERS, ids=repr)
def test_number_as_a_literal(value, text):
    assert body(node("Math", {"Value": {"t": "VALUE", "v": value}}))[0] == f"float v1 = {text};"


@pytest.mark.parametrize(
    "value, error", [("a", ValueError), ({}, TypeError), ([], IndexError), ([[1]], TypeError), (10**400, OverflowError)]
)
@pytest.mark.parametrize("params", [False, True])
def test_what_is_no_number(value, error, params):
    with pytest.raises(error):
        body(node("Math", {"Value": {"t": "VALUE", "v": value}}), use_params=params)


VECTOR_LITERALS = [
    ([1, 2], "float3(1.0, 2.0, 0.0)"),
    ([1, 2, 3, 4], "float3(1.0, 2.0, 3.0)"),
    ([], "float3(0.0, 0.0, 0.0)"),
    ((0.5, True, -0.0), "float3(0.5, 1.0, -0.0)"),
]


@pytest.mark.parametrize("value, text", VECTOR_LITERALS, ids=repr)
def test_vector_as_a_literal(value, text):
    assert translated(node("Normal", props={"normal": value}), output="Normal")["ret"] == text


# ---- parameters -----------------------------------------------------------------------------------


@pytest.mark.parametrize(
    "node_id, socket, name",
    [
        ("Mix.001", "Color 1", "P_Mix_001__Color_1"),
        ("N", "S", "P_N__S"),
        ("A   b", "ü", "P_A___b___"),
        ("", "", "P___"),
        ("节点\U0001f600", "x_y", "P______x_y"),
    ],
)
def test_name_of_a_parameter(node_id, socket, name):
    assert quillgen.param_name(node_id, socket) == name
    n = node("Math", {"Value": 1.0}, id=node_id)
    assert body(n, use_params=True)[0] == f"float v1 = {quillgen.param_name(node_id, 'Value')};"


@pytest.mark.parametrize(
    "kind, value, text, recorded",
    [
        ("VALUE", None, "P_N__{s}", ["scalar", 0.0]),
        ("VALUE", [0.25, 9], "P_N__{s}", ["scalar", 0.25]),
        ("INT", 3, "P_N__{s}", ["scalar", 3.0]),
        ("BOOLEAN", True, "P_N__{s}", ["scalar", 1.0]),
        ("RGBA", [1, 0.5, 0.25], "P_N__{s}.xyz", ["vector", [1, 0.5, 0.25, 0.0]]),
        ("RGBA", [], "P_N__{s}.xyz", ["vector", [0.0, 0.0, 0.0, 1.0]]),
        ("RGBA", [1, 2, 3, 4, 5], "P_N__{s}.xyz", ["vector", [1, 2, 3, 4]]),
        ("VECTOR", 2, "P_N__{s}.xyz", ["vector", [2.0, 2.0, 2.0, 0.0]]),
        ("VECTOR", None, "P_N__{s}.xyz", ["vector", [0.0, 0.0, 0.0, 0.0]]),
    ],
)
def test_parameter(kind, value, text, recorded):
    socket = "Value" if recorded[0] == "scalar" else "Vector"
    n = node("Math" if socket == "Value" else "VectorMath", {socket: {"t": kind, "v": value}}, id="N")
    name = f"P_N__{socket}"
    result = quillgen.compile(material(n), "emission", True)
    assert f" v1 = {text.format(s=socket)};" in result["code"]
    assert repr(result["params"][name]) == repr(recorded)
    assert repr(next(i for i in result["inputs"] if i["name"] == name)) == repr(
        {"name": name, "kind": recorded[0], "default": recorded[1]}
    )


def test_number_for_a_vector_as_a_literal():
    assert body(node("VectorMath", {"Vector": {"t": "VECTOR", "v": 2.0}}))[0] == "float3 v1 = float3(2.0, 2.0, 2.0);"


def test_without_parameters_there_are_none():
    bsdf = node("BsdfPrincipled", {"Base Color": link(ramp := node("ValToRGB"))})
    result = surface(bsdf, ramp)
    assert result["params"] == {}
    assert {i["kind"] for i in result["inputs"]} == {"cycles_normal", "two_sided_sign"}


def test_two_ids_with_one_parameter_name_share_it():
    first, second = node("Math", {"Value": 1.0}, id="A.1"), node("Math", {"Value": 2.0}, id="A 1")
    both = node("Math", {"Value": link(first), "Value_001": link(second)}, id="Both")
    params = quillgen.compile(material(both, first, second), "emission")["params"]
    assert params["P_A_1__Value"] == ["scalar", 2.0]


def test_the_last_reading_of_a_shared_name_gives_its_value():
    """Two nodes share a parameter name. The bump reads the first one again, after the second."""
    first, second = node("Math", {"Value": 1.0}, id="A.1"), node("Math", {"Value": 2.0}, id="A 1")
    bump = node("Bump", {"Height": link(first)})
    both = node("Math", {"Value": link(first), "Value_001": link(second)}, id="Both")
    tangled = node("MixRGB", {"Color1": link(both), "Color2": link(bump)})
    params = quillgen.compile(material(tangled, both, bump, first, second), "emission")["params"]
    assert params["P_A_1__Value"] == ["scalar", 1.0]


def test_the_displacement_reads_a_shared_name_last():
    first, second = node("Math", {"Value": [1.0]}, id="A.1"), node("Math", {"Value": 2.0}, id="A 1")
    both = node("Math", {"Value": link(first), "Value_001": link(second)}, id="Both")
    shader = node("BsdfPrincipled", {"Roughness": link(both)})
    moved = node("Displacement", {"Height": link(first)})
    given = material(shader, both, moved, first, second, displacement=moved, settings={"displacement": "BOTH"})
    result = quillgen.compile(given)
    values = {one["name"]: one.get("default") for one in result["inputs"]}
    displaced = {one["name"]: one.get("default") for one in result["displacement"]["inputs"]}
    assert values["P_A_1__Value"] == 2.0 and displaced["P_A_1__Value"] == 1.0
    assert result["params"]["P_A_1__Value"] == ["scalar", 1.0]


def test_both_texts_declare_a_socket_that_both_read():
    """Each text lists the parameter in its own inputs; `params` has the value of the last text."""
    read = node("VectorMath", {"Vector": [1.0, 2.0, 3.0]}, id="Read")
    shader = node("BsdfPrincipled", {"Base Color": link(read)})
    moved = node("Displacement", {"Height": link(read), "Scale": 0.5})
    given = material(shader, moved, read, displacement=moved, settings={"displacement": "BOTH"})
    result = quillgen.compile(given)
    [surface], [displaced] = (
        [one for one in inputs if one["name"] == "P_Read__Vector"]
        for inputs in (result["inputs"], result["displacement"]["inputs"])
    )
    assert surface == displaced == {"name": "P_Read__Vector", "kind": "vector", "default": [1.0, 2.0, 3.0, 0.0]}
    assert surface["default"] is not displaced["default"]
    assert result["params"]["P_Read__Vector"] == ["vector", displaced["default"]]


@pytest.mark.parametrize("count", [10, 32, 33, 64, 300, 3000])
def test_names_are_told_apart_and_met_again_among_many(count):
    """`count` parameter names, each shared by two nodes, read by a tree of sums."""
    read = [node("Value", props={"value": float(i)}, id=f"A{mark}{i}") for mark in ". " for i in range(count)]
    for i in range(2 * count - 1):
        terms = dict(zip(("Value", "Value_001", "Value_002"), map(link, (*read[2 * i : 2 * i + 2], read[2 * i]))))
        read.append(bare("Math", terms, id=f"Sum {i}"))
    given = material(*reversed(read))
    expected = {f"P_A_{i}__value": {"kind": "scalar", "default": float(i)} for i in range(count)}
    assert quillgen.parts(given, "emission", use_params=True)["inputs"] == expected
    records = [{"name": name, **record} for name, record in sorted(expected.items())]
    assert quillgen.compile(given, "emission")["inputs"] == records
