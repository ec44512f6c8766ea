"""The gallery's comparison runs, and its numbers tell an error in the text."""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))

from examples.gallery import materials, square  # noqa: E402


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
