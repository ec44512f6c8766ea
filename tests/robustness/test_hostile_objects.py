"""Objects whose own code raises or changes the document during a translation."""

import copy

import pytest

import quillgen
from robustness.hostile import Mine, breaking_off, raising, shuffle, trap, wreck
from robustness.outcomes import CALLS, at, base_documents, changed, outcome, paths, put

DOCUMENTS = base_documents()
ALL = pytest.mark.parametrize("title", DOCUMENTS)


def with_traps(title, make):
    """Yields a copy of the document for each of its places, where a trap replaces the value."""
    for path in paths(DOCUMENTS[title]):
        document = copy.deepcopy(DOCUMENTS[title])
        yield path, put(document, path, make(document, at(document, path)))


@ALL
def test_derived_types_count_as_what_they_derive_from(title):
    plain = {name: outcome(call, DOCUMENTS[title]) for name, call in CALLS.items()}
    for path, document in with_traps(title, lambda _, value: trap(value, lambda name: None)):
        if type(at(DOCUMENTS[title], path)) in (str, float, int, dict, list):
            for name, call in CALLS.items():
                assert outcome(call, document) == plain[name], (path, name)


@ALL
def test_what_an_object_raises_reaches_the_caller(title):
    raised = 0
    for path, document in with_traps(title, lambda _, value: raising(value)):
        for name, call in CALLS.items():
            raised += outcome(call, document, [Mine])[1] is Mine
    assert raised


@ALL
def test_foreign_objects(title):
    for path, document in with_traps(title, lambda _, value: trap(None, lambda name: None)):
        for name, call in CALLS.items():
            outcome(call, document)
    for path, document in with_traps(title, lambda _, value: raising(None)):
        for name, call in CALLS.items():
            outcome(call, document, [Mine])


def test_iteration_that_breaks_off():
    raised = 0
    for title, original in DOCUMENTS.items():
        for path in paths(original):
            if isinstance(at(original, path), (list, dict)):
                with changed(original, path, breaking_off(at(original, path))) as document:
                    for call in CALLS.values():
                        raised += outcome(call, document, [Mine])[1] is Mine
    assert raised > 1000


@ALL
@pytest.mark.parametrize("change", [wreck, shuffle])
def test_document_that_an_object_changes_in_the_middle(title, change):
    for call in CALLS.values():
        for _, document in with_traps(title, lambda document, value: trap(value, lambda name: change(document))):
            # The interpreter raises RuntimeError if a dict changes during its iteration.
            outcome(call, document, [RuntimeError])


def test_other_arguments_may_be_objects_too():
    document = next(iter(DOCUMENTS.values()))
    for argument in ("mode", "use_params"):
        with pytest.raises(Mine):
            quillgen.compile(document, **{argument: raising(None)})
    with pytest.raises(Mine):
        quillgen.parts(next(d for t, d in DOCUMENTS.items() if t == "ShaderNodeUVMap"), uv_bias=raising([0.5, 0.5]))
    for name, value in {
        "bodies": [],
        "structs": set(),
        "need": set(),
        "selector": "s",
        "wrap": "%s",
        "extra_lib": "",
    }.items():
        arguments = {"bodies": [([], "r")], "structs": set(), "need": set(), name: raising(None)}
        with pytest.raises((Mine, TypeError)):
            quillgen.assemble(**arguments)


def test_sequence_without_an_end():

    class Endless:
        def __getitem__(self, place):
            return "RGB"

    document = DOCUMENTS["ShaderNodeGamma"]
    document["nodes"][0]["in"]["Color"]["link"] = Endless()
    with pytest.raises(ValueError, match="too many values to unpack"):
        quillgen.compile(document)
