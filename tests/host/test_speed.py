"""Reading a material takes at most a small multiple of the time to access every socket once."""

import json
import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import blenders

MATERIALS = ("white_marble", "oak_planks", "wet_asphalt", "painted_wood")
# Measured: 3 to 5; before node types had tables, 10 to 14.
TIMES = 8


@pytest.mark.parametrize("version", [version for version in blenders.VERSIONS if blenders.at_least(version, 5, 0)])
def test_reading_is_quick(version):
    paths = [HERE.parents[1] / "examples" / "materials" / f"{name}.json" for name in MATERIALS]
    report = json.loads(blenders.run(version, HERE / "speed_in_blender.py", *paths)[-1])
    print(report)
    # the large one has its sockets in groups
    assert [name for name in MATERIALS if report[name]["seconds"] > TIMES * report[name]["touch"]] == []
    each = {name: found["seconds"] / found["nodes"] for name, found in report.items()}
    assert each["large"] < 3 * each["painted_wood"]
