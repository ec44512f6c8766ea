"""In a material with displacement, the surface reads the bumped normal, even by nodes that feed the displacement."""

import copy
import re

import pytest
from records import document, link, node, principled, value

import quillgen
from quillgen_blender import write
from quillgen_blender.passes import Options, bumped_normals, finish, prepare


def moss(name="Math.001", **settings):
    """A material where surfaces that face up get moss, which also feeds the displacement."""
    up = node("Separate XYZ", "SeparateXYZ", {"Vector": link("Geometry", "Normal", "VECTOR")})
    more = node(
        name,
        "Math",
        {"Value": link("Separate XYZ", "Z", "VALUE"), "Value_001": value(0.25), "Value_002": value(0.5)},
        operation="ADD",
        use_clamp=False,
    )
    displacement = node(
        "Displacement",
        "Displacement",
        {"Height": link(name, "Value", "VALUE"), "Midlevel": value(0.5), "Scale": value(0.1)},
        space="OBJECT",
    )
    displacement["in"]["Normal"] = value([0.0, 0.0, 0.0], "VECTOR")
    nodes = [node("Geometry", "NewGeometry"), up, more, displacement, principled(Metallic=link(name, "Value", "VALUE"))]
    made = document(*nodes, surface=["Principled BSDF", "BSDF"], displacement=["Displacement", "Displacement"])
    return made | {"settings": {"displacement": "BOTH", **settings}}


def sources(record):
    return {socket: entry["link"][0] for socket, entry in record["in"].items() if "link" in entry}


def by_id(made):
    return {record["id"]: record for record in made["nodes"]}


def metallic_follows_the_bent_normal(made):
    """Whether the metallic value depends on the statement that bumps the normal."""
    body = quillgen.compile(made)["code"].split("\nQWK L;\n")[1]
    texts = dict(re.findall(r"float3? (v\d+) = (.*);", body))
    left = re.findall(r"\bv\d+\b", re.search(r"metallic = (.*);", body)[1])
    found = []
    while left:
        found.append(texts[left.pop()])
        left += re.findall(r"\bv\d+\b", found[-1])
    return any("L.n_obj_to_world" in text for text in found)


def test_the_displacement_gets_nodes_of_its_own():
    before = moss()
    kept = copy.deepcopy(before)
    after, notes = bumped_normals.run(before, Options())
    assert before == kept and notes == []
    records = by_id(after)
    assert sources(records["Principled BSDF"]) == {"Metallic": "Math.001"}
    assert sources(records["Math.001"]) == {"Value": "Separate XYZ"}
    assert sources(records["Separate XYZ"]) == {"Vector": "Geometry"}
    assert sources(records["Displacement"]) == {"Height": "Math\u00b7001"}
    assert sources(records["Math\u00b7001"]) == {"Value": "Separate\u00b7XYZ"}
    assert sources(records["Separate\u00b7XYZ"]) == {"Vector": "Geometry Displacement"}
    assert len(records) == 5 + 3 and after["out"] == before["out"]


def test_the_surface_sees_the_bent_normal():
    assert not metallic_follows_the_bent_normal(moss())
    assert metallic_follows_the_bent_normal(prepare(moss())[0])


def test_parameters_are_the_same_and_serve_both():
    plain, (prepared, _) = quillgen.compile(moss()), prepare(moss())
    result, _ = finish(quillgen.compile(prepared), prepared, (), Options(parameters="all"))
    assert result["params"] == plain["params"] and "P_Math_001__Value_001" in result["params"]
    for text in (result, result["displacement"]):
        assert "P_Math_001__Value_001" in text["code"]
    assert write.origins(prepared)["P_Math_001__Value_001"] == ("Math.001", "Value_001")


def test_a_remark_on_a_copy_is_one_on_its_original():
    for name, copied in (("Odd.001", "Odd\u00b7001"), ("Odd", "Odd Displacement")):
        before = moss()
        by_id(before)["Separate XYZ"]["in"]["Vector"]["link"][:2] = [name, "Vector"]
        unknown = node(name, "Unknown", {"Normal": link("Geometry", "Normal", "VECTOR")})
        before["nodes"].append(unknown | {"outs": {"Vector": "VECTOR"}})
        prepared, notes = prepare(before)
        warnings = quillgen.compile(prepared)["warnings"]
        assert any(text.startswith(f"{copied} (") for text in warnings)
        found = write.remarks(warnings, notes, prepared)
        assert [remark["node"] for remark in found if "Odd" in remark["node"]] == [name], found


