"""The gallery's comparison and its pictures run, and tell errors in the text."""

import sys
from pathlib import Path

import numpy as np
import pytest

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from examples.gallery import materials, render, scenes, square, surfaces, tone, wiring


def test_numbers_of_one_material():
    wanted, found = square.compare("white_marble", size=16)["value"]
    worst, _, near = square.numbers(wanted, found)
    assert worst < 1e-3
    assert near == 1


def test_an_error_shows_in_the_numbers():
    ir = materials.base_document("white_marble")
    scale = next(n for n in ir["nodes"] if n["type"] == "ShaderNodeTexWave")["in"]["Scale"]
    scale["v"] *= 1.1
    wanted, found = square.compare("white_marble", size=16, base_ir=ir)["value"]
    assert square.numbers(wanted, found)[2] < 0.9


def difference_to_preview(name, ir=None):
    """The mean difference between a small picture of ours and Cycles' preview, in parts of white."""
    ours = render.picture(name, subdivision=1, samples=4, pixels=32, ir=ir)
    preview = materials.preview(name).reshape(32, 8, 32, 8, 3).mean(axis=(1, 3))
    return np.abs(ours - preview).mean() / 255


def test_a_small_picture_is_near_the_preview():
    assert difference_to_preview("white_marble") < 0.042


def test_an_error_shows_in_the_picture():
    ir = materials.document("white_marble")
    shader = next(n for n in ir["nodes"] if n["type"] == "ShaderNodeBsdfPrincipled")
    shader["in"]["Base Color"] = {"t": "RGBA", "v": [0.8, 0.1, 0.1, 1.0]}
    assert difference_to_preview("white_marble", ir) > 0.07


def test_a_wrong_frame_shows_in_the_picture(monkeypatch):
    monkeypatch.setattr(wiring, "FLIP", np.ones(3))
    assert difference_to_preview("white_marble") > 0.045


def test_inputs_are_in_unreals_frame():
    """A point of a sphere that was turned by 90 degrees, seen from the side of Blender's -y."""
    thing = surfaces.Thing(surfaces.sphere(), surfaces.turned(90))
    point = np.array([[0.6, -0.8, 0.0]])
    given = wiring.inputs(thing, scenes.STUDIO_CAMERA, np.array([[128.0, 128.0]]), point)
    assert given["world_position"] == pytest.approx(np.array([[60, 80, 0]]))
    assert given["local_position"] == pytest.approx(np.array([[-80, 60, 0]]), abs=1e-9)
    assert given["object_axis:x"] == pytest.approx(np.array([[0, -1, 0]]), abs=1e-9)
    assert given["cycles_normal"] == pytest.approx(np.array([[0.6, 0.8, 0]]))
    assert given["two_sided_sign"] == 1


def test_the_view_keeps_dark_colours_and_compresses_bright_ones():
    assert tone.neutral(np.array([0.5, 0.2, 0.0])) == pytest.approx(np.array([0.5, 0.2, 0.0]))
    bright = tone.neutral(np.array([8.0, 1.0, 0.0]))
    assert bright.max() < 1
    assert bright[2] > 0.1
