"""Voronoi textures: Blender's values, a double precision reference, and edge cases."""

import numpy as np
import pytest

import cost
import library
import voronoi_reference as reference
from agreement import table

VALUES = table("voronoi")
DIMS = [1, 2, 3, 4]
PLAIN = {
    "feature": 0,
    "metric": 0,
    "scale": 1.0,
    "detail": 0.0,
    "roughness": 0.5,
    "lacunarity": 2.0,
    "smoothness": 0.5,
    "exponent": 0.5,
    "randomness": 1.0,
    "max_distance": 1.0,
    "normalize": 0.0,
}
FIELDS = ["distance", "color", "position"]


def params(**changes):
    return {**PLAIN, **changes}


def columns(rows):
    """Returns (params with an array for each field, coordinates) of a table's rows."""
    fields = {
        k: np.array([row[0][k] for row in rows], np.int32 if k in ("feature", "metric") else np.float32)
        for k in rows[0][0]
    }
    return fields, np.float32([row[1] for row in rows])


def fx(d, fields, co):
    return library.call(f"fractal_voronoi_x_fx{d}", fields, flat(co), result="QWKVoronoiOutput")


def flat(co):
    return np.ascontiguousarray(co[:, 0]) if co.ndim == 2 and co.shape[1] == 1 else co


def points(d, n, seed, extent=40.0):
    """Random points whose coordinates are multiples of 1/256, which are exact in float32 and stay so when doubled."""
    return np.float32(np.round(np.random.default_rng(seed).uniform(-extent, extent, (n, d)) * 256.0) / 256.0)


def position(d, got):
    return got["position"][:, 3:] if d == 1 else got["position"][:, :d]


@pytest.mark.parametrize("d", [2, 3, 4])
def test_metrics_of_the_table(d):
    for a, b, metric, want in VALUES[f"voronoi_distance{d}"]:
        a, b = np.float32([a]), np.float32([b])
        got = library.call(f"voronoi_distance{d}", a, b, params(**metric), result="float")
        assert got[0] == pytest.approx(want, rel=1e-6 if metric["metric"] == 3 else 2e-7), metric


@pytest.mark.parametrize("d", [2, 3, 4])
def test_an_unknown_metric_has_no_distances(d):
    a = points(d, 5, 1)
    got = library.call(f"voronoi_distance{d}", a, a + 1, params(metric=np.int32(4)), result="float")
    assert (got == 0.0).all()


@pytest.mark.parametrize("d", DIMS)
def test_textures_of_the_table(d):
    rows = VALUES[f"fractal_voronoi_x_fx{d}"]
    got = fx(d, *columns(rows))
    for field in FIELDS:
        want = np.array([row[2][field] for row in rows])
        # In one dimension the positions are near 40, where floats have a larger step.
        assert np.abs(got[field] - want).max() <= (4e-6 if (d, field) == (1, "position") else 8e-7), field


@pytest.mark.parametrize("d", DIMS)
def test_colours_of_the_table_are_exact(d):
    rows = [r for r in VALUES[f"fractal_voronoi_x_fx{d}"] if r[0]["feature"] < 2 and r[0]["detail"] == 0.0]
    got = fx(d, *columns(rows))
    np.testing.assert_array_equal(got["color"], np.float32([row[2]["color"] for row in rows]))


@pytest.mark.parametrize("d", DIMS)
@pytest.mark.parametrize("name", ["fractal_voronoi_distance_to_edge", "voronoi_n_sphere_radius"])
def test_edges_and_radii_of_the_table(name, d):
    rows = VALUES[f"{name}{d}"]
    got = library.call(f"{name}{d}", *columns(rows), result="float")
    # In one dimension the coordinate is 41.8, where floats have a step of 4e-6. Octaves are blended into an 8, and its
    # rounding error depends on the compiler.
    assert np.abs(got - [row[2] for row in rows]).max() <= (4e-6 if d == 1 else 1e-6)


def agrees(got, want, tolerance, few=0.001):
    """Fails unless almost all points agree. Points at nearly equal distance to two cells can get either colour."""
    apart = np.abs(np.float64(got) - want)
    off = (apart > tolerance) if apart.ndim == 1 else (apart > tolerance).any(axis=1)
    assert not np.isnan(apart).any()
    assert off.mean() <= few, f"{off.mean():.3%} apart, median {np.median(apart):.1e}"


