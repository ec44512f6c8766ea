"""Records that passes insert."""

import math
import re
from typing import Any

NOT_A_LETTER = re.compile("[^A-Za-z0-9]")


Operand = float | dict[str, Any]  # a constant, or an input entry with a link


class Ids:
    """Ids for new records. No two ids of a document yield the same parameter names."""

    def __init__(self, document: dict[str, Any]) -> None:
        self.spellings = {NOT_A_LETTER.sub("_", node["id"]) for node in document["nodes"]}

    def fresh(self, wish: str) -> str:
        name, count = wish, 1
        while (spelling := NOT_A_LETTER.sub("_", name)) in self.spellings:
            count += 1
            name = f"{wish} {count}"
        self.spellings.add(spelling)
        return name


def node(identity: str, kind: str, inputs: dict[str, Any], outputs: dict[str, str], **props: Any) -> dict[str, Any]:
    """A record whose values never become parameters."""
    return {"id": identity, "type": kind, "in": inputs, "outs": outputs, "props": props, "made": True}


def value(number: Any, kind: str = "VALUE") -> dict[str, Any]:
    """An unlinked input that never becomes a parameter."""
    return {"t": kind, "v": number, "made": True}


def link(source: str, output: str, kind: str, wanted: str | None = None) -> dict[str, Any]:
    """An input that reads an output. Its type is `wanted`, by default the type of the source."""
    return {"t": wanted or kind, "link": [source, output, kind]}


class Builder:
    """Collects new records. Arithmetic on constants is computed at once and makes no records."""

    def __init__(self, document: dict[str, Any]) -> None:
        self.ids = Ids(document)
        self.nodes: list[dict[str, Any]] = []

    def add(
        self, wish: str, kind: str, inputs: dict[str, Any], output: str, output_kind: str, **props: Any
    ) -> dict[str, Any]:
        """An entry that reads the output of a new record."""
        identity = self.ids.fresh(wish)
        self.nodes.append(node(identity, kind, inputs, {output: output_kind}, **props))
        return link(identity, output, output_kind)

    def math(self, wish: str, operation: str, *operands: Operand) -> Operand:
        """`operation`: ADD, MULTIPLY, MULTIPLY_ADD, POWER or EXPONENT."""
        if not any(isinstance(operand, dict) for operand in operands):
            return ARITHMETIC[operation](*operands)
        if operation == "MULTIPLY" and 0.0 in operands:
            return 0.0
        if operation == "MULTIPLY" and 1.0 in operands:
            return next(operand for operand in operands if operand != 1.0)
        names = ("Value", "Value_001", "Value_002")
        inputs = {name: self.entry(operand) for name, operand in zip(names, operands, strict=False)}
        return self.add(f"{wish} {operation.title()}", "ShaderNodeMath", inputs, "Value", "VALUE", operation=operation)

    def product(self, wish: str, *operands: Operand) -> Operand:
        found: Operand = 1.0
        for operand in operands:
            found = self.math(wish, "MULTIPLY", found, operand)
        return found

    @staticmethod
    def entry(operand: Operand, kind: str = "VALUE") -> dict[str, Any]:
        return {"t": kind, "link": operand["link"]} if isinstance(operand, dict) else value(operand, kind)


ARITHMETIC: dict[str, Any] = {
    "ADD": lambda a, b: a + b,
    "MULTIPLY": lambda a, b: a * b,
    "MULTIPLY_ADD": lambda a, b, c: a * b + c,
    "POWER": lambda a, b: a**b,
    "EXPONENT": math.exp,
}


def number(entry: dict[str, Any] | None, default: float = 0.0) -> Operand:
    """An input that is read as a number."""
    if entry is None:
        return default
    if "link" in entry:
        return {"t": "VALUE", "link": entry["link"]}
    held = entry.get("v")
    return default if held is None else float(held[0] if isinstance(held, (list, tuple)) else held)


def is_linked(entry: dict[str, Any] | None) -> bool:
    return entry is not None and "link" in entry


def acts(entry: dict[str, Any] | None) -> bool:
    """Whether an input is linked or has a value greater than 0."""
    return is_linked(entry) or bool(entry and (entry.get("v") or 0) > 0)
