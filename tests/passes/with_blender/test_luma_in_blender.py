"""The weights of a colour that is linked to a float socket, measured with Cycles in each Blender."""

import json
import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[1] / "host")]

import blenders
from quillgen_blender.passes import luma


@pytest.mark.parametrize("version", blenders.VERSIONS)
def test_weights(version):
    measured = json.loads(blenders.run(version, HERE / "measure_luma.py")[-1])
    expected = luma.weights([int(part) for part in version.split(".")])
    assert measured["link"] == pytest.approx(expected, abs=5e-8)
    assert measured["node"] == pytest.approx(expected, abs=5e-8)
