"""Checks the types of documents and results against real ones. tools/check-stubs runs the type checkers."""

import json
from pathlib import Path
from types import NoneType, UnionType
from typing import Any, Literal, NotRequired, Required, Union, get_args, get_origin, get_type_hints, is_typeddict

import pytest

import quillgen
from golden.cases import all_cases
from quillgen_tools import types

MATERIALS = Path(__file__).resolve().parents[2] / "examples" / "materials"


def fits(value, type) -> bool:
    """Whether a value has a type of `types`. As for type checkers, an int is accepted as a float."""
    origin, parts = get_origin(type), get_args(type)
    if type is Any:
        return True
    if is_typeddict(type):
        hints = get_type_hints(type)
        known = isinstance(value, dict) and type.__required_keys__ <= set(value) <= set(hints)
        return known and all(fits(value[key], hints[key]) for key in value)
    if origin in (Union, UnionType):
        return any(fits(value, part) for part in parts)
    if origin is Literal:
        return value in parts
    if origin in (Required, NotRequired):
        return fits(value, parts[0])
    if origin in (list, set):
        return isinstance(value, origin) and all(fits(one, parts[0]) for one in value)
    if origin is dict:
        return isinstance(value, dict) and all(fits(k, parts[0]) and fits(v, parts[1]) for k, v in value.items())
    if origin is tuple:
        return isinstance(value, tuple) and (parts[-1] is ... or len(parts) == len(value))
    if type in (float, int):
        return isinstance(value, (int, float))
    return value is None if type is NoneType else isinstance(value, type)


@pytest.mark.parametrize("path", sorted(MATERIALS.glob("*.json")), ids=lambda path: path.stem)
def test_the_example_materials(path):
    document = json.loads(path.read_text(encoding="utf-8"))
    assert fits({key: document[key] for key in types.Document.__annotations__ if key in document}, types.Document)
    assert fits(quillgen.compile(document), types.Result)
    assert fits(quillgen.parts(document, "surface", True), types.Parts)


def test_golden_results():
    results = [case.result() for cases in all_cases().values() for case in cases.values() if case.document]
    whole = [result for result in results if isinstance(result, dict) and "code" in result]
    assert len(whole) > 500 and any(result["displacement"] for result in whole)
    assert [result["inputs"] for result in whole if not fits(result, types.Result)] == []


@pytest.mark.parametrize(
    "change",
    [
        lambda result: result.pop("code"),
        lambda result: result.update(more=1),
        lambda result: result["inputs"][0].update(kind="other"),
        lambda result: result["inputs"][0].pop("name"),
        lambda result: result["outputs"][0].update(property="colour"),
        lambda result: result["material"].update(clip="0.5"),
        lambda result: result["warnings"].append(1),
    ],
)
def test_the_measure_sees_what_does_not_fit(change):
    result = quillgen.compile(json.loads((MATERIALS / "lava.json").read_text(encoding="utf-8")))
    assert fits(result, types.Result)
    change(result)
    assert not fits(result, types.Result)
