"""Counts loop iterations in HLSL, to detect shaders that end late or never."""

import re

LOOP = re.compile(r"\b(?:for|while|do)\b")
COUNTER = "qh_turns"


def _behind(text, place):
    """The position after the bracket that closes the first one opened at or after `place`."""
    depth = 0
    for at in range(text.index("(", place), len(text)):
        depth += {"(": 1, ")": -1}.get(text[at], 0)
        if depth == 0:
            return at + 1
    raise ValueError("a bracket that nothing closes")


def counted(code):
    """Instruments declarations with a struct QWK of functions: its member qh_turns counts all loop iterations."""
    made, done = [], 0
    for loop in LOOP.finditer(code):
        end = loop.end() if loop[0] == "do" else _behind(code, loop.end())
        end += len(code[end:]) - len(code[end:].lstrip())
        if code[end] == ";":  # the condition of a do loop
            continue
        inside = code[end] == "{"
        made += [code[done : end + inside], f" {COUNTER}++{';' if inside else ','} "]
        done = end + inside
    code = "".join([*made, code[done:]]).replace("struct QWK {", f"struct QWK {{\nuint {COUNTER};")
    return code.replace("\nQWK L;", f"\nQWK L;\nL.{COUNTER} = 0u;")
