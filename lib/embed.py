"""Converts the library's .hlsl files to the tables that are compiled into the module quillgen_lib.

    python embed.py OUTPUT FILE.hlsl ...     writes a C++ source of constants
    embed.load(paths)                        returns the same library as a Python object, for tools

The sources are plain HLSL. This script reads from them:

- functions: a function definition begins in column one and ends at the brace that closes its body;
- calls: the name of another function of the library, followed by an opening parenthesis;
- `// @name WORD` in the comment above a function: its library name, if that is not its own name;
- `// @each WORD VALUE ...` in that comment: one copy of the function for each value, with WORD replaced everywhere
  (so `noise_textureDIM_FBM(floatDIM co` makes four functions, with `float` for `float1`, as `int` for `int1`);
- structs: a struct definition begins with `struct` in column one.

Comments and empty lines are stripped, because the texts end up in an artist's material.
"""

import itertools
import pathlib
import re
import sys
from dataclasses import dataclass, field

DEFINITION = re.compile(r"^(?!struct\b)[A-Za-z_]\w*\s+([A-Za-z_]\w*)\(")
STRUCT = re.compile(r"^struct\s+([A-Za-z_]\w*)")
CALL = re.compile(r"\b([A-Za-z_]\w*)\(")
COMMENT = re.compile(r"//[^\n]*|/\*.*?\*/", re.S)
EACH = re.compile(r"^//\s*@each\s+(\w+)\s+(.+)$")
NAME = re.compile(r"^//\s*@name\s+(\w+)\s*$")
TYPES = {1: "float", 2: "float2", 3: "float3", 4: "float4"}


@dataclass
class Function:
    name: str
    unit: str
    text: str
    place: str
    calls: set = field(default_factory=set)


def blocks(path):
    """Returns pairs (comment lines above, lines of the definition) in file order."""
    comment, lines, found = [], [], []
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        if not lines:
            if line.startswith("//"):
                comment.append(line)
                continue
            if not (DEFINITION.match(line) or STRUCT.match(line)):
                comment = []
                if line.strip():
                    raise SystemExit(f"{path}: a line outside of every function: {line!r}")
                continue
        lines.append(line)
        opened = sum(part.count("{") - part.count("}") for part in (COMMENT.sub("", x) for x in lines))
        if opened == 0 and any("{" in x for x in lines):
            found.append((comment, lines))
            comment, lines = [], []
    if lines:
        raise SystemExit(f"{path}: the definition that begins with {lines[0]!r} has no end")
    return found


def compact(lines):
    text = COMMENT.sub("", "\n".join(lines))
    return "\n".join(line.rstrip() for line in text.splitlines() if line.strip())


def copies(comment, text):
    """Yields a copy of the text for each combination of the values in the comment's @each lines."""
    axes = [(m[1], m[2].split()) for m in map(EACH.match, comment) if m]
    for values in itertools.product(*(each for _, each in axes)):
        copy = text
        for (word, _), value in zip(axes, values):
            copy = copy.replace(word, value)
        yield re.sub(r"\b(float|int)1\b", r"\1", copy)


def read(paths):
    """Returns (functions, each after those that it calls; struct texts by name)."""
    functions, structs = {}, {}
    for path in sorted(map(pathlib.Path, paths)):
        for comment, lines in blocks(path):
            text = compact(lines)
            named = STRUCT.match(text)
            if named:
                structs[named[1]] = text
                continue
            units = [m[1] for m in map(NAME.match, comment) if m]
            for copy in copies(comment, text):
                name = DEFINITION.match(copy)[1]
                if name in functions:
                    raise SystemExit(f"{path}: {name} is defined twice")
                functions[name] = Function(name, units[0] if units else name, copy, str(path))
    for function in functions.values():
        function.calls = {c for c in CALL.findall(function.text) if c in functions} - {function.name}
    return in_order(functions), structs


def in_order(functions):
    ordered, state = [], {}

    def visit(function):
        if state.get(function.name) == "under way":
            raise SystemExit(f"{function.place}: {function.name} calls itself through others")
        if function.name in state:
            return
        state[function.name] = "under way"
        for callee in sorted(function.calls, key=list(functions).index):
            visit(functions[callee])
        state[function.name] = "done"
        ordered.append(function)

    for function in functions.values():
        visit(function)
    return ordered


def units(functions):
    """Returns library name -> ascending indices in `functions` of all functions that it needs."""
    place = {f.name: i for i, f in enumerate(functions)}
    closure = []
    for function in functions:
        reached = {place[function.name]}
        for callee in function.calls:
            reached |= closure[place[callee]]
        closure.append(reached)
    result = {}
    for i, function in enumerate(functions):
        result.setdefault(function.unit, set()).update(closure[i])
    return {name: sorted(places) for name, places in result.items()}


class Library:
    """The contents of the module quillgen_lib, for tools that run before it is built."""

    def __init__(self, paths):
        self.functions, self.STRUCTS = read(paths)
        self.units = units(self.functions)
        self.TYPES = dict(TYPES)

    def resolve(self, need):
        places = set().union(*(self.units[name] for name in need)) if need else set()
        return [self.functions[i].text for i in sorted(places)]


def load(paths=None):
    return Library(paths or pathlib.Path(__file__).parent.glob("*.hlsl"))


def raw(text):
    return f'R"hlsl({text})hlsl"'


def write(out, paths):
    functions, structs = read(paths)
    lines = ["// Made by embed.py from the .hlsl files beside it.", "// clang-format off"]
    lines += ["constexpr const char* kFunctions[] = {"] + [f"{raw(f.text)}," for f in functions] + ["};"]
    flat, table = [], []
    for name, places in units(functions).items():
        table.append(f'    {{"{name}", {len(flat)}, {len(places)}}},')
        flat += places
    numbers = ["    " + ", ".join(map(str, flat[i : i + 24])) + "," for i in range(0, len(flat), 24)]
    lines += ["constexpr unsigned short kPlaces[] = {"] + numbers + ["};"]
    lines += ["constexpr Unit kUnits[] = {"] + table + ["};"]
    lines += ["constexpr Struct kStructs[] = {"] + [f'    {{"{n}", {raw(t)}}},' for n, t in structs.items()] + ["};"]
    pathlib.Path(out).write_text("\n".join(lines) + "\n", encoding="utf-8")


if __name__ == "__main__":
    write(sys.argv[1], sys.argv[2:])
