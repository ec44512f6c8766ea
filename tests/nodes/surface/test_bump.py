"""Bump nodes, and the bump of the whole surface by the displacement output."""

import numpy as np
import pytest

import custom_expression
import quillgen
from edge_cases import body, bumped_normal, key_error, surface, translated, unsupported, value_of
from golden.documents import link, material, node

NF = "(normalize(float3(cnorm.x, -cnorm.y, cnorm.z)) * ((tsign < 0.0) ? -1.0 : 1.0))"
UV = node("UVMap")
PARTS = node("SeparateXYZ", {"Vector": link(UV)})

# A flat square in the xy plane, seen from 10 m above. A step of one pixel is 1 cm.
SCENE = {
    "cnorm": (0.0, 0.0, 1.0),
    "camvec": (0.0, 0.0, 1.0),
    "tsign": 1.0,
    "thfov": (0.5, 0.5),
    "vsz": (1000.0, 1000.0),
    "wpos": (0.0, 0.0, 0.0),
    "cpos": (0.0, 0.0, 1000.0),
    "vaxx": (1.0, 0.0, 0.0),
    "vaxy": (0.0, -1.0, 0.0),
    "vaxz": (0.0, 0.0, -1.0),
    "wpcr_dx": (1.0, 0.0, 0.0),
    "wpcr_dy": (0.0, 1.0, 0.0),
    "uv0": (0.25, 0.5),
    "uv0_dx": (0.01, 0.0),
    "uv0_dy": (0.0, 0.01),
    "oax": (1.0, 0.0, 0.0),
    "oay": (0.0, 1.0, 0.0),
    "oaz": (0.0, 0.0, 1.0),
    "lpos": (0.0, 0.0, 0.0),
}


def bump(height=PARTS, output="X", without=(), props=None, **inputs):
    given = {k.replace("_", " "): v for k, v in inputs.items()}
    return node(
        "Bump",
        {"Height": link(height, output), "Strength": 1.0, "Distance": 1.0, **given},
        without=without,
        props=props,
    )


def normal(n, *others, **values):
    """The normal at run time."""
    result = quillgen.compile(material(n, *(others or (PARTS, UV))), "emission", False)
    given = {**SCENE, **values}
    needed = {i["name"] for i in result["inputs"]}
    return custom_expression.evaluate(result, {k: v for k, v in given.items() if k in needed})["result"][0]


def unit(*vector):
    return np.array(vector) / np.linalg.norm(vector)


@pytest.mark.parametrize("without", [(), ("Height",)])
def test_unlinked_height_passes_the_normal_on(without):
    n = node("Bump", without=without, props={"invert": True})
    result = translated(n)
    assert result["body"] == [f"float3 v1 = {NF};", "float v2 = max(0.9, 0.0);", "float v3 = 0.2;", "v3 = -v3;"]
    assert result["ret"] == "v1" and result["need"] == set()


def test_statements():
    colour = node("RGBToBW")
    assert body(bump(colour, "Val", Filter_Width=0.15), colour)[1:] == [
        "float v2 = max(1.0, 0.0);",
        "float v3 = 1.0;",
        "float3 v4 = L.facing_normal(normalize(cross((float3(wpcr_dx.x, -wpcr_dx.y, wpcr_dx.z) * 0.01), "
        "(float3(wpcr_dy.x, -wpcr_dy.y, wpcr_dy.z) * 0.01))), "
        "normalize(float3(camvec.x, -camvec.y, camvec.z)));",
        "float v5 = L.bump_dp((float3(dot(wpos - cpos, vaxx), dot(wpos - cpos, vaxy), "
        "dot(wpos - cpos, vaxz)) * 0.01), "
        "thfov, vsz);",
        "float3 v6 = L.make_orthonormals_a(v4);",
        "float3 v7 = v5 * v6;",
        "float3 v8 = v5 * cross(v4, v6);",
        "float3 v9 = (float3(wpcr_dx.x, -wpcr_dx.y, wpcr_dx.z) * 0.01);",
        "float3 v10 = (float3(wpcr_dy.x, -wpcr_dy.y, wpcr_dy.z) * 0.01);",
        "float v11 = dot(v9, v9);",
        "float v12 = dot(v9, v10);",
        "float v13 = dot(v10, v10);",
        "float v14 = v11 * v13 - v12 * v12;",
        "float3 v15 = v7 * 0.15;",
        "float v16 = dot(v9, v15);",
        "float v17 = dot(v10, v15);",
        "float v18 = (v14 != 0.0) ? (v13 * v16 - v12 * v17) / v14 : 0.0;",
        "float v19 = (v14 != 0.0) ? (v11 * v17 - v12 * v16) / v14 : 0.0;",
        "float3 v20 = v8 * 0.15;",
        "float v21 = dot(v9, v20);",
        "float v22 = dot(v10, v20);",
        "float v23 = (v14 != 0.0) ? (v13 * v21 - v12 * v22) / v14 : 0.0;",
        "float v24 = (v14 != 0.0) ? (v11 * v22 - v12 * v21) / v14 : 0.0;",
        *(
            line
            for k in (25, 27, 29)
            for line in (
                f"float v{k} = dot(float3(0.8, 0.5, 0.25), float3(0.2126, 0.7152, 0.0722));",
                f"float v{k + 1} = v{k};",
            )
        ),
        "float3 v31 = cross(v8, v1);",
        "float3 v32 = cross(v1, v7);",
        "float v33 = dot(v7, v31);",
        "float3 v34 = (v26 - v30) * v31 + (v28 - v30) * v32;",
        "float3 v35 = L.safe_normalize(0.15 * abs(v33) * v1 - v3 * ((v33 < 0.0) ? -1.0 : 1.0) * v34);",
        "if (dot(v35, v35) == 0.0) v35 = v1; else v35 = normalize(v2 * v35 + (1.0 - v2) * v1);",
    ]


