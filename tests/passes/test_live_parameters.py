"""Live parameters: all, named ones or none. A dropped parameter becomes the literal that the translator would write."""

import json
import time
from pathlib import Path

import pytest
from records import document, link, node, principled, value

import quillgen
from quillgen_blender.passes import Options, finish, parameters, prepare

MATERIALS = sorted((Path(__file__).resolve().parents[2] / "examples" / "materials").glob("*.json"))
NASTY = (0.0, -0.0, 1.0, -1.0, 1e-5, 1e16, 123456789.125, float("inf"), float("-inf"), float("nan"), 0.800000011920929)


def read(path):
    made = json.loads(path.read_text())
    return made | {"settings": made.get("settings", {}) | {"displacement": "BOTH"}}


def chosen(made, named=(), **options):
    options = Options(find_range=False, **options)
    prepared, _ = prepare(made, options)
    return prepared, *finish(quillgen.compile(prepared), prepared, named, options)


@pytest.mark.parametrize("path", MATERIALS, ids=lambda path: path.stem)
def test_literals_are_those_of_the_translator(path):
    """If no parameter is kept, texts and inputs equal those that the translator makes without parameters."""
    prepared, result, _ = chosen(read(path), parameters="none")
    assert result == quillgen.compile(prepared, "surface", False)


def test_there_is_a_material_of_every_kind():
    assert len(MATERIALS) >= 22


def test_the_translators_own_numbers():
    """Numbers of every form, as scalars and as components of vectors and ramps."""
    for number in NASTY:
        nodes = (
            node("Value", "Value", {}, value=number),
            node("Math", "Math", {"Value": link("Value", "Value", "VALUE"), "Value_001": value(number)}),
            node("RGB", "RGB", {}, color=[number, 0.5, number, 1.0]),
            node("Color Ramp", "ValToRGB", {"Fac": link("Math", "Value", "VALUE")})
            | {"ramp": {"stops": [[0.0, [number] * 4], [0.5, [0.5] * 4]], "interp": "LINEAR", "mode": "HSV"}},
        )
        shader = principled(
            Base_Color=link("RGB", "Color", "RGBA"),
            Alpha=link("Color Ramp", "Alpha", "VALUE"),
            Emission_Color=link("Color Ramp", "Color", "RGBA"),
        )
        made = document(*nodes, shader, surface=["Principled BSDF", "BSDF"])
        result, _ = finish(quillgen.compile(made), made, (), Options(parameters="none"))
        assert result["code"] == quillgen.compile(made, "surface", False)["code"]


def two_alike():
    """A material with ids of which one is a prefix of the other."""
    nodes = (
        node("V", "Math", {"Value": value(0.25), "Value_001": value(2.0)}, operation="MULTIPLY"),
        node("V.0", "Math", {"Value": value(0.5), "Value_001": link("V", "Value", "VALUE")}, operation="ADD"),
        node("Tint", "RGB", {}, color=[0.1, 0.2, 0.3, 1.0]),
        node("Gloss", "Value", {}, value=0.75),
    )
    shader = principled(
        Metallic=link("V.0", "Value", "VALUE"),
        Base_Color=link("Tint", "Color", "RGBA"),
        Roughness=link("Gloss", "Value", "VALUE"),
        IOR=value(1.33) | {"named": True},
    )
    return document(*nodes, shader, surface=["Principled BSDF", "BSDF"])


def test_named_ones_stay_and_all_others_become_literals():
    _, result, notes = chosen(two_alike(), ["P_V__Value", "P_Nobody__Knows"], parameters="named")
    kept = {"P_Tint__color", "P_Gloss__value", "P_Principled_BSDF__IOR", "P_V__Value"}
    assert set(result["params"]) == kept == {entry["name"] for entry in result["inputs"] if "default" in entry}
    code = result["code"]
    assert "P_V__Value;" in code and "P_V_0__Value" not in code and " = 0.5;" in code and "P_Tint__color.xyz" in code
    assert notes == []


def test_auto_takes_all_up_to_the_limit_and_tells_it_above():
    total = len(chosen(two_alike(), parameters="all")[1]["params"])
    assert len(chosen(two_alike(), parameter_limit=total)[1]["params"]) == total
    _, result, notes = chosen(two_alike(), parameter_limit=total - 1)
    assert len(result["params"]) == 3 and len(notes) == 1
    assert notes[0].loss == "info" and f"{total} values" in notes[0].text and f"limit of {total - 1}" in notes[0].text
    assert "the 3 named ones" in notes[0].text


def test_all_is_the_translators_own_result():
    made = two_alike()
    plain = quillgen.compile(made)
    assert finish(plain, made, (), Options(parameters="all"))[0] is plain


def test_the_displacements_text_and_inputs_too():
    made = read(next(path for path in MATERIALS if path.stem == "lava"))
    _, result, _ = chosen(made, parameters="named")
    for part in (result, result["displacement"]):
        names = {entry["name"] for entry in part["inputs"] if entry["kind"] in ("scalar", "vector")}
        assert names <= set(result["params"])
        assert {found[0] for found in parameters.PARAMETER.findall(part["code"])} == names


def test_names_are_the_translators():
    for identity, socket in (("Mix.001", "Color 1"), ("Größe/ä", "Fac"), ("A", "")):
        assert parameters.parameter_name(identity, socket) == quillgen.param_name(identity, socket)


def test_only_whole_identifiers_are_parameters():
    result = {"code": "aP_V + P_V.xyz + P_V + P_Vx + P_V_", "inputs": [], "displacement": None}
    result["params"] = {"P_V": ["vector", [1.0, 2.0, 3.0, 4.0]]}
    changed = parameters.with_literals(result, {"P_V"})["code"]
    assert changed == "aP_V + float3(1.0, 2.0, 3.0) + float4(1.0, 2.0, 3.0, 4.0) + P_Vx + P_V_"


def test_half_a_megabyte_takes_a_blink():
    """There is one pass over the text, so the time doesn't depend on text size times parameters."""
    line = "  float v{0} = (P_Math_{0}__Value * P_Mix_{0}__Color.xyz).x + L.noise(P_Math_{0}__Value_001, v{1});"
    count = 5500
    code = "\n".join(line.format(number, number - 1) for number in range(1, count))
    params = {}
    for number in range(1, count):
        params |= {f"P_Math_{number}__Value": ["scalar", 0.5], f"P_Math_{number}__Value_001": ["scalar", 2.0]}
        params[f"P_Mix_{number}__Color"] = ["vector", [0.1, 0.2, 0.3, 1.0]]
    result = {"code": code, "inputs": [{"name": name} for name in params], "params": params, "displacement": None}
    start = time.process_time()
    found = parameters.with_literals(result, set(params))
    assert time.process_time() - start < 0.5  # 30 ms on an idle machine
    assert len(code) > 500_000 and "P_" not in found["code"] and found["inputs"] == []
