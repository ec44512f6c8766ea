"""Compares the generated texts with Cycles. compare.py prints the numbers and writes docs/fidelity.md."""

import re
from collections import Counter, defaultdict
from pathlib import Path

import numpy as np
import pytest

import compare
import custom_expression
import quillgen
import report
import store
from quillgen_blender import passes

ROOT = Path(__file__).resolve().parents[2]
SHADERS = {"Background", "BsdfAnisotropic"}  # black in a scene without light, or for worlds only

# Settings that have no effect in a scene with one mesh, or that no handler reads.
ELSEWHERE = {
    "from_instancer",
    "attribute_type",
    "use_alpha",
    "distribution",
    "subsurface_method",
    "fresnel_type",
}
ELSEWHERE_VALUES = {("ShaderNodeMix", "data_type", "ROTATION")}


@pytest.fixture(scope="module")
def outcomes():
    return compare.run()


@pytest.fixture(scope="module")
def nodes():
    """Node type -> all its records in the reference data."""
    found = defaultdict(list)
    for family in store.families():
        for record in store.load(family)[0]:
            for node in record["document"]["nodes"]:
                found[node["type"]].append(node)
    return found


def test_pixels_agree_with_cycles(outcomes):
    agreeing, pixels = report.count([one for one in outcomes if not one.reason])
    print(report.table(outcomes))
    assert agreeing >= 0.999 * pixels, report.troubles(outcomes)


def test_no_case_disagrees_without_a_reason(outcomes):
    assert report.disagreeing(outcomes) == []


def test_lit_materials_show_the_same_as_unlit_ones():
    """What a lit material glows with, thinned by its opacity, as Unreal composes it over black."""
    records, arrays = store.load("shaders")
    given = compare.inputs_of(arrays)
    outcomes = []
    for record, wanted in zip(records, arrays["values"], strict=True):
        document = passes.prepare(record["document"] | {"settings": {"blend": "BLENDED"}})[0]  # others are dithered
        result = quillgen.compile(document, "surface", False)
        values = {entry["name"]: compare.value_of(entry, given, len(wanted)) for entry in result["inputs"]}
        values = {name: value[:, 0] if value.shape[1] == 1 else value for name, value in values.items()}
        found = custom_expression.evaluate(result, values)
        opacity = np.reshape(found.get("OutOpacity", 1.0), (-1, 1))
        outcomes.append(
            compare.judge(compare.record_head(record) | {"reason": ""}, found["OutEmissive"] * opacity, wanted)
        )
    assert report.disagreeing(outcomes) == []


def test_every_reason_is_needed(outcomes):
    kept = Counter()
    for one in outcomes:
        if one.reason:
            kept[one.node, one.reason] += one.agreeing < one.pixels
    assert [what for what, disagreeing in kept.items() if not disagreeing] == []


def test_few_cases_need_a_reason(outcomes):
    excused = [one for one in outcomes if one.reason]
    assert len(excused) < 0.1 * len(outcomes)


def test_there_are_cases_enough(outcomes):
    assert len(outcomes) >= 5000
    assert len({(one.node, one.name) for one in outcomes}) == len(outcomes)


def test_every_node_type_with_a_handler_has_cases(nodes):
    sources = [path.read_text() for folder in ("nodes", "closures") for path in (ROOT / folder).rglob("*.cpp")]
    handled = set(re.findall(r'"(ShaderNode\w+)"', "".join(sources)))
    assert len(handled) > 60
    assert handled - set(nodes) <= {"ShaderNode" + name for name in SHADERS}


def test_every_setting_of_every_node_has_a_case(nodes):
    missing = []
    for kind, settings in store.load_settings().items():
        for prop, values in settings.items() if kind in nodes else ():
            seen = [node["props"].get(prop) for node in nodes[kind]]
            missing += [(kind, prop, value) for value in values if value not in seen and prop not in ELSEWHERE]
    assert set(missing) <= ELSEWHERE_VALUES
