"""What a translation keeps: keys told by their addresses, storage and names for the calls after it."""
import copy
import json
import re

import quillgen
from golden.documents import link, material, node


def mixes(keys=str, shared=False):
    """Two Mix nodes, one read behind the other. Each key is what `keys` makes of it; with `shared` one entry stands for
    two sockets of the first."""
    first = node("Mix", {"A_Float": 0.25, "B_Float": 0.75}, id="Mix A")
    second = node("Mix", {"A_Float": 0.125, "B_Float": 0.5}, id="Mix B")
    sockets = {"Color": link(first, "Result_Float"), "Strength": link(second, "Result_Float")}
    document = material(node("Emission", sockets), first, second)
    for record in document["nodes"]:
        if shared and record["id"] == "Mix A":
            record["in"]["B_Float"] = record["in"]["A_Float"]
        record["in"] = {keys(key): entry for key, entry in reversed(record["in"].items())}
    return document


def fresh(key):
    """An equal text that is another object each time."""
    return "".join(list(key))


def test_keys_of_any_origin_give_the_same():
    for is_shared in (False, True):
        wanted = quillgen.compile(mixes(shared=is_shared))
        one_object_each = {key: fresh(key) for record in mixes()["nodes"] for key in record["in"]}
        assert quillgen.compile(mixes(fresh, is_shared)) == wanted
        assert quillgen.compile(mixes(one_object_each.get, is_shared)) == wanted
        assert quillgen.compile(json.loads(json.dumps(mixes(shared=is_shared)))) == wanted


class Nested(float):
    """A number that has other documents translated when it is asked for."""

    def __float__(self):
        quillgen.compile(mixes())
        quillgen.compile(mixes(fresh, True), use_params=False)
        return 0.25


def test_a_translation_inside_another_leaves_it_alone():
    plain = mixes()
    nested = copy.deepcopy(plain)
    for record in nested["nodes"]:
        for entry in record["in"].values():
            if entry.get("v") == 0.25:
                entry["v"] = Nested(0.25)
    assert quillgen.compile(nested) == quillgen.compile(plain)


def scaled(id, entry):
    """A Math node of that id whose first operand is the entry, as a roughness."""
    math = node("Math", {"Value": entry}, id=id)
    return material(node("BsdfPrincipled", {"Roughness": link(math)}), math)


def named(result, name):
    return next(record for record in result["inputs"] if record["name"] == name)


def test_a_name_stands_for_another_kind():
    number, colour = {"t": "VALUE", "v": 0.25}, {"t": "RGBA", "v": [0.5, 0.25, 0.125, 1.0]}
    for entry, kind in ((number, "scalar"), (colour, "vector"), (number, "scalar")):
        result = quillgen.compile(scaled("Same", entry))
        wanted = {"name": "P_Same__Value", "kind": kind, "default": entry["v"]}
        assert list(named(result, "P_Same__Value").items()) == list(wanted.items())
        inputs = quillgen.parts(scaled("Same", entry), "surface", True)["inputs"]
        assert list(inputs["P_Same__Value"].items()) == [("kind", kind), ("default", entry["v"])]


def test_inputs_are_sorted_whatever_names_came_before():
    ids = ["Zebra", "aardvark", "M", "Ma", "M a", "A" * 40 + "b", "A" * 40 + "a", "0", "_"]
    for order in (ids, ids[::-1], sorted(ids)):
        for id in order:
            names = [record["name"] for record in quillgen.compile(scaled(id, 0.5))["inputs"]]
            assert names == sorted(names)
            assert f"P_{id.replace(' ', '_')}__Value" in names


class Crowded(float):
    """A number that has so many names come up, when it is asked for, that those kept are given up."""

    def __float__(self):
        for i in range(40):
            quillgen.compile(scaled(f"{i}" + "n" * 30000, 0.5))
        return 0.5


def test_names_are_given_up_inside_a_translation():
    wanted = quillgen.compile(scaled("Outer", 0.5))
    assert quillgen.compile(scaled("Outer", {"t": "VALUE", "v": Crowded(0.5)})) == wanted
    assert quillgen.compile(scaled("Outer", 0.5)) == wanted


def test_numbers_of_names():
    """A tree of Math nodes ahead of a second shader, so that names get longer than eight characters."""
    count = 4000
    maths = []
    for i in range(count):
        below = {socket: link(f"M{place}", "Value", "VALUE")
                 for socket, place in (("Value", 2 * i + 1), ("Value_001", 2 * i + 2)) if place < count}
        maths.append(node("Math", below, id=f"M{i}"))
    first = node("BsdfDiffuse", {"Color": link(maths[0])}, id="First")
    second = node("BsdfDiffuse", id="Second")
    both = node("AddShader", {"Shader": link(first), "Shader_001": link(second)})
    code = quillgen.compile(material(both, first, second, *maths))["code"]
    declared = re.findall(r"^  (?:float3?|QWKClosure) ([a-z]+)(\d+) = ", code, re.MULTILINE)
    assert sorted(int(number) for _, number in declared) == list(range(1, len(declared) + 1))
    assert ("bsdf", str(4 * count + 2)) in declared


def test_a_displacement_does_not_see_what_its_surface_has_read():
    def document(*, is_shared):
        height = node("Math", {"Value": 0.25}, id="Height", props={"operation": "WRAP"})
        moved = node("Displacement", {"Height": link(height)})
        sockets = {"Roughness": link(height)} if is_shared else {}
        return material(node("BsdfPrincipled", sockets), moved, height, displacement=moved,
                        settings={"displacement": "DISPLACEMENT"})

    shared, alone = (quillgen.compile(document(is_shared=is_shared))["displacement"] for is_shared in (True, False))
    assert shared == alone
    assert "L.wrapf(" in shared["code"]
    assert named(shared, "P_Height__Value")["default"] == 0.25
