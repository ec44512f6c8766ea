"""What the tests of edge cases share: one node or a few, translated to statements, or run on the device."""

import re

import pytest

import custom_expression
import quillgen
from golden.documents import material

ZERO = "float3(0.0, 0.0, 0.0)"

# The offsets of a Bump node that is evaluated first: a world vector, and steps along the screen's axes.
DX = {"w": "v15", "a": "v18", "b": "v19"}
DY = {"w": "v20", "a": "v23", "b": "v24"}


def translated(*nodes, output=None, mode="emission", use_params=False, uv_bias=None, **top):
    """The parts of a graph whose surface is an output of the first node; statements without their indent."""
    document = nodes[0] if "nodes" in nodes[0] else material(*nodes, surface=(nodes[0], output), **top)
    result = quillgen.parts(document, mode, use_params, uv_bias)
    assert all(line.startswith("  ") for line in result["body"])
    return {**result, "body": [line[2:] for line in result["body"]]}


def body(*nodes, **settings):
    return translated(*nodes, **settings)["body"]


def surface(*nodes, use_params=False, **top):
    """The whole result of a material, mode surface."""
    return quillgen.compile(material(*nodes, **top), "surface", use_params)


def statements(result):
    """What stands behind the head of a code: statements, assignments, return; without their indents."""
    code = result if isinstance(result, str) else result["code"]
    return [line.removeprefix("  ") for line in code.split("\nQWK L;\n")[1].split("\n")]


def value_of(*nodes, output=None, values=None, textures=None, **top):
    """What the output is at run time: rows of three numbers."""
    result = quillgen.compile(material(*nodes, surface=(nodes[0], output), **top), "emission", False)
    return custom_expression.evaluate(result, values, textures)["result"]


def bumped_normal(lines):
    """The name of the first normal that a bump makes, and the statements behind it."""
    at = next(i for i, line in enumerate(lines) if line.startswith("if (dot(") and "else" in line)
    return re.match(r"if \(dot\((v\d+), ", lines[at])[1], lines[at + 1 :]


def unsupported(message):
    return pytest.raises(quillgen.Unsupported, match=f"^{re.escape(message)}$")


def key_error(key):
    return pytest.raises(KeyError, match=f"^{re.escape(repr(key))}$")
