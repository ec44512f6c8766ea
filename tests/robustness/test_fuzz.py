"""Short runs of the fuzzers. docs/robustness.md describes long runs."""

import math
import random

import hypothesis
import pytest

import custom_expression
import quillgen
from robustness import fuzz_documents, fuzz_mutations, invariants
from robustness.outcomes import at, paths


def test_documents(seed):
    done, endings = fuzz_documents.fuzz(20_000, seed)
    assert done >= 20_000 and {"result", "TypeError", "KeyError", "Unsupported"} <= endings.keys()


def test_mutations(seed):
    done, endings = fuzz_mutations.fuzz(50_000, seed)
    assert done >= 50_000 and {"result", "TypeError", "KeyError", "Unsupported", "ValueError"} <= endings.keys()


def test_mutations_with_objects(seed):
    done, endings = fuzz_mutations.fuzz(50_000, seed, objects=True)
    assert done >= 50_000 and {"result", "Mine", "TypeError"} <= endings.keys()


def largest(document):
    values = (at(document, path) for path in paths(document))
    return max((abs(value) for value in values if isinstance(value, (int, float)) and math.isfinite(value)), default=0)


def test_dxc_takes_a_sample(seed):
    """Compiles texts of valid documents, wrapped as in Unreal, with warnings as errors. Blender's numbers have 32 bits;
    DXC warns about literals with more."""
    compiled = []

    @hypothesis.seed(seed)
    @hypothesis.settings(
        max_examples=60,
        deadline=None,
        database=None,
        phases=[hypothesis.Phase.generate],
        suppress_health_check=list(hypothesis.HealthCheck),
    )
    @hypothesis.given(fuzz_documents.sound_documents(apart=True))
    def one(document):
        hypothesis.assume(largest(document) < 3e38)
        try:
            result = quillgen.compile(document)
        except (OverflowError, KeyError):
            return
        if len(document["nodes"]) >= 2:
            for text in (result, result["displacement"]):
                if text:
                    compiled.append(all(custom_expression.compile_both(text).values()))

    one()
    assert len(compiled) > 10 and all(compiled)


def test_the_measure_sees_what_is_wrong(monkeypatch):
    document = fuzz_mutations.sources()[0]
    invariants.check(document)
    compile = quillgen.compile
    changes = [
        lambda result: result["inputs"].reverse() or result["inputs"].append(result["inputs"][0]),
        lambda result: result.update(code=result["code"].replace("float v", "float w", 1)),
        lambda result: result.update(code=result["code"] + "\n"),
        lambda result: result.update(further=1),
        lambda result: result["params"].update(P_other=["scalar", 1.0]),
        lambda result: document["nodes"].append({"id": "new", "in": {}, "type": "x"}),
        lambda result: result["warnings"].append(random.random()),
    ]
    for change in changes:

        def spoiled(*args, change=change, **kwargs):
            result = compile(*args, **kwargs)
            change(result)
            return result

        monkeypatch.setattr(quillgen, "compile", spoiled)
        with pytest.raises(invariants.Broken):
            invariants.check(document)
