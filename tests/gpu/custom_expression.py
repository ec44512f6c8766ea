"""Wraps a generated text like Unreal wraps the text of a Custom expression, to compile and to run it.

A `result` is the result of quillgen.compile, or its `displacement`, or any dict with `code`, `inputs` and optional
`outputs`.
"""

import numpy as np

import cost
import device

SCALARS = {"scalar", "pixel_depth", "two_sided_sign", "temporal_index"}
PAIRS = {"texcoord", "tan_half_fov", "view_size", "pixel_position"}
QUADS = {"vector", "vertex_color"}

RETURNED = "qh_result"  # the variable that receives the return value

HEAD = """typedef float MaterialFloat;
typedef float2 MaterialFloat2;
typedef float3 MaterialFloat3;
typedef float4 MaterialFloat4;
struct FMaterialPixelParameters { float4 SvPosition; float4 VertexColor; float3 WorldNormal; };
"""


def width(record):
    """The number of components that an input of this kind has in Unreal."""
    kind = record["kind"]
    if kind in ("ddx", "ddy"):
        return width(record["of"])
    return 1 if kind in SCALARS else 2 if kind in PAIRS else 4 if kind in QUADS else 3


def _word(n):
    return "" if n == 1 else str(n)


def inputs_of(result):
    """Pairs (name, record) of the inputs, in the order of the result."""
    inputs = result["inputs"]
    return list(inputs.items()) if isinstance(inputs, dict) else [(r["name"], r) for r in inputs]


def _textures(result):
    return [name for name, record in inputs_of(result) if record["kind"] == "texture"]


def _values(result):
    return {name: record for name, record in inputs_of(result) if record["kind"] != "texture"}


def outputs_of(result):
    """Name -> HLSL type of the return value, then of each output."""
    returned = "float3" if "outputs" in result else "float"
    assigned = {output["name"]: output["type"] for output in result.get("outputs", [])}
    return {RETURNED: result.get("returns", returned), **assigned}


def function(result):
    """The function that Unreal makes from the text.

    It returns a float3 if the result has `outputs`, otherwise (displacement) a float. The key `returns` overrides this.
    """
    arguments = ["FMaterialPixelParameters Parameters"]
    for name, record in inputs_of(result):
        if record["kind"] == "texture":
            arguments.append(f"Texture2D {name}, SamplerState {name}Sampler")
        else:
            arguments.append(f"MaterialFloat{_word(width(record))} {name}")
    material = {name: kind.replace("float", "MaterialFloat") for name, kind in outputs_of(result).items()}
    returned = material.pop(RETURNED)
    arguments += [f"inout {kind} {name}" for name, kind in material.items()]
    return f"{returned} CustomExpression0({', '.join(arguments)})\n{{\n{result['code']}\n}}\n"


def _call(result):
    arguments = ["qh_parameters"]
    for name, record in inputs_of(result):
        arguments += [name, "qh_sampler"] if record["kind"] == "texture" else [name]
    arguments += [name for name in outputs_of(result) if name != RETURNED]
    return (
        "  FMaterialPixelParameters qh_parameters = (FMaterialPixelParameters)0;\n"
        f"  {RETURNED} = CustomExpression0({', '.join(arguments)});"
    )


def shader(result):
    """A shader that calls the function. It is only compiled, not run."""
    inputs = {name: f"float{_word(width(record))}" for name, record in _values(result).items()}
    return cost.shader(_call(result), inputs, outputs_of(result), _textures(result), HEAD + function(result))


def compile_both(result):
    """Returns {"2018": DXIL, "2021": DXIL}. Warnings are errors. Raises DxcError."""
    return cost.compile_both(shader(result))


def instruction_count(result):
    """The number of DXIL instructions of the text with all inputs varying, see `cost.count`."""
    return cost.count(shader(result))


def evaluate(result, values=None, textures=None, hv="2021"):
    """Runs the text. Returns {"result": array, "OutNormal": array, ...}.

    `values`: input name -> array [n] or [n, width], or a number or tuple for all points. Inputs with a default (kinds
    scalar and vector) may be absent, all others are required. `textures`: input name -> array [height, width, 4].
    """
    values, textures = values or {}, textures or {}
    missing = [name for name, r in _values(result).items() if name not in values and "default" not in r]
    missing += [name for name in _textures(result) if name not in textures]
    if missing:
        raise KeyError(f"no values for {', '.join(missing)}")
    inputs = {}
    for name, record in _values(result).items():
        inputs[name] = _fitted(name, values.get(name, record.get("default")), width(record))
    bound = {name: textures[name] for name in _textures(result)}
    arrays = device.evaluate(_call(result), inputs, outputs_of(result), bound, HEAD + function(result), hv)
    return {"result": arrays.pop(RETURNED), **arrays}


def _fitted(name, value, components):
    """The value as floats: an array with one row per point, or a tuple (or number) for all points."""
    if np.ndim(value) == (2 if components > 1 else 1):
        array = np.asarray(value, dtype=np.float32)
        shape_ok = components == 1 or array.shape[1] == components
    else:
        array = np.asarray(value, dtype=np.float32).ravel()
        shape_ok = array.size == components
        array = tuple(array.tolist())
    if not shape_ok:
        raise ValueError(f"input {name} has {components} components, not those of {np.shape(value)}")
    return array
