"""A call keeps no reference to its document or result, and calls don't affect each other."""

import collections
import copy
import gc
import json
import re
import sys

import pytest

import quillgen
from golden.documents import IMAGES, link, material, node
from robustness.outcomes import CALLS, base_documents, outcome

TAG = "\N{GREEK SMALL LETTER OMEGA}unique"


def tagged(value, found):
    """A copy of a document where every id, name and number is a separate object. All copies are added to `found`."""
    if isinstance(value, dict):
        copied = {fresh(key): tagged(item, found) for key, item in value.items()}
    elif isinstance(value, list):
        copied = [tagged(item, found) for item in value]
    elif isinstance(value, str):
        copied = fresh(value)
    elif isinstance(value, float):
        copied = float(repr(value))
    else:
        return value
    found.append(copied)
    return copied


def fresh(text):
    """A new object equal to the text. The interpreter shares strings of one letter."""
    return "".join(list(text)) if len(text) > 1 else text


def items(value):
    if isinstance(value, dict):
        return [*value, *value.values()]
    return list(value) if isinstance(value, (list, set)) else []


def contents(value):
    """id -> object, for all objects in a result."""
    found, todo = {}, [value]
    while todo:
        thing = todo.pop()
        if id(thing) not in found:
            found[id(thing)] = thing
            todo += items(thing)
    return found


def own_objects(result, other):
    """Objects of a result that another result of an equal document doesn't share. Shared are only strings of the module
    and objects of the interpreter."""
    shared = contents(other)
    return [
        thing
        for number, thing in contents(result).items()
        if number not in shared and isinstance(thing, (str, list, dict, set))
    ]


def references(objects):
    """The reference count of each object in the list."""
    return [sys.getrefcount(objects[i]) for i in range(len(objects))]


def documents():
    found = base_documents()
    image = node("TexImage", props={"image": TAG})
    images = {TAG: IMAGES["wood.png"]}
    found["a texture"] = material(node("Emission", {"Color": link(image)}, id=TAG), image, images=images)
    noise = node("TexNoise", id=TAG + " noise")
    found["a table"] = material(node("RGBCurve", {"Color": link(noise)}, id=TAG), noise)
    return found


@pytest.mark.parametrize("name", CALLS)
def test_nothing_of_a_document_is_held(name):
    for title, document in documents().items():
        held = []
        document = tagged(document, held)
        before = references(held)
        for _ in range(4):
            outcome(CALLS[name], document)
        gc.collect()
        assert references(held) == before, title


@pytest.mark.parametrize("name", CALLS)
def test_nothing_of_a_result_is_held(name):
    for title, document in documents().items():
        call = CALLS[name]
        if outcome(call, document)[0] == "result":
            held = own_objects(call(document), call(copy.deepcopy(document)))
            assert len(held) > 5, title
            gc.collect()
            # Expected: the list, the loop, the argument of getrefcount, and the result's containers in the list.
            inside = collections.Counter(id(item) for thing in held for item in items(thing))
            for thing in held:
                assert sys.getrefcount(thing) == 3 + inside[id(thing)], (title, thing)


def test_the_checks_see_what_is_held():
    held = []
    document = tagged({"nodes": [0.5, TAG]}, held)
    before = references(held)
    kept = document["nodes"][1]
    assert references(held) != before and kept


# ---- entries and keys -----------------------------------------------------------------------


def statements(document):
    return quillgen.compile(document)["code"].split("\nQWK L;\n")[1].split("\n")


def test_one_entry_under_two_sockets_of_a_node():
    """Sockets are found by name, even if several share one entry object."""
    shared, other = {"t": "VALUE", "v": 0.25}, {"t": "VALUE", "v": 0.75}
    for order in (("Value", "Value_001", "Value_002"), ("Value_002", "Value_001", "Value")):
        for one in range(3):
            entries = dict.fromkeys(order, shared) | {order[one]: other}
            math = node("Math", props={"operation": "SUBTRACT"})
            math["in"] = entries
            document = material(node("BsdfPrincipled", {"Roughness": link(math)}), math)
            assert [line for line in statements(document) if re.match(r"  float v[1234] = ", line)] == [
                "  float v2 = P_Math__Value;",
                "  float v3 = P_Math__Value_001;",
                "  float v4 = P_Math__Value_002;",
            ]
            assert "  float v5 = v2 - v3;" in statements(document)
            params = quillgen.compile(document)["params"]
            assert {socket: params[f"P_Math__{socket}"] for socket in order} == {
                socket: ["scalar", entry["v"]] for socket, entry in entries.items()
            }


