"""Several graphs in one text."""

import numpy as np
import pytest

import custom_expression
import quillgen
from edge_cases import statements, translated, unsupported
from golden.documents import EXAMPLES, IMAGES, example, link, material, node

NOISE, GLOW = node("TexNoise"), node("Emission", {"Color": (0.25, 0.5, 0.75, 1.0), "Strength": 1.0})
CLOUDS = material(node("BsdfPrincipled", {"Emission Color": link(NOISE, "Color"), "Emission Strength": 1.0}), NOISE)
LAMP = material(GLOW)


def assembled(*documents, **settings):
    parts = [quillgen.parts(d) for d in documents]
    structs, need = (set().union(*(p[key] for p in parts)) for key in ("structs", "need"))
    return quillgen.assemble([(p["body"], p["ret"]) for p in parts], structs, need, **settings)


@pytest.mark.parametrize("name", sorted(path.stem for path in EXAMPLES.glob("*.json")))
@pytest.mark.parametrize("use_params", [False, True])
def test_one_graph_is_the_text_of_the_mode_emission(name, use_params):
    part = quillgen.parts(example(name), use_params=use_params)
    text = quillgen.assemble([(part["body"], part["ret"])], part["structs"], part["need"])
    assert text == quillgen.compile(example(name), "emission", use_params)["code"]


@pytest.mark.parametrize("word", ["é", "a\nb", "é\nb", "\udcff"])
def test_a_word_of_the_document_breaks_no_statement(word):
    def body(kind):
        noise = node("TexNoise", props={"noise_type": kind})
        return quillgen.parts(material(node("Emission", {"Color": link(noise, "Color")}), noise))["body"]

    assert body(word) == [line.replace("_FBM(", f"_{word}(") for line in body("FBM")]
    assert any(f"L.noise_texture3_{word}(" in line for line in body(word))


def test_two_graphs_and_a_selector():
    lines = assembled(CLOUDS, LAMP, selector="sel").split("\n")
    assert lines.count("if (sel < 0.5) {") == lines.count("if (sel < 1.5) {") == 1
    first, second = lines.index("if (sel < 0.5) {"), lines.index("if (sel < 1.5) {")
    assert lines[first - 1] == "QWK L;" and lines[second - 1] == lines[-2] == "}"
    assert lines[-1] == "return float3(0.0, 0.0, 0.0);"


def test_graphs_after_the_first_are_dropped_without_a_selector():
    assert assembled(LAMP) == assembled(LAMP, LAMP, LAMP)
    part = quillgen.parts(LAMP)
    first = (part["body"], part["ret"])
    assert quillgen.assemble([first, "not looked at"], set(), set()) == quillgen.assemble([first], set(), set())


def test_wrap_is_around_every_colour_but_the_last():
    lines = assembled(LAMP, LAMP, selector="sel", wrap="f(%s) %% 2").split("\n")
    colour = "(L.closure_emission(float3(0.25, 0.5, 0.75) * 1.0)).emission"
    assert lines.count(f"  return f({colour}) % 2;") == 2 and lines[-1] == "return float3(0.0, 0.0, 0.0);"
    assert assembled(LAMP, wrap="f(%s)").split("\n")[-1] == f"  return f({colour});"


def test_further_functions_follow_the_closures():
    text = assembled(LAMP, extra_lib="\nfloat one() { return 1.0; }")
    assert "\n  return c;\n}\nfloat one() { return 1.0; }\n};\nQWK L;\n" in text
    assert "\n  return c;\n}one\n};\nQWK L;\n" in assembled(LAMP, extra_lib="one")


def test_no_graphs():
    assert statements(quillgen.assemble([], set(), set(), "sel")) == ["return float3(0.0, 0.0, 0.0);"]
    with pytest.raises(IndexError):
        quillgen.assemble([], set(), set())


