"""Mixes of a surface with a transparent side: the surface keeps its colours, and its opacity is the factor."""

import copy

import numpy as np
import pytest
from records import document, link, node, principled, value

import custom_expression
import quillgen
from quillgen_blender import pipeline
from quillgen_blender.passes import Options, clear_mixes

CLEAR = node("Transparent BSDF", "BsdfTransparent", {"Color": value([1.0, 1.0, 1.0, 1.0], "RGBA")})
HOLE = node("Holdout", "Holdout")
GLOW = node("Emission", "Emission", {"Color": value([0.5, 0.25, 2.0, 1.0], "RGBA"), "Strength": value(1.5)})
MATT = node("Diffuse BSDF", "BsdfDiffuse", {"Color": value([0.75, 0.5, 0.25, 1.0], "RGBA"), "Roughness": value(0.25)})
METAL = node(
    "Glossy BSDF", "BsdfAnisotropic", {"Color": value([0.5, 0.25, 0.125, 1.0], "RGBA"), "Roughness": value(0.25)}
)
PAINT = principled(Base_Color=value([0.25, 0.5, 0.75, 1.0], "RGBA"), Metallic=value(0.25), Emission_Strength=value(0.5))
FADED = principled("Faded", Alpha=link("Faintness", "Value", "VALUE"), Coat_Weight=value(0.5))
OUTPUTS = {"Holdout": "Holdout", "Emission": "Emission", "Mix": "Shader", "Inner": "Shader"}
VALUES = [node(name, "Value") | {"value": 0.5} for name in ("Share", "Second", "Faintness")]


def side(name):
    return link(name, OUTPUTS.get(name, "BSDF"), "SHADER")


def mix(name, first, second, factor="Share"):
    fac = link(factor, "Value", "VALUE") if isinstance(factor, str) else value(factor)
    return node(name, "MixShader", {"Fac": fac, "Shader": side(first), "Shader_001": side(second)})


def material(*nodes):
    made = document(*copy.deepcopy([*VALUES, *nodes]), surface=["Mix", "Shader"])
    return made | {"settings": {"blend": "BLENDED"}}  # the opacity of other modes is dithered


MIXES = {
    "emission": material(CLEAR, GLOW, mix("Mix", "Transparent BSDF", "Emission")),
    "diffuse": material(CLEAR, MATT, mix("Mix", "Transparent BSDF", "Diffuse BSDF")),
    "metal": material(CLEAR, METAL, mix("Mix", "Transparent BSDF", "Glossy BSDF")),
    "transparent last": material(CLEAR, PAINT, mix("Mix", "Principled BSDF", "Transparent BSDF")),
    "holdout": material(HOLE, PAINT, mix("Mix", "Holdout", "Principled BSDF")),
    "an alpha of its own": material(CLEAR, FADED, mix("Mix", "Transparent BSDF", "Faded")),
    "a chain": material(
        CLEAR,
        PAINT,
        mix("Inner", "Principled BSDF", "Transparent BSDF", "Second"),
        mix("Mix", "Transparent BSDF", "Inner"),
    ),
    "two surfaces": material(
        CLEAR,
        PAINT,
        METAL,
        mix("Inner", "Principled BSDF", "Glossy BSDF", 0.25),
        mix("Mix", "Transparent BSDF", "Inner"),
    ),
}


def evaluated(made):
    """The record's colours, its opacity and the rest, for values from below 0 to above 1."""
    result = quillgen.compile(made)
    numbers = np.linspace(-0.25, 1.25, 13, dtype=np.float32)
    every = dict(
        zip(("Share", "Second", "Faintness"), np.stack(np.meshgrid(*[numbers] * 3)).reshape(3, -1), strict=True)
    )
    known = {record["name"] for record in result["inputs"]}
    given = {f"P_{name}__value": array for name, array in every.items() if f"P_{name}__value" in known}
    rest = {"vertex_normal": (0, 0, 1), "two_sided_sign": (1,), "cycles_normal": (0, 0, 1)}
    given |= {record["name"]: rest[record["kind"]] for record in result["inputs"] if record["kind"] in rest}
    return custom_expression.evaluate(result, given)


@pytest.mark.parametrize("name", MIXES)
def test_the_colours_are_the_same_at_each_opacity(name):
    before = copy.deepcopy(MIXES[name])
    after, notes = clear_mixes.run(MIXES[name], Options())
    assert MIXES[name] == before and notes == []
    old, new = evaluated(before), evaluated(after)
    assert np.abs(old["OutOpacity"] - new["OutOpacity"]).max() <= 1e-6
    assert np.ptp(new["OutOpacity"]) == 1.0
    whole = new["OutOpacity"].ravel() == 1.0
    assert new.keys() == old.keys()
    for output in new.keys() - {"OutOpacity"}:
        values, mixed = (found[output].reshape(len(whole), -1) for found in (new, old))
        assert np.ptp(values, axis=0).max() <= 1e-6
        assert np.abs(values[whole] - mixed[whole]).max() <= 1e-6


