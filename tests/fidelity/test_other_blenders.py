"""The generated text against Cycles in other Blenders than that of the reference data: a sample of the cases on tiles,
captured there and then, with documents as that Blender gives them."""

import os
import sys
from pathlib import Path

import pytest

import report

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent / "host"), str(HERE)]

import blenders
import compare
import store

EVERY = 12
FAMILIES = "value", "vector", "mix", "colour", "patterns", "noise", "tables", "pictures", "flattening"
# What older Blenders compute otherwise, in a way that the translation doesn't follow: up to 4.5 the cells of Voronoi
# textures and what a power that is no number is clamped to, up to 5.0 the last digits of six offsets of noise.
NOISE = ("Noise Texture HETERO_TERRAIN 3D Color 0",)
FOUR = ("Voronoi Texture", "Math POWER around zero clamped", *NOISE)
OTHER = {"4.2": FOUR, "4.5": FOUR, "5.0": NOISE}


@pytest.mark.parametrize("version", blenders.VERSIONS)
def test_a_sample_agrees_with_cycles(version, tmp_path, monkeypatch):
    monkeypatch.setitem(os.environ, "QUILLGEN_FIDELITY_DATA", str(tmp_path))
    blenders.run(version, HERE / "make_cases.py", f"--every={EVERY}", *FAMILIES)
    monkeypatch.setattr(store, "DATA", tmp_path)
    outcomes = [one for one in compare.run() if not f"{one.node} {one.name}".startswith(OTHER.get(version, ("-",)))]
    assert len(outcomes) > 120  # older Blenders have fewer nodes and settings
    off = [f"{one.node} {one.name}: {one.worst:.1e} {one.error}" for one in report.disagreeing(outcomes)]
    assert not off, "\n".join(off)