@pytest.mark.parametrize("d", DIMS)
@pytest.mark.parametrize("feature", [0, 1, 2])
@pytest.mark.parametrize("metric, exponent", [(0, 0.0), (1, 0.0), (2, 0.0), (3, 0.5), (3, 3.0)])
def test_textures_everywhere(d, feature, metric, exponent):
    p = params(
        feature=feature,
        metric=0 if d == 1 else metric,
        exponent=exponent,
        smoothness=0.375,
        scale=4.0,
        randomness=0.75,
        detail=1.25,
        roughness=0.625,
        max_distance=1.5,
        normalize=float(metric % 2),
    )
    co = points(d, 1500 if d < 4 else 300, 10 * d + feature)
    got, want = fx(d, p, co), reference.fractal(np.float64(co), p)
    agrees(got["distance"], want[0], 2e-5 if metric == 3 else 4e-6)
    agrees(got["color"], want[1], 2e-5 if feature == 2 else 1e-6)
    agrees(position(d, got), want[2], 1e-5)


@pytest.mark.parametrize("d", DIMS)
@pytest.mark.parametrize("detail, roughness", [(0.0, 0.5), (3.0, 0.0), (2.75, 0.5), (2.0, 1.0)])
def test_edges_everywhere(d, detail, roughness):
    p = params(feature=3, detail=detail, roughness=roughness, randomness=0.875, normalize=1.0, max_distance=0.9375)
    co = points(d, 2000, d)
    got = library.call(f"fractal_voronoi_distance_to_edge{d}", p, flat(co), result="float")
    agrees(got, reference.edge(np.float64(co), p), 4e-6)


@pytest.mark.parametrize("d", DIMS)
def test_edges_of_points_near_the_corners_of_their_cells(d):
    """With a low randomness the nearest point is often in another cell, and the search skips most cells."""
    p, co = params(feature=3, randomness=0.25), points(d, 2000, d)
    got = library.call(f"fractal_voronoi_distance_to_edge{d}", p, flat(co), result="float")
    agrees(got, reference.edge(np.float64(co), p), 4e-6)


def test_the_sign_of_zero_counts_in_one_dimension():
    """For the distance to the edge, Blender hashes the cell of -0 with its sign. Elsewhere it adds an offset first."""
    zeros = np.float32([0.0, -0.0])
    edge = library.call("fractal_voronoi_distance_to_edge1", params(), zeros, result="float")
    assert edge[0] != edge[1]
    assert np.ptp(library.call("voronoi_n_sphere_radius1", params(), zeros, result="float")) == 0.0


@pytest.mark.parametrize("d", DIMS)
def test_radii_everywhere(d):
    p, co = params(feature=4, randomness=0.9375), points(d, 2000, d)
    got = library.call(f"voronoi_n_sphere_radius{d}", p, flat(co), result="float")
    agrees(got, reference.n_sphere_radius(np.float64(co), p), 1e-6)


@pytest.mark.parametrize("d", DIMS)
def test_without_randomness_the_points_are_the_cells_corners(d):
    co = np.float32(np.random.default_rng(d).uniform(-9.0, 9.0, (200, d)))
    got = fx(d, params(randomness=0.0), co)
    np.testing.assert_array_equal(position(d, got), np.round(co))
    np.testing.assert_allclose(got["distance"], np.linalg.norm(co - np.round(co), axis=1), atol=1e-6)


@pytest.mark.parametrize("d", DIMS)
def test_of_equal_distances_the_first_cell_wins(d):
    co = np.full((1, d), 0.5, np.float32)
    got = fx(d, params(randomness=0.0), co)
    np.testing.assert_array_equal(position(d, got), np.zeros((1, d)))
    second = fx(d, params(randomness=0.0, feature=1), co)
    np.testing.assert_array_equal(position(d, second), [[1.0] + [0.0] * (d - 1)])


@pytest.mark.parametrize("d", DIMS)
def test_of_equally_distant_second_points_the_first_cell_wins(d):
    """Both neighbours on each axis are equally far from a corner. The search visits those along x first."""
    got = fx(d, params(randomness=0.0, feature=1), np.zeros((1, d), np.float32))
    np.testing.assert_array_equal(position(d, got), [[0.0] * (d - 1) + [-1.0]])


@pytest.mark.parametrize("d", [2, 3, 4])
def test_with_an_exponent_of_zero_the_first_cell_wins(d):
    """All powers are 1, so all cells are equally far. The roots of their sums are infinite."""
    co = np.floor(points(d, 200, d)) + np.float32(0.53125)
    p = params(metric=3, exponent=0.0)
    got, first = fx(d, p, co), np.floor(co) - 1.0
    np.testing.assert_array_equal(got["color"], np.float32(reference.color(np.float64(first))))
    np.testing.assert_array_equal(fx(d, {**p, "feature": 1}, co)["distance"], np.finfo(np.float32).max)


