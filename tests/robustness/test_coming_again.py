"""Documents that come again, changed or not: whatever is kept of them, each call gives what a first one would."""
import copy
import gc
import json
import math
import pathlib
import re

import pytest

import quillgen
import quillgen_lib
from golden.documents import example, link, material, node
from robustness import outcomes
from robustness.outcomes import at, base_documents, changed, outcome, paths, plain

CALLS = outcomes.CALLS | {"parts of a material": lambda document: quillgen.parts(document, "surface", True)}
DOCUMENTS = base_documents()
DOCUMENTS |= {name: example(name) for name in ("brick_wall", "glazed_vase", "hologram", "mossy_rock", "painted_wood")}
# What takes the place of a value. A slider gives floats; the other ones are a change of the graph.
FLOATS = (0.0, 0.375, 2.5, -1.0)
OTHERS = (-0.0, math.nan, 1, True, None, "x", [], [0.5], [0.1, 0.2, 0.3], [0.1, 0.2, 0.3, 1], {})


class Never(dict):
    """A document that is not kept, as it is no plain map."""


def first(call, document):
    return plain(outcome(call, Never(document)))


def come_again(call, document):
    """Sees to it that the document is kept, if it ever is."""
    for _ in range(3):
        outcome(call, document)


def check(call, document, what):
    assert plain(outcome(call, document)) == first(call, document), what


