"""Of several Material Outputs the reader takes the one that Cycles renders, in each installed Blender."""

import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import blenders


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def found(request, tmp_path_factory):
    return blenders.report(request.param, HERE / "outputs_in_blender.py", tmp_path_factory.mktemp("outputs"))


def test_the_reader_takes_the_output_that_cycles_renders(found):
    assert {name: one for name, one in found.items() if one["picture"] != one["document"]} == {}


def test_the_pictures_differ(found):
    assert {one["picture"] for one in found.values()} >= {0, 1, 2}
