"""Colour ramps."""

import numpy as np
import pytest

import quillgen
from edge_cases import body, translated, unsupported, value_of
from golden.documents import link, material, node

BLACK, WHITE = [0.0, 0.0, 0.0, 1.0], [1.0, 1.0, 1.0, 0.5]
TWO = [[0.25, BLACK], [0.75, WHITE]]
C0, C1 = "float4(0.0, 0.0, 0.0, 1.0)", "float4(1.0, 1.0, 1.0, 0.5)"
T = "saturate((v1 - 0.25) / max(0.75 - 0.25, 1e-10))"


def ramp(stops, interp="LINEAR", mode="RGB", **settings):
    return node("ValToRGB", ramp={"stops": stops, "interp": interp, "mode": mode}, **settings)


def test_one_stop():
    for interp in ("LINEAR", "CARDINAL"):
        result = translated(ramp(TWO[1:], interp, "HSV"))
        assert result["body"] == ["float v1 = 0.6;", f"float4 rc2 = {C1};"]
        assert (result["ret"], result["need"], result["warnings"]) == ("rc2.rgb", set(), [])


def test_one_stop_has_its_parameters_all_the_same():
    result = quillgen.compile(material(ramp(TWO[1:])), "emission")
    assert result["params"] == {
        "P_ValToRGB__Fac": ["scalar", 0.6],
        "P_ValToRGB__stop0_pos": ["scalar", 0.75],
        "P_ValToRGB__stop0_col": ["vector", WHITE],
    }
    assert "stop0_pos" not in result["code"] and "float4 rc2 = P_ValToRGB__stop0_col;" in result["code"]
    assert "P_ValToRGB__stop0_pos" in [i["name"] for i in result["inputs"]]


def test_two_stops():
    assert body(ramp(TWO))[1:] == [
        f"float4 rc2 = {C0};",
        f"if (v1 >= 0.75) rc2 = {C1};",
        f"if (v1 >= 0.25 && v1 < 0.75) rc2 = lerp({C0}, {C1}, {T});",
    ]


@pytest.mark.parametrize("factor, wanted", [(0.4, 0.0), (0.5, 1.0), (0.6, 1.0)])
@pytest.mark.parametrize("interp, mode", [("LINEAR", "RGB"), ("EASE", "HSL"), ("CONSTANT", "HSV")])
def test_two_stops_at_one_place(interp, mode, factor, wanted):
    n = ramp([[0.5, BLACK], [0.5, [1, 1, 1, 1]]], interp, mode)
    n["in"]["Fac"]["v"] = factor
    got = value_of(n)[0]
    np.testing.assert_array_equal(got, [wanted] * 3)
    assert ("max(0.5 - 0.5, 1e-10)" in "".join(body(n))) == (interp != "CONSTANT")


@pytest.mark.parametrize("mode, to, back", [("HSV", "rgb_to_hsv", "hsv_to_rgb"), ("HSL", "rgb_to_hsl", "hsl_to_rgb")])
def test_colour_models(mode, to, back):
    blend = "float4(L.{b}(lerp(L.{to}({0}.rgb), L.{to}({1}.rgb), {t})), lerp({0}.a, {1}.a, {t}))"
    literal = translated(ramp(TWO, mode=mode))
    assert literal["need"] == {to, back}
    text = blend.format(C0, C1, b=back, to=to, t=T)
    assert literal["body"][-1] == f"if (v1 >= 0.25 && v1 < 0.75) rc2 = {text};"
    a, b, ca, cb = (f"P_ValToRGB__stop{j}_{what}" for what in ("pos", "col") for j in (0, 1))
    text = blend.format(ca, cb, b=back, to=to, t=f"saturate((v1 - {a}) / max({b} - {a}, 1e-10))")
    assert body(ramp(TWO, mode=mode), use_params=True)[-1] == f"if (v1 >= {a} && v1 < {b}) rc2 = {text};"


@pytest.mark.parametrize("mode", ["RGB", "HSV", "HSL"])
def test_constant_knows_no_colour_model(mode):
    result = translated(ramp(TWO, "CONSTANT", mode))
    assert result["body"][-1] == f"if (v1 >= 0.25 && v1 < 0.75) rc2 = {C0};"
    assert result["need"] == set() and result["warnings"] == []


@pytest.mark.parametrize("interp", ["B_SPLINE", "CARDINAL"])
@pytest.mark.parametrize("mode", ["RGB", "HSV"])
def test_splines_are_linear_with_one_warning(interp, mode):
    result = translated(ramp([*TWO, [1.0, BLACK]], interp, mode))
    assert result["warnings"] == [f"ValToRGB: Color Ramp {interp} interpolation is evaluated as linear"]
    assert result["body"] == body(ramp([*TWO, [1.0, BLACK]], "LINEAR", mode))
    assert len(translated(ramp(TWO, interp))["warnings"]) == 1


def test_ease_holds_its_text_three_times():
    ease = f"(3.0 - 2.0 * ({T})) * ({T}) * ({T})"
    assert body(ramp(TWO, "EASE"))[-1] == f"if (v1 >= 0.25 && v1 < 0.75) rc2 = lerp({C0}, {C1}, {ease});"
    assert body(ramp(TWO, "EASE", "HSV"))[-1].count(T) == 6


def test_unknown_words_are_linear():
    assert translated(ramp(TWO, "NO_SUCH_WORD", "NO_SUCH_WORD")) == translated(ramp(TWO))


@pytest.mark.parametrize("factor, wanted", [(-1.0, 0.0), (0.25, 0.0), (0.5, 0.5), (0.75, 1.0), (9.0, 1.0)])
def test_value_at_run_time(factor, wanted):
    n = ramp(TWO)
    n["in"]["Fac"]["v"] = factor
    np.testing.assert_allclose(value_of(n)[0], [wanted] * 3, rtol=1e-6)


def test_alpha():
    assert translated(ramp(TWO), output="Alpha")["ret"] == "((float3)(rc2.a))"


def test_no_stops():
    with pytest.raises(IndexError):
        body(ramp([]))


@pytest.mark.parametrize("key", ["stops", "interp", "mode"])
def test_mandatory_keys(key):
    n = ramp(TWO)
    del n["ramp"][key]
    with pytest.raises(KeyError, match=f"^'{key}'$"):
        body(n)
    del n["ramp"]
    with pytest.raises(KeyError, match="^'ramp'$"):
        body(n)


@pytest.mark.parametrize("colour", [[], [1.0, 2.0, 3.0], [1.0, 2.0, 3.0, 4.0, 5.0]])
def test_colours_of_other_lengths(colour):
    n = ramp([[0.0, colour], [1.0, BLACK]])
    assert quillgen.compile(material(n), "emission")["params"]["P_ValToRGB__stop0_col"] == ["vector", colour]
    with pytest.raises(TypeError):
        body(n)


def test_factor_is_mandatory():
    with unsupported("ShaderNodeValToRGB: no input Fac"):
        body(node("ValToRGB", without=["Fac"]))


def test_order_of_parameters():
    result = quillgen.compile(material(ramp(TWO)), "emission")
    assert list(result["params"]) == [
        "P_ValToRGB__" + name for name in ("Fac", "stop0_pos", "stop1_pos", "stop0_col", "stop1_col")
    ]


def test_unread_ramp_has_no_parameters():
    n = node("Math", {"Value": link(node("Value"))})
    assert "stop0_pos" not in str(quillgen.compile(material(n, node("Value"), ramp(TWO)), "emission")["params"])
