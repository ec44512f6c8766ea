"""The Cycles pictures in the gallery match what Blender renders from the documents."""

import sys
from pathlib import Path

import numpy as np
import pytest

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1])]

import blenders
from examples.gallery import make, page, tone

LEFT, TOP, WIDTH, HEIGHT = 180, 180, 128, 96


@pytest.mark.parametrize("name", ["copper_patina", "pbr_crate", "terrazzo"])
def test_a_part_of_the_kept_picture_rendered_anew(name, tmp_path):
    if "5.2" not in blenders.VERSIONS:
        pytest.skip("the pictures were made with Blender 5.2")
    words = map(str, (tmp_path, make.PIXELS, make.CYCLES_SAMPLES, f"--part={LEFT},{TOP},{WIDTH},{HEIGHT}", name))
    blenders.run("5.2", HERE.parents[1] / "examples" / "gallery" / "in_blender.py", *words)
    found = tone.srgb(tone.neutral(np.load(tmp_path / f"{name}.npy")))
    kept = tone.load(page.picture(name, "cycles"))[TOP : TOP + HEIGHT, LEFT : LEFT + WIDTH]
    assert found.shape == kept.shape
    difference = np.abs(np.float64(found) - kept).mean() / 255
    print(f"{name}: {difference:.4f}")
    assert difference < 0.02
