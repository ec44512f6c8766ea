"""Images: names, declarations, sampling, projections."""

import numpy as np
import pytest

import quillgen
from edge_cases import body, surface, translated, value_of
from golden.documents import link, node

MAGENTA = "float3(1.0, 0.0, 1.0)"
UV = "float3(uv0.x, 1.0 - uv0.y, 0.0)"
T = quillgen.tex_input("wood.png")


def picture(record=None, output="Color", kind="TexImage", **props):
    """The translation of a node that uses an image with this record."""
    n = node(
        kind,
        props={
            "image": "wood.png",
            "projection": None,
            "projection_blend": None,
            "extension": None,
            "interpolation": "Closest",
            **props,
        },
    )
    return translated(n, output=output, images={"wood.png": record or {}})


@pytest.mark.parametrize(
    "name, texture",
    [
        ("Brick Wall.png", "T_Brick_Wall_png_84daf7"),
        ("", "T__da39a3"),
        ("Décor/Holz 01.exr", "T_D_cor_Holz_01_exr_d2292a"),
        ("A" * 40 + ".tif", "T_AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA_36a06d"),
    ],
)
def test_name_of_a_texture(name, texture):
    assert quillgen.tex_input(name) == texture
    if name:
        assert texture in translated(node("TexImage", props={"image": name}), images={name: {}})["inputs"]


def test_long_names_stay_apart():
    one, two = quillgen.tex_input("A" * 40), quillgen.tex_input("A" * 41)
    assert one != two and one[:34] == two[:34] and len(one) == 41


def test_record_of_a_texture():
    result = picture({"float": 1, "colorspace": "sRGB"}, interpolation=None)
    assert repr(result["inputs"][T]) == repr(
        {
            "kind": "texture",
            "image": "wood.png",
            "srgb": False,
            "float": True,
            "extension": "REPEAT",
            "interpolation": "Linear",
        }
    )


CONFLICT = "image wood.png is used with different extension / interpolation settings - Unreal uses the first"


@pytest.mark.parametrize(
    "given, conflict",
    [
        ({"extension": "CLIP"}, True),
        ({"interpolation": "Cubic"}, True),
        ({"extension": None, "interpolation": None}, False),
    ],
)
def test_first_declaration_rules(given, conflict):
    first, second = node("TexImage", id="First"), node("TexImage", id="Second", props=given)
    third = node("TexImage", id="Third", props=given)
    mix = node(
        "Mix",
        {"Factor_Float": link(first), "A_Color": link(second), "B_Color": link(third)},
        props={"data_type": "RGBA"},
    )
    result = translated(mix, first, second, third, output="Result_Color", images={"wood.png": {}})
    assert result["warnings"] == [CONFLICT] * (2 * conflict)
    assert (result["inputs"][T]["extension"], result["inputs"][T]["interpolation"]) == ("REPEAT", "Linear")
    text = "\n".join(result["body"])
    assert text.count("L.texel_fetch_a(") == 12 and text.count(", 0, 1)") == 12 and "float4 wx" not in text


STRAIGHT, FLOAT = (1, True), (2, True)


@pytest.mark.parametrize(
    "record, expected",
    [
        ({}, STRAIGHT),
        ({"float": True}, FLOAT),
        ({"colorspace": "sRGB", "alpha": "NO_SUCH_WORD"}, STRAIGHT),
        ({"alpha": "PREMUL"}, (0, True)),
        ({"alpha": "PREMUL", "float": True}, (0, True)),
        ({"alpha": "CHANNEL_PACKED"}, (0, False)),
        ({"alpha": "NONE"}, (0, False)),
        ({"alpha": "PREMUL", "colorspace": "Raw"}, (0, False)),
        ({"colorspace": "Data", "float": True}, (0, False)),
        *(({"colorspace": space}, (0, False)) for space in ("Non-Color", "Raw", "Generic Data", "Data")),
    ],
)
def test_association(record, expected):
    association, divides = expected
    for output in ("Color", "Alpha"):
        lines = picture(record, output)["body"]
        assert f", 0, {association});" in lines[4]
        division = "if (img3.a != 1.0 && img3.a != 0.0) img3.rgb /= img3.a;"
        assert (division in lines) == (divides and output == "Alpha")


