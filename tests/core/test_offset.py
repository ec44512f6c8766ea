"""Evaluating a graph again at offset positions."""

import copy
import re

import pytest

import quillgen
from edge_cases import DX, DY, body, key_error, translated, unsupported
from golden.documents import link, node

HERE = "(float3(wpos.x, -wpos.y, wpos.z) * 0.01)"
GEOMETRY = node("NewGeometry")


def bump(height, output=None, id="Bump", **inputs):
    return node("Bump", {"Height": link(height, output), **inputs}, id=id)


def positions(lines):
    """For each read of the position, the variable of the world offset that is added, or None."""
    texts = [line.split(" = ", 1)[1] for line in lines if "wpos.x, -wpos.y" in line]
    moved = [re.fullmatch(re.escape(f"({HERE} + ") + r"(v\d+)\);", text) for text in texts]
    assert all(match or text == f"{HERE};" for match, text in zip(moved, texts))
    return [match and match[1] for match in moved]


def later(offset, steps):
    """The variable of the offset's world vector if `steps` variables are declared before the bump."""
    return f"v{int(offset['w'][1:]) + steps}"


LENGTH = node("VectorMath", {"Vector": link(GEOMETRY, "Position")}, props={"operation": "LENGTH"})


def test_shared_graph_that_was_evaluated_before():
    """Two offset copies are made. Without offset, the earlier evaluation is reused."""
    n = bump(LENGTH, "Value")
    both = node("Math", {"Value": link(LENGTH, "Value"), "Value_001": link(n)})
    lines = body(both, n, LENGTH, GEOMETRY)
    ahead = 7  # position, four operands, length, the first operand of the sum
    assert positions(lines) == [None, later(DX, ahead), later(DY, ahead)]
    assert sum("length(" in line for line in lines) == 3


def test_shared_graph_that_was_not_evaluated_before():
    """The offset copies come first, then the one without offset, which all later readers reuse."""
    n = bump(LENGTH, "Value")
    both = node("Math", {"Value": link(n), "Value_001": link(LENGTH, "Value")})
    lines = body(both, n, LENGTH, GEOMETRY)
    assert positions(lines) == [DX["w"], DY["w"], None]
    assert sum("length(" in line for line in lines) == 3


def test_node_of_two_outputs_is_evaluated_as_a_whole():
    """The whole node is evaluated again, including the output that was read before."""
    parts = node("SeparateXYZ", {"Vector": link(GEOMETRY, "Position")})
    height = node("Math", {"Value": link(parts, "X"), "Value_001": link(parts, "Y")}, id="Height")
    n = bump(height)
    lines = body(node("Math", {"Value": link(parts, "Y"), "Value_001": link(n)}), n, height, parts, GEOMETRY)
    ahead = 3  # position, the vector, its y
    assert positions(lines) == [None, later(DX, ahead), later(DY, ahead)]
    assert sum(line.endswith(".y;") and line.startswith("float v") for line in lines) == 4


def test_two_offsets_see_nothing_of_each_other():
    assert positions(body(bump(GEOMETRY, "Position"), GEOMETRY)) == [DX["w"], DY["w"], None]


def test_nested_bump_replaces_the_offset():
    """The inner bump is evaluated once per evaluation of the outer height, each time with its own offsets.

    Its offset copies use only these. Its read without own offset uses the outer bump's offset, or none.
    """
    inner = bump(GEOMETRY, "Position", id="Inner")
    lines = body(bump(inner), inner, GEOMETRY)
    assert sum("L.bump_dp(" in line for line in lines) == 4
    offsets = positions(lines)
    assert offsets[2::3] == [DX["w"], DY["w"], None]
    own = [offset for i, offset in enumerate(offsets) if i % 3 != 2]
    assert len(set(own)) == 6 and not {DX["w"], DY["w"], None} & set(own)


def test_each_level_of_bumps_triples_the_copies():
    nodes = [GEOMETRY, bump(GEOMETRY, "Position", id="Bump 1")]
    for level in (2, 3, 4):
        nodes.append(bump(nodes[-1], id=f"Bump {level}"))
    for level in (1, 2, 3, 4):
        assert len(positions(body(*reversed(nodes[: level + 1])))) == 3**level


@pytest.mark.parametrize("levels", [1, 2, 3])
def test_warning_stands_once_for_each_evaluation(levels):
    wire = node("Wireframe")
    nodes = [wire]
    for level in range(levels):
        nodes.insert(0, bump(nodes[0], id=f"Bump {level}"))
    assert translated(*nodes)["warnings"] == ["Wireframe: Wireframe has no Unreal equivalent - 0"] * 3**levels


