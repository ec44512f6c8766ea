"""The second text, for real displacement."""

import numpy as np
import pytest

import custom_expression
from edge_cases import statements, surface
from golden.documents import link, node

UNKNOWN = "displacement range unknown - Nanite displacement magnitude set to 1 m (offsets beyond +-50 cm are clipped)"
NUMBER = node("Value", props={"value": 0.5})


def displaced(n, *others, use_params=False):
    return surface(
        node("BsdfPrincipled"),
        n,
        *others,
        use_params=use_params,
        displacement=n,
        settings={"displacement": "DISPLACEMENT"},
    )


@pytest.mark.parametrize(
    "midlevel, scale, magnitude, known",
    [
        (0.5, 1.0, 128.0, True),
        (0.5, 0.1, 16.0, True),
        (0.0, 1.0, 256.0, True),
        (0.5, -2.0, 256.0, True),
        (0.5, 0.0, 128.0, False),
        (0.5, 0.0001, 0.0625, True),
        (1.0, 1.0, 256.0, True),
        (2.0, 1.0, 512.0, True),
        (-1.0, 1.0, 512.0, True),
        (0, 1, 256.0, True),
        (None, 1.0, 256.0, True),
        (0.5, None, 128.0, False),
        (0.5, 1e30, 2.0**107, True),
        (0.5, 0.512, 64.0, True),
        (0.5, 0.51200001, 128.0, True),
    ],
)
def test_magnitude(midlevel, scale, magnitude, known):
    entries = {"Midlevel": {"t": "VALUE", "v": midlevel}, "Scale": {"t": "VALUE", "v": scale}}
    result = displaced(node("Displacement", entries))
    record = result["displacement"]
    assert (record["magnitude"], type(record["magnitude"])) == (magnitude, float)
    assert result["warnings"] == ([] if known else [UNKNOWN])
    last = next(line for line in statements(record) if "100.0 * dot(" in line).split()[1]
    assert statements(record)[-1] == f"return 0.5 + {last} / {magnitude!r};"


def test_sockets_without_a_value_count_as_half_and_one():
    result = displaced(node("Displacement", {"Midlevel": {"t": "VALUE"}, "Scale": {"t": "VALUE"}}))
    assert result["displacement"]["magnitude"] == 128.0 and result["warnings"] == []


@pytest.mark.parametrize(
    "n",
    [
        node("Displacement", {"Scale": link(NUMBER)}),
        node("Displacement", {"Midlevel": link(NUMBER)}),
        node("VectorDisplacement"),
        node("Math"),
        node("VectorMath"),
    ],
    ids=lambda n: n["type"],
)
def test_unknown_range(n):
    result = displaced(n, NUMBER)
    assert result["warnings"] == [UNKNOWN] and result["displacement"]["magnitude"] == 128.0
    assert statements(result["displacement"])[-1].endswith(" / 128.0;")


def test_linked_height_leaves_the_range_known():
    result = displaced(node("Displacement", {"Height": link(NUMBER)}), NUMBER)
    assert result["warnings"] == [] and result["displacement"]["magnitude"] == 64.0


def test_text_of_a_value():
    record = displaced(node("Math"))["displacement"]
    assert record["code"].split("\n")[0] == "// Quillwork - displacement of Blender's node tree (Nanite tessellation)."
    assert statements(record)[4:6] == [
        "float3 v5 = ((float3)(v4));",
        "float v6 = 100.0 * dot(L.dir_world_to_obj(v5, (float3(oax.x, -oax.y, oax.z)), "
        "(-float3(oay.x, -oay.y, oay.z)), (float3(oaz.x, -oaz.y, oaz.z))), "
        "L.safe_normalize(L.rot_to_obj(float3(vnorm.x, -vnorm.y, vnorm.z), (float3(oax.x, -oax.y, oax.z)), "
        "(-float3(oay.x, -oay.y, oay.z)), (float3(oaz.x, -oaz.y, oaz.z)))));",
    ]
    assert [i["name"] for i in record["inputs"]] == ["oax", "oay", "oaz", "tbit", "ttan", "vnorm"]


def test_numbers_start_anew_and_the_surface_knows_nothing_of_the_stage():
    n = node("Displacement")
    result = displaced(n)
    assert statements(result["displacement"])[0] == "float v1 = (0.7 - 0.4) * 0.3;"
    assert not {"vnorm", "ttan", "tbit"} & {i["name"] for i in result["inputs"]}


def test_value_at_run_time():
    """A displacement of 0.25 m along the normal of an unrotated mesh: 25 cm above the centre of a 128 cm range."""
    n = node("Displacement", {"Height": 0.75, "Midlevel": 0.5, "Scale": 1.0})
    values = {
        "oax": (1.0, 0.0, 0.0),
        "oay": (0.0, 1.0, 0.0),
        "oaz": (0.0, 0.0, 1.0),
        "vnorm": (0.0, 0.0, 1.0),
        "ttan": (1.0, 0.0, 0.0),
        "tbit": (0.0, 1.0, 0.0),
        "tsign": 1.0,
    }
    got = custom_expression.evaluate(displaced(n)["displacement"], values)["result"]
    np.testing.assert_allclose(got, 0.5 + 25.0 / 128.0, rtol=1e-6)
