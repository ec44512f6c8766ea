"""The magnitude of real displacement is computed from the graph."""

import math
import random

import pytest
from records import document, link, node, principled, value

import quillgen
from quillgen_blender.passes import Options, displacement, finish, scalar_intervals
from quillgen_blender.passes.intervals import Intervals


def displaced(*nodes, source, method="DISPLACEMENT"):
    made = document(principled(), *nodes, surface=["Principled BSDF", "BSDF"], displacement=source)
    return made | {"settings": {"displacement": method}}


def displacement_node(name="Displacement", **inputs):
    sockets = {"Height": value(0.0), "Midlevel": value(0.5), "Scale": value(1.0)} | inputs
    return node(name, "Displacement", sockets, space="OBJECT")


def noise(name="Noise Texture"):
    sockets = {"Scale": value(5.0), "Detail": value(2.0), "Roughness": value(0.5), "Lacunarity": value(2.0)}
    sockets |= {"Distortion": value(0.0), "W": value(0.0), "Vector": value([0.0] * 3, "VECTOR")}
    return node(name, "TexNoise", sockets, noise_type="FBM", normalize=True, noise_dimensions="3D")


def translated(made, **options):
    options = Options(parameters="all", **options)
    plain = quillgen.compile(made)
    result, notes = finish(plain, made, (), options)
    return plain, result, notes


HEIGHT = link("Noise Texture", "Fac", "VALUE")
OUT = ["Displacement", "Displacement"]


def test_what_the_translator_knows_stays():
    for scale, middle in ((1.0, 0.5), (0.1, 0.5), (1.0, 0.0), (-2.0, 0.5), (0.0001, 0.5)):
        made = displaced(
            noise(), displacement_node(Height=HEIGHT, Midlevel=value(middle), Scale=value(scale)), source=OUT
        )
        plain, result, _ = translated(made)
        assert result["displacement"] == plain["displacement"]


def constants():
    """The scale is computed by nodes from constants: 0.02 * 5 + 0.1 - 0.15 = 0.05."""
    return (
        node("Value", "Value", {}, value=0.02),
        node("Math", "Math", {"Value": link("Value", "Value", "VALUE"), "Value_001": value(5.0)}, operation="MULTIPLY"),
        node("Math.001", "Math", {"Value": link("Math", "Value", "VALUE"), "Value_001": value(0.1)}, operation="ADD"),
        node("Combine XYZ", "CombineXYZ", {"X": link("Math.001", "Value", "VALUE"), "Y": value(0.0), "Z": value(0.0)}),
        node(
            "Vector Math",
            "VectorMath",
            {"Vector": link("Combine XYZ", "Vector", "VECTOR"), "Vector_001": value([0.15, 0.0, 0.0], "VECTOR")},
            operation="SUBTRACT",
        ),
        node("Separate XYZ", "SeparateXYZ", {"Vector": link("Vector Math", "Vector", "VECTOR")}),
    )


def test_constants_are_followed_through_nodes():
    scale = link("Separate XYZ", "X", "VALUE")
    made = displaced(noise(), *constants(), displacement_node(Height=HEIGHT, Scale=scale), source=OUT)
    plain, result, notes = translated(made)
    assert plain["displacement"]["magnitude"] == 128.0 and displacement.UNKNOWN in plain["warnings"]
    assert result["displacement"]["magnitude"] == 8.0 and result["warnings"] == []
    assert result["displacement"]["code"].endswith(" / 8.0;")
    assert result["displacement"]["code"].splitlines()[:-1] == plain["displacement"]["code"].splitlines()[:-1]
    assert [(note.node, note.loss) for note in notes] == [("Displacement", "info")]
    assert "-2.5 to 2.5 cm" in notes[0].text and "8 cm" in notes[0].text
    assert "P_Value__value" in result["params"]  # the parameter that sets the scale is kept


def test_a_height_beyond_one_widens_the_range():
    times = node("Math", "Math", {"Value": HEIGHT, "Value_001": value(6.0)}, operation="MULTIPLY")
    node_ = displacement_node(Height=link("Math", "Value", "VALUE"), Scale=value(0.1), Midlevel=value(0.0))
    plain, result, notes = translated(displaced(noise(), times, node_, source=OUT))
    assert plain["displacement"]["magnitude"] == 32.0  # half of it suffices for 0.125 m, but 0.6 m would be clipped
    assert result["displacement"]["magnitude"] == 256.0 and "0 to 60 cm" in notes[0].text


def test_unknown_heights_are_taken_to_lie_between_0_and_1():
    unknown = node("Geometry", "NewGeometry") | {"outs": {"Position": "VECTOR"}}
    height = link("Geometry", "Position", "VECTOR", "VALUE")
    _, result, notes = translated(displaced(unknown, displacement_node(Height=height, Scale=value(0.1)), source=OUT))
    assert result["displacement"]["magnitude"] == 16.0 and "for a height between 0 and 1" in notes[0].text


def vectors(operation, **inputs):
    return node("Vector Math", "VectorMath", inputs, operation=operation)


FIRST = link("Displacement", "Displacement", "VECTOR")
SECOND = link("Second", "Displacement", "VECTOR")