@pytest.mark.parametrize(
    "record, decodes, warns",
    [
        ({}, True, False),
        ({"colorspace": "sRGB"}, True, False),
        ({"colorspace": "sRGB", "float": True}, False, False),
        ({"colorspace": "Filmic sRGB", "name": "Wood"}, False, True),
        ({"colorspace": "Filmic sRGB", "float": True}, False, False),
        *(
            ({"colorspace": space}, False, False)
            for space in ("Non-Color", "Raw", "Generic Data", "Data", "Linear", "Linear Rec.709", "Linear CIE-XYZ D65")
        ),
    ],
)
def test_colour_space(record, decodes, warns):
    result = picture(record)
    assert ("img3.rgb = L.srgb_to_linear3(img3.rgb);" in result["body"]) == decodes
    assert result["need"] == {"texel_fetch_a"} | ({"srgb_to_linear3"} if decodes else set())
    assert result["warnings"] == ["image Wood: colour space Filmic sRGB is read as linear"] * warns


def test_warning_of_an_image_without_a_name():
    assert picture({"colorspace": "X"})["warnings"] == ["image ?: colour space X is read as linear"]


@pytest.mark.parametrize("output", ["Color", "Alpha"])
def test_alpha_none_is_forced_to_one_last(output):
    lines = picture({"alpha": "NONE"}, output)["body"]
    assert lines[-2:] == ["img3.rgb = L.srgb_to_linear3(img3.rgb);", "img3.a = 1.0;"]
    assert ", 0, 0);" in lines[4]


def test_packed_alpha_stays_as_it_is():
    lines = picture({"alpha": "CHANNEL_PACKED"}, "Alpha")["body"]
    assert not any("img3.a" in line for line in lines)


def test_order_of_the_last_steps():
    lines = picture({"alpha": "PREMUL"}, "Alpha")["body"]
    assert lines[5:] == [
        "if (img3.a != 1.0 && img3.a != 0.0) img3.rgb /= img3.a;",
        "img3.rgb = L.srgb_to_linear3(img3.rgb);",
    ]


@pytest.mark.parametrize(
    "word, code", [("REPEAT", 0), ("EXTEND", 1), ("CLIP", 2), ("MIRROR", 3), ("NO_SUCH_WORD", 0), (None, 0)]
)
def test_extension_travels_in_every_tap(word, code):
    for interpolation, taps in (("Closest", 1), ("Linear", 4), ("Cubic", 1)):
        text = "\n".join(picture(extension=word, interpolation=interpolation)["body"])
        assert text.count("texel_fetch_a(") == text.count(f", {code}, 1)") == taps


def test_lookup_of_the_closest():
    assert picture()["body"] == [
        f"float3 v1 = {UV};",
        "float2 v2 = v1.xy;",
        "float2 v4 = float2(v2.x, 1.0 - v2.y);",
        f"uint sz5_w, sz5_h; {T}.GetDimensions(sz5_w, sz5_h); float2 sz5 = float2(sz5_w, sz5_h);",
        f"float4 img3 = L.texel_fetch_a({T}, int2(floor(v4 * sz5)), int2(sz5), 0, 1);",
        "img3.rgb = L.srgb_to_linear3(img3.rgb);",
    ]


@pytest.mark.parametrize("word", ["Linear", "NO_SUCH_WORD", None])
def test_linear_lookup(word):
    a, b, c, d = (
        f"L.texel_fetch_a({T}, i0{off}, int2(sz5), 0, 1)"
        for off in ("", " + int2(1, 0)", " + int2(0, 1)", " + int2(1, 1)")
    )
    assert picture(interpolation=word)["body"][4:7] == [
        "float4 img3;",
        "{ float2 st = v4 * sz5 - 0.5; int2 i0 = int2(floor(st)); float2 f = st - floor(st);",
        f"  img3 = lerp(lerp({a}, {b}, f.x), lerp({c}, {d}, f.x), f.y); }}",
    ]


