"""Nodes that read properties of the scene, the ray or the object."""

import numpy as np
import pytest

from edge_cases import DX, DY, ZERO, body, translated, unsupported, value_of
from golden.documents import link, node


def test_light_path():
    path = node("LightPath")
    both = node("Clamp", {"Value": link(path, "Is Camera Ray"), "Min": link(path, "Is Shadow Ray")})
    assert body(both, path) == ["float v1 = 0.0;", "float v2 = 0.5;", "float v3 = clamp(1.0, v1, v2);"]
    for output, text in (("Is Camera Ray", "1.0"), ("Is Shadow Ray", "0.0"), ("Ray Length", "0.0")):
        result = translated(path, output=output)
        assert (result["body"], result["ret"], result["warnings"]) == ([], f"((float3)({text}))", [])


@pytest.mark.parametrize("outs", [False, {}])
def test_light_path_without_outputs(outs):
    n = node("LightPath", outs=outs)
    with unsupported("ShaderNodeLightPath has no output Is Camera Ray"):
        translated(n, output="Is Camera Ray")


def test_object_colour_registers_the_origin():
    result = translated(node("ObjectInfo"), output="Color")
    assert (result["body"], result["ret"]) == ([], "float3(1.0, 1.0, 1.0)")
    assert result["warnings"] == [] and result["need"] == set()
    assert result["inputs"] == {"opos": {"kind": "object_origin"}}


def test_object_random():
    result = translated(node("ObjectInfo", id="Odd one"), output="Random")
    assert result["warnings"] == [
        "Odd one: Object Info Random is a per-actor random in Unreal, not Blender's per-object value"
    ]
    assert result["need"] == {"hash_float3_to_float"} and result["body"] == []
    assert result["ret"] == (
        "((float3)(L.hash_float3_to_float(floor((float3(opos.x, -opos.y, opos.z) * 0.01) * 100.0))))"
    )


@pytest.mark.parametrize("output, text", [("Alpha", "1.0"), ("Object Index", "0.0"), ("Material Index", "0.0")])
def test_fixed_facts_of_the_object(output, text):
    assert translated(node("ObjectInfo"), output=output)["ret"] == f"((float3)({text}))"


MAPS = ["UVMap", "Detail", "UVMap"]


def attribute(name, output="Color", **top):
    return translated(node("Attribute", props={"attribute_name": name}), output=output, **top)


@pytest.mark.parametrize(
    "output, text",
    [
        ("Color", "v1"),
        ("Vector", "v1"),
        ("Fac", "((float3)(((v1.x + v1.y + v1.z) * (1.0 / 3.0))))"),
        ("Alpha", "((float3)(1.0))"),
    ],
)
def test_attribute_of_the_second_uv_map(output, text):
    result = attribute("Detail", output, uv_maps=MAPS)
    assert result["inputs"] == {"uv1": {"kind": "texcoord", "index": 1}}
    assert (result["body"], result["ret"]) == (["float3 v1 = float3(uv1.x, 1.0 - uv1.y, 0.0);"], text)
    assert list(attribute("UVMap", output, uv_maps=MAPS)["inputs"]) == ["uv0"]


@pytest.mark.parametrize(
    "output, text",
    [
        ("Color", "vcol.rgb"),
        ("Vector", "vcol.rgb"),
        ("Fac", "((float3)(((vcol.r + vcol.g + vcol.b) * (1.0 / 3.0))))"),
        ("Alpha", "((float3)(vcol.a))"),
    ],
)
@pytest.mark.parametrize(
    "name, top",
    [("", {"uv_maps": MAPS}), ("Nobody", {"uv_maps": MAPS}), (None, {}), ("UVMap", {}), ("UVMap", {"uv_maps": []})],
)
def test_other_attributes_are_the_vertex_colour(name, top, output, text):
    result = attribute(name, output, **top)
    assert (result["body"], result["ret"], result["warnings"]) == ([], text, [])
    assert result["inputs"] == {"vcol": {"kind": "vertex_color"}}


def test_moved_vertex_colour_is_repeated_in_full():
    colours = node("VertexColor")
    mix = node("MixRGB", {"Color1": link(colours), "Color2": link(colours)}, props={"blend_type": "ADD"})
    lines = body(node("Bump", {"Height": link(mix)}), mix, colours)
    readings = [f"(vcol + {d['a']} * vcol_dx + {d['b']} * vcol_dy).rgb" for d in (DX, DY)] + ["vcol.rgb"]
    mixes = [line.split(", ", 1)[1] for line in lines if "L.mix_add" in line]
    assert mixes == [f"{text}, {text});" for text in readings]


def test_occlusion():
    assert body(node("AmbientOcclusion"), output="Color") == ["float3 v1 = float3(0.8, 0.5, 0.25);"]
    result = translated(node("AmbientOcclusion"), output="AO")
    assert (result["body"], result["ret"], result["warnings"]) == ([], "((float3)(1.0))", [])