def check_changes(call, kind, others, most):
    """Up to that many values of the kind change in each document, one after the other, to what `others` give."""
    for title, document in DOCUMENTS.items():
        document = copy.deepcopy(document)
        chosen = [path for path in paths(document) if path and isinstance(at(document, path), kind)]
        for number, path in enumerate(chosen[::1 + len(chosen) // most]):
            come_again(call, document)
            with changed(document, path, others[number % len(others)](at(document, path))):
                check(call, document, (title, path))
            check(call, document, (title, path, "and back"))


@pytest.mark.parametrize("name", CALLS)
def test_a_float_changes(name):
    check_changes(CALLS[name], float, [lambda before, value=value: value for value in FLOATS], 60)


@pytest.mark.parametrize("name", CALLS)
def test_any_value_changes(name):
    kinds = (float, int, str, type(None))
    check_changes(CALLS[name], kinds, [lambda before, value=value: value for value in OTHERS], 60)


@pytest.mark.parametrize("name", CALLS)
def test_a_list_changes(name):
    others = [lambda before: [], lambda before: before[:-1], lambda before: [*before, 0.5], tuple,
              lambda before: before[::-1], lambda before: [1, *before[1:]]]
    check_changes(CALLS[name], list, others, 20)


@pytest.mark.parametrize("name", CALLS)
def test_a_map_changes(name):
    others = [lambda before: {}, lambda before: {**before, "further": 0.5}, Never,
              lambda before: dict(reversed(before.items())), lambda before: dict(list(before.items())[1:]),
              lambda before: {key + "x" * (key == list(before)[-1]): item for key, item in before.items()}]
    check_changes(CALLS[name], dict, others, 20)


@pytest.mark.parametrize("name", CALLS)
def test_equal_documents_of_other_objects(name):
    for title, document in DOCUMENTS.items():
        come_again(CALLS[name], document)
        for same in (copy.deepcopy(document), json.loads(json.dumps(document))):
            check(CALLS[name], same, title)


@pytest.fixture
def tag(request):
    """For a node of a test's own, so that no other test has had its documents translated."""
    return node("Value", id=request.node.name)


def sliders(tag, **values):
    """A bumped Principled BSDF that is displaced, with a value for each socket that something decides by."""
    stored = {"Emission Strength": 0.0, "Alpha": 1.0, "Coat Weight": 0.0, "Subsurface Weight": 0.0,
              "Transmission Weight": 0.0, "Sheen Weight": 0.0, "Filter Width": 0.1, "Midlevel": 0.5, "Scale": 1.0,
              "Roughness": 0.5, "Strength": 1.0, "Detail": 2.0} | values
    noise = node("TexNoise", {"Detail": stored["Detail"]}, id="Noise")
    bump = node("Bump", {"Height": link(noise, "Fac"), "Filter Width": stored["Filter Width"],
                         "Strength": stored["Strength"]})
    moved = node("Displacement", {"Height": link(noise, "Fac"), "Midlevel": stored["Midlevel"],
                                  "Scale": stored["Scale"]})
    shader = node("BsdfPrincipled", {"Normal": link(bump)} | {
        name: stored[name] for name in ("Emission Strength", "Alpha", "Coat Weight", "Subsurface Weight",
                                        "Transmission Weight", "Sheen Weight", "Roughness")})
    return material(shader, bump, moved, noise, tag, displacement=moved, settings={"displacement": "BOTH"})


DECISIVE = {"Emission Strength": 1.5, "Alpha": 0.25, "Coat Weight": 0.75, "Subsurface Weight": 0.5,
            "Transmission Weight": 0.5, "Sheen Weight": 0.5, "Filter Width": 0.25, "Midlevel": 2.0, "Scale": 64.0}


@pytest.mark.parametrize("socket", DECISIVE)
def test_a_value_that_decides_is_seen(tag, socket):
    for call in CALLS.values():
        come_again(call, sliders(tag))
        check(call, sliders(tag, **{socket: DECISIVE[socket]}), socket)
    texts = [plain({key: value for key, value in quillgen.compile(document).items() if key not in ("inputs", "params")})
             for document in (sliders(tag), sliders(tag, **{socket: DECISIVE[socket]}))]
    assert texts[0] != texts[1]  # so the case is one


def test_a_dragged_slider(tag):
    come_again(quillgen.compile, sliders(tag))
    for step in range(50):
        result = quillgen.compile(sliders(tag, Roughness=step / 50, Strength=step / 25))
        assert result["params"]["P_BsdfPrincipled__Roughness"] == ["scalar", step / 50]
        assert result["params"]["P_Bump__Strength"] == ["scalar", step / 25]
        assert plain(result) == plain(quillgen.compile(Never(sliders(tag, Roughness=step / 50, Strength=step / 25))))


def test_results_are_no_part_of_what_is_kept():
    def spoil(value):
        for item in list(value.values()) if isinstance(value, dict) else list(value):
            if isinstance(item, (dict, list, set)):
                spoil(item)
        value.clear()

    for title, document in DOCUMENTS.items():
        for call in CALLS.values():
            wanted = first(call, document)
            for _ in range(5):
                kind, result, *_ = outcome(call, document)
                assert plain((kind, result)) == wanted or kind == "error", title
                if kind == "result":
                    spoil(result)


def test_a_list_in_the_place_of_a_word():
    image = node("TexImage", props={"image": "a", "interpolation": [1.0]})
    document = material(node("Emission", {"Color": link(image)}), image, images={"a": {}})
    wanted = first(CALLS["compile"], document)
    for _ in range(5):
        result = quillgen.compile(document)
        assert plain(("result", result)) == wanted
        for record in result["inputs"]:
            record.get("interpolation", []).clear()


def two_gammas(shared):
    """Two nodes with an equal entry, which may be one object."""
    one = node("Gamma", {"Gamma": 0.5}, id="One")
    two = node("Gamma", {"Gamma": 0.5, "Color": link(one)}, id="Two")
    if shared:
        two["in"]["Gamma"] = one["in"]["Gamma"]
    return material(node("Emission", {"Color": link(two)}), two, one)


def test_an_entry_of_two_nodes():
    for was_shared in (True, False):
        for call in CALLS.values():
            come_again(call, two_gammas(was_shared))
            for place in (1, 2):
                document = two_gammas(shared=False)
                document["nodes"][place]["in"]["Gamma"]["v"] = 0.75
                check(call, document, (was_shared, place))
            both = two_gammas(shared=True)
            both["nodes"][1]["in"]["Gamma"]["v"] = 0.75
            check(call, both, was_shared)


def test_nodes_whose_names_come_to_the_same():
    """The first of them is read once more behind the second."""
    half = 0.5  # one object
    one = node("Math", {"Value": half}, id="A.1")
    two = node("Math", {"Value": half}, id="A_1")
    bumps = [node("Bump", {"Height": link(one)}, id=id) for id in ("Bump 1", "Bump 2")]
    shaders = [node("BsdfDiffuse", {"Normal": link(bumps[0])}, id="Below"),
               node("BsdfDiffuse", {"Roughness": link(two), "Color": link(two), "Normal": link(bumps[1])}, id="Above")]
    both = node("AddShader", {"Shader": link(shaders[0]), "Shader_001": link(shaders[1])})
    document = material(both, one, two, *bumps, *shaders)
    for call in CALLS.values():
        for place in (2, 1):
            come_again(call, document)
            with changed(document, ("nodes", place, "in", "Value", "v"), 0.75):
                check(call, document, place)


@pytest.mark.parametrize("depth", [28, 1000])
def test_a_document_that_holds_one_list_over_and_over(tag, depth):
    """Whoever looks at all that it holds comes to no end."""
    held = [0.5]
    for _ in range(depth):
        held = [held, held]
    document = sliders(tag) | {"further": held}
    for _ in range(5):
        check(CALLS["compile"], document, depth)


def test_copies_of_a_material_take_turns(tag):
    copies = [sliders(tag, Alpha=alpha, Roughness=alpha) for alpha in (1.0, 0.5, 0.25, 0.125)]
    wanted = [first(CALLS["compile"], one) for one in copies]
    for _ in range(40):
        assert [plain(outcome(CALLS["compile"], one)) for one in copies] == wanted


def test_a_value_that_the_text_depends_on_is_dragged(tag):
    for step in range(100):
        check(CALLS["compile"], sliders(tag, Alpha=step / 100), step)
    come_again(CALLS["compile"], sliders(tag, Roughness=0.25))
    check(CALLS["compile"], sliders(tag, Roughness=0.75), "after that")


def test_the_library_is_asked_each_time(tag, monkeypatch):
    document = sliders(tag)
    come_again(quillgen.compile, document)
    before = quillgen.compile(document)["code"]
    asked = []

    def resolve(names):
        asked.append(set(names))
        names.clear()
        return ["float replaced;"]

    monkeypatch.setattr(quillgen_lib, "resolve", resolve)
    for _ in range(3):
        code = quillgen.compile(document)["code"]
        assert "float replaced;" in code and code != before
    assert len(asked) == 6 and asked[0] == asked[2] == asked[4] and asked[1] == asked[3] == asked[5]


def test_a_library_that_takes_its_names_away(tag, monkeypatch):
    document, resolve = sliders(tag), quillgen_lib.resolve

    def emptying(names):
        texts = resolve(names)
        names.clear()
        return texts

    wanted = first(CALLS["compile"], document)
    monkeypatch.setattr(quillgen_lib, "resolve", emptying)
    come_again(CALLS["compile"], document)
    monkeypatch.undo()
    assert plain(outcome(CALLS["compile"], document)) == wanted


def test_a_library_of_other_types(tag, monkeypatch):
    voronoi = node("TexVoronoi", id="Voronoi")
    document = sliders(tag)
    document["nodes"].append(voronoi)
    document["nodes"][0]["in"]["Roughness"] = link(voronoi, "Distance")
    for call in CALLS.values():
        come_again(call, document)
        for types in ({d: f"my{word}" for d, word in quillgen_lib.TYPES.items()}, {}):
            with monkeypatch.context() as patch:
                patch.setattr(quillgen_lib, "TYPES", types)
                check(call, document, types)
            check(call, document, "as before")


class Finalized:
    """Runs something when it is given up."""

    def __init__(self, what):
        self.what = what

    def __del__(self):
        self.what()


def test_an_object_that_a_library_leaves_in_its_names(tag, monkeypatch):
    """It is not kept, so that it is gone when the call is."""
    document, resolve, gone = sliders(tag), quillgen_lib.resolve, []

    def leaving(names):
        texts = resolve(set(names))
        names.add(Finalized(lambda: gone.append(1)))
        return texts

    monkeypatch.setattr(quillgen_lib, "resolve", leaving)
    for calls in range(1, 6):
        quillgen.compile(document)
        assert len(gone) == 2 * calls


def test_a_document_that_changes_while_it_is_translated(tag, monkeypatch):
    def document():
        math = node("Math", id="Math", props={"operation": "ADD"})
        return material(node("BsdfPrincipled", {"Roughness": link(math)}), math, tag)

    changing, resolve = document(), quillgen_lib.resolve

    def change(names):
        changing["nodes"][1]["props"]["operation"] = "MULTIPLY"
        return resolve(names)

    quillgen.compile(changing)
    monkeypatch.setattr(quillgen_lib, "resolve", change)
    quillgen.compile(changing)
    monkeypatch.undo()
    for same in (changing, document()):
        check(CALLS["compile"], same, same["nodes"][1]["props"]["operation"])


def test_one_and_another_not_a_number(tag):
    """`in` takes the very same one for equal, and no other."""
    def document(name, map):
        attribute = node("Attribute", props={"attribute_name": name})
        return material(node("Emission", {"Color": link(attribute)}), attribute, tag, uv_maps=[map])

    number = float("nan")
    come_again(CALLS["compile"], document(number, number))
    check(CALLS["compile"], document(float("nan"), float("nan")), "another one")
    check(CALLS["compile"], document(number, number), "the same one")


def test_no_text_decides_by_a_value_behind_the_back_of_what_is_kept():
    """Gen::entry is how a handler asks for a socket's stored value."""
    root = pathlib.Path(__file__).parents[2]
    sources = [path for folder in ("nodes", "closures") for path in (root / folder).rglob("*.cpp")]
    assert len(sources) > 20
    assert not [str(path) for path in sources if re.search(r"\.in\.(get|at|find)\(", path.read_text(encoding="utf-8"))]


def test_a_call_inside_a_call(tag):
    """The garbage collector runs a finalizer in the middle of a call, which has the same document translated with other
    values."""
    document, other = sliders(tag), sliders(tag, Roughness=0.75, Strength=0.25, Detail=4.0)
    wanted, wanted_of_other = first(CALLS["compile"], document), first(CALLS["compile"], other)
    ended = []

    def call_again():
        if gc.get_threshold()[0] == 1:
            ended.append(plain(outcome(CALLS["compile"], other)) == wanted_of_other)

    come_again(quillgen.compile, document)
    thresholds = gc.get_threshold()
    for _ in range(20):
        cycle = Finalized(call_again)
        cycle.itself = cycle
        del cycle
        held = [([], {}) for _ in range(200)]  # so that the interpreter has none at hand, and collects for the first
        gc.set_threshold(1, 1, 1)
        try:
            result = quillgen.compile(document)
        finally:
            gc.set_threshold(*thresholds)
        assert plain(("result", result)) == wanted
        del held
    assert ended and all(ended)


def test_another_bias_is_no_repetition(tag):
    image = node("TexImage", props={"image": "a"})
    document = material(node("BsdfPrincipled", {"Base Color": link(image)}), image, tag, images={"a": {}})
    bodies = [quillgen.parts(document, "surface", True, bias)["body"]
              for bias in (None, None, None, (0.5, 1), (0.25, 2), None, (0.5, 1))]
    assert bodies[0] == bodies[1] == bodies[2] == bodies[5] and bodies[3] == bodies[6]
    assert bodies[0] != bodies[3] != bodies[4] != bodies[0]
