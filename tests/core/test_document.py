"""The document: what may be absent, and the errors that defects raise."""

import copy

import pytest

import quillgen
from edge_cases import key_error, translated, unsupported
from golden.documents import EXAMPLES, example, link, material, node
from golden.render import literal


def test_absent_keys_are_empty_ones():
    picture, attribute = node("TexImage"), node("Attribute", props={"attribute_name": "UVMap"})
    bsdf = node("BsdfPrincipled", {"Base Color": link(picture), "Roughness": link(attribute, "Fac"), "Alpha": 0.5})
    plain = material(bsdf, picture, attribute, displacement=node("Displacement"))
    plain["nodes"].append(node("Displacement"))
    assert not {"settings", "images", "uv_maps"} & set(plain)
    assert quillgen.compile(plain) == quillgen.compile({**plain, "settings": {}, "images": {}, "uv_maps": []})


@pytest.mark.parametrize("images", [None, {}, {"other.png": {}}])
def test_image_that_the_document_lacks_is_magenta(images):
    top = {} if images is None else {"images": images}
    assert translated(node("TexImage"), **top)["ret"] == "float3(1.0, 0.0, 1.0)"


def test_link_without_a_type_is_one_with_the_right_type():
    for source, output in ((node("Value"), "Value"), (node("RGB"), "Color"), (node("TexCoord"), "UV")):
        for target in ("Math", "VectorMath"):
            socket = next(iter(node(target)["in"]))
            with_type, without, empty = (
                node(target, {socket: link(source, output, kind)}) for kind in (source["outs"][output], None, "")
            )
            empty["in"][socket]["link"][2] = ""
            assert with_type["in"][socket]["link"][2]
            assert translated(without, source) == translated(empty, source) == translated(with_type, source)


@pytest.mark.parametrize("name", sorted(path.stem for path in EXAMPLES.glob("*.json")))
def test_translates_twice_to_the_same_and_stays_as_it_was(name):
    document = example(name)
    before = copy.deepcopy(document)
    first = quillgen.compile(document)
    assert quillgen.parts(document) == quillgen.parts(document)
    assert literal(quillgen.compile(document)) == literal(first)
    assert literal(document) == literal(before)


@pytest.mark.parametrize("key", ["nodes", "out"])
def test_mandatory_key_of_the_document(key):
    document = material(node("Value"))
    del document[key]
    with key_error(key):
        quillgen.compile(document)


@pytest.mark.parametrize("key", ["id", "in"])
def test_mandatory_key_of_every_node(key):
    unreached = node("Math", id="Elsewhere")
    del unreached[key]
    with key_error(key):
        quillgen.compile(material(node("Value"), unreached))


@pytest.mark.parametrize("key", ["type", "props"])
def test_mandatory_key_of_a_node_that_is_read(key):
    read, unreached = node("Value"), node("Math")
    del unreached[key]
    quillgen.compile(material(read, unreached))
    del read[key]
    with key_error(key):
        quillgen.compile({"nodes": [read], "out": {"surface": ["Value", "Value"]}})


def test_link_to_no_node():
    with key_error("Nobody"):
        translated(node("Math", {"Value": link("Nobody", "Value")}))
    with key_error("Nobody"):
        quillgen.compile({"nodes": [], "out": {"surface": ["Nobody", "Value"]}})
    translated(node("Value"), node("Math", {"Value": link("Nobody", "Value")}))


@pytest.mark.parametrize(
    "items, error",
    [
        ([], IndexError),
        (["Value"], IndexError),
        (["Value", "Value"], ValueError),
        (["Value", "Value", "VALUE", "more"], ValueError),
    ],
)
def test_link_of_the_wrong_length(items, error):
    with pytest.raises(error):
        translated(node("Math", {"Value": {"t": "VALUE", "link": items}}), node("Value"))


def test_no_surface():
    for out in ({}, {"surface": None}, {"displacement": ["Value", "Value"]}):
        for mode in ("surface", "emission"):
            with unsupported("no surface output"):
                quillgen.compile({"nodes": [node("Value")], "out": out}, mode)