def weights(axis, f):
    return (
        f"  float4 w{axis} = float4((1.0 - {f}) * (1.0 - {f}) * (1.0 - {f}), 3.0 * {f} * {f} * {f} - "
        f"6.0 * {f} * {f} "
        f"+ 4.0, -3.0 * {f} * {f} * {f} + 3.0 * {f} * {f} + 3.0 * {f} + 1.0, {f} * {f} * {f}) / 6.0;"
    )


def test_cubic_lookup_and_smart():
    cubic = picture(interpolation="Cubic")
    assert cubic["body"][4:11] == [
        "float4 img3 = float4(0.0, 0.0, 0.0, 0.0);",
        "{ float2 st = v4 * sz5 - 0.5; float2 i0 = floor(st); float2 f = st - i0;",
        weights("x", "f.x"),
        weights("y", "f.y"),
        "  [unroll] for (int j = 0; j < 4; j++) { [unroll] for (int i = 0; i < 4; i++) {",
        f"    float4 tx = L.texel_fetch_a({T}, int2(i0) + int2(i - 1, j - 1), int2(sz5), 0, 1);",
        "    img3 += wx[i] * wy[j] * tx; } } }",
    ]
    smart = picture(interpolation="Smart")
    assert smart["body"] == cubic["body"]


@pytest.mark.parametrize("name", ["lost.png", None, ""])
def test_missing_image(name):
    for output, text in (("Color", MAGENTA), ("Alpha", "((float3)(1.0))")):
        result = picture(output=output, image=name)
        assert (result["ret"], result["body"], result["inputs"], result["warnings"]) == (text, [], {}, [])
    assert picture(kind="TexEnvironment", image=name)["ret"] == MAGENTA
    result = surface(node("BsdfDiffuse", {"Color": link(n := node("TexImage"))}), n)
    assert not any(i["kind"] == "texture" for i in result["inputs"])


@pytest.mark.parametrize("output, divided", [("Color", 0), ("Alpha", 3)])
def test_box_makes_three_whole_lookups(output, divided):
    result = picture({}, output, projection="BOX", projection_blend=0.25)
    lines = result["body"]
    assert {"box_weights", "safe_normalize", "texel_fetch_a"} <= result["need"]
    assert lines[2:4] == ["float3 v3 = L.box_weights(v2, 0.25);", "float4 v4 = float4(0.0, 0.0, 0.0, 0.0);"]
    assert [line for line in lines if line.startswith("float2 v") and "?" in line] == [
        "float2 v5 = float2((v2.x < 0.0) ? 1.0 - v1.y : v1.y, v1.z);",
        "float2 v9 = float2((v2.y > 0.0) ? 1.0 - v1.x : v1.x, v1.z);",
        "float2 v13 = float2((v2.z > 0.0) ? 1.0 - v1.y : v1.y, v1.x);",
    ]
    assert [line for line in lines if "v4 +=" in line] == [
        f"if (v3.{axis} > 0.0) v4 += v3.{axis} * img{k};" for axis, k in zip("xyz", (6, 10, 14))
    ]
    assert [k for k in (6, 10, 14) if f"if (img{k}.a != 1.0 && img{k}.a != 0.0) img{k}.rgb /= img{k}.a;" in lines] == [
        6,
        10,
        14,
    ][:divided]
    assert sum("GetDimensions" in line for line in lines) == 3
    assert result["ret"] == ("v4.rgb" if output == "Color" else "((float3)(v4.a))")


def test_box_without_a_blend():
    assert "float3 v3 = L.box_weights(v2, 0.0);" in picture(projection="BOX")["body"]


