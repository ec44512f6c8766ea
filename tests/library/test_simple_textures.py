"""Gradient, checker, brick, magic and wave textures: Blender's values, and edge cases."""

import math

import numpy as np
import pytest

import cost
import device
import library
import noise_reference
from agreement import evaluate, table

VALUES = table("simple_textures")
TOLERANCES = {"tex_gradient": 3e-7, "tex_checker": 0.0, "tex_brick": 2e-6, "tex_magic": 2e-5, "tex_wave": 1e-5}


def rows(name, tolerance):
    """Fails if a row of the table differs by more than an absolute tolerance."""
    *columns, want = ([row[i] for row in VALUES[name]] for i in range(len(VALUES[name][0])))
    apart = np.abs(evaluate(name, *columns) - np.float32(want)).reshape(len(want), -1).max(axis=1)
    worst = int(np.argmax(apart))
    assert apart[worst] <= tolerance, (VALUES[name][worst], apart[worst])


@pytest.mark.parametrize("name", VALUES)
def test_agrees_with_blender(name):
    rows(name, TOLERANCES[name])


def grid(steps, *values):
    """All points [n, 3] whose coordinates are among the values."""
    return np.stack(np.meshgrid(*[np.float32(values or steps)] * 3), axis=-1).reshape(-1, 3)


# gradient


def test_radial_gradient_turns_once():
    angle = np.linspace(-3.1, 3.1, 97)
    co = np.stack([np.cos(angle) * 2.0, np.sin(angle) * 2.0, angle], axis=1)
    assert np.abs(evaluate("tex_gradient", co, 6) - (angle / (2.0 * math.pi) + 0.5)).max() <= 2e-6


@pytest.mark.parametrize("code", [-1, 7, 100])
def test_gradient_of_an_unknown_code_is_zero(code):
    assert (evaluate("tex_gradient", grid([-1.0, 0.25, 2.0]), code) == 0.0).all()


def test_a_unit_vector_is_outside_of_the_spheres():
    angle = np.linspace(0.0, 6.0, 50)
    co = np.stack([np.cos(angle), np.sin(angle), angle * 0.0], axis=1)
    assert (evaluate("tex_gradient", co, 4) == 0.0).all()
    assert (evaluate("tex_gradient", co, 5) == 0.0).all()


# checker


def checkers(p):
    """The checker texture with each operation rounded to float32."""
    q = (p + np.float32(0.000001)) * np.float32(0.999999)
    return (np.floor(q).astype(np.int64).sum(axis=1) & 1).astype(np.float32)


def test_checker_at_and_beside_whole_numbers():
    near = [v + d for v in (-3.0, -1.0, 0.0, 1.0, 2.0, 1000.0) for d in (-5e-7, 0.0, 5e-7, 0.5)]
    p = grid(near)
    assert np.array_equal(evaluate("tex_checker", p), checkers(p))


@pytest.mark.parametrize("scale", ["5.0", "3.0", "0.2", "7.0"])
def test_a_scale_in_the_text_does_not_move_the_checker_of_whole_numbers(scale):
    """If a compiler merged the scale with the factor 0.999999, the cells of integer coordinates would change."""
    co = grid(np.concatenate([np.arange(-10.0, 11.0) / float(scale), [0.05]]))
    body = library.declarations({"tex_checker"}) + f"y = L.tex_checker(co * {scale});"
    want = checkers(co * np.float32(scale))
    assert np.array_equal(device.evaluate(body, {"co": co}, {"y": 1})["y"], want)
    # The device's compiler might not merge them, so check the output of DXC too.
    for dxil in cost.compile_both(cost.shader(body, {"co": "float3"}, {"y": "float"})).values():
        work = cost.work(dxil)
        assert not any(" fast " in line for line in work)
        assert sum(line.split(" = ")[-1].startswith("fmul") for line in work) == 6


# brick


