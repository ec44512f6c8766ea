"""Scalar and vector arithmetic: Blender's values, and edge cases."""

import math

import numpy as np
import pytest

from agreement import check, evaluate, same, signature, table

VALUES = table("arithmetic")
ULP = 2.0**-23
INF, NAN = math.inf, math.nan

# Tolerances for the device's own functions. All others agree to a few units in the last place.
LOOSER = {"safe_powf": 1e-6, "safe_pow3": 1e-6, "safe_logf": 1e-6, "compatible_atan2": 5e-6}


@pytest.mark.parametrize("name", VALUES)
def test_agrees_with_blender(name):
    check(name, VALUES[name], LOOSER.get(name, 4 * ULP))


@pytest.mark.parametrize(
    "name, row",
    [
        ("safe_divide", [1.0, -0.0, 0.0]),
        ("safe_divide", [1.0, NAN, NAN]),
        ("safe_divide", [0.0, INF, 0.0]),
        ("safe_divide", [-1e30, 1e-30, -INF]),
        ("safe_sqrtf", [1e30, 1e15]),
        ("safe_sqrtf", [-1e30, 0.0]),
        ("inversesqrtf", [1e30, 1e-15]),
        ("safe_logf", [1e30, 10.0, 30.0]),
        ("safe_floored_modulo", [-0.75, 1e30, 1e30]),
        ("pingpongf", [1.0, 1e30, 0.0]),
        ("compatible_atan2", [-1e30, 1.0, -math.pi / 2]),
        ("compatible_atan2", [1.0, -1e30, math.pi]),
        ("smoothminf", [-1e30, 1e30, 1.0, -1e30]),
        ("smoothstepc", [0.0, 1e30, 1.0, 0.0]),
        ("smootherstep", [-1e30, 1e30, 0.0, 0.5]),
        ("safe_divide3", [[INF, 1e-30, -1e30], [0.0, 1e-30, 1e30], [0.0, 1.0, -1.0]]),
        ("safe_powf", [-0.0, -3.0, 0.0]),
        ("safe_powf", [0.0, 2.5, 0.0]),
        ("safe_powf", [-2.0, -3.0, -0.125]),
        ("safe_powf", [-2.0, 0.0, 1.0]),
        ("safe_powf", [-10.0, 100.5, 0.0]),
        ("safe_powf", [-1.0, 2147483520.0, 1.0]),
        ("safe_powf", [-1.0, 2147483648.0, 0.0]),
        ("safe_powf", [-2.0, 1e30, 0.0]),
        ("safe_powf", [-2.0, NAN, 0.0]),
        ("safe_powf", [1.0, NAN, 1.0]),
        ("safe_powf", [1.0, -INF, 1.0]),
        ("safe_powf", [INF, 0.0, 1.0]),
        ("safe_powf", [10.0, 60.0, INF]),
        ("safe_powf", [10.0, -60.0, 0.0]),
        ("safe_logf", [-1.0, 10.0, 0.0]),
        ("safe_logf", [1.0, 10.0, 0.0]),
        ("safe_logf", [8.0, 0.5, -3.0]),
        ("safe_logf", [0.5, 0.25, 0.5]),
        ("safe_logf", [10.0, 0.0, 0.0]),
        ("safe_logf", [1.0, 1.0, 0.0]),
        ("safe_sqrtf", [NAN, 0.0]),
        ("safe_sqrtf", [INF, INF]),
        ("inversesqrtf", [NAN, 0.0]),
        ("inversesqrtf", [-0.0, 0.0]),
        ("inversesqrtf", [INF, 0.0]),
        ("safe_modulo", [1.0, -0.0, 0.0]),
        ("safe_modulo", [1e-20, 3.0, 1e-20]),
        ("safe_modulo", [-0.75, 1e30, -0.75]),
        ("safe_modulo", [-0.75, INF, -0.75]),
        ("safe_modulo", [1e30, 1e-30, 0.0]),
        ("safe_modulo", [0.0, 0.0, 0.0]),
        ("safe_floored_modulo", [-1e-3, 1024.0, 1023.999]),
        ("wrapf", [1e30, 0.0, 0.0, 0.0]),
        ("wrapf", [-7.0, 2.0, 2.0, 2.0]),
        ("pingpongf", [3.0, -0.0, 0.0]),
        ("pingpongf", [0.0, 2.0, 0.0]),
        ("pingpongf", [2.0, 2.0, 2.0]),
        ("compatible_atan2", [-0.0, -0.0, 0.0]),
        ("compatible_atan2", [1.0, 0.0, math.pi / 2]),
        ("compatible_signf", [-INF, -1.0]),
        ("smoothminf", [-1.0, -1.0, 0.0, -1.0]),
        ("smoothminf", [2.0, 1.0, -0.5, 1.0]),
        ("smoothstepc", [2.0, 2.0, 2.0, 1.0]),
        ("smoothstepc", [2.0, 2.0, 1.9999999, 0.0]),
        ("smoothstepc", [0.0, 1.0, INF, 1.0]),
        ("smoothstepc", [0.0, 1.0, -INF, 0.0]),
        ("smootherstep", [2.0, 2.0, 3.0, 0.0]),
        ("smootherstep", [0.0, 1.0, INF, 1.0]),
        ("safe_normalize", [[-0.0, 0.0, 0.0], [0.0, 0.0, 0.0]]),
        ("safe_normalize", [[0.0, 3e-15, 4e-15], [0.0, 0.6, 0.8]]),
        ("project3", [[1.0, 2.0, 3.0], [1e-25, 0.0, 0.0], [0.0, 0.0, 0.0]]),
        ("refract3", [[0.0, 0.0, 0.0], [0.0, 0.0, 0.0], 0.5, [0.0, 0.0, 0.0]]),
        ("safe_pow3", [[0.0, -8.0, -8.0], [-1.0, 1.0 / 3.0, 3.0], [0.0, 0.0, -512.0]]),
        ("compatible_sign3", [[NAN, INF, -INF], [1.0, 1.0, -1.0]]),
        ("wrap3", [[1e30, -7.0, 0.5], [0.0, 2.0, 1.0], [0.0, 2.0, 0.0], [0.0, 2.0, 0.5]]),
    ],
)
def test_edges(name, row):
    check(name, [row], LOOSER.get(name, 4 * ULP))


