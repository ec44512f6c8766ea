"""Tests of the harness itself: its results for known functions, and its errors."""

import pathlib

import numpy as np
import pytest

import cost
import custom_expression
import device
import dxc
import library

EMPTY = "[numthreads(1, 1, 1)] void main() {{ {} }}"

SMALL_LIBRARY = """
// Half of it.
float halved(float x) {
  return 0.5 * x;
}

// @each DIM 1 3
floatDIM quartered_DIM(floatDIM x) {
  return x * (halved(1.0) * 0.5);
}

// Splits into the whole and the rest.
void split(float x, out float whole, out float3 rest) {
  whole = floor(x);
  rest = float3(x - whole, 0.0, 1.0);
}

float4 texel(Texture2D tex, int2 at) {
  return tex.Load(int3(at, 0));
}

QWKVoronoiOutput scaled(QWKVoronoiParams params, float3 co) {
  QWKVoronoiOutput o;
  o.distance = params.scale * float(params.feature);
  o.color = co * params.scale;
  return o;
}

float sloppy(float3 x) {
  float y = x;
  return y;
}

struct QWKVoronoiParams { int feature; float scale, detail; };
struct QWKVoronoiOutput { float distance; float3 color; };
"""


@pytest.fixture
def small_library(tmp_path, monkeypatch):
    (tmp_path / "small.hlsl").write_text(SMALL_LIBRARY)
    monkeypatch.syspath_prepend(pathlib.Path(__file__).parents[2] / "lib")
    import embed

    loaded = embed.load(tmp_path.glob("*.hlsl"))
    monkeypatch.setattr(library, "library", lambda: loaded)


# the compiler


def test_both_language_versions_compile():
    source = EMPTY.format("struct S { float f(float x) { return x; } }; S L; L.f(1.0);")
    for hv in ("2018", "2021"):
        assert dxc.compile_hlsl(source, hv=hv)[:4] == b"DXBC"
    assert dxc.compile_hlsl(source, spirv=True)[:4] == b"\x03\x02\x23\x07"


def test_an_error_carries_the_compilers_words():
    with pytest.raises(dxc.DxcError, match="undeclared identifier 'nonesuch'"):
        dxc.compile_hlsl(EMPTY.format("nonesuch = 1;"))


def test_a_warning_fails_the_compile():
    source = EMPTY.format("float x = float3(1.0, 2.0, 3.0);")
    assert dxc.compile_hlsl(source, werror=False)
    with pytest.raises(dxc.DxcError, match="implicit truncation"):
        dxc.compile_hlsl(source)


def test_the_language_version_counts():
    source = EMPTY.format("float2 x = float2(1.0, 2.0) > 1.0 ? float2(1.0, 1.0) : float2(0.0, 0.0);")
    assert dxc.compile_hlsl(source, hv="2018")
    with pytest.raises(dxc.DxcError):
        dxc.compile_hlsl(source, hv="2021")


def test_instructions_are_counted():
    assert dxc.instruction_count(dxc.compile_hlsl(EMPTY.format(""))) == 1  # the return

    def work(body):
        return cost.count(cost.shader(body, {"x": "float", "i": "int"}, {"y": "float"}))

    assert work("y = x;") == 1  # the bits of the float
    assert work("y = sin(x);") == 2
    assert work("y = sin(x) + sqrt(x);") == 4
    assert work("y = 1.0; switch (i) { case 3: y = x; break; case 5: y = sin(x); break; }") == 6


# the device


def test_llvmpipe_runs():
    assert "llvmpipe" in device.device_name()


def test_elementwise_and_uniform_inputs():
    x, v = np.linspace(-3, 3, 1000), np.random.default_rng(1).random((1000, 3))
    got = device.evaluate(
        "y = sin(x) * k; z = v + w;", {"x": x, "v": v, "k": 2.0, "w": (1.0, 2.0, 4.0)}, {"y": 1, "z": 3}
    )
    assert got["y"].shape == (1000,) and got["z"].shape == (1000, 3) and got["z"].dtype == np.float32
    np.testing.assert_allclose(got["y"], 2 * np.sin(x), atol=4e-6)
    np.testing.assert_array_equal(got["z"], np.float32(v) + np.float32([1, 2, 4]))


def test_a_wrong_value_is_seen():
    x = np.linspace(-3, 3, 100)
    got = device.evaluate("y = cos(x);", {"x": x}, {"y": 1})["y"]
    with pytest.raises(AssertionError):
        np.testing.assert_allclose(got, np.sin(x), atol=1e-2)


