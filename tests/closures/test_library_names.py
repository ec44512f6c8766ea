"""The names that the translator requests from the library, and how it uses the returned texts."""

import pytest

import quillgen
import quillgen_lib
from edge_cases import body, key_error, statements, translated
from golden.documents import link, material, node
from golden.render import closure, function_name


def struct_of(result):
    return result["code"].split("struct QWK {\n")[1].split("\n};\nQWK L;\n")[0]


def test_nothing_needed():
    assert list(quillgen_lib.resolve(set())) == []
    result = quillgen.compile(material(node("RGB")), "emission")
    assert struct_of(result) == "\n" + closure()[1]
    assert translated(node("RGB"))["need"] == set()


@pytest.mark.parametrize(
    "kind, name, functions",
    [
        ("TexGabor", "gabor", ["tex_gabor"]),
        ("RadialTiling", "radial_tiling", ["calculate_out_variables", "calculate_out_segment_id"]),
    ],
)
def test_names_that_bring_functions_of_other_names(kind, name, functions):
    n = node(kind)
    reader = node("Math", {"Value": link(n, list(n["outs"])[1])})
    result = translated(n, reader, output=next(iter(n["outs"])))
    assert result["need"] == {name}
    assert not any(f"L.{name}(" in line for line in result["body"])
    given = [function_name(text) for text in quillgen_lib.resolve({name})]
    for function in functions:
        assert given.count(function) == 1
    assert any(f"L.{functions[-1]}(" in line for line in result["body"])


@pytest.mark.parametrize("name", ["safe_divide3", "mapping", "wrap3", "noise_texture3_FBM", "fractal_voronoi_x_fx2"])
def test_what_a_name_calls_comes_once_and_ahead(name):
    texts = quillgen_lib.resolve({name})
    names = [function_name(text) for text in texts]
    assert names[-1] == name and len(set(names)) == len(names)
    also = set(names) & set(quillgen_lib.NAMES)
    assert list(quillgen_lib.resolve(also)) == list(texts)


def test_two_names_that_call_a_third():
    both = [function_name(text) for text in quillgen_lib.resolve({"project3", "safe_divide3", "mapping", "wrap3"})]
    assert len(set(both)) == len(both)


def test_unknown_name():
    with pytest.raises(KeyError, match="no_such_name"):
        quillgen_lib.resolve({"no_such_name"})
    for n in (node("MixRGB", props={"blend_type": "NO_SUCH"}), node("TexNoise", props={"noise_type": "NO_SUCH"})):
        with pytest.raises(KeyError, match="mix_no_such|noise_texture3_NO_SUCH"):
            quillgen.compile(material(n))
        assert translated(n)["body"], "parts do not ask the library for texts"


def test_unknown_struct_and_type():
    with key_error("NoSuchStruct"):
        quillgen_lib.STRUCTS["NoSuchStruct"]
    with key_error(5):
        quillgen_lib.TYPES[5]


def test_structs_need_not_each_other():
    names = sorted(quillgen_lib.STRUCTS)
    assert names == ["QWKVoronoiOutput", "QWKVoronoiParams"]
    for name in names:
        assert not any(other in quillgen_lib.STRUCTS[name] for other in names if other != name)


def test_library_stands_ahead_of_the_closures():
    result = quillgen.compile(material(node("Math", props={"operation": "DIVIDE"})), "emission")
    texts = list(quillgen_lib.resolve({"safe_divide"}))
    assert struct_of(result) == "\n".join(texts) + "\n" + closure()[1]
    assert statements(result)[-2] == "float v4 = L.safe_divide(v1, v2);"
    assert body(node("Math", props={"operation": "DIVIDE"}))[-1] == "float v4 = L.safe_divide(v1, v2);"