def test_a_name_without_a_separator_has_no_second_spelling():
    prepared, notes = bumped_normals.run(moss("Math"), Options())
    fixed = by_id(prepared)["Math Displacement"]
    assert fixed["made"] and sources(by_id(prepared)["Displacement"]) == {"Height": "Math Displacement"}
    assert [(note.node, note.loss) for note in notes] == [("Math", "info")]
    options = Options(parameters="all")
    result, _ = finish(quillgen.compile(prepared), prepared, (), options)
    assert "P_Math__Value_001" in result["code"]
    assert "0.25" in result["displacement"]["code"] and "P_Math_" not in result["displacement"]["code"]


def test_a_node_whose_other_outputs_feed_the_displacement():
    """Texture Coordinate is evaluated as a whole, so its normal would be the one without displacement."""
    made = moss()
    records = by_id(made)
    records["Geometry"] |= {"type": "ShaderNodeTexCoord"}
    records["Separate XYZ"]["in"]["Vector"] = link("Geometry", "Object", "VECTOR")
    records["Principled BSDF"]["in"]["Base Color"] = link("Geometry", "Normal", "VECTOR", "RGBA")
    after = by_id(bumped_normals.run(made, Options())[0])
    assert sources(after["Principled BSDF"])["Base Color"] == "Geometry"
    assert sources(after["Separate XYZ"]) == {"Vector": "Geometry Displacement"}
    assert len(after) == 5 + 1


# Nodes that read the shading normal in one mode, and one that doesn't: type, output, mode, other mode.
LINKED = {"Normal": link("Geometry", "Position", "VECTOR")}
BY_MODE = {
    "a box projection": ("TexImage", "Color", {"projection": "BOX"}, {"projection": "FLAT"}),
    "a displacement": ("Displacement", "Displacement", {"space": "WORLD"}, {"space": "WORLD", "in": LINKED}),
    "a vector map": ("VectorDisplacement", "Displacement", {"space": "TANGENT"}, {"space": "OBJECT"}),
}


def shared(kind, output, mode):
    """The material above with a node in place of Separate XYZ."""
    made, mode = moss(), dict(mode)
    place = next(n for n, record in enumerate(made["nodes"]) if record["id"] == "Separate XYZ")
    made["nodes"][place] = node("Separate XYZ", kind, mode.pop("in", {}), **mode)
    by_id(made)["Math.001"]["in"]["Value"] = link("Separate XYZ", output, "VECTOR", "VALUE")
    return made


@pytest.mark.parametrize("name", BY_MODE)
def test_nodes_that_read_the_normal_in_one_mode(name):
    kind, output, reading, other = BY_MODE[name]
    after = by_id(bumped_normals.run(shared(kind, output, reading), Options())[0])
    assert sources(after["Math\u00b7001"]) == {"Value": "Separate\u00b7XYZ"}
    assert sources(after["Math.001"]) == {"Value": "Separate XYZ"}
    plain = shared(kind, output, other)
    assert bumped_normals.run(plain, Options())[0] is plain


def test_the_node_that_is_the_displacement_itself():
    made = moss() | {"out": {"surface": ["Principled BSDF", "BSDF"], "displacement": ["Math.001", "Value"]}}
    after, _ = bumped_normals.run(made, Options())
    assert after["out"]["displacement"] == ["Math\u00b7001", "Value"]


def test_nothing_changes_where_nothing_is_shared_or_follows_the_normal():
    alone = moss() | {"out": {"surface": ["Principled BSDF", "BSDF"]}}
    assert bumped_normals.run(alone, Options())[0] is alone
    apart = moss()
    by_id(apart)["Principled BSDF"]["in"]["Metallic"] = value(0.0)
    assert bumped_normals.run(apart, Options())[0] is apart
    position = moss()
    by_id(position)["Separate XYZ"]["in"]["Vector"] = link("Geometry", "Position", "VECTOR")
    assert bumped_normals.run(position, Options())[0] is position


def test_it_can_be_switched_off():
    before = moss()
    assert bumped_normals.run(before, Options(bumped_normals=False)) == (before, [])
    assert not metallic_follows_the_bent_normal(prepare(before, Options(bumped_normals=False))[0])


def test_a_spelling_that_is_taken():
    made = moss()
    made["nodes"].append(node("Math\u00b7001", "Value"))
    after, _ = bumped_normals.run(made, Options())
    assert by_id(after)["Displacement"]["in"]["Height"]["link"][0] == "Math.001 Displacement"
