"""Helpers that build the small node trees of the cases. Runs inside Blender.

Every tile is a unit square of SIDE x SIDE pixels. Cycles jitters the UV coordinate within a pixel, so the trees read
the integer indices of the pixel's cell instead: `cells` returns (i, j, k), where i and j run from 0 to SIDE - 1 along
the sides, and k takes the same values in another order. Values computed from them are exact as long as factors and
offsets have few bits.
"""

import random
from collections.abc import Callable
from typing import NamedTuple

from trees import add, named

SIDE = 16


class Case(NamedTuple):
    """`build` fills a Canvas and returns the socket to render. `reason`: why the translation can't agree."""

    node: str
    name: str
    build: Callable
    reason: str = ""


class Canvas:
    def __init__(self, tree):
        self.tree = tree
        self.made = {}
        self.method = "BUMP"

    def node(self, kind, inputs=None, **settings):
        return add(self.tree, kind, inputs, **settings)

    def once(self, name, make):
        if name not in self.made:
            self.made[name] = make()
        return self.made[name]

    def cells(self):
        return self.once("cells", self._cells)

    def _cells(self):
        uv = self.node("UVMap").outputs[0]
        sides = self.node("VectorMath", {0: uv, 1: (SIDE, SIDE, SIDE)}, operation="MULTIPLY").outputs[0]
        whole = self.node("VectorMath", {0: sides}, operation="FLOOR").outputs[0]
        mixed = self.node("VectorMath", {0: whole, 1: (5.0, 3.0, 0.0)}, operation="DOT_PRODUCT").outputs["Value"]
        third = self.node("Math", {0: mixed, 1: float(SIDE)}, operation="MODULO").outputs[0]
        parts = self.node("SeparateXYZ", {0: whole})
        return self.node("CombineXYZ", {0: parts.outputs[0], 1: parts.outputs[1], 2: third}).outputs[0]

    def vector(self, scale=0.25, offset=-2.0):
        """scale * (i, j, k) + offset; scale and offset are numbers or triples with few bits."""
        scale, offset = ((part,) * 3 if isinstance(part, (int, float)) else part for part in (scale, offset))
        return self.node("VectorMath", {0: self.cells(), 1: scale, 2: offset}, operation="MULTIPLY_ADD").outputs[0]

    def colour(self, scale=1 / 16, offset=0.0):
        """Like `vector`, but a colour socket."""
        return self.node(
            "CombineColor",
            dict(enumerate(self.node("SeparateXYZ", {0: self.vector(scale, offset)}).outputs[:3])),
        ).outputs[0]

    def number(self, axis, scale=0.25, offset=-2.0):
        """scale * i + offset, or of j or k, by the axis "x", "y" or "z"."""
        parts = self.once("parts", lambda: self.node("SeparateXYZ", {0: self.cells()}).outputs)
        return self.node("Math", {0: parts["xyz".index(axis)], 1: scale, 2: offset}, operation="MULTIPLY_ADD").outputs[
            0
        ]

    def displace(self, socket, method="BUMP"):
        """Wires the material's displacement output."""
        self.tree.links.new(socket, self.tree.get_output_node("CYCLES").inputs["Displacement"])
        self.method = method

    def out(self, node, identifier):
        return named(node.outputs, identifier)


class Draw:
    """Random socket values with few bits, seeded by name."""

    def __init__(self, *name):
        self.random = random.Random(" ".join(str(part) for part in name))

    def number(self, low, high, step=1 / 16):
        return self.random.randint(round(low / step), round(high / step)) * step

    def triple(self, low, high, step=1 / 16):
        return tuple(self.number(low, high, step) for _ in range(3))

    def colour(self, low=0.0, high=1.0):
        return self.triple(low, high) + (1.0,)


def words(kind, prop):
    """All values of an enumeration property of a node type in this Blender."""
    import bpy

    node = getattr(bpy.types, "ShaderNode" + kind, None)  # older Blenders lack some
    return [item.identifier for item in node.bl_rna.properties[prop].enum_items] if node else []