def test_height_linked_to_no_node():
    with key_error("Nobody"):
        body(node("Bump", {"Height": link("Nobody", "Value")}))


def test_node_in_the_height_that_lacks_its_sockets():
    n = node("Math")
    del n["in"]
    with key_error("in"):
        body(bump(n), n)


def test_cycle_below_the_height():
    a, b = node("Math", id="A"), node("Math", id="B")
    a["in"]["Value"], b["in"]["Value"] = link(b), link(a)
    with unsupported("ShaderNodeMath has no output Value"):
        body(bump(a), a, b)


def test_cycle_through_the_bump_itself():
    n = node("Bump", {"Height": link("Bump", "Normal", "VECTOR")})
    with pytest.raises(RecursionError):
        body(n)
    other = node("Math", {"Value": link("Bump", "Normal", "VECTOR")})
    with pytest.raises(RecursionError):
        body(bump(other), other)
    assert (
        quillgen.parts({"nodes": [node("Value")], "out": {"surface": ["Value", "Value"]}})["ret"] == "((float3)(0.625))"
    )


@pytest.mark.parametrize(
    "output, text",
    [
        (
            "UV",
            "(float3(uv0.x, 1.0 - uv0.y, 0.0) + {a} * float3(uv0_dx.x, -uv0_dx.y, 0.0) + {b} * "
            "float3(uv0_dy.x, -uv0_dy.y, 0.0))",
        ),
        (
            "Object",
            "((float3(lpos.x, -lpos.y, lpos.z) * 0.01) + L.dir_world_to_obj({w}, (float3(oax.x, -oax.y, oax.z)), "
            "(-float3(oay.x, -oay.y, oay.z)), (float3(oaz.x, -oaz.y, oaz.z))))",
        ),
    ],
)
def test_moved_signals(output, text):
    coordinates = node("TexCoord")
    result = translated(bump(coordinates, output), coordinates)
    for offset in (DX, DY):
        assert sum(text.format(**offset) in line for line in result["body"]) == 1
    if output == "UV":
        of = {"kind": "texcoord", "index": 0}
        assert result["inputs"]["uv0_dx"] == {"kind": "ddx", "of": of}
        assert result["inputs"]["uv0_dy"] == {"kind": "ddy", "of": of}
    else:
        assert "dir_world_to_obj" in result["need"]


def test_vertex_colour_has_derivatives():
    inputs = translated(bump(node("VertexColor")), node("VertexColor"))["inputs"]
    assert inputs["vcol_dx"] == {"kind": "ddx", "of": {"kind": "vertex_color"}}
    assert inputs["vcol_dy"] == {"kind": "ddy", "of": {"kind": "vertex_color"}}


@pytest.mark.parametrize(
    "kind, output, unmoved",
    [
        ("NewGeometry", "Incoming", "camvec"),
        ("NewGeometry", "True Normal", "facing_normal"),
        ("Bevel", "Normal", "cnorm"),
        ("CameraData", "View Distance", "dot(wpos - cpos, vaxx)"),
        ("ObjectInfo", "Location", "opos"),
        ("Tangent", "Tangent", "ttan"),
        ("TexCoord", "Normal", "oax"),
    ],
)
def test_signals_that_do_not_move(kind, output, unmoved):
    reads = node(kind, props={"direction_type": "UV_MAP"})
    lines = body(bump(reads, output), reads)
    start = next(i for i, line in enumerate(lines) if line.startswith(f"float {DY['b']} = ")) + 1
    found = [line for line in lines[start:] if unmoved in line]
    assert len(found) == 3
    offsets = {name for offset in (DX, DY) for name in offset.values()}
    assert not any(offsets & set(re.findall(r"\w+", line)) for line in found)


def test_link_that_no_handler_reads():
    """Nodes linked to a socket that isn't read are upstream too, but are not evaluated again."""
    source = node("Math", {"Value": link(GEOMETRY, "Position")}, id="Source")
    reader = node("Value", {"Ignored": link(source)})
    both = node("Math", {"Value": link(source), "Value_001": link(bump(reader))}, id="Both")
    assert positions(body(both, bump(reader), reader, source, GEOMETRY)) == [None]


def test_moved_generated_coordinate():
    """Only the position is offset, not the bounds."""
    checker = node("TexChecker")
    lines = [line for line in body(bump(checker, "Fac"), checker) if "tex_checker" in line]
    assert ["L.dir_world_to_obj(v" in line for line in lines] == [True, True, False]
    assert all(line.count("bmin.x, -bmax.y, bmin.z") == 2 for line in lines)


def test_document_is_left_alone():
    n = bump(GEOMETRY, "Position")
    before = copy.deepcopy(n)
    body(n, GEOMETRY)
    assert n == before
