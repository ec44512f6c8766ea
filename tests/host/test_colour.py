"""Images in all colour spaces of a Blender version: Cycles' values against those of the saved textures."""

import json
import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import blenders

SPACES = {"4.2": 21, "4.5": 21, "5.0": 25, "5.1": 25, "5.2": 63}
HALF_A_BYTE = 0.5 / 255
# Blender converts to another working space in half floats; two of their steps are more than half a byte step. Up to 5.0
# it also converts from this space in half floats, and its byte values are far apart.
WIDE_STEPS = {"AgX Log": 6 / 1024}
LIMITS = {"": HALF_A_BYTE, "Linear Rec.2020": 2.5 / 1024, "ACEScg": 2.5 / 1024}


def differences(version, folder, working):
    lines = blenders.run(version, HERE / "colour_in_blender.py", folder, *([working] if working else []))
    return json.loads(lines[-1])


@pytest.mark.parametrize("version", blenders.VERSIONS)
@pytest.mark.parametrize("working", LIMITS)
def test_textures_hold_what_cycles_shows(version, working, tmp_path):
    if working and not blenders.at_least(version, 5, 0):
        pytest.skip(f"Blender {version} has one working space")
    report = differences(version, tmp_path, working)
    assert len(report) == 4
    for kind, found in report.items():
        assert len(found) >= SPACES[version]
        limit = LIMITS[working] if "bytes" in kind else 1e-4
        limits = dict.fromkeys(found, limit) | ({} if blenders.at_least(version, 5, 1) else WIDE_STEPS)
        assert {space: off for space, off in found.items() if not off <= limits[space]} == {}, kind


def test_a_picture_that_is_not_converted_is_far_off(tmp_path):
    """The comparison detects errors: bytes of a wide space that are saved without conversion."""
    words = [tmp_path, "", "as they stand"]
    report = json.loads(blenders.run(blenders.VERSIONS[-1], HERE / "colour_in_blender.py", *words)[-1])
    off = [space for space, value in report["bytes"].items() if value > HALF_A_BYTE]
    assert len(off) > len(report["bytes"]) / 2


@pytest.mark.parametrize("version", blenders.VERSIONS)
@pytest.mark.parametrize("working", ("Linear Rec.2020", "ACEScg"))
def test_colours_of_another_working_space_are_converted(version, working):
    if not blenders.at_least(version, 5, 0):
        pytest.skip(f"Blender {version} has one working space")
    report = json.loads(blenders.run(version, HERE / "working_space_in_blender.py", working)[-1])
    bent = report.pop("gamma")
    assert bent["notes"] == [f"bends colours in {working}, here in Linear Rec.709"] and bent["difference"] > 0.01
    assert [name for name, found in report.items() if found["notes"]] == []
    assert {name: found["difference"] for name, found in report.items() if not found["difference"] <= 2e-3} == {}
    assert report["constants"]["spread"] > 0.1 and report["constants"]["difference"] < 1e-5