@pytest.mark.parametrize(
    ("last", "low", "high"),
    [
        (vectors("SCALE", Vector=FIRST, Scale=value(0.5)), -5.0, 5.0),
        (vectors("ADD", Vector=FIRST, Vector_001=SECOND), -10.0, 12.0),
        (vectors("SUBTRACT", Vector=FIRST, Vector_001=SECOND), -12.0, 10.0),
        (vectors("MULTIPLY", Vector=FIRST, Vector_001=value([0.1] * 3, "VECTOR")), -1.0, 1.0),
        (vectors("MULTIPLY_ADD", Vector=FIRST, Vector_001=value([2.0] * 3, "VECTOR"), Vector_002=SECOND), -20, 22),
        (
            node(
                "Vector Math",
                "Mix",
                {
                    "Factor_Float": link("Noise Texture", "Fac", "VALUE"),
                    "A_Color": link("Displacement", "Displacement", "VECTOR", "RGBA"),
                    "B_Color": link("Second", "Displacement", "VECTOR", "RGBA"),
                },
                data_type="RGBA",
                blend_type="MIX",
                clamp_factor=True,
            ),
            -10.0,
            10.0,
        ),
    ],
)
def test_displacements_are_followed_through_vectors(last, low, high):
    first = displacement_node(Height=HEIGHT, Scale=value(0.2))  # 10 cm to either side
    second = displacement_node("Second", Height=HEIGHT, Scale=value(0.02), Midlevel=value(0.0))  # 0 to 2 cm
    output = "Result_Color" if last["type"].endswith("Mix") else "Vector"
    made = displaced(noise(), first, second, last, source=["Vector Math", output])
    plain, result, notes = translated(made)
    assert displacement.UNKNOWN in plain["warnings"] and result["warnings"] == []
    assert f"{low:.4g} to {high:.4g} cm" in notes[0].text
    least = 2.0 * max(abs(low), abs(high)) * displacement.HEADROOM
    assert result["displacement"]["magnitude"] == 2.0 ** math.ceil(math.log2(least))


def test_a_vector_displacement_in_tangent_space_goes_along_the_normal_by_its_y():
    colour = node("RGB", "RGB", {}, color=[0.5, 1.0, 0.0, 1.0])
    sockets = {"Vector": link("RGB", "Color", "RGBA", "VECTOR"), "Midlevel": value(0.5), "Scale": value(0.2)}
    vector = node("Vector Displacement", "VectorDisplacement", sockets, space="TANGENT")
    _, _, notes = translated(displaced(colour, vector, source=["Vector Displacement", "Displacement"]))
    assert "displaces by 10 to 10 cm" in notes[0].text


def test_what_is_not_known_stays_with_its_warning():
    scale = link("Geometry", "Position", "VECTOR", "VALUE")
    geometry = node("Geometry", "NewGeometry") | {"outs": {"Position": "VECTOR"}}
    plain, result, notes = translated(displaced(geometry, noise(), displacement_node(Scale=scale), source=OUT))
    assert result is not None and result["warnings"] == plain["warnings"] == [displacement.UNKNOWN] and notes == []
    made = displaced(noise(), *constants(), displacement_node(Scale=link("Value", "Value", "VALUE")), source=OUT)
    plain, result, notes = translated(made, find_range=False)
    assert result["displacement"] == plain["displacement"] and notes == []
    assert translated(made | {"settings": {"displacement": "BUMP"}})[1]["displacement"] is None


def test_a_circle_of_links_ends():
    loop = node("Math", "Math", {"Value": link("Math", "Value", "VALUE"), "Value_001": value(1.0)}, operation="ADD")
    assert Intervals(document(loop)).output("Math", "Value") == [None]


def test_intervals_hold_what_operations_give():
    """For random operands, the result lies in the interval that is computed from the operands' ranges."""
    rng = random.Random(18)
    seen = 0
    for operation in [*scalar_intervals._CONSTANTS, *scalar_intervals._LINEAR]:
        for _ in range(200):
            ranges = [tuple(sorted((rng.uniform(-3, 3), rng.uniform(-3, 3)))) for _ in range(3)]
            found = scalar_intervals.mathematics(operation, ranges)
            point = [rng.uniform(*ends) for ends in ranges]
            constant = scalar_intervals.mathematics(operation, [(x, x) for x in point])
            if found is None or constant is None:
                continue
            seen += 1
            assert found[0] - 1e-9 <= constant[0] <= found[1] + 1e-9, (operation, ranges, point)
    assert seen > 3000


def test_constants_are_what_the_operations_are():
    """Results computed by hand."""
    for operation, operands, expected in (
        ("DIVIDE", (1.0, 0.0, 0.0), 0.0),
        ("POWER", (2.0, 10.0, 0.0), 1024.0),
        ("POWER", (-2.0, 0.5, 0.0), 0.0),
        ("WRAP", (5.5, 2.0, 0.0), 1.5),
        ("PINGPONG", (1.25, 1.0, 0.0), 0.75),
        ("SNAP", (1.7, 0.5, 0.0), 1.5),
        ("FLOORED_MODULO", (-1.0, 3.0, 0.0), 2.0),
        ("MODULO", (-1.0, 3.0, 0.0), -1.0),
        ("SMOOTH_MAX", (1.0, 1.0, 0.0), 1.0),
        ("COMPARE", (1.0, 1.05, 0.1), 1.0),
        ("LOGARITHM", (8.0, 2.0, 0.0), 3.0),
    ):
        found = scalar_intervals.mathematics(operation, [(x, x) for x in operands])
        assert found == pytest.approx((expected, expected)), operation
