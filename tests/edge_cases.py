"""Helpers of the edge case tests: translate one node or a few to statements, or run them on the device."""

import re

import pytest

import custom_expression
import quillgen
from golden.documents import material

ZERO = "float3(0.0, 0.0, 0.0)"

# Variables of the position offsets of a Bump node that is evaluated first: w is a world vector, a and b are steps along
# the screen axes.
DX = {"w": "v15", "a": "v18", "b": "v19"}
DY = {"w": "v20", "a": "v23", "b": "v24"}


def translated(*nodes, output=None, mode="emission", use_params=False, uv_bias=None, **top):
    """quillgen.parts of a graph whose surface is an output of the first node, with unindented statements."""
    document = nodes[0] if "nodes" in nodes[0] else material(*nodes, surface=(nodes[0], output), **top)
    result = quillgen.parts(document, mode, use_params, uv_bias)
    assert all(line.startswith("  ") for line in result["body"])
    return {**result, "body": [line[2:] for line in result["body"]]}


def body(*nodes, **settings):
    return translated(*nodes, **settings)["body"]


def surface(*nodes, use_params=False, **top):
    """quillgen.compile of a material in mode surface."""
    return quillgen.compile(material(*nodes, **top), "surface", use_params)


def statements(result):
    """The lines of a text after its head, unindented: statements, assignments, return."""
    code = result if isinstance(result, str) else result["code"]
    return [line.removeprefix("  ") for line in code.split("\nQWK L;\n")[1].split("\n")]


def value_of(*nodes, output=None, values=None, textures=None, **top):
    """The value of the output at run time: rows of three numbers."""
    result = quillgen.compile(material(*nodes, surface=(nodes[0], output), **top), "emission", False)
    return custom_expression.evaluate(result, values, textures)["result"]


def bumped_normal(lines):
    """The variable of the first bumped normal, and the statements after it."""
    at = next(i for i, line in enumerate(lines) if line.startswith("if (dot(") and "else" in line)
    return re.match(r"if \(dot\((v\d+), ", lines[at])[1], lines[at + 1 :]


def unsupported(message):
    return pytest.raises(quillgen.Unsupported, match=f"^{re.escape(message)}$")


def key_error(key):
    return pytest.raises(KeyError, match=f"^{re.escape(repr(key))}$")
