"""Shaders that the translator doesn't support are replaced by the closest that it does."""

import copy
import math
import re

import pytest
from records import document, link, node, principled, value

import quillgen
from quillgen_blender.passes import Options, finish, luma, prepare, shaders, support

RED = [0.8, 0.1, 0.2, 1.0]
LITERALS = Options(parameters="none")


def colour(rgb):
    return value(list(rgb), "RGBA")


def surface(*nodes, output="BSDF"):
    return document(*nodes, surface=[nodes[-1]["id"], output])


def bsdf(kind, **inputs):
    sockets = {"Color": colour(RED), "Roughness": value(0.3), "IOR": value(1.45)}
    return node(kind, kind, sockets | {name.replace("_", " "): entry for name, entry in inputs.items()})


def translated(made):
    prepared, notes = prepare(made, LITERALS)
    result, _ = finish(quillgen.compile(prepared), prepared, (), LITERALS)
    return result, notes


def shaders_of(made, options=LITERALS):
    after, _ = shaders.run(made, options)
    return {record["id"]: record for record in after["nodes"]}, after


def grey(rgb):
    return sum(part * weight for part, weight in zip(rgb, luma.WEIGHTS_5, strict=False))


@pytest.mark.parametrize(
    ("kind", "output"),
    [("BsdfTranslucent", "BSDF"), ("SubsurfaceScattering", "BSSRDF"), ("BsdfToon", "BSDF"), ("BsdfHair", "BSDF")],
)
def test_the_colour_counts_as_base_colour(kind, output):
    other = node("Diffuse BSDF", "BsdfDiffuse", {"Color": colour([0.0, 1.0, 0.0, 1.0]), "Roughness": value(0.0)})
    mix = node(
        "Mix Shader",
        "MixShader",
        {
            "Fac": value(0.7),
            "Shader": link("Diffuse BSDF", "BSDF", "SHADER"),
            "Shader_001": link(kind, output, "SHADER"),
        },
    )
    made = surface(bsdf(kind) | {"outs": {output: "SHADER"}}, other, mix, output="Shader")
    kept = copy.deepcopy(made)
    assert "has no Unreal equivalent" in quillgen.compile(made)["warnings"][0]
    result, notes = translated(made)
    assert made == kept
    assert result["warnings"] == [] and "base = float3(0.8, 0.1, 0.2)" in result["code"]
    assert [(told.node, told.loss) for told in notes] == [(kind, "near")]
    assert notes[0].text == support.support(f"ShaderNode{kind}").text


def test_glass_is_the_clearer_the_brighter_its_colour():
    found, after = shaders_of(surface(bsdf("BsdfGlass")))
    shader = found["BsdfGlass"]
    assert shader["type"] == "ShaderNodeBsdfPrincipled"
    assert shader["in"]["Base Color"] == colour(RED) and shader["in"]["Roughness"] == value(0.3)
    assert shader["in"]["IOR"] == value(1.45)
    assert shader["in"]["Alpha"]["v"] == pytest.approx(1 - 0.8 * grey(RED) ** 2)
    assert after["settings"]["blend"] == "BLENDED"  # there is no opaque shader in the material
    white, _ = shaders_of(surface(bsdf("BsdfGlass", Color=colour([1.0] * 4))))
    assert white["BsdfGlass"]["in"]["Alpha"]["v"] == pytest.approx(0.2, abs=1e-5)
    refracting, _ = shaders_of(surface(bsdf("BsdfRefraction")))
    assert refracting["BsdfRefraction"]["in"]["Specular IOR Level"]["v"] == 0.0


def test_a_textured_glass_follows_its_texture():
    image = node("RGB", "RGB", {}, color=RED)
    result, _ = translated(surface(image, bsdf("BsdfGlass", Color=link("RGB", "Color", "RGBA"))))
    assert re.search(r"float v\d+ = dot\(v\d+, v\d+\)", result["code"])
    assert result["material"]["blend"] == "translucent" and result["warnings"] == []


@pytest.mark.parametrize("kind", ["BsdfGlass", "BsdfTransparent"])
def test_a_linked_vector_has_the_brightness_of_a_colour(kind):
    """A colour socket takes a vector as a colour, and its brightness is no mean of the components."""
    source = node("Combine XYZ", "CombineXYZ", {axis: value(part) for axis, part in zip("XYZ", RED, strict=False)})
    codes = []
    for seen in ("VECTOR", "RGBA"):
        shader = bsdf(kind, Color=link("Combine XYZ", "Vector", seen, "RGBA"))
        codes.append(translated(surface(source, shader))[0]["code"])
    assert codes[0] == codes[1]


def test_glass_beside_an_opaque_shader_stays_masked():
    mix = node(
        "Mix Shader",
        "MixShader",
        {
            "Fac": value(0.5),
            "Shader": link("BsdfGlass", "BSDF", "SHADER"),
            "Shader_001": link("Principled BSDF", "BSDF", "SHADER"),
        },
    )
    result, _ = translated(surface(bsdf("BsdfGlass"), principled(), mix, output="Shader"))
    assert result["material"]["blend"] == "masked"


