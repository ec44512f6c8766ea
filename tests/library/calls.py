"""Calls of every library function by itself, with varying arguments."""

import pathlib
import sys

import library
from agreement import signature

sys.path.append(str(pathlib.Path(__file__).parents[2] / "lib"))
import embed

try:
    SOURCES = embed.load()
except SystemExit as e:
    raise RuntimeError(f"the library's sources cannot be read: {e}") from None

# The names in quillgen_lib -> the functions that each includes.
FUNCTIONS = {name: [f.name for f in SOURCES.functions if f.unit == name] for name in SOURCES.units}


def parts(expression, kind):
    """Pairs (expression, numeric type): the value itself, or the fields of a struct."""
    if kind not in library.library().STRUCTS:
        return [(expression, kind)]
    return [(f"{expression}.{field}", k) for field, k in library.fields(kind).items()]


def calls(unit):
    """Returns (statements, inputs, outputs, textures) that call all functions of a library name. Inputs and outputs are
    name -> type; the outputs are all results of the functions."""
    lines, inputs, outputs, textures = [], {}, {}, []
    for function in FUNCTIONS[unit]:
        result, kinds = signature(function, unit)
        given, arguments = [], []
        for i, kind in enumerate(kinds):
            name = f"{function}_{i}"
            arguments.append(name)
            *ways, kind = kind.split()
            if kind == "Texture2D":
                textures.append(name)
                continue
            lines.append(f"{kind} {name} = ({kind})0;")
            for expression, part in parts(name, kind):
                inputs[f"in{len(inputs)}"] = part
                lines.append(f"{expression} = in{len(inputs) - 1};")
            if "out" in ways or "inout" in ways:
                given += parts(name, kind)
        said = f"L.{function}({', '.join(arguments)});"
        if result != "void":
            said = f"{result} {function}_result = {said}"
            given += parts(f"{function}_result", result)
        lines.append(said)
        for expression, part in given:
            outputs[f"out{len(outputs)}"] = part
            lines.append(f"out{len(outputs) - 1} = {expression};")
    body = "\n".join([library.declarations({unit}, " ".join(lines)), *lines])
    return body, inputs, outputs, textures