def test_the_option_is_off():
    made = MIXES["emission"]
    assert clear_mixes.run(made, Options(clear_mixes=False))[0] is made


def test_an_unlit_material_thins_its_colour():
    unlit = pipeline.translate("Glow", MIXES["emission"], settings=pipeline.Settings(mode="emission"))
    given = {"P_Share__value": np.float32([0.0, 0.25, 1.0])}
    colours = custom_expression.evaluate(unlit.result, given)["result"]
    assert np.abs(colours - np.outer(given["P_Share__value"], [0.75, 0.375, 3.0])).max() <= 1e-6


UNCHANGED = {
    "two surfaces": material(MATT, PAINT, mix("Mix", "Diffuse BSDF", "Principled BSDF")),
    "nothing but clear": material(CLEAR, HOLE, mix("Mix", "Transparent BSDF", "Holdout")),
    "below a mix": material(
        CLEAR, PAINT, MATT, mix("Inner", "Transparent BSDF", "Principled BSDF"), mix("Mix", "Inner", "Diffuse BSDF")
    ),
    "a sum": material(
        CLEAR,
        GLOW,
        node("Inner", "AddShader", {"Shader": side("Transparent BSDF"), "Shader_001": side("Emission")}),
        mix("Mix", "Transparent BSDF", "Inner"),
    ),
    "no shader": material(
        CLEAR,
        node(
            "Mix", "MixShader", {"Fac": value(0.5), "Shader": side("Transparent BSDF"), "Shader_001": {"t": "SHADER"}}
        ),
    ),
    "a mix of one surface and nothing": material(
        CLEAR,
        PAINT,
        node(
            "Inner", "MixShader", {"Fac": value(0.5), "Shader": side("Principled BSDF"), "Shader_001": {"t": "SHADER"}}
        ),
        mix("Mix", "Transparent BSDF", "Inner"),
    ),
    "a surface read twice": material(
        CLEAR,
        PAINT,
        mix("Inner", "Principled BSDF", "Principled BSDF"),
        mix("Mix", "Transparent BSDF", "Inner"),
    ),
    "a surface that lacks a socket": material(
        CLEAR, node("Emission", "Emission", {"Strength": value(1.0)}), mix("Mix", "Transparent BSDF", "Emission")
    ),
    "a mix that lacks its factor": material(
        CLEAR,
        PAINT,
        node("Mix", "MixShader", {"Shader": side("Transparent BSDF"), "Shader_001": side("Principled BSDF")}),
    ),
    "no mix": material(PAINT) | {"out": {"surface": ["Principled BSDF", "BSDF"]}},
    "no surface": material(PAINT) | {"out": {"surface": None}},
}


@pytest.mark.parametrize("name", UNCHANGED)
def test_what_does_not_change(name):
    assert clear_mixes.run(UNCHANGED[name], Options())[0] is UNCHANGED[name]


def test_a_clear_mix_below_a_mix_is_thinned_as_it_is():
    made = material(
        CLEAR,
        PAINT,
        MATT,
        node("Deep", "MixShader", mix("", "Transparent BSDF", "Principled BSDF", "Second")["in"]),
        node(
            "Inner",
            "MixShader",
            {**mix("", "", "Diffuse BSDF", 0.25)["in"], "Shader": link("Deep", "Shader", "SHADER")},
        ),
        mix("Mix", "Transparent BSDF", "Inner"),
    )
    after = {record["id"]: record for record in clear_mixes.run(made, Options())[0]["nodes"]}
    assert after["Deep"]["type"] == after["Inner"]["type"] == "ShaderNodeMixShader"
    shares = [after[name]["in"]["Alpha"]["link"] for name in ("Principled BSDF", "Diffuse BSDF")]
    assert shares == [["Mix", "Value", "VALUE"]] * 2


def test_a_constant_factor_stays_a_parameter():
    made = material(CLEAR, PAINT, mix("Mix", "Transparent BSDF", "Principled BSDF", 0.25))
    parameters = pipeline.translate("Paint", made).result["params"]
    assert parameters["P_Mix__Value"] == ["scalar", 0.25]
    assert "P_Principled_BSDF__Base_Color" in parameters
