"""Invalid values in a document: each has the same outcome as Python's own operation on it."""

import copy
import math

import pytest

import quillgen
from golden.documents import link, material, node
from robustness.outcomes import CALLS, at, base_documents, changed, outcome, paths, plain

NAN, INF = math.nan, math.inf
HUGE = 10**400
ODD = [
    None,
    True,
    False,
    0,
    3,
    2.5,
    NAN,
    INF,
    -INF,
    -0.0,
    5e-324,
    HUGE,
    -HUGE,
    10**300,
    "",
    "0.5",
    " 1e3 ",
    "nan",
    "abc",
    "\ud800",
    "a\0b",
    b"1.5",
    b"x",
    [],
    [1],
    [None],
    ["2"],
    [HUGE],
    [1.0, 2.0],
    [1, "2", None],
    [{}],
    (),
    (1.0, 2.0, 3.0),
    (7,),
    {},
    {"v": 1},
    set(),
    {1},
    frozenset(),
    range(3),
    1j,
    object(),
    float,
    bytearray(b"2"),
]
odd = pytest.mark.parametrize("value", ODD, ids=lambda value: repr(value)[:20])


def expected(operation):
    """The outcome of a Python operation, in the form of `outcome`, without the message."""
    try:
        return "result", operation()
    except (TypeError, ValueError, OverflowError, IndexError, KeyError, AttributeError) as error:
        return "error", type(error)


def got(call, document):
    return outcome(call, document)[:2]


def scalar(value):
    value = value[0] if isinstance(value, (list, tuple)) else value
    return 0.0 if value is None else float(value)


def vector(value):
    items = list(value) if isinstance(value, (list, tuple)) else [float(value) if value else 0.0] * 3
    return (items + [0.0, 0.0, 0.0, 1.0])[:4]


@odd
@pytest.mark.parametrize("kind, converted", [("VALUE", scalar), ("INT", scalar), ("RGBA", vector), ("VECTOR", vector)])
def test_value_of_a_socket(value, kind, converted):
    gamma = node("Gamma", {"Color": {"t": kind, "v": value}})

    def default(document):
        inputs = quillgen.compile(document, mode="emission")["inputs"]
        return next(record["default"] for record in inputs if record["name"] == "P_Gamma__Color")

    assert plain(got(default, material(gamma))) == plain(expected(lambda: converted(value)))


@odd
def test_literal_of_a_socket(value):

    def literal(document):
        body = quillgen.parts(document)["body"]
        return float(body[1].split(" = ")[1].rstrip(";"))

    document = material(node("Gamma", {"Gamma": {"t": "VALUE", "v": value}}))
    wanted = expected(lambda: scalar(value))
    if wanted[0] == "result":  # a literal is finite
        number = wanted[1]
        wanted = (
            "result",
            0.0
            if number != number
            else max(-3.402823466e38, min(number, 3.402823466e38))
            if math.isinf(number)
            else number,
        )
    assert plain(got(literal, document)) == plain(wanted)


@odd
@pytest.mark.parametrize("key, operation", [("offset", float), ("offset_frequency", int), ("squash_frequency", int)])
def test_property_that_is_a_number(value, key, operation):
    document = material(node("TexBrick", props={"offset": 0.5}))
    document["nodes"][0]["props"][key] = value
    assert (
        got(quillgen.parts, document)[1] is expected(lambda: operation(value))[1]
        or outcome(quillgen.parts, document)[0] == expected(lambda: operation(value))[0] == "result"
    )


def test_integer_of_more_digits_than_the_interpreter_takes():
    document = material(node("TexMagic", props={"turbulence_depth": "9" * 5000}))
    with pytest.raises(ValueError):
        quillgen.parts(document)


@odd
def test_word_that_a_table_is_asked_for(value):
    for kind, key, unknown in (
        ("Math", "operation", "result"),
        ("Mapping", "vector_type", KeyError),
        ("TexNoise", "noise_dimensions", KeyError),
    ):
        document = material(node(kind))
        document["nodes"][0]["props"][key] = value
        wanted = expected(lambda: hash(value))
        result = outcome(quillgen.parts, document)
        if wanted[0] == "error":
            assert result[1] is TypeError
        elif unknown == "result":
            assert result[0] == "result"
        else:
            assert result[1] is KeyError and result[2] == repr(value)


@odd
def test_node_id(value):
    document = material(node("Gamma"))
    document["nodes"][0]["id"] = value
    document["out"]["surface"] = [value, "Color"]
    result = outcome(lambda document: quillgen.compile(document, "emission")["inputs"], document)
    if expected(lambda: hash(value))[0] == "error":
        assert result[1] is TypeError
    else:
        # A NaN as a key is found because it is the same object.
        assert result[1][0]["name"] == quillgen.param_name(value, "Color")