def test_integers_and_bools_keep_every_bit():
    i = np.array([0, -1, 1, -(2**31), 2**31 - 1, 65536, -65537], np.int32)
    u = np.uint32([0xDEADBEEF, 0xFFFFFFFF, 0, 1, 0x80000000, 0xFFFF, 0x10000])
    got = device.evaluate(
        "j = i; w = uint2(u, ~u); c = b; d = all(b);",
        {"i": i, "u": u, "b": i > 0},
        {"j": "int", "w": "uint2", "c": "bool", "d": "bool"},
    )
    np.testing.assert_array_equal(got["j"], i)
    np.testing.assert_array_equal(got["w"], np.stack([u, ~u], axis=1))
    np.testing.assert_array_equal(got["c"], i > 0)


def test_infinities_and_nan_come_through():
    x = np.float32([np.inf, -np.inf, np.nan, -0.0, 1e30])
    got = device.evaluate("y = x;", {"x": x}, {"y": 1})["y"]
    np.testing.assert_array_equal(got.view(np.uint32), x.view(np.uint32))


def test_one_point_and_lengths():
    assert device.evaluate("y = 3.0 * k;", {"k": 2.0}, {"y": 1})["y"].tolist() == [6.0]
    with pytest.raises(ValueError, match="lengths"):
        device.evaluate("y = a + b;", {"a": np.zeros(3), "b": np.zeros(4)}, {"y": 1})


@pytest.mark.parametrize("height, width", [(5, 7), (1, 1), (33, 130)])
def test_texels(height, width):
    texels = np.random.default_rng(2).random((height, width, 4)).astype(np.float32)
    y, x = (a.ravel().astype(np.int32) for a in np.mgrid[:height, :width])
    got = device.evaluate(
        "uint w, h; T.GetDimensions(w, h); size = float2(w, h); c = T.Load(int3(x, y, 0));",
        {"x": x, "y": y},
        {"c": 4, "size": 2},
        {"T": texels},
    )
    np.testing.assert_array_equal(got["c"].reshape(texels.shape), texels)
    assert got["size"][0].tolist() == [width, height]


def test_two_textures_of_bytes_and_new_contents():
    body = "c = A.Load(int3(0, 0, 0)) + B.SampleLevel(qh_sampler, float2(0.75, 0.25), 0.0);"
    for value in (51, 102):
        a, b = np.full((2, 2, 4), value, np.uint8), np.zeros((2, 2, 4), np.float32)
        b[0, 1] = 1
        got = device.evaluate(body, {}, {"c": 4}, {"A": a, "B": b})["c"]
        np.testing.assert_allclose(got, 1 + np.full((1, 4), value / 255), atol=1e-6)


def test_many_shaders_in_one_process():
    x = np.linspace(0, 1, 64)
    for k in range(device.SHADERS_PER_WORKER + 20):
        got = device.evaluate(f"y = x * {k}.0;", {"x": x}, {"y": 1})["y"]
        np.testing.assert_allclose(got, x * k, rtol=1e-6)


def test_a_dead_device_is_reported_and_comes_back():
    device.device_name()
    device._worker.process.kill()
    with pytest.raises(device.DeviceError, match="ended"):
        device.evaluate("y = 1.0;", {}, {"y": 1})
    assert device.evaluate("y = 1.0;", {}, {"y": 1})["y"].tolist() == [1.0]


# the library's functions


def test_calls(small_library):
    x = np.linspace(-2, 2, 50)
    np.testing.assert_allclose(library.call("halved", x, result="float"), x / 2, rtol=1e-6)
    got = library.call("quartered_3", np.float32([[4, 8, 12], [0, 1, 2]]))
    np.testing.assert_array_equal(got, [[1, 2, 3], [0, 0.25, 0.5]])


def test_out_arguments(small_library):
    whole, rest = library.call("split", np.float32([1.25, -0.5]), result=None, out_args=("float", "float3"))
    assert whole.tolist() == [1.0, -1.0] and rest.tolist() == [[0.25, 0, 1], [0.5, 0, 1]]


def test_structs(small_library):
    got = library.call(
        "scaled", {"scale": 2.0, "feature": np.int32([1, 3])}, (1.0, 2.0, 3.0), result="QWKVoronoiOutput"
    )
    assert got["distance"].tolist() == [2.0, 6.0] and got["color"].tolist() == [[2, 4, 6], [2, 4, 6]]


def test_texture_arguments(small_library):
    texels = np.random.default_rng(3).random((3, 5, 4)).astype(np.float32)
    got = library.call("texel", "T", np.int32([[4, 2], [0, 1]]), result="float4", textures={"T": texels})
    np.testing.assert_array_equal(got, [texels[2, 4], texels[1, 0]])


def test_costs(small_library):
    assert library.cost("halved", "float", result="float") == 2
    assert library.cost("split", "float", result=None, out_args=("float", "float3")) > 2
    assert library.cost("scaled", "QWKVoronoiParams", "float3", result="QWKVoronoiOutput") > 4
    assert library.cost("texel", "Texture2D", "int2", result="float4") == 5


def test_a_warning_in_the_library_is_seen(small_library):
    with pytest.raises(dxc.DxcError, match="truncation"):
        library.cost("sloppy", "float3", result="float")
    with pytest.raises(dxc.DxcError, match="truncation"):
        library.call("sloppy", np.zeros((2, 3)), result="float")


