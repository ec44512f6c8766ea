"""The whole result: keys, order, outputs, material record, layout of the text."""

import pytest

import quillgen
from edge_cases import statements, surface
from golden.documents import IMAGES, link, material, node

HEADER = "// Quillwork - generated from Blender's node tree. Edit the material in Blender, not here."
HALF = node("BsdfPrincipled", {"Alpha": 0.5})


def displaced(method, **sockets):
    noise, bump = node("TexNoise"), node("Displacement", {"Scale": link("TexNoise", "Fac", "VALUE")})
    settings = {} if method is None else {"displacement": method}
    return material(node("BsdfPrincipled", sockets), noise, bump, displacement=bump, settings=settings)


def test_keys_and_their_order():
    result = quillgen.compile(displaced("BOTH"))
    assert list(result) == ["code", "inputs", "outputs", "material", "warnings", "params", "displacement"]
    assert list(result["material"]) == ["shading", "blend", "two_sided", "tangent_space_normal"]
    assert list(surface(HALF)["material"])[4:] == ["clip"]
    assert list(result["displacement"]) == ["code", "inputs", "magnitude"]
    assert all(list(o) == ["name", "type", "property", "expr"] for o in result["outputs"])
    assert all(list(i)[:2] == ["name", "kind"] for i in result["inputs"])


@pytest.mark.parametrize(
    "settings", [{}, {"displacement": "BOTH"}, {"displacement": "DISPLACEMENT", "blend": "BLENDED"}]
)
def test_mode_emission(settings):
    bump = node("Displacement")
    result = quillgen.compile(material(HALF, bump, displacement=bump, settings=settings), "emission")
    assert result["outputs"] == [] and result["displacement"] is None
    assert result["material"] == {
        "shading": "unlit",
        "blend": "opaque",
        "two_sided": True,
        "tangent_space_normal": True,
    }
    assert result["code"].split("\n")[-1].startswith("  return (bsdf")


def test_alpha_is_masked_by_default():
    for settings in ({}, {"blend": "HASHED"}, {"blend": None}):
        result = surface(HALF, settings=settings)
        assert result["material"]["blend"] == "masked" and result["material"]["clip"] == 0.5
        names = [i["name"] for i in result["inputs"]]
        assert names == ["cnorm", "pixpos", "taaidx", "tsign"] == sorted(names)
        assert {"name": "pixpos", "kind": "pixel_position"} in result["inputs"]
        assert {"name": "taaidx", "kind": "temporal_index"} in result["inputs"]
        assert "OutOpacity = L.dither_coverage(surf3.alpha, pixpos, taaidx);" in statements(result)


def test_alpha_blended():
    result = surface(HALF, settings={"blend": "BLENDED"})
    assert result["material"] == {
        "shading": "default_lit",
        "blend": "translucent",
        "two_sided": True,
        "tangent_space_normal": False,
    }
    assert "OutOpacity = surf3.alpha;" in statements(result) and "dither" not in result["code"]
    assert [i["name"] for i in result["inputs"]] == ["cnorm", "tsign"]


@pytest.mark.parametrize("culling, two_sided", [(True, False), (1, False), (False, True), (None, True), (0, True)])
def test_two_sided(culling, two_sided):
    for mode in ("surface", "emission"):
        result = quillgen.compile(material(HALF, settings={"backface_culling": culling}), mode)
        assert result["material"]["two_sided"] is two_sided


@pytest.mark.parametrize(
    "method, given", [("BUMP", False), (None, False), ("DISPLACEMENT", True), ("BOTH", True), ("NO_SUCH_WORD", False)]
)
def test_displacement_record_by_setting(method, given):
    result = quillgen.compile(displaced(method))
    assert (result["displacement"] is not None) == given
    assert ("L.bump_dp" in result["code"]) == (method != "NO_SUCH_WORD")


def test_displacement_output_that_is_none():
    for nothing in (None, [], False):
        document = material(node("BsdfPrincipled"), settings={"displacement": "BOTH"})
        document["out"]["displacement"] = nothing
        result = quillgen.compile(document)
        assert result["displacement"] is None and "bump_dp" not in result["code"]


def test_parameters_and_inputs_of_the_displacement():
    result = quillgen.compile(displaced("BOTH", Roughness=0.25))
    record = result["displacement"]
    assert "params" not in record and "warnings" not in record
    assert {"P_Displacement__Midlevel", "P_BsdfPrincipled__Roughness"} <= set(result["params"])
    here, there = ([i["name"] for i in given["inputs"]] for given in (result, record))
    assert "P_BsdfPrincipled__Roughness" in here and "P_BsdfPrincipled__Roughness" not in there
    assert {"vnorm", "ttan", "tbit"} <= set(there) and not {"vnorm", "ttan", "tbit"} & set(here)
    assert there == sorted(there)


