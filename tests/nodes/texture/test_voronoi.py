"""Voronoi."""

import numpy as np
import pytest

from edge_cases import ZERO, body, key_error, translated, unsupported, value_of
from golden.documents import bare, link, node

RANDOM = "(0.5 + 0.5 * vp1.randomness)"
TWICE = " * ((vp1.feature == 1) ? 2.0 : 1.0)"
TYPES = {"1D": "float", "2D": "float2", "3D": "float3", "4D": "float4"}
STRUCTS = {"QWKVoronoiParams", "QWKVoronoiOutput"}


def voronoi(output=None, **props):
    return translated(node("TexVoronoi", {"Vector": link(node("RGB"))}, props=props), node("RGB"), output=output)


def bound(result):
    return [line for line in result["body"] if line.startswith("vp1.max_distance") and "normalize" not in line]


def test_defaults():
    result = voronoi(voronoi_dimensions=None, feature=None, distance=None, normalize=None)
    assert result["body"][:5] == [
        "QWKVoronoiParams vp1;",
        "vp1.feature = 0; vp1.metric = 0; vp1.scale = 5.0;",
        "vp1.detail = clamp(2.0, 0.0, 15.0); vp1.roughness = clamp(0.625, 0.0, 1.0); vp1.lacunarity = 2.25;",
        "vp1.smoothness = clamp(0.75 / 2.0, 0.0, 0.5); vp1.exponent = 0.375; vp1.randomness = clamp(0.875, 0.0, 1.0);",
        "vp1.max_distance = 0.0; vp1.normalize = 0.0;",
    ]
    assert result["body"][5] == "float3 v2 = (float3(0.25, 0.5, 0.75) * vp1.scale);"
    assert result["body"][7] == "QWKVoronoiOutput v3 = L.fractal_voronoi_x_fx3(vp1, v2);"
    assert result["need"] == {"fractal_voronoi_x_fx3", "voronoi_distance3"} and result["structs"] == STRUCTS


@pytest.mark.parametrize("feature, code", [("F1", 0), ("F2", 1), ("SMOOTH_F1", 2)])
@pytest.mark.parametrize("d", TYPES)
def test_bound_of_points(feature, code, d):
    result = voronoi(feature=feature, voronoi_dimensions=d)
    assert f"vp1.feature = {code};" in result["body"][1]
    kind = TYPES[d]
    text = RANDOM if d == "1D" else f"L.voronoi_distance{d[0]}(({kind})0.0, ({kind}){RANDOM}, vp1)"
    assert bound(result) == [f"vp1.max_distance = {text}{TWICE};"]
    distance = set() if d == "1D" else {f"voronoi_distance{d[0]}"}
    assert result["need"] == {f"fractal_voronoi_x_fx{d[0]}"} | distance


@pytest.mark.parametrize("d", TYPES)
def test_distance_to_edge(d):
    result = voronoi("Distance", feature="DISTANCE_TO_EDGE", voronoi_dimensions=d, distance="MANHATTAN")
    assert bound(result) == [f"vp1.max_distance = {RANDOM};"]
    assert result["need"] == {f"fractal_voronoi_distance_to_edge{d[0]}"} and result["structs"] == STRUCTS
    assert result["body"][-1] == f"float v3 = L.fractal_voronoi_distance_to_edge{d[0]}(vp1, v2);"


@pytest.mark.parametrize("d", TYPES)
def test_radius_is_the_only_live_output(d):
    texts = {
        "Radius": "((float3)(v3))",
        "Distance": "((float3)(0.0))",
        "Color": ZERO,
        "Position": ZERO,
        "W": "((float3)(0.0))",
    }
    for output, text in texts.items():
        result = voronoi(output, feature="N_SPHERE_RADIUS", voronoi_dimensions=d)
        assert result["ret"] == text and bound(result) == [] and result["structs"] == STRUCTS
        assert result["need"] == {f"voronoi_n_sphere_radius{d[0]}"}


@pytest.mark.parametrize("feature", ["F1", "DISTANCE_TO_EDGE", "N_SPHERE_RADIUS"])
@pytest.mark.parametrize("metric, code", [("EUCLIDEAN", 0), ("MANHATTAN", 1), ("CHEBYCHEV", 2), ("MINKOWSKI", 3)])
def test_metric(feature, metric, code):
    for d in TYPES:
        line = voronoi(feature=feature, distance=metric, voronoi_dimensions=d)["body"][1]
        assert f"vp1.metric = {0 if d == '1D' else code};" in line


def test_outputs_of_points():
    texts = {
        "Distance": "((float3)(v3.distance))",
        "Color": "v3.color",
        "Position": "v3.position.xyz",
        "W": "((float3)(v3.position.w))",
        "Radius": "((float3)(0.0))",
    }
    for output, text in texts.items():
        assert voronoi(output, voronoi_dimensions="4D")["ret"] == text


def test_other_outputs_of_the_distance_to_edge():
    for output, text in {
        "Color": ZERO,
        "Position": ZERO,
        "W": "((float3)(0.0))",
        "Radius": "((float3)(0.0))",
        "Distance": "((float3)(v3))",
    }.items():
        assert voronoi(output, feature="DISTANCE_TO_EDGE")["ret"] == text


def test_smoothness_is_halved():
    n = node("TexVoronoi", {"Smoothness": 1.0}, props={"feature": "SMOOTH_F1"})
    assert "vp1.smoothness = clamp(1.0 / 2.0, 0.0, 0.5);" in body(n)[3]
    point = node("CombineXYZ", {"X": 0.3, "Y": 0.45, "Z": 0.5})
    one, more = (
        value_of(node("TexVoronoi", {"Smoothness": s, "Vector": link(point)}, props={"feature": "SMOOTH_F1"}), point)
        for s in (1.0, 7.0)
    )
    np.testing.assert_array_equal(one, more)


@pytest.mark.parametrize("normalize, text", [(True, "1.0"), (1, "1.0"), (False, "0.0"), (None, "0.0")])
def test_normalize(normalize, text):
    assert voronoi(normalize=normalize)["body"][4] == f"vp1.max_distance = 0.0; vp1.normalize = {text};"


def test_absent_sockets():
    assert body(bare("TexVoronoi", {"Scale": 5.0}))[1:5] == [
        "vp1.feature = 0; vp1.metric = 0; vp1.scale = 5.0;",
        "vp1.detail = clamp(0.0, 0.0, 15.0); vp1.roughness = clamp(0.5, 0.0, 1.0); vp1.lacunarity = 2.0;",
        "vp1.smoothness = clamp(1.0 / 2.0, 0.0, 0.5); vp1.exponent = 0.5; vp1.randomness = clamp(1.0, 0.0, 1.0);",
        "vp1.max_distance = 0.0; vp1.normalize = 0.0;",
    ]
    with unsupported("ShaderNodeTexVoronoi: no input Scale"):
        body(bare("TexVoronoi"))


def test_one_dimension_reads_w_and_never_the_vector():
    n = node(
        "TexVoronoi", {"Vector": link(node("Wireframe")), "W": link(node("Value"))}, props={"voronoi_dimensions": "1D"}
    )
    result = translated(n, node("Wireframe"), node("Value"))
    assert result["warnings"] == [] and "float v2 = (0.625 * vp1.scale);" in result["body"]


@pytest.mark.parametrize("prop, word", [("voronoi_dimensions", "5D"), ("feature", "F3"), ("distance", "MILES")])
def test_unknown_words(prop, word):
    for d in ("1D", "3D"):
        with key_error(word):
            voronoi(**{"voronoi_dimensions": d, prop: word})
