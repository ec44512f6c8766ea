"""What a translation keeps: keys told by their addresses, storage and names for the calls after it."""
import copy
import json

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
