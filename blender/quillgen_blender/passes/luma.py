"""Converts colours to numbers with the full precision of Cycles' weights.

The generated HLSL weights red, green and blue with 0.2126, 0.7152 and 0.0722. Cycles' weights have more digits, which
is visible if the number is multiplied by a thousand and used as a seed or a coordinate. This pass inserts a Vector Math
node into such a link, which computes the dot product with the weights; RGB to BW is replaced by one.
"""

from typing import Any

from ..notes import Note
from . import made
from .options import Options

# Measured with Cycles: 4.2 and 4.5 have the same weights, and so do 5.0 (to the seventh digit), 5.1 and 5.2.
WEIGHTS_4 = (0.21267404, 0.71515161, 0.07217542)
WEIGHTS_5 = (0.21263909, 0.71516913, 0.07219274)
NUMBERS = ("VALUE", "INT", "BOOLEAN")


def weights(version: tuple[int, ...] | list[int]) -> tuple[float, float, float]:
    """The weights of red, green and blue in a Blender of this version."""
    return WEIGHTS_4 if version[0] < 5 else WEIGHTS_5


def run(document: dict[str, Any], options: Options) -> tuple[dict[str, Any], list[Note]]:
    if not options.exact_luma:
        return document, []
    greys = {
        node["id"]
        for node in document["nodes"]
        if node["type"] == "ShaderNodeRGBToBW" and "link" in node["in"].get("Color", ())
    }
    if not greys and not any(weighs(entry) for node in document["nodes"] for entry in node["in"].values()):
        return document, []
    products = Products(document, greys)
    nodes = [products.changed(node) for node in document["nodes"]]
    out = {
        name: ([source[0], "Value", *source[2:]] if source and source[0] in greys else source)
        for name, source in document["out"].items()
    }
    return document | {"nodes": nodes + list(products.nodes.values()), "out": out}, []


def weighs(entry: dict[str, Any]) -> bool:
    """Whether an input converts a colour to a number."""
    return "link" in entry and entry["link"][2] == "RGBA" and entry.get("t") in NUMBERS


class Products:
    """The dot products of a document: one for each output that feeds numbers."""

    def __init__(self, document: dict[str, Any], greys: set[str]) -> None:
        self.ids = made.Ids(document)
        self.greys = greys
        self.weights = made.value(list(weights(document.get("host", {}).get("blender", (5,)))), "VECTOR")
        self.nodes: dict[tuple[str, str], dict[str, Any]] = {}

    def changed(self, node: dict[str, Any]) -> dict[str, Any]:
        """The record with its links to numbers redirected through products."""
        entries = {
            socket: self.entry(entry)
            for socket, entry in node["in"].items()
            if weighs(entry) or ("link" in entry and entry["link"][0] in self.greys)
        }
        if node["id"] in self.greys:
            color = entries.get("Color", node["in"]["Color"])
            return self.product(node["id"], {"t": "VECTOR", "link": color["link"]})
        return node | {"in": node["in"] | entries} if entries else node

    def entry(self, entry: dict[str, Any]) -> dict[str, Any]:
        source, output, kind = entry["link"]
        if source in self.greys:
            return entry | {"link": [source, "Value", kind]}
        if (source, output) not in self.nodes:
            identity = self.ids.fresh(f"{source} {output} Luma")
            self.nodes[source, output] = self.product(identity, made.link(source, output, kind, "VECTOR"))
        return entry | {"link": [self.nodes[source, output]["id"], "Value", "VALUE"]}

    def product(self, identity: str, color: dict[str, Any]) -> dict[str, Any]:
        inputs = {"Vector": color, "Vector_001": self.weights}
        return made.node(identity, "ShaderNodeVectorMath", inputs, {"Value": "VALUE"}, operation="DOT_PRODUCT")
