"""Compares the generated texts with Cycles in Blender versions other than that of the reference data. Makes a sample of
the tile cases, documents included, in each version."""

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
# Differences of older Blenders that the translation doesn't reproduce: up to 4.5 the cells of Voronoi textures and the
# value to which a NaN power is clamped, up to 5.0 the last digits of six noise offsets.
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
