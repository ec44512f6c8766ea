"""Reflectance and dithered coverage."""

import math

import numpy as np
import pytest

from agreement import check, evaluate, same, table

VALUES = table("surface")


@pytest.mark.parametrize("name, tolerance", [("fresnel_dielectric_cos", 1e-6), ("dither_coverage", 1e-6)])
def test_agrees_with_reference_values(name, tolerance):
    check(name, VALUES[name], tolerance)


def test_fresnel_follows_snell():
    rng = np.random.default_rng(1)
    cosine, eta = rng.uniform(0.02, 1, 3000), rng.uniform(0.4, 3, 3000)
    sine = np.sqrt(1 - cosine**2) / eta
    inside = np.sqrt(np.maximum(0, 1 - sine**2))
    across = (cosine - eta * inside) / (cosine + eta * inside)
    along = (inside - eta * cosine) / (inside + eta * cosine)
    want = np.where(sine < 1, (across**2 + along**2) / 2, 1)
    safe = np.abs(sine - 1) > 1e-3
    assert 100 < (want[safe] == 1).sum() < 2900
    assert np.abs(evaluate("fresnel_dielectric_cos", cosine, eta) - want)[safe].max() < 2e-5
    front, back = (evaluate("fresnel_dielectric_cos", c, eta) for c in (cosine, -cosine))
    assert (front == back).all()


@pytest.mark.parametrize(
    "cosine, eta, want",
    [
        (0.0, 1.0, 1.0),
        (-0.0, 1.5, 1.0),
        (1.0, 1.0, 0.0),
        (1.0, 0.0, 1.0),
        (0.5, 1e-5, 1.0),
        (0.5, math.nan, 1.0),
        (math.nan, 1.5, 1.0),
        (1.0, 1e-5, 1.0),
    ],
)
def test_fresnel_at_the_edges(cosine, eta, want):
    same(evaluate("fresnel_dielectric_cos", [cosine], [eta]), [want], 5e-5)


SIDE = 256
PIXELS = np.stack(np.meshgrid(np.arange(SIDE), np.arange(SIDE)), axis=-1).reshape(-1, 2) + 0.5


def kept(alpha, frame):
    return evaluate("dither_coverage", alpha, PIXELS, frame) >= 0.5


@pytest.mark.parametrize("frame", [0.0, 1.0, 7.0, 63.0, 64.0, 1000003.0])
def test_nothing_and_all_are_certain(frame):
    assert not kept(0.0, frame).any() and not kept(-0.5, frame).any()
    assert kept(1.0, frame).all() and kept(1.5, frame).all()


@pytest.mark.parametrize("alpha", [0.05, 0.3, 0.5, 0.9])
def test_each_frame_keeps_its_share(alpha):
    for frame in range(8):
        assert abs(kept(alpha, float(frame)).mean() - alpha) < 2e-3


@pytest.mark.parametrize("alpha, most", [(0.3, 0.08), (0.5, 0.05)])
def test_each_pixel_is_kept_in_its_share_of_the_frames(alpha, most):
    shares = np.mean([kept(alpha, float(frame)) for frame in range(8)], axis=0)
    assert np.abs(shares - alpha).mean() < most


def test_coverage_depends_on_the_pixel_alone_and_returns_after_64_frames():
    assert (kept(0.4, 5.0) == kept(0.4, 69.0)).all()
    corner = evaluate("dither_coverage", 0.4, PIXELS - 0.5, 5.0)
    assert (corner == evaluate("dither_coverage", 0.4, PIXELS, 5.0)).all()
    assert (corner == evaluate("dither_coverage", 0.4, PIXELS + 0.4375, 5.0)).all()
    assert (kept(0.4, 5.0) != kept(0.4, 6.0)).any()


def test_an_undefined_alpha_is_dropped():
    assert not (evaluate("dither_coverage", math.nan, PIXELS[:8], 0.0) >= 0.5).any()