@pytest.mark.parametrize(
    "arguments, error",
    [
        (([([], "x")], set(), set(), None, "no place"), TypeError),
        (([([], "x")], set(), set(), None, "%s %s"), TypeError),
        (([([], "x")], set(), set(), None, "%q"), ValueError),
        (([([],)], set(), set()), ValueError),
        (([([], "x", "y")], set(), set()), ValueError),
        (([([],)], set(), set(), "sel"), ValueError),
        (([([], "x")], {"NoSuchStruct"}, set()), KeyError),
        (([([], "x")], set(), {"no_such_name"}), KeyError),
    ],
)
def test_wrong_arguments(arguments, error):
    with pytest.raises(error):
        quillgen.assemble(*arguments)


def test_structs_are_in_sorted_order():
    text = quillgen.assemble([([], "x")], {"QWKVoronoiParams", "QWKVoronoiOutput"}, set())
    names = [line.split()[1] for line in text.split("\n") if line.startswith("struct")]
    assert names == ["QWKVoronoiOutput", "QWKVoronoiParams", "QWKClosure", "QWK"]


def test_record_of_a_part():
    record = quillgen.parts(CLOUDS)
    assert list(record) == ["body", "ret", "need", "structs", "inputs", "warnings"]
    assert [type(value) for value in record.values()] == [list, str, set, set, dict, list]
    assert record["need"] == {"noise_texture3_FBM"} and record["structs"] == set()
    assert list(record["inputs"]) == ["bmin", "bmax", "lpos"]


def test_defaults_of_a_part():
    assert quillgen.parts(CLOUDS) == quillgen.parts(CLOUDS, "emission", False, None)
    with_params = quillgen.parts(CLOUDS, use_params=True)
    assert with_params["inputs"]["P_TexNoise__Scale"] == {"kind": "scalar", "default": 5.0}
    assert "params" not in with_params


def test_part_of_a_lit_material_is_its_base_colour():
    assert quillgen.parts(CLOUDS, "surface")["ret"].endswith(".base")
    assert quillgen.parts(LAMP, "surface")["ret"] == "surf1.base"


def test_part_passes_failures_on():
    with unsupported("ShaderNodeMath has no output Result"):
        translated(node("Math"), output="Result")


@pytest.mark.parametrize("chosen", [0.0, 1.0, 2.0, 3.0])
def test_selector_chooses_at_run_time(chosen):
    """A text of several graphs returns the result of the selected graph, and black for a selector beyond the last."""
    documents = [CLOUDS, LAMP, material(node("TexImage"), images=IMAGES)]
    parts = [quillgen.parts(d) for d in documents]
    inputs = {name: record for p in parts for name, record in p["inputs"].items()}
    result = {
        "code": assembled(*documents, selector="sel"),
        "returns": "float3",
        "inputs": {**inputs, "sel": {"kind": "scalar", "default": 0.0}},
    }
    rng = np.random.default_rng(1)
    values = {
        "bmin": (0.0, 0.0, 0.0),
        "bmax": (100.0, 100.0, 100.0),
        "lpos": rng.uniform(-100, 100, (64, 3)).astype(np.float32),
        "uv0": rng.uniform(-1, 1, (64, 2)).astype(np.float32),
    }
    pixels = {name: rng.uniform(0, 1, (5, 7, 4)) for name, r in inputs.items() if r["kind"] == "texture"}
    got = custom_expression.evaluate(result, {**values, "sel": chosen}, pixels)["result"]
    if chosen == 3.0:
        assert not got.any()
        return
    alone = quillgen.compile(documents[int(chosen)], "emission", False)
    needed = {i["name"] for i in alone["inputs"]}
    expected = custom_expression.evaluate(
        alone, {k: v for k, v in values.items() if k in needed}, {k: v for k, v in pixels.items() if k in needed}
    )["result"]
    np.testing.assert_allclose(got, np.broadcast_to(expected, got.shape), rtol=1e-6, atol=1e-7)
    assert got.any()