def test_warnings_of_the_displacement_come_last():
    result = quillgen.compile(displaced("BOTH", **{"Sheen Weight": 1.0}))
    assert result["warnings"] == [
        "BsdfPrincipled: Principled sheen is not reproduced in Unreal (Default Lit)",
        "displacement range unknown - Nanite displacement magnitude set to 1 m (offsets beyond +-50 cm are clipped)",
    ]


def test_without_parameters():
    picture = node("TexImage")
    result = surface(node("BsdfPrincipled", {"Base Color": link(picture)}), picture, images=IMAGES)
    assert result["params"] == {}
    assert {i["kind"] for i in result["inputs"]} == {"texture", "texcoord", "cycles_normal", "two_sided_sign"}


def test_text_of_the_surface_is_the_same_for_displacement_and_both():
    one, two = (quillgen.compile(displaced(method)) for method in ("DISPLACEMENT", "BOTH"))
    assert one == two
    assert one["code"] != quillgen.compile(displaced("BUMP"))["code"]


def test_layout_of_the_text():
    voronoi = node("TexVoronoi")
    lines = surface(node("BsdfDiffuse", {"Color": link(voronoi, "Color")}), voronoi)["code"].split("\n")
    assert lines[0] == HEADER
    assert [line.split()[1] for line in lines if line.startswith("struct ")] == [
        "QWKVoronoiOutput",
        "QWKVoronoiParams",
        "QWKClosure",
        "QWK",
    ]
    at = lines.index("QWK L;")
    assert all(line.startswith("  ") for line in lines[at + 1 :])
    assert lines[-1] == "  return surf5.base;"
    names = [line.split()[0] for line in lines[at:] if line.startswith("  Out")]
    assert names == ["OutMetallic", "OutRoughness", "OutSpecular", "OutNormal"]


def test_all_outputs_in_their_order():
    glow = node("BsdfPrincipled", {"Alpha": 0.5, "Emission Strength": 1.0, "Coat Weight": 1.0})
    result = surface(glow)
    assert [(o["name"], o["type"], o["property"]) for o in result["outputs"]] == [
        ("OutMetallic", "float", "metallic"),
        ("OutRoughness", "float", "roughness"),
        ("OutSpecular", "float", "specular"),
        ("OutEmissive", "float3", "emissive"),
        ("OutNormal", "float3", "normal"),
        ("OutOpacity", "float", "opacity"),
        ("OutCoat", "float", "clear_coat"),
        ("OutCoatRoughness", "float", "clear_coat_roughness"),
    ]
    assert statements(result)[-9:-1] == [f"{o['name']} = {o['expr']};" for o in result["outputs"]]
    assert result["material"]["shading"] == "clear_coat" and result["material"]["blend"] == "masked"


def test_fallback_of_the_normal():
    lines = statements(surface(node("BsdfDiffuse")))
    assert lines[1:3] == [
        "QWKClosure surf2 = bsdf1;",
        "float3 v3 = (normalize(float3(cnorm.x, -cnorm.y, cnorm.z)) * ((tsign < 0.0) ? -1.0 : 1.0));",
    ]
    assert (
        "OutNormal = ((surf2.has_normal > 0.0) ? float3(surf2.normal.x, -surf2.normal.y, surf2.normal.z) : "
        "float3(v3.x, -v3.y, v3.z));"
    ) in lines


def test_names_of_inputs_are_sorted_by_code_point():
    nodes = [node("Value", id=name) for name in ("b", "B", "a_", "A")]
    first = node("Math", {"Value": link(nodes[0]), "Value_001": link(nodes[1]), "Value_002": link(nodes[2])})
    last = node("Math", {"Value": link(first), "Value_001": link(nodes[3]), "Value_002": 1.0}, id="Z")
    names = [i["name"] for i in quillgen.compile(material(last, first, *nodes), "emission")["inputs"]]
    assert names == ["P_A__value", "P_B__value", "P_Z__Value_002", "P_a___value", "P_b__value"]


def test_calls_by_keyword_and_place():
    document = material(HALF)
    assert quillgen.compile(ir=document, mode="emission", use_params=False) == quillgen.compile(
        document, "emission", False
    )
    for wrong in ((), (document, "surface", True, 1)):
        with pytest.raises(TypeError):
            quillgen.compile(*wrong)
    with pytest.raises(TypeError):
        quillgen.compile(document, uv_bias=None)