def test_bevel_passes_a_normal_on():
    result = translated(node("Bevel"))
    assert result["body"] == ["float3 v1 = normalize(float3(cnorm.x, -cnorm.y, cnorm.z));"]
    assert list(result["inputs"]) == ["cnorm"]
    linked = node("Bevel", {"Normal": link(node("RGB"))}, without=["Radius"])
    assert body(linked, node("RGB")) == ["float3 v1 = float3(0.25, 0.5, 0.75);"]


def test_wireframe():
    result = translated(node("Wireframe", id="Odd one"))
    assert result["warnings"] == ["Odd one: Wireframe has no Unreal equivalent - 0"]
    assert (result["body"], result["ret"]) == ([], "((float3)(0.0))")


def test_normal_node_reads_its_stored_value():
    dot = node("Normal", {"Normal": (0.0, 3.0, 4.0)})
    assert body(dot, output="Dot") == ["float v1 = dot(float3(0.0, 0.6, 0.8), normalize(float3(0.0, 3.0, 4.0)));"]
    np.testing.assert_allclose(value_of(dot, output="Dot")[0][0], 1.0, rtol=1e-6)
    zero = node("Normal", {"Normal": (0.0, 0.0, 0.0)})
    assert body(zero, output="Dot") == ["float v1 = dot(float3(0.0, 0.6, 0.8), normalize(float3(0.0, 0.0, 0.0)));"]


def test_direction_of_the_normal_node():
    assert translated(node("Normal"), output="Normal")["ret"] == "float3(0.0, 0.6, 0.8)"
    assert translated(node("Normal", props={"normal": None}), output="Normal")["ret"] == "float3(0.0, 0.0, 1.0)"
    assert translated(node("Normal"), output="Normal", use_params=True)["ret"] == "float3(0.0, 0.6, 0.8)"


SQUEEZE = "Squeeze: Squeeze Value is EEVEE-only (converted with EEVEE's formula; Cycles ignores the node)"


def test_squeeze():
    result = translated(node("Squeeze"), use_params=True)
    p = "P_Squeeze__"
    assert result["body"] == [f"float v1 = 1.0 / (1.0 + pow(2.71828182846, -(({p}Value) - ({p}Center)) * ({p}Width)));"]
    assert result["warnings"] == [SQUEEZE]
    negative = node("Squeeze", {"Value": -0.5, "Center": -0.25, "Width": -2.0})
    np.testing.assert_allclose(value_of(negative)[0][0], 1 / (1 + np.exp(0.25 * -2.0)), rtol=1e-5)


def test_camera_data():
    parts = ", ".join(f"dot(wpos - cpos, vax{a})" for a in "xyz")
    text = f"float3 v1 = (float3({parts}) * 0.01);"
    for output, line in (
        ("View Vector", "float3 v2 = normalize(v1);"),
        ("View Z Depth", "float v2 = v1.z;"),
        ("View Distance", "float v2 = length(v1);"),
    ):
        assert body(node("CameraData"), output=output) == [text, line]


def test_spectra():
    assert body(node("Blackbody")) == ["float3 v1 = max(L.blackbody_rec709(4500.0), float3(0.0, 0.0, 0.0));"]
    rows = (
        "dot(v1, float3(3.2404542, -1.5371385, -0.4985314)), "
        "dot(v1, float3(-0.969266, 1.8760108, 0.041556)), "
        "dot(v1, float3(0.0556434, -0.2040259, 1.0572252))"
    )
    assert body(node("Wavelength")) == [
        "float3 v1 = L.wavelength_xyz(550.0);",
        f"float3 v2 = max(float3({rows}) * (1.0 / 2.52), {ZERO});",
    ]
    for kind in ("Blackbody", "Wavelength"):
        got = value_of(node(kind))[0]
        assert got.min() >= 0.0 and got.max() > 0.1


@pytest.mark.parametrize(
    "kind, socket",
    [
        ("AmbientOcclusion", "Color"),
        ("Normal", "Normal"),
        ("Squeeze", "Value"),
        ("Squeeze", "Width"),
        ("Squeeze", "Center"),
        ("Blackbody", "Temperature"),
        ("Wavelength", "Wavelength"),
    ],
)
def test_mandatory_sockets(kind, socket):
    with unsupported(f"ShaderNode{kind}: no input {socket}"):
        body(node(kind, without=[socket]), output=list(node(kind)["outs"])[-1])


@pytest.mark.parametrize("kind", ["Attribute", "Normal"])
def test_mandatory_properties(kind):
    n = node(kind)
    del n["props"]
    with pytest.raises(KeyError, match="^'props'$"):
        body(n)