def test_linked_normal_leaves_the_frame_geometric():
    tilted = node("Normal")
    result = translated(bump(Normal=link(tilted)), tilted, PARTS, UV)
    assert result["body"][0] == "float3 v1 = float3(0.0, 0.6, 0.8);" and "cnorm" not in result["inputs"]
    assert sum(line.endswith(" = cross(v8, v1);") for line in result["body"]) == 1
    assert sum("L.facing_normal(" in line for line in result["body"]) == 1


@pytest.mark.parametrize(
    "given, text",
    [
        (None, "0.1"),
        ({"t": "VALUE"}, "0.1"),
        ({"t": "VALUE", "v": None}, "0.1"),
        (0, "0.0"),
        (0.25, "0.25"),
        (2, "2.0"),
        ({"t": "VALUE", "link": ["Nobody", "Value", "VALUE"]}, "0.1"),
        ({"t": "VALUE", "link": ["Nobody", "Value", "VALUE"], "v": 0.5}, "0.5"),
    ],
)
def test_filter_width(given, text):
    n = bump(without=["Filter Width"]) if given is None else bump(Filter_Width=given)
    lines = body(n, PARTS, UV)
    assert f"float3 v15 = v7 * {text};" in lines
    assert any(f" = L.safe_normalize({text} * abs(" in line for line in lines)


def test_no_filter_width_gives_the_normal_back():
    np.testing.assert_allclose(normal(bump(Filter_Width=0)), (0.0, 0.0, 1.0), atol=1e-6)


def test_slope_at_run_time():
    """The height is u. It rises by 1 m per metre along x, so the normal tilts by 45 degrees towards -x."""
    np.testing.assert_allclose(normal(bump(Filter_Width=0.1)), unit(-1.0, 0.0, 1.0), atol=1e-4)
    np.testing.assert_allclose(normal(bump(output="Y")), unit(0.0, -1.0, 1.0), atol=1e-4)
    np.testing.assert_allclose(normal(bump(Distance=0.5)), unit(-0.5, 0.0, 1.0), atol=1e-4)


def test_invert():
    plain, inverted = (body(bump(props={"invert": invert}), PARTS, UV) for invert in (False, True))
    assert inverted == [*plain[:3], "v3 = -v3;", *plain[3:]]
    assert body(bump(props={"invert": None}), PARTS, UV) == plain
    leans = normal(bump(props={"invert": True}))
    np.testing.assert_allclose(leans, unit(1.0, 0.0, 1.0), atol=1e-4)
    np.testing.assert_array_equal(normal(bump(Distance=-1.0, props={"invert": True})), normal(bump()))


@pytest.mark.parametrize("strength", [0.0, -1.0])
def test_no_strength(strength):
    np.testing.assert_allclose(normal(bump(Strength=strength), cnorm=(0.0, 0.0, 1.0)), (0.0, 0.0, 1.0), atol=1e-6)


def test_strength_beyond_one_extrapolates():
    once, twice = (normal(bump(Strength=s)) for s in (1.0, 2.0))
    np.testing.assert_allclose(twice, unit(*(2 * once - np.array((0.0, 0.0, 1.0)))), atol=1e-5)


def test_pixels_without_derivatives():
    """A height that depends on UVs has no slope there. A height that depends on the position does."""
    parallel = {"wpcr_dx": (100.0, 0.0, 0.0), "wpcr_dy": (100.0, 1e-3, 0.0)}  # parallel within float precision
    np.testing.assert_allclose(normal(bump(), **parallel), (0.0, 0.0, 1.0), atol=1e-6)
    geometry = node("NewGeometry")
    parts = node("SeparateXYZ", {"Vector": link(geometry, "Position")})
    np.testing.assert_allclose(normal(bump(parts), parts, geometry, **parallel), unit(-1.0, 0.0, 1.0), atol=1e-4)


