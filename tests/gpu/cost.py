"""Shaders that are compiled but not run, to check that both language versions accept them and to count instructions.

Inputs are loaded from typed buffers and outputs are stored to typed buffers at the thread's index, so that no address
arithmetic is counted.
"""

import re

from device import COUNTS
from dxc import compile_hlsl, instructions

VERSIONS = ("2018", "2021")
CELLS = {"float": "float4", "int": "int4", "uint": "uint4", "bool": "uint4"}
# Instructions that load inputs and store outputs. They are not counted.
PLUMBING = re.compile(
    r"@dx\.op\.(createHandle|annotateHandle|bufferLoad|bufferStore|threadId)"
    r"|extractvalue %dx\.types\.ResRet|^ret "
)


def shader(body, inputs, outputs, textures=(), helpers=""):
    """The shader's text. `inputs` and `outputs`: name -> HLSL type of local variables of the statements in `body`."""
    lines = [f"Texture2D<float4> {name};" for name in textures] + ["SamplerState qh_sampler;"]
    for name, kind in inputs.items():
        lines.append(f"Buffer<{CELLS[kind.rstrip('234')]}> qh_in_{name};")
    for name in outputs:
        lines.append(f"RWBuffer<uint4> qh_out_{name};")
    lines += [helpers, "[numthreads(64, 1, 1)]", "void main(uint3 qh_thread : SV_DispatchThreadID) {"]
    for name, kind in inputs.items():
        fetched = f"qh_in_{name}[qh_thread.x].{'xyzw'[: COUNTS[kind]]}"
        lines.append(f"  {kind} {name} = {f'{fetched} != 0' if kind.startswith('bool') else fetched};")
    lines += [f"  {kind} {name} = ({kind})0;" for name, kind in outputs.items()] + [body]
    for name, kind in outputs.items():
        parts = [f"{name}.{'xyzw'[k]}" if COUNTS[kind] > 1 else name for k in range(COUNTS[kind])]
        bits = [f"({p} ? 1u : 0u)" if kind.startswith("bool") else f"asuint({p})" for p in parts]
        lines.append(f"  qh_out_{name}[qh_thread.x] = uint4({', '.join(bits + ['0u'] * (4 - len(bits)))});")
    return "\n".join(lines + ["}", ""])


def compile_both(source):
    """Returns {language version: DXIL}. Warnings are errors. Raises DxcError."""
    return {hv: compile_hlsl(source, hv=hv) for hv in VERSIONS}


def work(dxil):
    """The instructions, without those that load inputs and store outputs."""
    return [line for line in instructions(dxil) if not PLUMBING.search(line)]


def count(source):
    """The number of instructions returned by `work`: the larger one of the two language versions."""
    return max(len(work(dxil)) for dxil in compile_both(source).values())
