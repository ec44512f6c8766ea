"""Mapping, rotations, object frames and bump steps: Blender's values, and linear algebra in double precision."""

import math

import numpy as np
import pytest

from agreement import check, evaluate, same, table

VALUES = table("spaces")
NAN = math.nan
POINT, TEXTURE, VECTOR, NORMAL = range(4)

# Tolerances relative to the largest component. The approximation in bump_dp causes an error of 2e-6 at 512 pixels.
LOOSER = {"bump_dp": 2e-6}


def points(seed, *shape):
    return np.random.default_rng(seed).uniform(-3, 3, size=(*shape, 200, 3))


def euler(r):
    """The matrices of rotations about x, then y, then z: [n, 3, 3]."""
    (cx, cy, cz), (sx, sy, sz) = np.cos(r).T, np.sin(r).T
    zero, one = np.zeros(len(r)), np.ones(len(r))
    x = np.array([[one, zero, zero], [zero, cx, -sx], [zero, sx, cx]])
    y = np.array([[cy, zero, sy], [zero, one, zero], [-sy, zero, cy]])
    z = np.array([[cz, -sz, zero], [sz, cz, zero], [zero, zero, one]])
    return np.einsum("ijn,jkn,kln->nil", z, y, x)


def axis_angle(n, angle):
    """The matrices of rotations about unit vectors (Rodrigues' formula)."""
    k = np.cross(np.eye(3)[None], n[:, None, :])
    k = -np.swapaxes(k, 1, 2)
    s, c = np.sin(angle)[:, None, None], np.cos(angle)[:, None, None]
    return np.eye(3) + s * k + (1 - c) * (k @ k)


def turn(matrices, v):
    return np.einsum("nij,nj->ni", matrices, v)


@pytest.mark.parametrize("name", VALUES)
def test_agrees_with_blender(name):
    check(name, VALUES[name], LOOSER.get(name, 1e-6))


def test_mapping_over_many_vectors():
    v, location, rotation, scale = points(1, 4)
    e = euler(rotation)
    inverse = np.swapaxes(e, 1, 2)
    normal = turn(e, v / scale)
    for kind, want in {
        POINT: turn(e, v * scale) + location,
        VECTOR: turn(e, v * scale),
        TEXTURE: turn(inverse, v - location) / scale,
        NORMAL: normal / np.linalg.norm(normal, axis=1, keepdims=True),
    }.items():
        same(evaluate("mapping", kind, v, location, rotation, scale), want, 4e-6)


@pytest.mark.parametrize("axis", range(3))
def test_one_angle_turns_in_its_plane_to_the_last_bit(axis):
    v = points(2).astype(np.float32)
    rotation = np.zeros(3)
    rotation[axis] = 0.6
    i, j = (axis + 1) % 3, (axis + 2) % 3
    got = evaluate("mapping", VECTOR, v, np.zeros(3), rotation, np.ones(3))
    # Takes sine and cosine of the angle as the device computes them.
    c, s = evaluate("mapping", VECTOR, np.eye(3)[[i]], np.zeros(3), rotation, np.ones(3))[0, [i, j]]
    assert np.abs([c - math.cos(0.6), s - math.sin(0.6)]).max() < 1e-6
    assert (got[:, axis] == v[:, axis]).all()
    assert (got[:, i] == c * v[:, i] - s * v[:, j]).all()
    assert (got[:, j] == s * v[:, i] + c * v[:, j]).all()


def test_no_rotation_changes_nothing():
    v = points(3).astype(np.float32)
    assert (evaluate("mapping", POINT, v, np.zeros(3), np.zeros(3), np.ones(3)) == v).all()
    assert (evaluate("mapping", TEXTURE, v, np.zeros(3), np.zeros(3), np.ones(3)) == v).all()


@pytest.mark.parametrize(
    "kind, scale, want",
    [
        (TEXTURE, [2, 0, 1], [0.5, 0, 3]),
        (TEXTURE, [0, 0, 0], [0, 0, 0]),
        (NORMAL, [0, 0, 0], [0, 0, 0]),
        (NORMAL, [0, 1, 0], [0, 1, 0]),
        (NORMAL, [0, -0.25, 0], [0, -1, 0]),
        (VECTOR, [0, 1, -1], [0, 2, -3]),
    ],
)
def test_a_scale_of_zero(kind, scale, want):
    got = evaluate("mapping", kind, [[1, 2, 3]], [[0, 0, 0]], [[0, 0, 0]], [scale])
    assert (got == want).all()


def test_vector_rotate_over_many_vectors():
    v, center, axis, rotation = points(4, 4)
    angle = points(5)[:, 0]
    unit = axis / np.linalg.norm(axis, axis=1, keepdims=True)
    axes = {0: unit, 1: np.eye(3)[[0] * 200], 2: np.eye(3)[[1] * 200], 3: np.eye(3)[[2] * 200]}
    matrices = {mode: axis_angle(n, angle) for mode, n in axes.items()} | {4: euler(rotation)}
    for mode, matrix in matrices.items():
        for invert in (0, 1):
            used = np.swapaxes(matrix, 1, 2) if invert else matrix
            got = evaluate("vector_rotate", mode, invert, v, center, axis, angle, rotation)
            assert np.abs(got - (turn(used, v - center) + center)).max() < 6e-6, (mode, invert)


@pytest.mark.parametrize("invert", [0, 1])
def test_an_axis_of_zero_turns_nothing(invert):
    v = points(6).astype(np.float32)
    got = evaluate("vector_rotate", 0, invert, v, points(7), np.zeros(3), 0.8, np.zeros(3))
    assert (got == v).all()


FRAMES = points(8, 3)