def grid(*axes):
    return [a.ravel().astype(np.float32) for a in np.meshgrid(*axes)]


def test_remainders_over_many_numbers():
    # Multiples of 1/16 divided by integers: no quotient is rounded past an integer.
    a, b = grid(np.arange(-160, 161) / 16.0, [-5.0, -3.0, -1.0, 2.0, 3.0, 7.0])
    same(evaluate("safe_modulo", a, b), np.fmod(a, b), 8 * ULP)
    same(evaluate("safe_floored_modulo", a, b), a - np.floor(a / b) * b, 8 * ULP)


def near_whole_quotients():
    """Pairs of numbers of both signs and all magnitudes whose quotient is an integer, or a few ulps away from one."""
    rng = np.random.default_rng(16)
    divisors = np.float32([0.1, 0.2, 0.3, 2 / 3, 1 / 3, 0.7, 1.1, 3.0, 1e-3, 1e-20, 7e-30, 1e20, 3e30])
    divisors = np.concatenate([divisors, rng.uniform(0.5, 2.0, 40).astype(np.float32)])
    wholes = np.concatenate([np.arange(1, 100), 2 ** np.arange(7, 24) - 1, rng.integers(100, 2**24, 60)])
    a, b = (x.ravel() for x in np.meshgrid(wholes.astype(np.float32), divisors))
    a = np.concatenate([np.nextafter(p, np.float32(to)) if to else p for p in [a * b] for to in (0, -np.inf, np.inf)])
    b = np.tile(b, 3)
    turn = rng.integers(0, 4, len(a))
    return np.where(turn & 1, -a, a), np.where(turn & 2, -b, b)


def test_remainders_are_exact():
    tenths = grid(np.arange(12.0), [0.1])
    sizes = grid([1e-37, 3e-19, 0.25, 5.0, 1e9, 2e15, 1e30, 3e38], [1.5e-37, 7e-19, 0.1, 3.0, 8e8, 3e30, 2e38])
    with np.errstate(over="ignore"):
        sizes = [x[sizes[0] / sizes[1] < 1e34] for x in sizes]
    for a, b in (tenths, sizes, near_whole_quotients()):
        np.testing.assert_array_equal(evaluate("safe_modulo", a, b), np.fmod(a, b))


def test_powers_over_many_numbers():
    a, b = grid([-3.0, -1.5, -1.0, -0.25, 0.25, 1.0, 1.5, 3.0], np.arange(-12, 13) / 2.0)
    whole = b == np.trunc(b)
    want = [0.0 if x < 0 and not w else float(x) ** float(y) for x, y, w in zip(a, b, whole)]
    same(evaluate("safe_powf", a, b), want, 2e-6)


def test_a_reflection_keeps_the_length_and_turns_the_normal_part():
    v = np.random.default_rng(1).normal(size=(2, 500, 3)).astype(np.float32)
    normal = v[1] / np.linalg.norm(v[1], axis=1, keepdims=True)
    r = evaluate("reflect3", v[0], normal)
    along = np.sum(v[0] * normal, axis=1, keepdims=True)
    same(r, v[0] - 2 * along * normal, 1e-6)


def test_a_refraction_obeys_snell():
    rng = np.random.default_rng(2)
    i, normal = (a / np.linalg.norm(a, axis=1, keepdims=True) for a in rng.normal(size=(2, 500, 3)))
    normal *= -np.sign(np.sum(i * normal, axis=1, keepdims=True))
    ior = rng.uniform(0.4, 1.6, 500)
    r = evaluate("refract3", i, normal, ior).astype(np.float64)
    sines = np.linalg.norm(np.cross(normal, r), axis=1)
    wanted = ior * np.linalg.norm(np.cross(normal, i), axis=1)
    total = wanted > 1.0
    assert 10 < total.sum() < 490
    assert np.abs(sines - wanted)[~total & (wanted < 0.999)].max() < 2e-6
    assert np.abs(np.linalg.norm(r, axis=1) - 1.0)[~total & (wanted < 0.999)].max() < 2e-6
    assert (r[wanted > 1.00001] == 0.0).all()


HARMLESS = [0.0, -0.0, 1e-6, -1e-6, 0.5, -0.5, 1.0, -1.0, 2.0, -3.0, 100.0]


def mixtures(values, arguments):
    """Arguments that contain every pair of values for every two arguments."""
    n = len(values)
    i, j = np.divmod(np.arange(n * n), n)
    return [np.float32(values)[(i * (k + 1) + j * (k * k + 1)) % n] for k in range(arguments)]


def columns(name, values):
    kinds = signature(name)[1]
    widths = [3 if k == "float3" else 1 for k in kinds]
    flat = iter(mixtures(values, sum(widths)))
    return [np.stack([next(flat) for _ in range(w)], axis=-1).squeeze() for w in widths]


@pytest.mark.parametrize("name", VALUES)
def test_harmless_numbers_give_finite_results(name):
    values = HARMLESS[:-1] if "pow" in name else HARMLESS  # 100 to the power of 100 overflows float32
    assert np.isfinite(evaluate(name, *columns(name, values))).all()
