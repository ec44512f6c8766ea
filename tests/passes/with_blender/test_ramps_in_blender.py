"""Colour ramps against ColorRamp.evaluate of each Blender: random stops in any order, all interpolations and modes."""

import json
import sys
from collections import Counter
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE.parent), str(HERE.parents[1] / "host")]

from shown import difference, shown

import blenders
from quillgen_blender.passes import ramps

EXACT = 1e-4  # hues are kept slightly away from the seam at red
TABLE = 257  # the first factors are those of Cycles' table


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def records(request):
    return json.loads(blenders.run(request.param, HERE / "evaluate_ramps.py", "300", "18")[-1])


def test_stops_in_any_order_show_what_blender_shows(records):
    kinds = Counter()
    for record in records:
        raw = {key: record[key] for key in ("stops", "interp", "mode", "hue")}
        ramp = ramps.prepared({"id": "Color Ramp", "ramp": raw})["ramp"]
        places = [place for place, _ in ramp["stops"]]
        assert places == sorted(places)
        pairs = list(zip(record["factors"], record["colours"], strict=True))
        limit = 1e-3 if ramp.get("fitted") else EXACT
        for factor, colour in pairs[:TABLE] if ramp.get("fitted") else pairs:
            assert difference(shown(ramp, factor), colour) <= limit, (raw, factor)
        kinds[raw["interp"], raw["mode"], ramp.get("fitted", False)] += 1
    assert len(kinds) >= 15, kinds  # every interpolation in every mode
