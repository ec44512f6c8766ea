"""Gabor noise: Blender's values, a double precision reference, and edge cases."""

import itertools

import numpy as np
import pytest

import library
from agreement import table
from noise_reference import float_hash

VALUES = table("gabor")["tex_gabor"]


def gabor(co, scale, frequency, anisotropy, angle, along, dimensions):
    n = len(co)
    floats = [np.float32(np.broadcast_to(v, (n,))) for v in (scale, frequency, anisotropy, angle)]
    along = np.float32(np.broadcast_to(along, (n, 3)))
    return library.call("tex_gabor", np.float32(co), *floats, along, int(dimensions), need={"gabor"})


def hashed(*values):
    return np.float64(float_hash(*np.broadcast_arrays(*(np.float32(v) for v in values))))


def reference(co, scale, frequency, anisotropy, angle, along, dimensions):
    """Blender's sum of impulses at points [n, 3], one impulse at a time, with scalar settings."""
    d, spread = dimensions, np.pi * (1.0 - min(max(anisotropy, 0.0), 1.0))
    p = np.float64(co)[:, :d] * scale
    cell = np.floor(p)
    along = np.float64(along) / np.linalg.norm(along)
    total = np.zeros((len(p), 2))
    for o in itertools.product((-1, 0, 1), repeat=d):
        k = cell + o
        x, y, *z = k.T
        for i in range(8):
            a, b, e = 3.0 * i, 3.0 * i + 1.0, 3.0 * i + 2.0
            if d == 2:
                centre = [hashed(x, y, b), hashed(b, x, y)]
                theta = angle + (hashed(x, y, a) - 0.5) * spread
                direction = np.stack([np.cos(theta), np.sin(theta)], axis=1)
                sign = hashed(x, y, e)
            else:
                z = k[:, 2]
                centre = [hashed(x, y, z, b), hashed(z, x, b, y), hashed(b, z, y, x)]
                tilt = np.arccos(along[2]) + hashed(x, y, z, a) * spread
                flat = np.hypot(along[0], along[1])
                turn = np.arccos(along[0] / flat) * (-1 if along[1] < 0 else 1) if flat else 0.0
                turn = turn + hashed(z, x, a, y) * spread
                flat = np.sin(tilt)
                direction = np.stack([flat * np.cos(turn), flat * np.sin(turn), np.cos(tilt)], axis=1)
                sign = hashed(x, y, z, e)
            q = p - k - np.stack(centre, axis=1)
            m = (q * q).sum(axis=1)
            psi = 2.0 * np.pi * max(0.001, frequency) * (q * direction).sum(axis=1)
            g = np.where(sign < 0.5, -1.0, 1.0) * np.exp(-np.pi * m) * (0.5 + 0.5 * np.cos(np.pi * m))
            total += np.where(m < 1.0, g, 0.0)[:, None] * np.stack([np.cos(psi), np.sin(psi)], axis=1)
    re, im = (total / (6.0 * np.sqrt(8 * 0.5 * (0.25 if d == 2 else 1 / (4 * np.sqrt(2)))))).T
    return np.stack([im * 0.5 + 0.5, (np.arctan2(im, re) + np.pi) / (2 * np.pi), np.hypot(re, im)], axis=1)


def apart(got, want):
    """Differences of (value, phase, intensity). The phase wraps at 1. It counts less where the sum is small, because it
    is inaccurate there."""
    turn = np.abs(got[:, 1] - want[:, 1])
    turn = np.minimum(turn, 1.0 - turn) * np.minimum(want[:, 2] * 10.0, 1.0)
    return np.abs(np.stack([got[:, 0] - want[:, 0], turn, got[:, 2] - want[:, 2]]))


@pytest.mark.parametrize("row", range(len(VALUES)))
def test_values_of_the_table(row):
    co, *settings, want = VALUES[row]
    assert np.abs(gabor([co], *settings)[0] - want).max() <= 1e-6


SETTINGS = [  # scale, frequency, anisotropy, angle, along
    (4.0, 2.0, 1.0, 0.75, (0.25, -0.5, 0.125)),
    (2.0, 3.5, 0.0, -2.5, (-1.0, -0.25, 0.5)),
    (8.0, 0.0, 0.25, 7.0, (-3.0, 0.0, 0.0)),
    (-1.0, 1.25, 0.5, 0.0, (0.0, 1e-3, 2.0)),
    (1.0, 2.0, -1.0, 0.25, (0.0, 0.0, -1.0)),
    (1.0, 2.0, 2.0, 0.25, (0.0, 0.0, 5.0)),
]


@pytest.mark.parametrize("dimensions", [2, 3])
@pytest.mark.parametrize("settings", SETTINGS)
def test_values_everywhere(dimensions, settings):
    co = np.round(np.random.default_rng(dimensions).uniform(-20.0, 20.0, (600, 3)) * 256.0) / 256.0
    got, want = gabor(co, *settings, dimensions), reference(co, *settings, dimensions)
    assert apart(got, want).max() <= 2e-6


def test_two_dimensions_do_not_look_at_the_third():
    co = np.float32([[0.3, 0.2, z] for z in (0.0, 0.7, -5.0, np.inf, np.nan)])
    got = gabor(co, 5.0, 2.0, 0.5, 0.75, (0.0, 0.0, 0.0), 2)
    np.testing.assert_array_equal(got, np.repeat(got[:1], 5, axis=0))
    assert np.isfinite(got).all()


@pytest.mark.parametrize("anisotropy", [0.0, 0.5, 1.0])
def test_an_orientation_without_length_gives_noise(anisotropy):
    co = np.random.default_rng(1).uniform(-9.0, 9.0, (200, 3))
    got = gabor(co, 1.0, 2.0, anisotropy, 0.0, (0.0, 0.0, 0.0), 3)
    np.testing.assert_array_equal(got, gabor(co, 1.0, 2.0, anisotropy, 0.0, (0.0, 0.0, 1.0), 3))
    assert np.isfinite(got).all() and np.ptp(got[:, 0]) > 0.3


@pytest.mark.parametrize("dimensions", [2, 3])
def test_coordinates_without_sense_come_to_an_end(dimensions):
    wild = np.float32([np.nan, np.inf, -np.inf, 1e30, -3e38, 2.0**31, 0.5])
    co = np.stack([wild, np.full(7, 0.25), np.full(7, 0.5)], axis=1)
    got = gabor(co, 1.0, 2.0, 0.5, 0.0, (1.0, 0.0, 0.0), dimensions)
    assert got.shape == (7, 3) and np.isfinite(got[-1]).all()


@pytest.mark.parametrize("dimensions, limit", [("2", 310), ("3", 580), ("int", 730)])
def test_cost(dimensions, limit):
    """There is one loop body for all cells and impulses. If the dimensions are constant, the code of the others is
    removed."""
    kinds = ["float3", "float", "float", "float", "float", "float3", dimensions]
    assert library.cost("tex_gabor", *kinds, need={"gabor"}) <= limit