def test_transmission_lowers_the_opacity_by_its_weight():
    shader = principled(Base_Color=colour(RED), Transmission_Weight=value(0.5), Alpha=value(0.9), Metallic=value(0.25))
    found, after = shaders_of(surface(shader))
    expected = 0.9 * (1 - 0.8 * grey(RED) ** 2 * 0.5 * 0.75)
    assert found["Principled BSDF"]["in"]["Alpha"]["v"] == pytest.approx(expected)
    assert "blend" not in after["settings"] and len(after["nodes"]) == 1
    result, notes = translated(surface(shader))
    assert result["warnings"] == [] and [told.loss for told in notes] == ["near"]
    linked = principled(Transmission_Weight=link("Value", "Value", "VALUE"), Alpha=link("Value", "Value", "VALUE"))
    result, _ = translated(surface(node("Value", "Value", {}, value=0.5), linked))
    assert result["material"]["blend"] == "masked"


def test_subsurface_keeps_the_base_colour():
    shader = principled(Base_Color=colour(RED), Subsurface_Weight=value(1.0))
    result, notes = translated(surface(shader))
    plain = quillgen.compile(surface(principled(Base_Color=colour(RED))), "surface", False)
    assert result["code"] == plain["code"] and result["warnings"] == []
    assert [told.text for told in notes] == [support.support("ShaderNodeBsdfPrincipled", "Subsurface").text]


def test_sheen_is_added_towards_the_edges():
    shader = principled(Base_Color=colour(RED), Sheen_Weight=value(0.5))
    result, notes = translated(surface(shader))
    assert result["warnings"] == [] and "L.mix_mix(" in result["code"] and [told.loss for told in notes] == ["near"]
    found, _ = shaders_of(surface(bsdf("BsdfSheen", Roughness=value(0.5))))
    assert found["BsdfSheen"]["type"] == "ShaderNodeBsdfDiffuse"
    assert translated(surface(bsdf("BsdfSheen")))[0]["warnings"] == []


def test_the_share_of_sheen_is_that_of_cycles():
    """Measured with Cycles 5.2: a white Sheen BSDF under a uniform white sky, by the cosine of the view angle."""
    measured = {
        0.3: (0.359, 0.187, 0.08, 0.034, 0.015, 0.007, 0.003, 0.002, 0.001),
        0.5: (0.51, 0.377, 0.268, 0.187, 0.128, 0.086, 0.057, 0.037, 0.024),
        0.7: (0.596, 0.497, 0.414, 0.343, 0.281, 0.229, 0.185, 0.149, 0.118),
        1.0: (0.693, 0.624, 0.569, 0.521, 0.478, 0.441, 0.408, 0.379, 0.353),
    }
    limits = {0.3: 0.115, 0.5: 0.055, 0.7: 0.04, 1.0: 0.04}
    for roughness, shares in measured.items():
        found, _ = shaders_of(surface(bsdf("BsdfSheen", Roughness=value(roughness))))
        power = next(record for record in found.values() if record["props"].get("operation") == "MULTIPLY_ADD")
        rise, offset = power["in"]["Value"]["v"], power["in"]["Value_002"]["v"]
        for place, share in enumerate(shares):
            cosine = 0.15 + 0.1 * place
            ours = shaders.SHEEN * math.exp(rise * (1 - cosine) + offset)
            assert ours == pytest.approx(share, abs=limits[roughness]), (roughness, cosine)


def test_a_white_transparent_is_left_and_a_coloured_one_filters():
    white = surface(bsdf("BsdfTransparent", Color=colour([1.0] * 4)))
    assert shaders.run(white, LITERALS)[0] is white
    found, after = shaders_of(surface(bsdf("BsdfTransparent")))
    assert after["settings"]["blend"] == "BLENDED"
    sockets = found["BsdfTransparent"]["in"]
    assert sockets["Alpha"]["v"] == pytest.approx(1 - grey(RED))
    assert sockets["Base Color"]["v"][:3] == pytest.approx([max(part - grey(RED), 0) for part in RED[:3]])
    linked = surface(node("RGB", "RGB", {}, color=RED), bsdf("BsdfTransparent", Color=link("RGB", "Color", "RGBA")))
    result, notes = translated(linked)
    assert result["warnings"] == [] and len(notes) == 1


def test_a_conductor_by_its_index():
    gold = bsdf(
        "BsdfMetallic",
        IOR=value([0.183, 0.422, 1.373], "VECTOR"),
        Extinction=value([3.43, 2.346, 1.77], "VECTOR"),
        Base_Color=colour([0.5] * 4),
    )
    gold["props"]["fresnel_type"] = "PHYSICAL_CONDUCTOR"
    found, _ = shaders_of(surface(gold))
    assert found["BsdfMetallic"]["in"]["Base Color"]["v"][:3] == pytest.approx([0.945, 0.776, 0.376], abs=2e-2)


def test_nothing_is_replaced_where_it_is_switched_off():
    made = surface(bsdf("BsdfGlass"))
    assert shaders.run(made, Options(nearest_shaders=False)) == (made, [])
    plain = surface(principled())
    assert shaders.run(plain, LITERALS)[0] is plain


def test_what_is_put_in_never_becomes_a_parameter():
    options = Options(parameters="all")
    nodes = (node("RGB", "RGB", {}, color=RED), bsdf("BsdfGlass", Color=link("RGB", "Color", "RGBA")))
    prepared, _ = prepare(surface(*nodes), options)
    result, _ = finish(quillgen.compile(prepared), prepared, (), options)
    assert set(result["params"]) == {"P_RGB__color", "P_BsdfGlass__Roughness", "P_BsdfGlass__IOR"}
    prepared, _ = prepare(surface(principled(Sheen_Weight=value(1.0))), options)
    result, _ = finish(quillgen.compile(prepared), prepared, (), options)
    assert not [name for name in result["params"] if "Sheen" in name]
