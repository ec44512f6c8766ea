"""The wiring table, and the tables that are made from results."""

import doctest
import json
from pathlib import Path
from typing import get_args

import pytest

import quillgen
from quillgen_tools import tables, types, wiring

MATERIALS = sorted((Path(__file__).resolve().parents[2] / "examples" / "materials").glob("*.json"))


@pytest.mark.parametrize("module", [tables, wiring], ids=lambda module: module.__name__)
def test_examples_of_docstrings(module):
    outcome = doctest.testmod(module)
    assert outcome.attempted and not outcome.failed


def test_every_kind_of_the_types_has_a_row():
    def words(alias):
        parts = get_args(alias)
        return {alias} if not parts else set().union(*map(words, parts))

    assert words(types.Kind) == set(wiring.WIRING)


def test_properties_of_the_types_have_an_attribute():
    assert set(get_args(types.Property)) == set(wiring.ATTRIBUTES)


@pytest.mark.parametrize("path", MATERIALS, ids=lambda path: path.stem)
def test_inputs_of_the_example_materials_can_be_wired(path):
    result = quillgen.compile(json.loads(path.read_text(encoding="utf-8")))
    for one in result["inputs"]:
        row = wiring.WIRING[one["kind"]]
        assert set(one) == {"name", "kind", *row.keys}
        assert "{" not in wiring.expression(one) and wiring.width(one) in range(5)
    written = tables.page(path.stem, result)
    assert all(f"| `{one['name']}` | {wiring.expression(one)} |" in written for one in result["inputs"])
    assert all(f"| {one['name']} | {one['type']} | {one['property']} |" in written for one in result["outputs"])


def test_a_page_tells_of_displacement_and_of_what_differs():
    result = quillgen.compile(
        {
            "nodes": [
                {"id": "Glow", "type": "ShaderNodeEmission", "in": {}, "props": {}},
                {"id": "Odd", "type": "ShaderNodeOdd", "in": {}, "outs": {"Vector": "VECTOR"}},
            ],
            "out": {"surface": ["Odd", "Vector"], "displacement": ["Odd", "Vector"]},
            "settings": {"displacement": "BOTH"},
        }
    )
    written = tables.page("Odd", result, ["the mesh has no UV map"])
    assert "Magnitude: 128.0 cm" in written
    assert "- Odd (ShaderNodeOdd) has no Unreal equivalent" in written and "- the mesh has no UV map" in written


def test_the_result_goes_to_the_emissive_colour_of_an_unlit_material():
    document = {"nodes": [{"id": "V", "type": "ShaderNodeRGB", "in": {}, "props": {"value": [1, 0, 0, 1]}}]}
    document["out"] = {"surface": ["V", "Color"]}
    written = tables.page("Unlit", quillgen.compile(document, "emission"))
    assert "| (the result) | float3 | Emissive Color |" in written


def test_a_bar_in_a_cell_does_not_end_it():
    assert tables.table(["a", "b"], [["1|2", 3]])[2] == "| 1\\|2 | 3 |"