@pytest.mark.parametrize(
    "word, text",
    [
        ("SPHERE", "L.map_to_sphere((v1 - 0.5) * 2.0)"),
        ("FLAT", "v1.xy"),
        ("TUBE", "L.map_to_tube((v1 - 0.5) * 2.0)"),
        ("NO_SUCH_WORD", "v1.xy"),
        (None, "v1.xy"),
    ],
)
def test_projection(word, text):
    result = picture(projection=word)
    assert result["body"][1] == f"float2 v2 = {text};" and result["warnings"] == []


@pytest.mark.parametrize(
    "word, function",
    [
        ("MIRROR_BALL", "mirrorball_uv"),
        ("EQUIRECTANGULAR", "equirect_uv"),
        ("NO_SUCH_WORD", "equirect_uv"),
        (None, "equirect_uv"),
    ],
)
def test_projection_of_the_environment(word, function):
    result = picture(kind="TexEnvironment", projection=word)
    assert result["body"][:3] == [
        "float3 v1 = L.safe_normalize((float3(wpos.x, -wpos.y, wpos.z) * 0.01));",
        f"float2 v2 = L.{function}(v1);",
        "float2 v4 = float2(v2.x, 1.0 - v2.y);",
    ]
    assert result["need"] == {"safe_normalize", function, "texel_fetch_a", "srgb_to_linear3"}


def test_environment_stays_associated():
    assert not any("/=" in line for line in picture({"alpha": "PREMUL"}, kind="TexEnvironment")["body"])


def test_missing_properties():
    for kind in ("TexImage", "TexEnvironment"):
        n = node(kind)
        del n["props"]
        with pytest.raises(KeyError, match="^'props'$"):
            body(n)


# ---- at run time: four texels, row 0 on top --------------------------------------------------------

TEXELS = np.float32([[[1, 0, 0, 1], [0, 1, 0, 1]], [[0, 0, 1, 1], [1, 1, 1, 0.5]]])


def sampled(at, record=None, output="Color", texels=TEXELS, **props):
    n = node("TexImage", props={"image": "wood.png", "interpolation": "Closest", **props})
    document = {"images": {"wood.png": {"colorspace": "Non-Color", **(record or {})}}}
    return value_of(n, output=output, values={"uv0": np.float32([at, at])}, textures={T: texels}, **document)[0]


@pytest.mark.parametrize(
    "at, wanted",
    [
        ((0.25, 0.25), (1, 0, 0)),
        ((0.75, 0.25), (0, 1, 0)),
        ((0.25, 0.75), (0, 0, 1)),
        ((1.25, 0.25), (1, 0, 0)),
        ((-0.25, 0.25), (0, 1, 0)),
    ],
)
def test_rows_run_from_the_top_as_unreal_has_them(at, wanted):
    np.testing.assert_array_equal(sampled(at), wanted)


@pytest.mark.parametrize(
    "word, wanted", [("REPEAT", (1, 0, 0)), ("EXTEND", (0, 1, 0)), ("CLIP", (0, 0, 0)), ("MIRROR", (0, 1, 0))]
)
def test_extension_at_run_time(word, wanted):
    np.testing.assert_array_equal(sampled((1.25, 0.25), extension=word), wanted)


def test_alpha_of_a_clipped_tap_is_zero():
    assert sampled((1.25, 0.25), output="Alpha", extension="CLIP")[0] == 0.0


def test_straight_colour_is_associated_unless_alpha_is_read():
    half = {"colorspace": "Linear", "float": True}
    np.testing.assert_allclose(sampled((0.75, 0.75), half), (0.5, 0.5, 0.5), rtol=1e-6)
    n = node("TexImage", props={"image": "wood.png", "interpolation": "Closest"})
    product = node("MixRGB", {"Fac": 0.0, "Color1": link(n), "Color2": link(n, "Alpha")})
    document = {"images": {"wood.png": half}}
    got = value_of(product, n, values={"uv0": (0.75, 0.75)}, textures={T: TEXELS}, **document)[0]
    np.testing.assert_allclose(got, (1.0, 1.0, 1.0), rtol=1e-6)
