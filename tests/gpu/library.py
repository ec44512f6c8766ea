"""Calls single functions of the HLSL library on numpy arrays, or measures their cost.

    call("safe_normalize", np.float32([[3, 0, 4], [0, 0, 0]]))

As in a generated text, the functions are members of a struct in a function body.
"""

import functools
import pathlib
import re
import sys
from typing import NamedTuple

import cost as costs
import device
from device import COUNTS

MEMBER = re.compile(r"\b(float[234]?|u?int[234]?|bool)\s+(\w+(?:\s*,\s*\w+)*)\s*;")


class Out(NamedTuple):
    """Placeholder for an `out` (or `inout`) argument of this type."""

    kind: str


@functools.cache
def library():
    """The library: `resolve(names)`, `STRUCTS`, `TYPES`."""
    sources = pathlib.Path(__file__).parents[2] / "lib"
    try:
        import quillgen_lib

        built = pathlib.Path(quillgen_lib.__file__).stat().st_mtime
        if built > max((p.stat().st_mtime for p in sources.glob("*.hlsl")), default=0):
            return quillgen_lib
    except ImportError:
        pass
    sys.path.append(str(sources))
    import embed

    try:
        return embed.load()
    except SystemExit as e:
        raise RuntimeError(f"the library's sources cannot be read: {e}") from None


def fields(struct):
    """The fields of one of the library's structs, name -> HLSL type."""
    body = library().STRUCTS[struct].split("{", 1)[1]
    return {name.strip(): kind for kind, names in MEMBER.findall(body) for name in names.split(",")}


def declarations(need, extra=""):
    """Declarations for a function body: the library structs that the functions (or `extra`) use, then the struct of the
    functions."""
    functions = "\n".join(library().resolve(set(need)))
    structs = [text for name, text in sorted(library().STRUCTS.items()) if re.search(rf"\b{name}\b", functions + extra)]
    return "\n".join([*structs, "struct QWK {", functions, "};", "QWK L;"])


class _Call:
    """A call under construction: the statements before it, its arguments and its results."""

    def __init__(self, function, result):
        self.function, self.result = function, result
        self.before, self.args, self.after, self.outputs = [], [], [], {}

    def out(self, kind):
        name = f"out{len(self.args)}"
        self.before.append(f"{kind} {name} = ({kind})0;")
        self.args.append(name)
        self.keep(name, kind)

    def struct(self, struct, values):
        """A struct argument whose fields are set from `values`, field -> expression."""
        name = f"struct{len(self.args)}"
        self.before.append(f"{struct} {name} = ({struct})0;")
        kinds = fields(struct)
        self.before += [f"{name}.{field} = {kinds[field]}({text});" for field, text in values.items()]
        self.args.append(name)

    def keep(self, name, kind):
        """Stores a value in shader outputs, one for each field of a struct."""
        if kind in COUNTS:
            parts = {f"{name}_": (name, kind)}
        else:
            parts = {f"{name}_{field}": (f"{name}.{field}", k) for field, k in fields(kind).items()}
        for output, (text, part_kind) in parts.items():
            self.outputs[output] = part_kind
            self.after.append(f"{output} = {text};")

    def finish(self, need):
        said = f"L.{self.function}({', '.join(self.args)})"
        if self.result:
            self.keep("result", self.result)
            said = f"{self.result} result = {said}"
        steps = [*self.before, said + ";", *self.after]
        return "\n".join([declarations(need or {self.function}, " ".join(steps)), *steps])

    def gather(self, name, kind, arrays):
        if kind in COUNTS:
            return arrays[f"{name}_"]
        return {f: arrays[f"{name}_{f}"] for f in fields(kind)}


def call(function, *args, result="float3", need=None, out_args=(), textures=None, hv="2021"):
    """Evaluates a library function elementwise.

    An argument is a numpy array ([n] or [n, 1..4]; its type float, int, uint or bool follows the array's), a number,
    bool or tuple of numbers (the same for all points), `Out(type)` for an out argument, a dict of field -> value for a
    QWKVoronoiParams, or HLSL text that is passed verbatim (such as a name in `textures`, name -> array [height, width,
    4]). `out_args`: types of out arguments that follow the others. `result`: the return type, which may be a library
    struct (returned as a dict of its fields) or None for void. `need`: library names to resolve, if the function's own
    name is not one.

    Returns the result; with out arguments, a tuple of the result (unless void) and the out values.
    """
    built, inputs = _Call(function, result), {}

    def declare(value):
        if isinstance(value, str):
            return value
        name = f"in{len(inputs)}"
        inputs[name] = value
        return name

    outs = []
    for arg in [*args, *(Out(kind) for kind in out_args)]:
        if isinstance(arg, Out):
            built.out(arg.kind)
            outs.append((built.args[-1], arg.kind))
        elif isinstance(arg, dict):
            built.struct("QWKVoronoiParams", {field: declare(value) for field, value in arg.items()})
        else:
            built.args.append(declare(arg))
    body = built.finish(need)
    arrays = device.evaluate(body, inputs, built.outputs, textures, hv=hv)
    results = [built.gather("result", result, arrays)] if result else []
    results += [built.gather(name, kind, arrays) for name, kind in outs]
    return results[0] if len(results) == 1 else tuple(results)


def cost(function, *kinds, result="float3", need=None, out_args=()):
    """The number of DXIL instructions of a call with varying arguments of these types (see `cost.count`).

    A kind is an HLSL type, a library struct, "Texture2D", `Out(type)`, or any other text, which is passed verbatim.
    Compiles in both language versions with warnings as errors. Raises DxcError if one of them fails.
    """
    built, inputs, textures = _Call(function, result), {}, []
    for kind in [*kinds, *(Out(k) for k in out_args)]:
        if isinstance(kind, Out):
            built.out(kind.kind)
        elif kind == "Texture2D":
            textures.append(f"texture{len(textures)}")
            built.args.append(textures[-1])
        elif kind in library().STRUCTS:
            names = {field: f"in{len(inputs) + i}" for i, field in enumerate(fields(kind))}
            inputs.update({names[field]: k for field, k in fields(kind).items()})
            built.struct(kind, names)
        elif kind in COUNTS:
            built.args.append(f"in{len(inputs)}")
            inputs[built.args[-1]] = kind
        else:
            built.args.append(kind)
    body = built.finish(need)
    return costs.count(costs.shader(body, inputs, built.outputs, textures))