# ---- the displacement output ------------------------------------------------------------------------

HEIGHT = node("Displacement", {"Height": link(PARTS, "X"), "Midlevel": 0.0, "Scale": 1.0}, props={"space": "WORLD"})


def displaced(method="BUMP", reader=None, displacement=HEIGHT, others=(PARTS, UV), mode="surface"):
    settings = {} if method is None else {"displacement": method}
    reader = reader or node("BsdfDiffuse")
    return translated(reader, displacement, *others, mode=mode, displacement=displacement, settings=settings)


@pytest.mark.parametrize(
    "method, runs, object_space",
    [
        (None, True, False),
        ("BUMP", True, False),
        ("BOTH", True, True),
        ("DISPLACEMENT", True, True),
        ("NO_SUCH_WORD", False, None),
        ("", False, None),
    ],
)
def test_methods(method, runs, object_space):
    for mode in ("surface", "emission"):
        result = displaced(method, mode=mode)
        text = "\n".join(result["body"])
        assert ("L.bump_dp(" in text) == runs
        assert ("L.n_obj_to_world(" in text) == ("L.dir_world_to_obj(" in text) == bool(object_space)


@pytest.mark.parametrize("nothing", [{}, {"displacement": None}, {"displacement": []}])
def test_nothing_to_displace(nothing):
    document = material(node("BsdfDiffuse"), settings={"displacement": "BOTH"})
    document["out"].update(nothing)
    result = quillgen.parts(document, "surface")
    assert len(result["body"]) == 2 and result["need"] == set()


def test_statements_of_the_displacement_come_first():
    result = displaced()
    name, behind = bumped_normal(result["body"])
    assert result["body"][0] == f"float3 v1 = {NF};"
    assert "float3 v13 = v5 * 0.1;" in result["body"]
    dots = [line for line in result["body"] if line.endswith(", v1);") and line.startswith("float v")]
    assert len(dots) == 3, "the height is the part along the normal"
    assert any(
        line.startswith(f"float3 {name} = L.safe_normalize(0.1 * abs(") and " - 1.0 * ((" in line
        for line in result["body"]
    )
    assert any(
        line == f"if (dot({name}, {name}) == 0.0) {name} = v1; else {name} = "
        f"normalize(1.0 * {name} + (1.0 - 1.0) * v1);"
        for line in result["body"]
    )
    assert [line.split(" = ")[0].rstrip("0123456789") for line in behind] == ["QWKClosure bsdf", "QWKClosure surf"]


def test_surface_that_reads_no_normal_is_bumped_all_the_same():
    assert any("L.bump_dp(" in line for line in displaced(reader=node("Emission"), mode="emission")["body"])


@pytest.mark.parametrize("method", ["BUMP", "BOTH"])
def test_displaced_normal_is_in_world_space(method):
    result = surface(node("BsdfDiffuse"), HEIGHT, PARTS, UV, displacement=HEIGHT, settings={"displacement": method})
    needed = {i["name"] for i in result["inputs"]}
    got = custom_expression.evaluate(result, {k: v for k, v in SCENE.items() if k in needed})["OutNormal"][0]
    np.testing.assert_allclose(got, unit(-1.0, 0.0, 1.0), atol=1e-4)


def test_node_that_both_read_keeps_the_normal_of_the_mesh():
    facing = node("LayerWeight")
    height = node("Displacement", {"Height": link(facing, "Facing")})
    shader = node("BsdfDiffuse", {"Color": link(facing, "Facing")})
    shared = displaced(reader=shader, displacement=height, others=(facing,))
    name, behind = bumped_normal(shared["body"])
    assert not any(name in line for line in behind)
    alone = displaced(reader=shader, others=(facing, PARTS, UV))
    name, behind = bumped_normal(alone["body"])
    assert any(line.endswith(f" = {name};") for line in behind)


def test_displacement_that_is_too_short():
    for source in (["Displacement"], "D"):
        document = material(node("BsdfDiffuse"), HEIGHT)
        document["out"]["displacement"] = source
        with pytest.raises(IndexError):
            quillgen.compile(document)


@pytest.mark.parametrize("socket", ["Strength", "Distance"])
def test_mandatory_sockets(socket):
    with unsupported(f"ShaderNodeBump: no input {socket}"):
        body(bump(without=[socket]), PARTS, UV)


@pytest.mark.parametrize("key", ["props", "in"])
def test_mandatory_keys(key):
    n = bump()
    del n[key]
    with key_error(key):
        body(n, PARTS, UV)


def test_value_of_an_unlinked_bump_is_the_shading_normal():
    got = value_of(node("Bump"), values={"cnorm": (0.0, 0.6, 0.8), "tsign": -1.0})[0]
    np.testing.assert_allclose(got, (0.0, 0.6, -0.8), atol=1e-6)
