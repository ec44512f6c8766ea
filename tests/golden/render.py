"""Renders results as readable text that shows every difference: values, types, the order of keys and lists.

Code is rendered verbatim, except for the head that all texts share: the functions of the library and the closure,
which have their own tests. If the head is byte for byte the expected one for the requested library names, it is
replaced by one line with these names; otherwise it is rendered in full.
"""

import functools
import pathlib
import re

import quillgen_lib

FOLDER = pathlib.Path(__file__).parent / "expected"
PLAIN = (str, int, float, bool, type(None))

# ---- the head of a text ---------------------------------------------------------------------------

HEADERS = {
    "material": "// Quillwork - generated from Blender's node tree. Edit the material in Blender, not here.",
    "displacement": "// Quillwork - displacement of Blender's node tree (Nanite tessellation).",
}


@functools.cache
def closure():
    """Returns (the closure's struct, its functions) as in every text."""
    struct, functions = (FOLDER / "closure.hlsl").read_text(encoding="utf-8").rstrip("\n").split("\n\n")
    return struct, "\n" + functions


def function_name(text):
    return re.search(r"\b(\w+)\(", text)[1]


@functools.cache
def library():
    """Returns ({function name: its text}, {function name: the library name that includes it})."""
    texts, units = {}, {}
    for name in quillgen_lib.NAMES:
        resolved = [(function_name(text), text) for text in quillgen_lib.resolve({name})]
        texts.update(resolved)
        for function, _ in resolved:
            if function not in quillgen_lib.NAMES and len(resolved) < units.get(function, (None, 1e9))[1]:
                units[function] = name, len(resolved)
    return texts, {function: units.get(function, (function,))[0] for function in texts}


def asked_for(functions, body):
    """The library names requested for a list of functions: those that no other of them calls, and those that `body`
    calls."""
    texts, units = library()
    names = [function_name(text) for text in functions]
    called = set(re.findall(r"\bL\.(\w+)", body))
    inner = {
        other for name in names for other in names if other != name and re.search(rf"\b{other}\(", texts.get(name, ""))
    }
    return sorted({units[name] for name in names if name in called or name not in inner})


def head(header, structs, need):
    """The expected head: the text up to and including the line of `L`, and a line feed."""
    struct, functions = closure()
    structs = [quillgen_lib.STRUCTS[name] for name in structs]
    library_texts = "\n".join(quillgen_lib.resolve(set(need)))
    return "\n".join([header, *structs, struct, f"struct QWK {{\n{library_texts}\n{functions}\n}};", "QWK L;\n"])


def split_head(code):
    """Returns (a line that replaces the head, the rest), or ("", code) if the head is not the expected one."""
    above, mark, rest = code.partition("\nQWK L;\n")
    if not mark:
        return "", code
    functions = [text for name, text in library()[0].items() if text in above]
    structs = [name for name in sorted(quillgen_lib.STRUCTS) if quillgen_lib.STRUCTS[name] in above]
    need = asked_for(functions, rest)
    for word, header in HEADERS.items():
        if above + mark == head(header, structs, need):
            return f"[{word}: {', '.join(structs + need) or 'no library names'}]", rest
    return "", code


# ---- values ---------------------------------------------------------------------------------------


def literal(value):
    """Like repr, but for plain types only and with sets in sorted order."""
    if type(value) is dict:
        return "{" + ", ".join(f"{literal(k)}: {literal(v)}" for k, v in value.items()) + "}"
    if type(value) in (list, tuple):
        inner = ", ".join(map(literal, value))
        return f"[{inner}]" if type(value) is list else f"({inner},)"
    if type(value) is set:
        return "set(" + ", ".join(sorted(map(literal, value))) + ")"
    if type(value) not in PLAIN:
        raise TypeError(f"a {type(value)} in a result")
    return repr(value)


def lines_of(key, value, pad=""):
    if isinstance(value, str) and "\n" in value:
        line, rest = split_head(value)
        return [f"{pad}{key}:", *[f"{pad}  {line}"] * bool(line), *(f"{pad}  |{text}" for text in rest.split("\n"))]
    if type(value) is list and {type(item) for item in value} in ({dict}, {str}):
        return [f"{pad}{key}:", *(f"{pad}  {literal(item)}" for item in value)]
    if type(value) is dict and len(value) > 1 and key not in ("material",):
        return [f"{pad}{key}:", *(line for k, v in value.items() for line in lines_of(k, v, pad + "  "))]
    return [f"{pad}{key}: {literal(value)}"]


def render(result):
    """The lines of a result: a text, or a dict."""
    if isinstance(result, str):
        return lines_of("text", result)
    assert type(result) is dict
    return [line for key, value in result.items() for line in lines_of(key, value)]