# a generated text


def expression():
    return {
        "code": "struct QWK { float twice(float x) { return x + x; } };\nQWK L;\n"
        "  float3 t1 = p_Color.xyz * L.twice(p_Scale);\n"
        "  t1 += T.Load(int3(int2(uv0), 0)).rgb + vcol.rgb * uv0_dx.x + wpos;\n"
        "  OutMetallic = tsign;\n  OutNormal = float3(0.0, 0.0, 1.0);\n  return t1;",
        "inputs": [
            {"name": "T", "kind": "texture", "image": "T.png"},
            {"name": "p_Color", "kind": "vector", "default": [1.0, 2.0, 3.0, 1.0]},
            {"name": "p_Scale", "kind": "scalar", "default": 0.5},
            {"name": "tsign", "kind": "two_sided_sign"},
            {"name": "uv0", "kind": "texcoord", "index": 0},
            {"name": "uv0_dx", "kind": "ddx", "of": {"kind": "texcoord", "index": 0}},
            {"name": "vcol", "kind": "vertex_color"},
            {"name": "wpos", "kind": "world_position"},
        ],
        "outputs": [
            {"name": "OutMetallic", "type": "float", "property": "metallic", "expr": "tsign"},
            {"name": "OutNormal", "type": "float3", "property": "normal", "expr": "0"},
        ],
    }


def test_the_signature():
    head = custom_expression.function(expression()).splitlines()[0]
    assert head == (
        "MaterialFloat3 CustomExpression0(FMaterialPixelParameters Parameters, "
        "Texture2D T, SamplerState TSampler, MaterialFloat4 p_Color, MaterialFloat p_Scale, "
        "MaterialFloat tsign, MaterialFloat2 uv0, "
        "MaterialFloat2 uv0_dx, MaterialFloat4 vcol, MaterialFloat3 wpos, "
        "inout MaterialFloat OutMetallic, inout MaterialFloat3 OutNormal)"
    )


def test_the_view_has_two_angles():
    """Unreal provides the tangents of half the horizontal and half the vertical field of view."""
    result = {
        "code": "return float3(thfov, 0.0);",
        "inputs": [{"name": "thfov", "kind": "tan_half_fov"}],
        "outputs": [],
    }
    assert "MaterialFloat2 thfov" in custom_expression.function(result)
    assert custom_expression.evaluate(result, {"thfov": (0.5, 0.25)})["result"].tolist() == [[0.5, 0.25, 0.0]]


def test_an_expression_compiles_and_its_warnings_count():
    assert set(custom_expression.compile_both(expression())) == {"2018", "2021"}
    assert custom_expression.instruction_count(expression()) > 10
    bad = {**expression(), "code": "OutMetallic = uv0;\n return wpos;"}
    with pytest.raises(dxc.DxcError, match="truncation"):
        custom_expression.compile_both(bad)


def test_an_expression_is_evaluated():
    texels = np.random.default_rng(4).random((4, 4, 4)).astype(np.float32)
    uv = np.float32([[0, 0], [3, 1], [2, 3]])
    values = {
        "uv0": uv,
        "uv0_dx": (2.0, 0.0),
        "vcol": (0.25, 0.5, 0.75, 1.0),
        "wpos": np.zeros((3, 3)),
        "tsign": np.float32([1, -1, 1]),
    }
    got = custom_expression.evaluate(expression(), values, {"T": texels})
    want = np.float32([1, 2, 3]) + texels[[0, 1, 3], [0, 3, 2], :3] + np.float32([0.5, 1, 1.5])
    np.testing.assert_allclose(got["result"], want, rtol=1e-6)
    assert got["OutMetallic"].tolist() == [1, -1, 1] and got["OutNormal"].tolist() == [[0, 0, 1]] * 3
    got = custom_expression.evaluate(expression(), {**values, "p_Scale": 0.0}, {"T": texels})
    np.testing.assert_allclose(got["result"], want - np.float32([1, 2, 3]), atol=1e-6)


def test_a_displacement_text_returns_a_float():
    result = {"code": "  return 0.5 + lpos.x / 128.0;", "inputs": [{"name": "lpos", "kind": "local_position"}]}
    assert custom_expression.evaluate(result, {"lpos": (64.0, 0.0, 0.0)})["result"].tolist() == [1.0]


def test_missing_and_misshapen_values_are_refused():
    with pytest.raises(KeyError, match="tsign, uv0, uv0_dx, vcol, wpos, T"):
        custom_expression.evaluate(expression())
    result = {"code": "return wpos;", "inputs": [{"name": "wpos", "kind": "world_position"}], "outputs": []}
    with pytest.raises(ValueError, match="wpos has 3 components"):
        custom_expression.evaluate(result, {"wpos": (1.0, 2.0)})
