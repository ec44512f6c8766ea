"""The comparison detects errors: one in a library function, one in a handler's output, one in a coordinate frame."""

import pytest

import compare
import quillgen

ERRORS = {
    # The library's division returns 1 instead of 0 for a zero divisor.
    "function": ("Math DIVIDE", "b == 0.0 ? 0.0 :", "b == 0.0 ? 1.0 :"),
    # Invert Color mixes in the wrong direction.
    "handler": ("Invert Color", " * (float3(1.0, 1.0, 1.0) - ", " * (float3(0.0, 0.0, 0.0) - "),
    # Positions keep the sign of Unreal's y.
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
