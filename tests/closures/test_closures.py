"""The closure record: its text, and the run-time results of mixing and adding shaders."""

import numpy as np
import pytest

import custom_expression
import quillgen
from edge_cases import surface
from golden.documents import link, material, node

STRUCT = [
    "struct QWKClosure { float3 base; float metallic; float roughness; float specular; float3 normal; float3 emission;",
    "  float alpha; float coat; float coat_roughness; float has_normal; };",
]
FUNCTIONS = [
    "",
    "QWKClosure closure_none() {",
    "  QWKClosure c; c.base = float3(0.0, 0.0, 0.0); c.metallic = 0.0; c.roughness = 0.5; c.specular = 0.5;",
    "  c.normal = float3(0.0, 0.0, 1.0); c.emission = float3(0.0, 0.0, 0.0); c.alpha = 1.0; c.coat = 0.0; "
    "c.coat_roughness = 0.03;",
    "  c.has_normal = 0.0; return c;",
    "}",
    "QWKClosure closure_emission(float3 e) { QWKClosure c = closure_none(); c.specular = 0.0; "
    "c.emission = e; "
    "return c; }",
    "QWKClosure closure_mix(QWKClosure a, QWKClosure b, float t) {",
    "  QWKClosure c;",
    "  c.base = lerp(a.base, b.base, t); c.metallic = lerp(a.metallic, b.metallic, t); "
    "c.roughness = lerp(a.roughness, b.roughness, t);",
    "  c.specular = lerp(a.specular, b.specular, t); c.emission = lerp(a.emission, b.emission, t); "
    "c.alpha = lerp(a.alpha, b.alpha, t);",
    "  c.coat = lerp(a.coat, b.coat, t); c.coat_roughness = lerp(a.coat_roughness, b.coat_roughness, t);",
    "  c.has_normal = max(a.has_normal, b.has_normal);",
    "  c.normal = (a.has_normal > 0.0 && b.has_normal > 0.0) ? normalize(lerp(a.normal, b.normal, t)) : "
    "(a.has_normal > 0.0 ? a.normal : b.normal);",
    "  return c;",
    "}",
    "QWKClosure closure_add(QWKClosure a, QWKClosure b) {",
    "  QWKClosure c = a;",
    "  c.base = a.base + b.base; c.emission = a.emission + b.emission; c.alpha = saturate(a.alpha + b.alpha);",
    "  c.coat = max(a.coat, b.coat); c.has_normal = max(a.has_normal, b.has_normal);",
    "  if (a.has_normal == 0.0) c.normal = b.normal;",
    "  return c;",
    "}",
]

GLASS, GLOW, PAINT = node("BsdfTransparent"), node("Emission"), node("BsdfPrincipled")
UP = node("Normal", props={"normal": [0.0, 0.0, 1.0]}, id="Up")
EAST = node("Normal", props={"normal": [1.0, 0.0, 0.0]}, id="East")
MESH = {"cnorm": (0.0, 0.6, 0.8), "tsign": 1.0}


def run(one, two, *others, kind="AddShader", **inputs):
    """The run-time outputs of two shaders combined by a node of type `kind`."""
    twin = two if two is not one else {**two, "id": "Twin"}
    n = node(kind, {"Shader": link(one), "Shader_001": link(twin), **inputs})
    result = surface(n, one, twin, *others, settings={"blend": "BLENDED"})
    return {k: v[0] for k, v in custom_expression.evaluate(result, MESH).items()}


@pytest.mark.parametrize(
    "code",
    [
        quillgen.compile(material(node("Emission")), "emission")["code"],
        quillgen.compile(material(node("Math")), "surface")["code"],
        quillgen.assemble([], set(), set(), "sel"),
    ],
)
def test_text_is_there_also_where_nothing_uses_it(code):
    assert code.split("\n")[1:3] == STRUCT
    assert "struct QWK {\n\n" + "\n".join(FUNCTIONS) + "\n};\nQWK L;\n" in code


@pytest.mark.parametrize(
    "one, two, alpha", [(GLASS, PAINT, 1.0), (PAINT, GLASS, 1.0), (GLASS, GLASS, 0.0), (PAINT, PAINT, 1.0)]
)
def test_added_alpha(one, two, alpha):
    outputs = run(one, two)
    assert outputs.get("OutOpacity", np.float32(1.0)) == alpha


def test_opaque_shaders_added_have_alpha_one():
    half = node("BsdfPrincipled", {"Alpha": {"t": "VALUE", "link": ["Alpha", "Value", None]}}, id="Half")
    opaque = node("Value", props={"value": 1.0}, id="Alpha")
    assert run(half, PAINT, opaque)["OutOpacity"] == 1.0


def test_order_shows_in_a_sum():
    first, last = run(GLOW, PAINT), run(PAINT, GLOW)
    assert (first["OutSpecular"], first["OutRoughness"], first["OutMetallic"]) == (0.0, 0.5, 0.0)
    np.testing.assert_allclose((last["OutRoughness"], last["OutMetallic"]), (0.4, 0.2), rtol=1e-6)
    assert last["OutSpecular"] > 0.4
    np.testing.assert_allclose(first["OutEmissive"], (1.6, 1.0, 0.5), rtol=1e-6)
    np.testing.assert_allclose(first["result"], (0.8, 0.5, 0.25), rtol=1e-6)
    np.testing.assert_array_equal(first["OutEmissive"], last["OutEmissive"])


def with_normal(n, id):
    return node("BsdfDiffuse", {"Normal": link(n, "Normal")}, id=id)


@pytest.mark.parametrize("kind", ["AddShader", "MixShader"])
def test_normal_of_the_only_shader_that_has_one(kind):
    east = with_normal(EAST, "One")
    for one, two in ((PAINT, east), (east, PAINT)):
        for factor in (0.0, 1.0):
            inputs = {"Fac": factor} if kind == "MixShader" else {}
            np.testing.assert_array_equal(run(one, two, EAST, kind=kind, **inputs)["OutNormal"], (1.0, 0.0, 0.0))


def test_normal_of_a_sum_is_the_first_one():
    up, east = with_normal(UP, "One"), with_normal(EAST, "Two")
    np.testing.assert_array_equal(run(up, east, UP, EAST)["OutNormal"], (0.0, 0.0, 1.0))
    np.testing.assert_array_equal(run(east, up, UP, EAST)["OutNormal"], (1.0, 0.0, 0.0))


def test_normals_of_a_mix_are_blended():
    up, east = with_normal(UP, "One"), with_normal(EAST, "Two")
    got = run(up, east, UP, EAST, kind="MixShader", Fac=0.25)["OutNormal"]
    np.testing.assert_allclose(got, np.array((0.25, 0.0, 0.75)) / np.hypot(0.25, 0.75), rtol=1e-6)


@pytest.mark.parametrize("kind", ["AddShader", "MixShader"])
def test_without_normals_it_is_that_of_the_mesh(kind):
    np.testing.assert_allclose(run(PAINT, GLOW, kind=kind)["OutNormal"], MESH["cnorm"], rtol=1e-6)


def test_coat_of_a_sum_is_the_greater():
    thin = node("BsdfPrincipled", {"Coat Weight": 0.25, "Coat Roughness": 0.5}, id="Thin")
    thick = node("BsdfPrincipled", {"Coat Weight": 0.75, "Coat Roughness": 0.125}, id="Thick")
    outputs = run(thin, thick)
    assert (outputs["OutCoat"], outputs["OutCoatRoughness"]) == (0.75, 0.5)
