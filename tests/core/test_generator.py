"""Evaluation on demand: order and numbering of variables, and which nodes write statements."""

import pytest

import quillgen
from edge_cases import ZERO, body, statements, surface, translated, unsupported
from golden.documents import link, material, node


def test_the_later_of_two_records_with_one_id():
    reads = node("Math", {"Value": link("Source", "Green", "VALUE")})
    first = node("SeparateColor", {"Color": (9.0, 9.0, 9.0, 1.0)}, id="Source")
    later = node("CombineColor", id="Source", outs={"Green": "VALUE"})
    with unsupported("ShaderNodeCombineColor has no output Green"):
        translated(reads, first, later)
    assert body(reads, later, first)[0] == "float3 v1 = float3(9.0, 9.0, 9.0);"


def test_both_records_with_one_id_count_as_readers():
    coordinates = node("TexCoord")
    first, later = node("Math", {"Value": link(coordinates, "Generated")}, id="Twice"), node("Value", id="Twice")
    assert len(body(coordinates, later, output="UV")) == 1
    assert len(body(coordinates, first, later, output="UV")) == 2, "Generated is read too: it is a variable"


def test_output_that_only_an_unreached_node_reads_is_materialised():
    source = node("LayerWeight")
    reader = node("Math", {"Value": link(source, "Fresnel")})
    alone, read = body(source, output="Facing"), body(source, reader, output="Facing")
    assert len(read) == len(alone) + 1
    assert sum("L.fresnel_dielectric_cos" in line for line in alone) == 0
    assert sum("L.fresnel_dielectric_cos" in line for line in read) == 1


def test_unread_results_cost_nothing_but_variables_of_the_handler_stand():
    lines = body(node("LayerWeight"), output="Facing")
    assert not any("fresnel" in line for line in lines)
    assert any(line.endswith("= max(1.0 - v1, 1e-5);") for line in lines), "eta serves the unread Fresnel alone"


def test_two_outputs_of_one_node_run_its_handler_once():
    parts = node("SeparateXYZ")
    both = node("Math", {"Value": link(parts, "X"), "Value_001": link(parts, "Y")})
    assert body(both, parts) == [
        "float3 v1 = float3(0.5, -1.5, 2.5);",
        "float v2 = v1.x;",
        "float v3 = v1.y;",
        "float v4 = 0.125;",
        "float v5 = v2 + v3;",
    ]


UNKNOWN = {"Color": "RGBA", "Fac": "VALUE", "BSDF": "SHADER", "Odd": "STRING"}


def test_outputs_of_an_unknown_type():
    odd = node("Odd", outs=UNKNOWN, id="Odd one")
    warning = "Odd one (ShaderNodeOdd) has no Unreal equivalent - its outputs are 0"
    for output, text in {
        "Color": ZERO,
        "Fac": "((float3)(0.0))",
        "BSDF": "(L.closure_none()).emission",
        "Odd": "((float3)(0.0))",
    }.items():
        result = translated(odd, output=output)
        assert (result["ret"], result["body"], result["warnings"]) == (text, [], [warning])
    bsdf = node(
        "BsdfPrincipled",
        {"Base Color": link(odd, "Color"), "Metallic": link(odd, "Fac"), "Roughness": link(odd, "Fac")},
    )
    result = surface(node("MixShader", {"Shader": link(bsdf), "Shader_001": link(odd, "BSDF")}), bsdf, odd)
    assert result["warnings"] == [warning]
    assert "bsdf2.base = float3(0.0, 0.0, 0.0);" in statements(result)
    assert "bsdf2.metallic = saturate(0.0);" in statements(result)
    assert "QWKClosure v4 = L.closure_mix(bsdf2, L.closure_none(), v1);" in statements(result)


def test_unknown_type_without_outputs():
    with unsupported("ShaderNodeOdd has no output Color"):
        translated(node("Odd", outs=False), output="Color")


def test_cycle():
    a = node("Math", {"Value": link("B", "Value", "VALUE")}, id="A")
    b = node("VectorMath", {"Vector": link("A", "Value", "VALUE")}, id="B")
    with unsupported("ShaderNodeMath has no output Value"):
        translated(a, b)
    with unsupported("ShaderNodeVectorMath has no output Value"):
        translated(b, a)


def test_value_as_surface():
    result = quillgen.compile(material(node("Math")))
    assert "QWKClosure surf5 = L.closure_emission(((float3)(v4)));" in statements(result)
    assert "OutEmissive" not in result["code"]
    assert statements(result)[-1] == "return surf5.base;"


def test_closure_as_surface_in_mode_emission():
    assert translated(node("BsdfPrincipled"))["ret"] == "(bsdf1).emission"
    assert translated(node("Emission"))["ret"] == "(L.closure_emission(float3(0.8, 0.5, 0.25) * 2.0)).emission"


def test_colour_as_surface_in_mode_emission():
    result = translated(node("RGB"), use_params=True)
    assert result["ret"] == "P_RGB__color.xyz" and result["body"] == []


def test_unknown_shader_as_surface():
    result = surface(node("Odd", outs={"BSDF": "SHADER"}), surface=("Odd", "BSDF"))
    assert statements(result)[0] == "QWKClosure surf1 = L.closure_none();"
    assert len(result["warnings"]) == 1


def test_output_that_the_node_has_not():
    with unsupported("ShaderNodeMath has no output Result"):
        translated(node("Math"), output="Result")


@pytest.mark.parametrize("mode", ["surface", "displacement", "NO_SUCH_WORD"])
def test_every_mode_but_emission_makes_a_closure(mode):
    assert translated(node("RGB"), mode=mode)["ret"] == "surf1.base"
