"""DXC compiles every golden text, wrapped as in Unreal, in HLSL 2018 and 2021 with warnings as errors.

No text is skipped. A name that is missing in the library makes the translation raise KeyError, so there is no text.
"""

import pytest

import custom_expression
from dxc import DxcError
from golden.cases import all_cases


def texts():
    """Yields (file, title, result) of each text of each case, without duplicates."""
    seen = set()
    for file, cases in all_cases().items():
        for title, case in cases.items():
            result = case.result()
            for part, text in (("", result), (", displacement", result.get("displacement"))):
                if text and "code" in text and repr(text) not in seen:
                    seen.add(repr(text))
                    yield pytest.param(text, id=f"{file}: {title}{part}")


def wrapped(result):
    """A result in the form that the harness expects. A text of several graphs reads a selector, which is not in its
    inputs."""
    if "magnitude" in result:
        return result
    inputs = result["inputs"]
    if "sel" in result["code"] and isinstance(inputs, dict):
        inputs = {**inputs, "sel": {"kind": "scalar", "default": 0.0}}
    return {**result, "inputs": inputs, "returns": "float3"}


@pytest.mark.parametrize("result", texts())
def test_compiles(result):
    assert all(custom_expression.compile_both(wrapped(result)).values())


def test_a_wrong_text_is_refused():
    result = all_cases()["ShaderNodeMath"]["operation SINE"].result()
    with pytest.raises(DxcError, match="sinus"):
        custom_expression.compile_both(wrapped({**result, "code": result["code"].replace(" sin(", " sinus(")}))
    with pytest.raises(DxcError, match="implicit truncation"):
        custom_expression.compile_both(
            wrapped({**result, "code": result["code"].replace("  float v1 = ", "  float v1 = (float3)")})
        )