def test_one_entry_under_two_nodes():
    shared = {"t": "VALUE", "v": 0.25}
    one = node("Math", {"Value_001": 0.5}, id="One", props={"operation": "SUBTRACT"})
    two = node("Math", {"Value": link(one), "Value_001": 0.5}, id="Two", props={"operation": "SUBTRACT"})
    one["in"]["Value"] = two["in"]["Value_001"] = shared
    code = statements(material(node("BsdfPrincipled", {"Roughness": link(two)}), two, one))
    assert code[3:11] == [
        "  float v2 = P_One__Value;",
        "  float v3 = P_One__Value_001;",
        "  float v4 = P_One__Value_002;",
        "  float v5 = v2 - v3;",
        "  float v6 = v5;",
        "  float v7 = P_Two__Value_001;",
        "  float v8 = P_Two__Value_002;",
        "  float v9 = v6 - v7;",
    ]


def mixes(keys=str, shared=False):
    """Two Mix nodes that are read one after the other. `keys` is applied to each key. With `shared`, two sockets of the
    first share one entry object."""
    first = node("Mix", {"A_Float": 0.25, "B_Float": 0.75}, id="Mix A")
    second = node("Mix", {"A_Float": 0.125, "B_Float": 0.5}, id="Mix B")
    sockets = {"Color": link(first, "Result_Float"), "Strength": link(second, "Result_Float")}
    document = material(node("Emission", sockets), first, second)
    for record in document["nodes"]:
        if shared and record["id"] == "Mix A":
            record["in"]["B_Float"] = record["in"]["A_Float"]
        record["in"] = {keys(key): entry for key, entry in reversed(record["in"].items())}
    return document


def test_keys_of_any_origin_give_the_same():
    for is_shared in (False, True):
        wanted = quillgen.compile(mixes(shared=is_shared))
        one_object_each = {key: fresh(key) for record in mixes()["nodes"] for key in record["in"]}
        assert quillgen.compile(mixes(fresh, is_shared)) == wanted
        assert quillgen.compile(mixes(one_object_each.get, is_shared)) == wanted
        assert quillgen.compile(json.loads(json.dumps(mixes(shared=is_shared)))) == wanted


class Nested(float):
    """A number that translates other documents when it is converted to a float."""

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


# ---- names of inputs ------------------------------------------------------------------------


def scaled(id, entry):
    """A material whose roughness is a Math node with this id and the entry as its first operand."""
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


def test_nodes_whose_names_come_to_the_same():
    """If two nodes share a parameter name, the last one read wins, also if a bump reads the first one again."""
    one = node("Math", {"Value": 0.25}, id="A.1")
    two = node("Math", {"Value": 0.75}, id="A_1")
    bumps = [node("Bump", {"Height": link(one)}, id=id) for id in ("Bump 1", "Bump 2")]
    shaders = [
        node("BsdfDiffuse", {"Normal": link(bumps[0])}, id="Below"),
        node("BsdfDiffuse", {"Roughness": link(two), "Color": link(two), "Normal": link(bumps[1])}, id="Above"),
    ]
    both = node("AddShader", {"Shader": link(shaders[0]), "Shader_001": link(shaders[1])})
    result = quillgen.compile(material(both, one, two, *bumps, *shaders))
    assert result["params"]["P_A_1__Value"] == ["scalar", 0.25]
    assert named(result, "P_A_1__Value")["default"] == 0.25


def test_numbers_of_names():
    """A large tree of Math nodes precedes a second shader, so that variable numbers have many digits."""
    count = 4000
    maths = []
    for i in range(count):
        below = {
            socket: link(f"M{place}", "Value", "VALUE")
            for socket, place in (("Value", 2 * i + 1), ("Value_001", 2 * i + 2))
            if place < count
        }
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
        return material(
            node("BsdfPrincipled", sockets),
            moved,
            height,
            displacement=moved,
            settings={"displacement": "DISPLACEMENT"},
        )

    shared, alone = (quillgen.compile(document(is_shared=is_shared))["displacement"] for is_shared in (True, False))
    assert shared == alone
    assert "L.wrapf(" in shared["code"]
    assert named(shared, "P_Height__Value")["default"] == 0.25
