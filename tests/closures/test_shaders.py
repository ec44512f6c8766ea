"""Shader nodes: the flags, the statements that depend on them, the warnings."""

import numpy as np
import pytest

import custom_expression
from edge_cases import statements, surface, translated, unsupported
from golden.documents import bare, link, material, node

NOT_REPRODUCED = "BsdfPrincipled: Principled {} is not reproduced in Unreal (Default Lit)"
NUMBER = node("Value", props={"value": 0.0})


def principled(**sockets):
    """The result of a Principled BSDF with these sockets. Underscores stand for spaces in their names."""
    return surface(node("BsdfPrincipled", {k.replace("_", " "): v for k, v in sockets.items()}), NUMBER)


def has(result, output):
    return output in [o["name"] for o in result["outputs"]]


ALPHA, EMISSION = "bsdf1.alpha = saturate({});", "bsdf1.emission = float3(0.0, 0.0, 0.0) * {};"


@pytest.mark.parametrize(
    "entry, flag, text",
    [
        (1.0, False, "1.0"),
        (1, False, "1.0"),
        (0.999, True, "0.999"),
        ({"t": "VALUE"}, False, "0.0"),
        ({"t": "VALUE", "v": None}, False, "0.0"),
        (2.0, False, "2.0"),
        (link(NUMBER), True, "0.0"),
    ],
)
def test_alpha(entry, flag, text):
    result = principled(Alpha=entry)
    assert has(result, "OutOpacity") == flag and ("clip" in result["material"]) == flag
    assert ALPHA.format(text) in statements(result)


@pytest.mark.parametrize(
    "strength, flag, text",
    [
        (1.0, True, "1.0"),
        (0.0, False, "0.0"),
        (-1.0, True, "-1.0"),
        ({"t": "VALUE"}, False, "0.0"),
        (link(NUMBER), True, "0.0"),
    ],
)
def test_emission(strength, flag, text):
    black = (0.0, 0.0, 0.0, 1.0)
    result = principled(Emission_Color=black, Emission_Strength=strength, Alpha=1.0)
    assert has(result, "OutEmissive") == flag
    assert EMISSION.format(text) in statements(result) and ALPHA.format("1.0") in statements(result)


def test_linked_emission_colour_without_strength():
    assert has(principled(Emission_Color=link(NUMBER), Emission_Strength=0.0), "OutEmissive")


@pytest.mark.parametrize(
    "weight, flag",
    [
        (0.0, False),
        (0.5, True),
        (link(NUMBER), True),
        ({"t": "VALUE"}, False),
        ({"t": "VALUE", "v": None}, False),
        (-1.0, False),
    ],
)
def test_coat(weight, flag):
    result = principled(Coat_Weight=weight)
    assert has(result, "OutCoat") == has(result, "OutCoatRoughness") == flag
    assert result["material"]["shading"] == ("clear_coat" if flag else "default_lit")
    assert ("bsdf1.coat = saturate(" in result["code"]) == flag


def test_sockets_of_an_unused_coat_may_be_absent():
    surface(node("BsdfPrincipled", without=["Coat Weight", "Coat Roughness"]))
    surface(node("BsdfPrincipled", without=["Coat Roughness"]))
    with unsupported("ShaderNodeBsdfPrincipled: no input Coat Roughness"):
        surface(node("BsdfPrincipled", {"Coat Weight": 1.0}, without=["Coat Roughness"]))


@pytest.mark.parametrize(
    "socket, word",
    [("Subsurface_Weight", "subsurface"), ("Transmission_Weight", "transmission"), ("Sheen_Weight", "sheen")],
)
def test_warning_of_a_weight(socket, word):
    for value in (0.5, link(NUMBER)):
        assert principled(**{socket: value})["warnings"] == [NOT_REPRODUCED.format(word)]
    assert principled(**{socket: 0.0})["warnings"] == []


def test_warnings_come_in_their_order():
    result = principled(Sheen_Weight=1, Transmission_Weight=0.1, Subsurface_Weight=link(NUMBER))
    assert result["warnings"] == [NOT_REPRODUCED.format(w) for w in ("subsurface", "transmission", "sheen")]


def test_what_feeds_a_warned_weight_is_not_evaluated():
    loud = node("Wireframe")
    result = surface(node("BsdfPrincipled", {"Sheen Weight": link(loud)}), loud)
    assert result["warnings"] == [NOT_REPRODUCED.format("sheen")]


@pytest.mark.parametrize(
    "ior, level, specular",
    [(1.0, 1.0, 0.0), (0.5, 1.0, 0.0), (1.5, 0.5, 0.5), (1.5, 1.0, 1.0), (4.0, 0.5, 1.0), (1.5, 0.25, 0.25)],
)
def test_specular(ior, level, specular):
    result = principled(IOR=ior, Specular_IOR_Level=level)
    outputs = custom_expression.evaluate(result, {"cnorm": (0.0, 0.0, 1.0), "tsign": 1.0})
    np.testing.assert_allclose(outputs["OutSpecular"], specular, atol=1e-6)


def test_specular_level_may_be_absent():
    result = surface(node("BsdfPrincipled", without=["Specular IOR Level"]))
    assert " * 2.0 * (0.5) / 0.08);" in result["code"]