def bricks(p, size, smooth, bias, width, height, offset, every, squash, squash_every):
    """The brick texture in double precision, with 32-bit hashes."""
    p = np.float64(p)
    row = np.floor(p[:, 1] / height)
    w, moved = np.full(len(p), width), np.zeros(len(p))
    if every and squash_every:
        w = np.where(np.abs(row) % squash_every == 0, w * squash, w)
        moved = np.where(np.abs(row) % every == 0, w * offset, 0.0)
    x = p[:, 0] + moved
    brick = np.floor(x / w)
    h = (row.astype(np.int64) * 65536 + (brick.astype(np.int64) & 0xFFFF)) & 0xFFFFFFFF
    h = [(int(v) + 1013) & 0x7FFFFFFF for v in h]
    h = [v >> 13 ^ v for v in h]
    h = [v * (v * v * 60493 + 19990303) + 1376312589 & 0x7FFFFFFF for v in h]
    x, y = x - w * brick, p[:, 1] - height * row
    d = np.minimum(np.minimum(x, y), np.minimum(w - x, height - y))
    with np.errstate(divide="ignore", invalid="ignore"):
        f = np.clip((1.0 - d / size) / smooth, 0.0, 1.0)
    mortar = np.where(d >= size, 0.0, np.where(smooth == 0.0, 1.0, 3.0 * f * f - 2.0 * f * f * f))
    return np.stack([np.clip(np.array(h) / 2.0**31 + bias, 0.0, 1.0), mortar], axis=1)


@pytest.mark.parametrize(
    "settings",
    [
        (0.0625, 0.5, 0.0, 0.5, 0.25, 0.5, 2, 1.0, 2),
        (0.0625, 0.0, -0.25, 0.5, 0.25, 0.25, 3, 2.0, 2),
        (0.03125, 1.0, 0.25, 1.0, 0.5, -0.75, 1, 0.5, 1),
        (0.25, 0.25, 0.0, 0.5, 0.25, 0.5, 0, 2.0, 3),
        (0.25, 0.25, 0.0, 0.5, 0.25, 0.5, 3, 2.0, 0),
        (0.0, 0.5, 0.0, 2.0, 4.0, 0.5, 7, 0.25, 5),
    ],
)
def test_brick_in_double_precision(settings):
    # Multiples of 1/256 and sizes that are powers of two, so that all coordinates are exact.
    p = np.round(np.random.default_rng(3).uniform(-20, 20, (3000, 3)) * 256.0) / 256.0
    got = evaluate("tex_brick", p, *settings)
    assert np.abs(got - bricks(p, *settings)).max() <= 1e-6


def test_brick_ignores_z():
    p = np.float32([[0.3, 0.7, z] for z in (-1e9, 0.0, math.inf, math.nan)])
    got = evaluate("tex_brick", p, *VALUES["tex_brick"][0][1:-1])
    assert (got == got[0]).all()


def test_full_mortar_is_exactly_one():
    """The generated text skips the bricks' tint where the mortar is exactly 1."""
    p = np.float32([[x, 0.125, 0.0] for x in np.linspace(0.0, 0.01, 20)])
    got = evaluate("tex_brick", p, 0.0625, 0.5, 0.0, 0.5, 0.25, 0.5, 0, 1.0, 2)
    assert (got[:, 1] == 1.0).all()


# magic


def test_magic_repeats_every_turn():
    co = np.float32([[0.3, 0.2, 0.7], [-1.0, 2.5, -3.0]])
    settings = (1.5, 4, 1.25)
    for turns in (1, -2, 30):
        # A remainder has the sign of the coordinate, so the pattern repeats only on the same side of 0.
        moved = co + np.sign(co) * np.float32(6.2831855 / settings[0]) * abs(turns)
        apart = np.abs(evaluate("tex_magic", moved, *settings) - evaluate("tex_magic", co, *settings))
        assert apart.max() <= 2e-4 * abs(turns)


def test_magic_has_ten_folds():
    co = grid([-1.0, 0.25, 2.0])
    ten = evaluate("tex_magic", co, 1.5, 10, 1.25)
    assert np.array_equal(evaluate("tex_magic", co, 1.5, 99, 1.25), ten)
    assert not np.array_equal(evaluate("tex_magic", co, 1.5, 9, 1.25), ten)
    assert np.array_equal(evaluate("tex_magic", co, 1.5, -1, 1.25), evaluate("tex_magic", co, 1.5, 0, 1.25))


