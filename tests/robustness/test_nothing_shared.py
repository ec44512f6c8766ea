"""A call doesn't change its document, and its result shares no mutable object with anything else."""

import copy

import pytest

import quillgen
from golden.cases import all_cases
from golden.documents import material, node
from robustness.outcomes import CALLS, outcome, paths, plain

DOCUMENTS = [
    (f"{kind}: {case.title}", case.document)
    for kind, cases in all_cases().items()
    for case in cases.values()
    if case.document
]


def containers(value, found=None):
    """The ids of all lists, dicts and sets in a value."""
    found = {} if found is None else found
    if isinstance(value, (list, dict, set, tuple)) and id(value) not in found:
        if not isinstance(value, tuple):
            found[id(value)] = value
        for item in value.values() if isinstance(value, dict) else value:
            containers(item, found)
    return found


@pytest.mark.parametrize("name", CALLS)
def test_document_and_results(name):
    for title, document in DOCUMENTS:
        before = plain(document)
        first = outcome(CALLS[name], document)
        second = outcome(CALLS[name], document)
        assert plain(document) == before, title
        assert plain(first) == plain(second), title
        if first[0] == "result":
            mine, others, again = containers(document), containers(first[1]), containers(second[1])
            assert not mine.keys() & (others.keys() | again.keys()), title
            assert not others.keys() & again.keys(), title


def test_the_two_texts_of_a_material_have_inputs_of_their_own():
    count = 0
    for title, document in DOCUMENTS:
        _, result = outcome(quillgen.compile, document)
        if isinstance(result, dict) and result["displacement"]:
            count += 1
            assert result["displacement"]["inputs"], title
            assert not containers(result["inputs"]).keys() & containers(result["displacement"]["inputs"]).keys(), title
    assert count > 5


def test_changing_a_result_changes_no_other():
    document = DOCUMENTS[0][1]
    kept = plain(quillgen.compile(document))

    def spoil(value):
        for item in list(value.values()) if isinstance(value, dict) else list(value):
            if isinstance(item, (dict, list, set)):
                spoil(item)
        value.clear()

    for call in CALLS.values():
        spoil(call(document))
    assert plain(quillgen.compile(document)) == kept


def test_lists_in_the_place_of_words_and_numbers():
    """They appear in the result, as copies."""
    inner = [[1.0], {"key": [2.0]}, {3.0}]
    itself = []
    itself.append(itself)
    image = node("TexImage", {"Vector": {"t": "VECTOR", "v": inner}}, props={"image": "a", "interpolation": inner})
    gamma = node("Gamma", {"Color": {"t": "RGBA", "v": [itself, inner, inner]}})
    for record in (image, gamma):
        document = material(record, images={"a": {}})
        before = repr(document)
        result = quillgen.compile(document, mode="emission")
        assert not containers(document).keys() & containers(result).keys()
        assert repr(document) == before
    values = quillgen.compile(material(gamma), mode="emission")["params"]["P_Gamma__Color"][1]
    assert values[1:3] == [inner, inner] and values[0][0] is values[0] is not itself


def test_list_nested_to_any_depth():
    deep = []
    for _ in range(200_000):
        deep = [deep]
    document = material(node("Gamma", {"Color": {"t": "RGBA", "v": [deep]}}))
    quillgen.compile(document, mode="emission")


def test_the_check_sees_what_is_shared():
    shared = [1.0]
    assert containers({"a": shared}).keys() & containers(({"b": (shared,)},)).keys()
    document = {"a": [1, {"b": ()}]}
    assert len(containers(document)) == 3 and len(list(paths(document))) == 5
    assert plain(document) != plain({**copy.deepcopy(document), "c": 1})