@odd
def test_every_place_takes_every_value(value):
    """Any value at any place causes an allowed error or a reproducible result."""
    for title, document in base_documents().items():
        for path in paths(document):
            with changed(document, path, value) as wrong:
                before = repr(wrong)
                for name in ("compile", "parts surface"):
                    first = repr(outcome(CALLS[name], wrong))
                    assert first == repr(outcome(CALLS[name], wrong)), (title, path)
                assert repr(wrong) == before, (title, path)


def tupled(value):
    if isinstance(value, dict):
        return {key: tupled(item) for key, item in value.items()}
    return tuple(map(tupled, value)) if isinstance(value, list) else value


def test_tuples_for_lists():
    for title, document in base_documents().items():
        for name, call in CALLS.items():
            assert outcome(call, tupled(document)) == outcome(call, document), (title, name)


@pytest.mark.parametrize("key", ["nodes", "out"])
def test_key_of_the_document_missing(key):
    document = material(node("Gamma"))
    del document[key]
    for call in CALLS.values():
        assert outcome(call, document)[1:] == (KeyError, repr(key))


@pytest.mark.parametrize("key", ["id", "type", "in", "props"])
def test_key_of_a_record_missing(key):
    document = material(node("TexWave"))
    del document["nodes"][0][key]
    for call in CALLS.values():
        assert outcome(call, document)[1:] == (KeyError, repr(key))


@pytest.mark.parametrize(
    "source, error",
    [
        ([], IndexError),
        (["A"], IndexError),
        ("", IndexError),
        ("A", IndexError),
        (None, TypeError),
        (5, TypeError),
        ({}, KeyError),
        ([[], "Value"], TypeError),
        (["A", []], TypeError),
        (["A", "Value"], ValueError),
        (["A", "Value", "VALUE", 0], ValueError),
        (["no such", "Value", "VALUE"], KeyError),
        (["A", "Value", {}], quillgen.Unsupported),
        (["A", "Value", {1: 2}], TypeError),
        (["A", "no such", ""], quillgen.Unsupported),
    ],
)
def test_link(source, error):
    document = material(node("Gamma", {"Gamma": link("A", "Value")}), node("Value", id="A"))
    document["nodes"][0]["in"]["Gamma"]["link"] = source
    if source == ["A", "Value", {}]:  # an empty type means the source's own
        assert outcome(quillgen.parts, document)[0] == "result"
    else:
        assert outcome(quillgen.parts, document)[1] is error


@pytest.mark.parametrize(
    "surface, error",
    [
        (None, quillgen.Unsupported),
        (False, TypeError),
        ((), IndexError),
        ("", IndexError),
        ({}, KeyError),
        (0, TypeError),
    ],
)
def test_surface_that_is_left_empty(surface, error):
    """An empty surface raises an error. Only `None` counts as absent."""
    document = material(node("Gamma"))
    document["out"]["surface"] = surface
    for call in CALLS.values():
        assert outcome(call, document)[1] is error


@pytest.mark.parametrize(
    "name", ["Gr\udcf6\udcdfe", "a\0b", "\0", "\ud800\udc00", "𐀀", "é\n\t'\"\\", "%s{0}$1", "x" * 100_000]
)
def test_names_of_any_characters(name):
    gamma = node("Gamma", {"Gamma": link(name, name)}, id=name + "!")
    squeeze = node("Unknown " + name, id=name, outs={name: "VALUE"})
    result = quillgen.compile(material(gamma, squeeze), "emission")
    assert result["warnings"] == [f"{name} (Unknown {name}) has no Unreal equivalent - its outputs are 0"] or result[
        "warnings"
    ] == [f"{name} (ShaderNodeUnknown {name}) has no Unreal equivalent - its outputs are 0"]
    assert [record["name"] for record in result["inputs"]] == [quillgen.param_name(name + "!", "Color")]


def test_image_name_that_has_no_utf8():
    name = "h\udcf6lz.png"
    document = material(node("TexImage", props={"image": name}), images={name: {}})
    for call in CALLS.values():
        assert outcome(call, document)[1] is UnicodeEncodeError
    with pytest.raises(UnicodeEncodeError):
        quillgen.tex_input(name)


def test_all_that_can_be_missing_is_missing_once():
    """Omits each key of every document and each item of every list, one at a time."""
    for document in base_documents().values():
        for path in paths(document):
            if path:
                holder = copy.copy(at(document, path[:-1]))
                del holder[path[-1]]
                with changed(document, path[:-1], holder) as shorter:
                    for call in CALLS.values():
                        outcome(call, shorter)
