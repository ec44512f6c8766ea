"""Labels, groups and values of parameters."""

import math

import quillgen
from quillgen_blender.labels import Label
from quillgen_blender.write import parameters


def scalar(default=1.0):
    return {"t": "VALUE", "v": default}


def math_node(name, **links):
    sockets = {"Value": scalar(), "Value_001": scalar(2.0)}
    for socket, source in links.items():
        sockets[socket] = {"t": "VALUE", "link": [source, "Value", "VALUE"]}
    return {
        "id": name,
        "type": "ShaderNodeMath",
        "in": sockets,
        "outs": {"Value": "VALUE"},
        "props": {"operation": "ADD"},
    }


def material(*nodes):
    """A material that emits the last node's value."""
    shader = {
        "id": "Emission",
        "type": "ShaderNodeEmission",
        "in": {
            "Color": {"t": "RGBA", "v": [1, 1, 1, 1]},
            "Strength": {"t": "VALUE", "link": [nodes[-1]["id"], "Value", "VALUE"]},
        },
        "outs": {"Emission": "SHADER"},
        "props": {},
    }
    return {"nodes": [shader, *nodes], "out": {"surface": ["Emission", "Emission"]}}


def records(document, labels=None, before=()):
    return parameters.records(quillgen.compile(document), document, labels or {}, before)


def test_names_are_those_of_the_translator():
    for node, socket in (("Mix.001", "Color 1"), ("G\u00e4nge/Noise", "W"), ("a b", "stop0_pos")):
        assert parameters.param_name(node, socket) == quillgen.param_name(node, socket)


def test_every_parameter_has_a_record_that_leads_to_its_socket():
    found = {row["name"]: row for row in records(material(math_node("Math")))}
    assert set(found) == set(quillgen.compile(material(math_node("Math")))["params"])
    row = found["P_Math__Value_001"]
    assert (row["node"], row["socket"], row["kind"], row["default"]) == ("Math", "Value_001", "scalar", 2.0)
    assert found["P_Emission__Color"]["color"] is True and row["color"] is False


def test_values_and_ramps_have_words_of_their_own():
    value = {"id": "Value", "type": "ShaderNodeValue", "in": {}, "outs": {"Value": "VALUE"}, "props": {"value": 3.0}}
    assert records(material(value))[-1]["label"] == "Value"
    ramp = {
        "id": "Color Ramp",
        "type": "ShaderNodeValToRGB",
        "in": {"Fac": scalar(0.5)},
        "outs": {"Color": "RGBA", "Alpha": "VALUE"},
        "props": {},
        "ramp": {"stops": [[0.0, [0, 0, 0, 1]], [1.0, [1, 1, 1, 1]]], "interp": "LINEAR", "mode": "RGB"},
    }
    document = material(ramp)
    document["nodes"][0]["in"]["Strength"]["link"] = ["Color Ramp", "Color", "RGBA"]
    assert [row["label"] for row in records(document) if row["node"] == "Color Ramp"] == [
        "Color Ramp / Fac",
        "Color Ramp / Stop 1 Position",
        "Color Ramp / Stop 1 Color",
        "Color Ramp / Stop 2 Position",
        "Color Ramp / Stop 2 Color",
    ]


def test_labels_are_short_where_they_may_be_and_exact_where_they_must():
    alone = records(material(math_node("Math.003")))
    assert {row["label"] for row in alone if row["node"] == "Math.003"} == {"Math / Value", "Math / Value_001"}
    several = records(
        material(math_node("Math"), math_node("Layer/Math", Value="Math"), math_node("math.001", Value="Layer/Math"))
    )
    by_name = {row["name"]: row["label"] for row in several}
    assert by_name["P_Math__Value_001"] == "Math / Value_001"
    assert by_name["P_Layer_Math__Value_001"] == "Layer / Math / Value_001"
    assert by_name["P_math_001__Value_001"] == "math.001 / Value_001"
    assert len({label.casefold() for label in by_name.values()}) == len(by_name)


def test_one_more_node_renames_no_other_parameter():
    first = records(material(math_node("Math.001")))
    second = records(material(math_node("Math"), math_node("Math.001", Value="Math")), before=first)
    labels = {row["name"]: row["label"] for row in second}
    assert labels["P_Math_001__Value_001"] == "Math / Value_001"
    assert labels["P_Math__Value_001"] != "Math / Value_001"


def test_a_label_of_the_artist_replaces_the_last_one():
    document = material(math_node("Math"))
    before = records(document)
    labels = {
        ("Math", "Value"): Label("Rust", "Math", ("Worn",), "Amount", minimum=0.0, maximum=1.0, description="How much")
    }
    row = next(row for row in records(document, labels, before) if row["name"] == "P_Math__Value")
    assert (row["label"], row["group"]) == ("Rust / Amount", "Worn / Rust")
    assert (row["min"], row["max"], row["description"]) == (0.0, 1.0, "How much")


def test_limits_that_are_none_stay_away():
    assert parameters.limit(3.4e38) is None and parameters.limit(-math.inf) is None and parameters.limit(None) is None
    assert parameters.limit(-1000) == -1000.0


def test_numbers_that_json_cannot_hold_become_those_of_the_text():
    assert parameters.finite([math.inf, -math.inf, math.nan, 1]) == [3.402823466e38, -3.402823466e38, 0.0, 1.0]