def matrices(frames):
    """Object matrices [n, 3, 3] with the axes as columns, without nearly singular ones."""
    m = np.stack(frames, axis=-1).astype(np.float32).astype(np.float64)
    return m[np.abs(np.linalg.det(m)) > 1.0]


def axes(m):
    return [m[:, :, k] for k in range(3)]


def test_normals_go_by_the_inverse_transpose():
    m = matrices(FRAMES)
    n = points(9)[: len(m)]
    want = turn(np.linalg.inv(m).swapaxes(1, 2), n)
    want /= np.linalg.norm(want, axis=1, keepdims=True)
    assert {-1.0, 1.0} == set(np.sign(np.linalg.det(m)))
    same(evaluate("n_obj_to_world", n, *axes(m)), want, 1e-5)


def test_directions_go_by_the_inverse():
    m = matrices(FRAMES)
    d = points(10)[: len(m)]
    same(evaluate("dir_world_to_obj", d, *axes(m)), turn(np.linalg.inv(m), d), 1e-5)


def test_the_rotation_alone_undoes_what_unreal_applied():
    r = euler(points(11))
    stretched = r * np.array([2.0, -0.5, 3.0])
    local = points(12)
    world = turn(r * np.array([1.0, -1.0, 1.0]), local)
    same(evaluate("rot_to_obj", world, *axes(stretched)), local, 2e-6)
    unit = evaluate("dir_world_to_obj", world, *axes(r))
    same(evaluate("rot_to_obj", world, *axes(r)), unit, 2e-6)


@pytest.mark.parametrize(
    "name, first, axes, want",
    [
        ("n_obj_to_world", [0, 0, 0], [[1, 0, 0], [0, 1, 0], [0, 0, 1]], [0, 0, 0]),
        ("n_obj_to_world", [1, 2, 3], [[0, 0, 0], [0, 0, 0], [0, 0, 1]], [0, 0, 0]),
        ("n_obj_to_world", [0.6, 0, 0.8], [[2, 0, 0], [0, 3, 0], [0, 0, 0]], [0, 0, 1]),
        ("n_obj_to_world", [0, 0, 1], [[1, 0, 0], [0, 1, 0], [0, 0, -1]], [0, 0, -1]),
        ("n_obj_to_world", [1, 0, 0], [[1, 0, 0], [0, 1, 0], [0, 0, -1]], [1, 0, 0]),
        ("dir_world_to_obj", [1, 2, 3], [[1, 0, 0], [0, 0, 0], [0, 0, 1]], [0, 0, 0]),
        ("dir_world_to_obj", [1, 2, 3], [[1, 2, 3], [2, 4, 6], [0, 0, 1]], [0, 0, 0]),
        ("rot_to_obj", [1, 2, 3], [[5, 0, 0], [0, 0, 0], [0, 0, -2]], [1, 0, -3]),
    ],
)
def test_degenerate_and_mirrored_frames(name, first, axes, want):
    got = evaluate(name, [first], *([axis] for axis in axes))
    assert np.abs(got - want).max() < 1e-6


@pytest.mark.parametrize("n", [[NAN, NAN, NAN], [0, 0, NAN], [math.inf, -math.inf, 0]])
def test_a_missing_geometric_normal_faces_the_viewer(n):
    assert (evaluate("facing_normal", [n], [[0.0, 0.6, 0.8]]) == np.float32([0, 0.6, 0.8])).all()


def test_the_tangent_is_a_unit_vector_in_the_plane():
    n = points(13)
    n = np.concatenate([n, np.eye(3), [[1, 1, 1], [-1, -1, -1]]])
    n /= np.linalg.norm(n, axis=1, keepdims=True)
    a = evaluate("make_orthonormals_a", n).astype(np.float64)
    assert np.abs(np.linalg.norm(a, axis=1) - 1).max() < 1e-6
    assert np.abs(np.sum(a * n, axis=1)).max() < 1e-6
    assert (evaluate("make_orthonormals_a", [[0, 0, 0]]) == 0).all()


def pixel_spread(view, tanfov, vsize):
    """The distance to the next pixel, from the chords between unit ray directions, in double precision."""

    def unit(v):
        return v / np.linalg.norm(v, axis=1, keepdims=True)

    steps = 2 * tanfov * view[:, 2:] / vsize
    chords = [
        np.linalg.norm(unit(view + step) - unit(view), axis=1)
        for step in (steps * [1, 0], steps * [0, 1])
        for step in [np.concatenate([step, np.zeros((len(view), 1))], axis=1)]
    ]
    return np.linalg.norm(view, axis=1) * 0.5 * (chords[0] + chords[1])


@pytest.mark.parametrize("vsize, tolerance", [((64, 64), 2e-4), ((512, 512), 4e-6), ((1920, 1080), 1e-6)])
def test_the_bump_step_is_the_distance_between_pixels(vsize, tolerance):
    view = points(14) * [1, 1, 0] + [0, 0, 4]
    tanfov = np.array([1.0, 0.75])
    want = pixel_spread(view, tanfov, np.array(vsize))
    same(evaluate("bump_dp", view, tanfov, vsize), want, tolerance)


@pytest.mark.parametrize(
    "view, tanfov, vsize, want",
    [
        ([0, 0, 0], [1, 1], [512, 512], 0.0),
        ([1e-30, 0, 0], [1, 1], [512, 512], 0.0),
        ([NAN, 0, 1], [1, 1], [512, 512], 0.0),
        ([3, 2, 0], [1, 1], [512, 512], 0.0),
        ([0, 0, 8], [1, 1], [0, 0], 16 / math.sqrt(5)),
        ([0, 0, -10], [1, 1], [512, 512], 0.0390622765),
    ],
)
def test_bump_step_at_the_edges(view, tanfov, vsize, want):
    same(evaluate("bump_dp", [view], [tanfov], [vsize]), [want], 2e-6)
