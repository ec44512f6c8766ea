"""The parameters of a material as an artist sees them in Unreal and in Blender."""

import math
import re
from collections.abc import Container, Iterable, Mapping
from typing import Any

from ..labels import Label

LARGEST = 3.402823466e38  # what replaces infinity in the HLSL's literals
KINDS = ("scalar", "vector")
# Values that a node holds in addition to its inputs, by its type: property -> its name for the artist.
OWN_VALUES = {"ShaderNodeValue": {"value": ""}, "ShaderNodeRGB": {"color": ""}}

NO_LETTER = re.compile("[^A-Za-z0-9_]")

Origin = tuple[str, str]  # a node's id and the identifier of its socket
Labels = Mapping[Origin, Label]


def param_name(node: str, socket: str) -> str:
    """The name of a socket's value in the HLSL; the same as `quillgen.param_name`."""
    return "P_" + NO_LETTER.sub("_", f"{node}__{socket}")


def origins(document: Mapping[str, Any]) -> dict[str, Origin]:
    """Input name -> node and socket, for all values of a document that may become parameters."""
    found: dict[str, Origin] = {}
    for node in document["nodes"]:
        begin = param_name(node["id"], "")
        sockets = [socket for socket, entry in node["in"].items() if "link" not in entry]
        sockets += OWN_VALUES.get(node["type"], ())
        for place in range(len(node.get("ramp", {}).get("stops", ()))):
            sockets += [f"stop{place}_pos", f"stop{place}_col"]
        for socket in sockets:
            # If nodes share a name, the first counts: a pass puts its copies after the original.
            found.setdefault(f"{begin}{NO_LETTER.sub('_', socket)}", (node["id"], socket))
    return found


def guessed(document: Mapping[str, Any], nodes: Container[str]) -> dict[Origin, Label]:
    """Labels from the names in the document alone."""
    found = {}
    for node in document["nodes"]:
        if node["id"] not in nodes:
            continue
        *groups, name = node["id"].split("/")
        header = re.sub(r"\.\d{3,}$", "", name)
        label = Label(header, name, tuple(groups))
        place = 0
        for place, (socket, entry) in enumerate(node["in"].items()):
            found[node["id"], socket] = label._replace(socket=socket, color=entry.get("t") == "RGBA", order=place)
        for socket, words in OWN_VALUES.get(node["type"], {}).items():
            found[node["id"], socket] = label._replace(socket=words, color=node["type"] == "ShaderNodeRGB")
        for stop in range(len(node.get("ramp", {}).get("stops", ()))):
            stop_label = label._replace(order=place + 1 + 2 * stop)
            found[node["id"], f"stop{stop}_pos"] = stop_label._replace(
                socket=f"Stop {stop + 1} Position", minimum=0.0, maximum=1.0
            )
            found[node["id"], f"stop{stop}_col"] = stop_label._replace(
                socket=f"Stop {stop + 1} Color", color=True, order=stop_label.order + 1
            )
    return found


def finite(value: Any) -> Any:
    """A number, or a list of numbers, as JSON and Unreal can hold it: NaN becomes 0, infinity the largest float."""
    if type(value) is float and -LARGEST <= value <= LARGEST:
        return value
    if isinstance(value, (list, tuple)):
        for part in value:
            if type(part) is not float or not -LARGEST <= part <= LARGEST:
                return [finite(part) for part in value]
        return value
    number = float(value)
    return 0.0 if math.isnan(number) else max(-LARGEST, min(LARGEST, number))


def inputs(result: Mapping[str, Any]) -> list[dict[str, Any]]:
    """The inputs of surface and displacement, each name once."""
    found = {entry["name"]: entry for entry in result["inputs"]}
    for entry in (result["displacement"] or {"inputs": ()})["inputs"]:
        found.setdefault(entry["name"], entry)
    return list(found.values())


def values(result: Mapping[str, Any]) -> dict[str, Any]:
    """Input name -> value of every parameter."""
    return {entry["name"]: finite(entry["default"]) for entry in inputs(result) if entry["kind"] in KINDS}


def records(
    result: Mapping[str, Any],
    document: Mapping[str, Any],
    labels: Labels,
    before: Iterable[Mapping[str, Any]] = (),
) -> list[dict[str, Any]]:
    """One record for each parameter, in the document's order of nodes. `before`: the records of the last export, whose
    labels are kept if they still fit, so that a new node doesn't rename the parameters of another."""
    kinds = {entry["name"]: entry for entry in inputs(result) if entry["kind"] in KINDS}
    known = {name: origin for name, origin in origins(document).items() if name in kinds}
    missing = {origin[0] for origin in known.values() if origin not in labels}
    texts = {**guessed(document, missing), **labels} if missing else labels
    places = {name: place for place, name in enumerate(known)}
    rows = []
    for name in sorted(kinds, key=lambda name: (places.get(name, len(places)), name)):
        origin = known.get(name, ("", name))
        rows.append((name, origin, texts.get(origin) or Label(name, name)))
    shown = distinct([(name, label) for name, _, label in rows], {row["name"]: row["label"] for row in before})
    orders: dict[str, int] = {}
    found = []
    for name, (node, socket), label in sorted(rows, key=lambda row: (places.get(row[0], len(places)), row[2].order)):
        group = " / ".join((*label.groups, label.header))
        orders[group] = orders.get(group, -1) + 1
        found.append(
            {
                "name": name,
                "kind": kinds[name]["kind"],
                "default": finite(kinds[name]["default"]),
                "label": shown[name],
                "group": group,
                "order": orders[group],
                "color": label.color,
                "min": limit(label.minimum),
                "max": limit(label.maximum),
                "description": label.description,
                "node": node,
                "socket": socket,
            }
        )
    return found


def limit(value: float | None) -> float | None:
    """A soft limit, if it is one: Blender's own "no limit" is the largest float, or ten thousand and the like."""
    return None if value is None or not math.isfinite(value) or abs(value) > 1e30 else float(value)


def distinct(rows: list[tuple[str, Label]], before: Mapping[str, str]) -> dict[str, str]:
    """Input name -> label. No two labels are equal or differ only in case."""
    wishes = {name: spellings(label) for name, label in rows}
    shared: dict[str, int] = {}
    for words in wishes.values():
        shared[words[0].casefold()] = shared.get(words[0].casefold(), 0) + 1
    found: dict[str, str] = {}
    taken: set[str] = set()
    for name, words in wishes.items():
        if before.get(name) in words and before[name].casefold() not in taken:
            found[name] = before[name]
            taken.add(found[name].casefold())
    for name, words in wishes.items():
        if name in found:
            continue
        alone = shared[words[0].casefold()] == 1
        options = [word for word in (words if alone else words[1:]) if word.casefold() not in taken]
        found[name] = options[0] if options else numbered(words[-1], taken)
        taken.add(found[name].casefold())
    return found


def spellings(label: Label) -> list[str]:
    """The possible texts of a label, from the shortest to the most specific."""
    tail = (label.socket,) if label.socket else ()
    return [
        " / ".join((label.header, *tail)),
        " / ".join((label.node, *tail)),
        " / ".join((*label.groups, label.node, *tail)),
    ]


def numbered(text: str, taken: set[str]) -> str:
    count = 2
    while f"{text} {count}".casefold() in taken:
        count += 1
    return f"{text} {count}"
