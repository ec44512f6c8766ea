"""Mapping, Vector Rotate and Vector Transform."""

import itertools

import pytest

from edge_cases import ZERO, body, key_error, translated, unsupported
from golden.documents import bare, node

OX, OY, OZ = ("(float3(oax.x, -oax.y, oax.z))", "(-float3(oay.x, -oay.y, oay.z))", "(float3(oaz.x, -oaz.y, oaz.z))")
OBJECT = f"{OX}, {OY}, {OZ}"
VX, VY, VZ = (f"float3(vax{a}.x, -vax{a}.y, vax{a}.z)" for a in "xyz")
HERE = "(float3(opos.x, -opos.y, opos.z) * 0.01)"
CAMERA = "(float3(cpos.x, -cpos.y, cpos.z) * 0.01)"
AXES = ["oax", "oay", "oaz"]


def test_mapping_of_a_normal_without_a_location():
    lines = body(node("Mapping", without=["Location"], props={"vector_type": "NORMAL"}))
    assert lines == [
        f"float3 v1 = L.mapping(3, float3(0.5, -1.5, 2.5), {ZERO}, float3(0.4, 0.5, 0.6), float3(2.0, 3.0, 4.0));"
    ]


@pytest.mark.parametrize("word, code", [("POINT", 0), ("TEXTURE", 1), ("VECTOR", 2), ("NORMAL", 3), (None, 0)])
def test_types_of_mapping(word, code):
    result = translated(node("Mapping", props={"vector_type": word}))
    assert result["body"][0].startswith(f"float3 v1 = L.mapping({code}, ") and result["need"] == {"mapping"}


@pytest.mark.parametrize("socket", ["Vector", "Rotation", "Scale"])
def test_mandatory_sockets_of_mapping(socket):
    with unsupported(f"ShaderNodeMapping: no input {socket}"):
        body(node("Mapping", without=[socket]))


def test_rotation_without_the_sockets_of_other_modes():
    assert body(bare("VectorRotate", {"Vector": (0.5, -1.5, 2.5)})) == [
        f"float3 v1 = L.vector_rotate(0, 0, float3(0.5, -1.5, 2.5), {ZERO}, float3(0.0, 0.0, 1.0), 0.0, {ZERO});"
    ]


@pytest.mark.parametrize(
    "word, code", [("AXIS_ANGLE", 0), ("X_AXIS", 1), ("Y_AXIS", 2), ("Z_AXIS", 3), ("EULER_XYZ", 4)]
)
@pytest.mark.parametrize("invert, digit", [(True, 1), (1, 1), (False, 0), (None, 0)])
def test_modes_of_rotation(word, code, invert, digit):
    line = body(node("VectorRotate", props={"rotation_type": word, "invert": invert}))[0]
    assert line.startswith(f"float3 v1 = L.vector_rotate({code}, {digit}, ")


def test_unknown_words():
    with key_error("NO_SUCH_WORD"):
        body(node("Mapping", props={"vector_type": "NO_SUCH_WORD"}))
    with key_error("NO_SUCH_WORD"):
        body(node("VectorRotate", props={"rotation_type": "NO_SUCH_WORD"}))


def transform(kind, source, target):
    props = {"vector_type": kind, "convert_from": source, "convert_to": target}
    result = translated(node("VectorTransform", {"Vector": (1.0, 2.0, 3.0)}, props=props))
    assert result["body"][0] == "float3 v1 = float3(1.0, 2.0, 3.0);" and result["warnings"] == []
    return result["body"][1:], list(result["inputs"]), result["need"]


SAME = [(s, s) for s in ("WORLD", "CAMERA", "OBJECT")]
UNKNOWN = [
    ("NO_SUCH_WORD", "OBJECT"),
    ("WORLD", "NO_SUCH_WORD"),
    ("CAMERA", "NO_SUCH_WORD"),
    ("OBJECT", "NO_SUCH_WORD"),
]


@pytest.mark.parametrize("kind, pair", itertools.product(("VECTOR", "NORMAL", "POINT"), SAME + UNKNOWN))
def test_no_change_of_space(kind, pair):
    assert transform(kind, *pair) == (["float3 v2 = v1;"], AXES, set())


def test_point_from_camera_to_object():
    lines, inputs, need = transform("POINT", "CAMERA", "OBJECT")
    assert lines == [
        f"float3 v2 = ((v1.x * {VX} + v1.y * {VY} + v1.z * {VZ}) + {CAMERA});",
        f"float3 v3 = L.dir_world_to_obj((v2 - {HERE}), {OBJECT});",
    ]
    assert inputs == [*AXES, "vaxx", "vaxy", "vaxz", "cpos", "opos"] and need == {"dir_world_to_obj"}


def test_normal_from_object_to_camera():
    lines, _, need = transform("NORMAL", "OBJECT", "CAMERA")
    assert lines == [
        f"float3 v2 = L.n_obj_to_world(v1, {OBJECT});",
        f"float3 v3 = normalize(float3(dot(v2, {VX}), dot(v2, {VY}), dot(v2, {VZ})));",
    ]
    assert need == {"n_obj_to_world"}


@pytest.mark.parametrize(
    "kind, source, target, lines",
    [
        ("VECTOR", "WORLD", "OBJECT", [f"float3 v2 = L.dir_world_to_obj(v1, {OBJECT});"]),
        ("POINT", "WORLD", "OBJECT", [f"float3 v2 = L.dir_world_to_obj((v1 - {HERE}), {OBJECT});"]),
        (
            "NORMAL",
            "WORLD",
            "OBJECT",
            [f"float3 v2 = L.safe_normalize(float3(dot(v1, {OX}), dot(v1, {OY}), dot(v1, {OZ})));"],
        ),
        ("VECTOR", "OBJECT", "WORLD", [f"float3 v2 = (v1.x * {OX} + v1.y * {OY} + v1.z * {OZ});", "float3 v3 = v2;"]),
        (
            "POINT",
            "OBJECT",
            "WORLD",
            [f"float3 v2 = ((v1.x * {OX} + v1.y * {OY} + v1.z * {OZ}) + {HERE});", "float3 v3 = v2;"],
        ),
        (
            "POINT",
            "WORLD",
            "CAMERA",
            [
                f"float3 v2 = float3(dot((v1 - {CAMERA}), {VX}), dot((v1 - {CAMERA}), {VY}), "
                f"dot((v1 - {CAMERA}), {VZ}));"
            ],
        ),
        (
            "NORMAL",
            "CAMERA",
            "WORLD",
            [f"float3 v2 = normalize((v1.x * {VX} + v1.y * {VY} + v1.z * {VZ}));", "float3 v3 = v2;"],
        ),
    ],
)
def test_forms(kind, source, target, lines):
    assert transform(kind, source, target)[0] == lines


def test_unknown_type_is_a_point_but_towards_the_camera():
    for source, target in (("WORLD", "OBJECT"), ("OBJECT", "WORLD"), ("CAMERA", "WORLD")):
        assert transform("NO_SUCH_WORD", source, target) == transform("POINT", source, target)
    assert transform("NO_SUCH_WORD", "WORLD", "CAMERA") == transform("VECTOR", "WORLD", "CAMERA")


def test_defaults():
    n = node("VectorTransform", props={"vector_type": None, "convert_from": None, "convert_to": None})
    assert body(n) == body(node("VectorTransform"))


@pytest.mark.parametrize("kind", ["VectorRotate", "VectorTransform"])
def test_vector_is_mandatory(kind):
    with unsupported(f"ShaderNode{kind}: no input Vector"):
        body(node(kind, without=["Vector"]))