@pytest.mark.parametrize("d", [2, 3, 4])
def test_a_negative_exponent_finds_the_smallest_sum(d):
    """That is the largest distance, as in Blender."""
    p, co = params(metric=3, exponent=-2.0, randomness=0.75), points(d, 500, d) + np.float32(1 / 512)
    found = list(reference.neighbours(np.float64(co), p, 1))
    want = np.max([t for _, _, t in found], axis=0)
    np.testing.assert_allclose(fx(d, p, co)["distance"], want, rtol=1e-5)


def test_points_nearer_than_a_hundredth_make_no_border():
    cells = np.float64([[-166, -318], [-547, -518], [250, -281]])  # each has such a point to its right
    co = cells + reference.hashed(cells)
    right = cells + [1.0, 0.0]
    apart = np.linalg.norm(right + reference.hashed(right) - co, axis=1)
    assert (apart < 0.01).all()
    got = library.call("fractal_voronoi_distance_to_edge2", params(), np.float32(co), result="float")
    agrees(got, reference.edge(np.float64(np.float32(co)), params()), 1e-4, few=0.0)
    assert (got > 0.01).all()


@pytest.mark.parametrize("d", DIMS)
def test_no_smoothness_is_the_nearest(d):
    # The blend searches two cells in each direction, so it can find a nearer point. This occurs in four dimensions.
    co = points(d, 20000, d)
    nearest, smooth = fx(d, params(metric=1), co), fx(d, params(metric=1, feature=2, smoothness=0.0), co)
    for field in FIELDS:
        np.testing.assert_array_equal(nearest[field], smooth[field])


@pytest.mark.parametrize("d", DIMS)
def test_one_octave_where_the_roughness_is_zero(d):
    # A lacunarity of zero would make further octaves NaN, even with zero weight.
    co = points(d, 200, d)
    one, many = fx(d, params(), co), fx(d, params(detail=5.5, roughness=0.0, lacunarity=0.0), co)
    for field in FIELDS:
        np.testing.assert_array_equal(one[field], many[field])


@pytest.mark.parametrize("d", DIMS)
def test_scale_zero_has_no_position(d):
    assert (fx(d, params(scale=0.0), points(d, 20, d))["position"] == 0.0).all()


@pytest.mark.parametrize("d", [2, 3, 4])
def test_cells_beyond_the_whole_floats(d):
    """From 2^24 on floats can't represent every integer, but each neighbouring cell is still hashed separately."""
    sign = np.random.default_rng(d).choice([-1, 1], (100, d))
    co = np.float32(sign * (2.0**26 + 8.0 * np.arange(100)[:, None]))
    got = fx(d, params(), co)
    distance, color, _ = reference.octave(np.float64(co), params())
    np.testing.assert_allclose(got["distance"], distance, atol=1e-6)
    np.testing.assert_array_equal(got["color"], np.float32(color))


@pytest.mark.parametrize("d", DIMS)
@pytest.mark.parametrize("feature", [0, 1, 2])
def test_coordinates_without_sense_come_to_an_end(d, feature):
    wild = np.float32([np.nan, np.inf, -np.inf, 1e30, -3e38, 2.0**31, 0.5])
    co = np.stack([wild] + [np.full_like(wild, 0.25)] * (d - 1), axis=1)
    got = fx(d, params(feature=feature, detail=2.5, normalize=1.0), co)
    assert np.isfinite(got["distance"][-1]) and np.isfinite(got["color"][-1]).all()
    for name in ("fractal_voronoi_distance_to_edge", "voronoi_n_sphere_radius"):
        got = library.call(f"{name}{d}", params(detail=2.5), flat(co), result="float")
        assert got.shape == (7,) and np.isfinite(got[-1])


@pytest.mark.parametrize("feature, limit", [(0, 320), (1, 360), (2, 400)])
def test_cost_in_four_dimensions(feature, limit):
    """No loop may be unrolled: unrolled cells or octaves cost thousands of instructions.

    Feature and metric are literals, as in a generated text. The rest varies.
    """
    fixed = {"feature": feature, "metric": 0}
    kinds = library.fields("QWKVoronoiParams")
    lines = [
        "QWKVoronoiParams vp;",
        *(f"vp.{f} = {fixed.get(f, f)};" for f in kinds),
        "QWKVoronoiOutput o = L.fractal_voronoi_x_fx4(vp, co);",
        "out_distance = o.distance; out_color = o.color; out_position = o.position;",
    ]
    inputs = {"co": "float4", **{f: kind for f, kind in kinds.items() if f not in fixed}}
    outputs = {"out_distance": "float", "out_color": "float3", "out_position": "float4"}
    body = "\n".join([library.declarations({"fractal_voronoi_x_fx4"}, " ".join(lines)), *lines])
    assert cost.count(cost.shader(body, inputs, outputs)) <= limit
