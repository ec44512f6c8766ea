"""Nodes that read the shading normal and feed both the surface and the displacement.

In Blender the displacement reads the undisplaced normal, and the surface reads the normal after displacement. The
translator evaluates such a node once, for the displacement, so the surface reads the undisplaced normal as well: moss
that grows on upward faces ignores the relief. This pass duplicates these nodes for the displacement. The id of a copy
is chosen so that its parameters have the names of the original's: a value set in Unreal applies to both.
"""

from collections.abc import Callable, Iterable
from typing import Any

from ..notes import Note
from . import made
from .options import Options

Record = dict[str, Any]
Outputs = frozenset[str] | None  # None for all outputs

# The outputs that depend on the shading normal, by node type.
READERS: dict[str, Outputs] = {
    "ShaderNodeNewGeometry": frozenset({"Normal", "Tangent"}),
    "ShaderNodeTexCoord": frozenset({"Normal", "Reflection"}),
    "ShaderNodeBevel": None,
    "ShaderNodeBump": None,
    "ShaderNodeDisplacement": None,
    "ShaderNodeFresnel": None,
    "ShaderNodeLayerWeight": None,
    "ShaderNodeNormalMap": None,
    "ShaderNodeTangent": None,
    "ShaderNodeTexImage": None,
    "ShaderNodeVectorDisplacement": None,
}
# Whether a node reads the normal, for types that do so in some modes only.
MODES: dict[str, Callable[[Record], bool]] = {
    "ShaderNodeDisplacement": lambda node: not made.is_linked(node["in"].get("Normal")),
    "ShaderNodeTexImage": lambda node: node["props"].get("projection") == "BOX",
    "ShaderNodeVectorDisplacement": lambda node: node["props"].get("space", "TANGENT") == "TANGENT",
}
SEPARATOR = "\u00b7"  # becomes an underscore in parameter names, as a space or a point does


def run(document: Record, options: Options) -> tuple[Record, list[Note]]:
    out = document["out"]
    if not options.bumped_normals or not out.get("surface") or not out.get("displacement"):
        return document, []
    records = {node["id"]: node for node in document["nodes"]}
    displacing = upstream(records, out["displacement"][0])
    divided = following_the_normal(records, displacing & upstream(records, out["surface"][0]))
    if not divided:
        return document, []
    ids = made.Ids(document)
    respelled = {identity: same_parameters(identity, records) for identity in divided}
    copies = {identity: name or ids.fresh(f"{identity} Displacement") for identity, name in respelled.items()}
    nodes: list[Record] = []
    notes: list[Note] = []
    for node in document["nodes"]:
        identity = node["id"]
        if identity not in displacing:
            nodes.append(node)
        elif identity not in divided:
            nodes.append(relinked(node, copies))
        else:
            copy = relinked(node, copies) | {"id": copies[identity], "copy_of": identity}
            nodes += [node, copy if respelled[identity] else copy | {"made": True}]
            if not respelled[identity] and holds_values(node):
                text = "feeds the surface and the displacement; in the displacement its values are fixed"
                notes.append(Note(identity, text, "info"))
    source, *rest = out["displacement"]
    return document | {"nodes": nodes, "out": out | {"displacement": [copies.get(source, source), *rest]}}, notes


def links(node: Record) -> Iterable[tuple[str, str]]:
    """The id and the output that each linked input reads."""
    return ((entry["link"][0], entry["link"][1]) for entry in node["in"].values() if "link" in entry)


def upstream(records: dict[str, Record], identity: str) -> set[str]:
    """The ids of a node and of all that feed it."""
    found: set[str] = set()
    left = [identity]
    while left:
        one = left.pop()
        if one in records and one not in found:
            found.add(one)
            left += [source for source, _ in links(records[one])]
    return found


def reading(node: Record) -> Outputs:
    """The outputs of a node that depend on the shading normal by what the node itself reads."""
    kind = node["type"]
    reads = kind in READERS and (kind not in MODES or MODES[kind](node))
    return READERS[kind] if reads else frozenset()


def following_the_normal(records: dict[str, Record], shared: set[str]) -> set[str]:
    """The shared nodes whose value depends on the shading normal."""
    read = {link for node in records.values() for link in links(node)}

    def follows(source: str, output: str) -> bool:
        outputs = reading(records[source])
        return outputs is None or output in outputs

    found = {source for source, output in read if source in shared and follows(source, output)}
    grown = True
    while grown:
        more = {
            identity
            for identity in shared - found
            for source, output in links(records[identity])
            if source in found and (reading(records[source]) == frozenset() or follows(source, output))
        }
        found |= more
        grown = bool(more)
    return found


def same_parameters(identity: str, records: dict[str, Record]) -> str | None:
    """Another id with the same parameter names; None for an id of letters and digits alone."""
    places = [place for place, character in enumerate(identity) if made.NOT_A_LETTER.match(character)]
    spellings = (identity[:place] + SEPARATOR + identity[place + 1 :] for place in reversed(places))
    return next((name for name in spellings if name not in records), None)


def relinked(node: Record, copies: dict[str, str]) -> Record:
    """The record with its links to divided nodes redirected to their copies."""
    changed = {
        socket: entry | {"link": [copies[entry["link"][0]], *entry["link"][1:]]}
        for socket, entry in node["in"].items()
        if "link" in entry and entry["link"][0] in copies
    }
    return node | {"in": node["in"] | changed} if changed else node


def holds_values(node: Record) -> bool:
    return any("link" not in entry and entry.get("v") is not None for entry in node["in"].values())
