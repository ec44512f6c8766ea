"""Records that passes put in."""

import re
from typing import Any

NOT_A_LETTER = re.compile("[^A-Za-z0-9]")


class Ids:
    """Ids for new records, such that no two ids of a document give the same parameter names."""

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
    return {"t": kind, "v": number}


def link(source: str, output: str, kind: str, wanted: str | None = None) -> dict[str, Any]:
    """An input of the type `wanted`, the source's own by default, that reads an output."""
    return {"t": wanted or kind, "link": [source, output, kind]}
