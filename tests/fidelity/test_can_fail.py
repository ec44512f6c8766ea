"""The comparison sees errors: one in a function of the library, one in what a handler writes, one in a frame."""

import pytest

import compare
import quillgen

ERRORS = {
    # The library's division gives 1 and not 0 for a divisor of zero.
    "function": ("Math DIVIDE", "b == 0.0 ? 0.0 :", "b == 0.0 ? 1.0 :"),
    # Invert Color mixes the wrong way round.
    "handler": ("Invert Color", " * (float3(1.0, 1.0, 1.0) - ", " * (float3(0.0, 0.0, 0.0) - "),
    # Positions keep Unreal's direction of y.
    "frame": ("shell: Position", "-wpos.y", "wpos.y"),
}


@pytest.mark.parametrize("kind", ERRORS)
def test_a_deliberate_error_is_caught(kind, monkeypatch):
    part, right, wrong = ERRORS[kind]
    assert disagreeing(part) == []

    translate = quillgen.compile

    def with_error(*arguments):
        result = translate(*arguments)
        assert right in result["code"]
        return result | {"code": result["code"].replace(right, wrong)}

    monkeypatch.setattr(quillgen, "compile", with_error)
    assert disagreeing(part) != []


def disagreeing(part):
    outcomes = compare.run([part])
    assert outcomes, part
    return [one.name for one in outcomes if one.agreeing < 0.98 * one.pixels and not one.reason]