@pytest.mark.parametrize("depth", range(1, 11))
def test_magic_without_distortion_is_grey(depth):
    assert (evaluate("tex_magic", grid([-1.0, 0.25, 2.0]), 5.0, depth, 0.0) == 0.5).all()


# wave


def waves(kind, bands, rings, profile, p, distortion, detail, detail_scale, rough, phase):
    """The wave texture in double precision."""
    p = (np.float64(p) + 0.000001) * 0.999999
    if kind == 0:
        n = p.sum(axis=1) * 10.0 if bands == 3 else p[:, bands] * 20.0
    else:
        kept = [k for k in range(3) if k != rings]
        n = np.sqrt((p[:, kept] ** 2).sum(axis=1)) * 20.0
    n = n + phase
    if distortion:
        noise = noise_reference.fbm(p * detail_scale, detail, rough, 2.0, 0.0, 0.0, True)
        n = n + distortion * (2.0 * noise - 1.0)
    u = n / (2.0 * math.pi)
    sine = 0.5 + 0.5 * np.sin(n - math.pi / 2)
    return (sine, u - np.floor(u), np.abs(u - np.floor(u + 0.5)) * 2.0)[profile]


@pytest.mark.parametrize("profile", [0, 1, 2])
@pytest.mark.parametrize("direction", [0, 1, 2, 3])
@pytest.mark.parametrize("kind", [0, 1])
@pytest.mark.parametrize("distortion, detail", [(0.0, 2.0), (2.5, 3.25)])
def test_wave_in_double_precision(kind, direction, profile, distortion, detail):
    p = np.random.default_rng(5).uniform(-3, 3, (400, 3)).astype(np.float32)
    # The direction setting of the other kind must have no effect.
    settings = [kind, direction if kind == 0 else 1, direction if kind == 1 else 2, profile]
    more = (distortion, detail, 1.5, 0.5, 0.75)
    got, want = evaluate("tex_wave", *settings, p, *more), waves(*settings, p, *more)
    apart = np.abs(got - want)
    apart = np.minimum(apart, 1.0 - apart) if profile == 1 else apart  # a sawtooth jumps from 1 to 0
    assert apart.max() <= 3e-5


def test_wave_limits_the_detail():
    p = np.random.default_rng(6).uniform(-3, 3, (100, 3)).astype(np.float32)

    def wave(detail):
        return evaluate("tex_wave", 0, 0, 0, 0, p, 2.0, detail, 1.0, 0.5, 0.0)

    assert np.array_equal(wave(-3.0), wave(0.0))
    assert np.array_equal(wave(1e9), wave(15.0))
    assert not np.array_equal(wave(14.0), wave(15.0))


@pytest.mark.parametrize("bad", [math.inf, math.nan, 3e38])
def test_they_end_whatever_they_are_given(bad):
    p = np.float32([[bad, 0.5, 0.5], [0.5, 0.5, bad]])
    evaluate("tex_wave", 1, 0, 3, 0, p, 2.0, 3.0, 1.0, 0.5, 0.0)
    evaluate("tex_brick", p, *VALUES["tex_brick"][0][1:-1])
    evaluate("tex_magic", p, 1.0, 3, 1.0)
    evaluate("tex_checker", p)
    evaluate("tex_gradient", p, 4)


FLOAT5 = ["float"] * 5


@pytest.mark.parametrize(
    "name, kinds, result, most",
    [
        ("tex_gradient", ["float3", "int"], "float", 66),
        ("tex_checker", ["float3"], "float", 18),
        ("tex_brick", ["float3", *FLOAT5, "float", "int", "float", "int"], "float2", 73),
        ("tex_brick", ["float3", *FLOAT5, "0.5", "2", "1.0", "2"], "float2", 62),
        ("tex_magic", ["float3", "float", "int", "float"], "float3", 130),
        ("tex_wave", ["int", "int", "int", "int", "float3", *FLOAT5], "float", 380),
        ("tex_wave", ["0", "0", "0", "0", "float3", "0.0", *FLOAT5[1:]], "float", 12),
    ],
)
def test_cost(name, kinds, result, most):
    assert library.cost(name, *kinds, result=result) <= most
