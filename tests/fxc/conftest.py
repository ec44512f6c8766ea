"""Fixture: the example materials as pixel shaders for Direct3D 11."""

import pytest

import custom_expression
import quillgen
from golden.documents import EXAMPLES, example

WORDS = {1: "float", 2: "float2", 3: "float3", 4: "float4"}


def pixel_shader(result):
    """A pixel shader that calls the text. The inputs come from a constant buffer, scaled by a coordinate so that they
    vary."""
    head, values, call = [], [], []
    for name, record in custom_expression.inputs_of(result):
        if record["kind"] == "texture":
            head.append(f"Texture2D qh_{name};")
            call += [f"qh_{name}", "qh_sampler"]
        else:
            values.append(f"  float4 qh_{name};")
            call.append(f"qh_{name}.{'xyzw'[: custom_expression.width(record)]} * at.x")
    outputs = {k: v for k, v in custom_expression.outputs_of(result).items() if k != custom_expression.RETURNED}
    lines = [f"  {kind} {name} = ({kind})0;" for name, kind in outputs.items()]
    arguments = ", ".join(["parameters", *call, *outputs])
    lines.append(f"  float4 shown = float4((float3)CustomExpression0({arguments}), 0.0);")
    lines += [f"  shown.xyz += (float3){name};" for name in outputs]
    return "\n".join(
        [
            custom_expression.HEAD,
            "SamplerState qh_sampler;",
            *head,
            "cbuffer qh_values {",
            *values,
            "}",
            custom_expression.function(result),
            "float4 main(float4 at : TEXCOORD0) : SV_Target {",
            "  FMaterialPixelParameters parameters = (FMaterialPixelParameters)0;",
            *lines,
            "  return shown;",
            "}",
        ]
    )


@pytest.fixture(scope="session")
def shaders():
    """Name of each example material -> text of its pixel shader."""
    return {
        name: pixel_shader(quillgen.compile(example(name))) for name in sorted(p.stem for p in EXAMPLES.glob("*.json"))
    }