def test_metal_reads_base_colour_unless_it_has_a_colour():
    tint = (0.1, 0.2, 0.3, 1.0)
    assert "bsdf1.base = float3(0.8, 0.5, 0.25);" in surface(node("BsdfMetallic"))["code"]
    assert "bsdf1.base = float3(0.1, 0.2, 0.3);" in surface(node("BsdfMetallic", {"Color": tint}))["code"]
    for kind in ("BsdfMetallic", "BsdfAnisotropic"):
        with unsupported(f"ShaderNode{kind}: no input Base Color"):
            surface(node(kind, without=["Color", "Base Color"]))


def test_holdout_has_the_output_of_its_name():
    assert surface(node("Holdout"))["material"]["blend"] == "masked"
    with unsupported("ShaderNodeHoldout has no output BSDF"):
        surface(node("Holdout"), surface=("Holdout", "BSDF"))


@pytest.mark.parametrize("factor, got", [(-1.0, 0.0), (0.25, 0.25), (2.0, 1.0)])
def test_factor_of_a_mix_is_clamped(factor, got):
    white = node("BsdfDiffuse", {"Color": (1.0, 1.0, 1.0, 1.0)})
    black = node("BsdfDiffuse", {"Color": (0.0, 0.0, 0.0, 1.0)}, id="Black")
    mix = node("MixShader", {"Fac": factor, "Shader": link(black), "Shader_001": link(white)})
    result = surface(mix, white, black)
    values = custom_expression.evaluate(result, {"cnorm": (0.0, 0.0, 1.0), "tsign": 1.0})
    np.testing.assert_allclose(values["result"][0], got, rtol=1e-6)


def test_factor_stands_ahead_of_both_branches():
    paint = node("BsdfPrincipled")
    lines = translated(node("MixShader", {"Shader": link(paint)}), paint, mode="surface")["body"]
    assert lines[0] == "float v1 = saturate(0.3);"
    assert "QWKClosure v4 = L.closure_mix(bsdf2, L.closure_none(), v1);" in lines


def test_unlinked_shader_of_a_mix_has_the_defaults():
    glass = node("BsdfTransparent")
    mix = node("MixShader", {"Fac": 0.5, "Shader_001": link(glass)})
    result = surface(mix, glass, settings={"blend": "BLENDED"})
    got = custom_expression.evaluate(result, {"cnorm": (0.0, 0.0, 1.0), "tsign": 1.0})
    assert (got["OutOpacity"][0], got["OutSpecular"][0], got["OutRoughness"][0]) == (0.5, 0.25, 0.5)


def test_flags_hold_whatever_the_weights_are():
    glass, glow, paint = node("BsdfTransparent"), node("Emission"), node("BsdfPrincipled")
    inner = node("MixShader", {"Fac": 0.0, "Shader": link(paint), "Shader_001": link(glass)}, id="Inner")
    outer = node("MixShader", {"Fac": 0.0, "Shader": link(inner), "Shader_001": link(glow)}, id="Outer")
    result = surface(outer, inner, paint, glow, glass)
    assert has(result, "OutOpacity") and has(result, "OutEmissive")


@pytest.mark.parametrize("kind", ["BsdfPrincipled", "BsdfDiffuse", "BsdfAnisotropic"])
def test_normal_is_stated_only_where_it_is_linked(kind):
    normal = node("Normal")
    assert "has_normal = 1.0" not in surface(node(kind, {"Normal": (1.0, 0.0, 0.0)}))["code"]
    linked = surface(node(kind, {"Normal": link(normal)}), normal)
    assert "bsdf1.normal = float3(0.0, 0.6, 0.8); bsdf1.has_normal = 1.0;" in statements(linked)


@pytest.mark.parametrize("kind, output", [("Emission", "Emission"), ("Background", "Background")])
def test_emission_is_pasted_and_always_flagged(kind, output):
    dark = node(kind, {"Color": (0.0, 0.0, 0.0, 1.0), "Strength": 0.0})
    result = surface(dark, surface=(dark, output))
    assert has(result, "OutEmissive")
    assert statements(result)[0] == "QWKClosure surf1 = L.closure_emission(float3(0.0, 0.0, 0.0) * 0.0);"


@pytest.mark.parametrize(
    "socket", ["Base Color", "Metallic", "Roughness", "IOR", "Emission Color", "Emission Strength", "Alpha"]
)
def test_mandatory_sockets_of_the_principled_shader(socket):
    with unsupported(f"ShaderNodeBsdfPrincipled: no input {socket}"):
        surface(node("BsdfPrincipled", without=[socket]))


def test_other_sockets_need_not_be_there():
    sockets = ("Base Color", "Metallic", "Roughness", "IOR", "Emission Color", "Emission Strength", "Alpha")
    full = node("BsdfPrincipled")
    n = bare("BsdfPrincipled", {name: full["in"][name] for name in sockets})
    assert set(n["in"]) == set(sockets) and surface(n) == surface({**full, "in": n["in"]})
    assert material(n)["out"]["surface"] == ["BsdfPrincipled", "BSDF"]
