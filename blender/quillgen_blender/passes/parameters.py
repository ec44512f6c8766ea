"""Which values stay live: parameters that are not named become literals in the HLSL.

The translator makes a parameter of every unlinked socket. A large material has more than a thousand, too many for an
artist to find one. This pass over a result replaces each parameter that is not named by its value, written as the
translator itself writes a literal, and removes its input.
"""

import re
from collections.abc import Collection, Iterable
from typing import Any

from ..notes import Note
from .options import Options

# Nodes that exist to hold a value: they always count as named.
NAMED_BY_TYPE = {"ShaderNodeValue": "value", "ShaderNodeRGB": "color"}
# A parameter in the HLSL. The literal also replaces the mask that follows a vector. What precedes the name is checked
# last, by the lookbehind: a pattern that begins with letters is searched eight times as fast.
PARAMETER = re.compile(r"(P_(?<![A-Za-z0-9_]P_)[A-Za-z0-9_]*)(\.xyz\b)?")


def use_params(options: Options) -> bool:
    """The translator's argument `use_params`."""
    return options.parameters != "none"


def name_parameters(
    result: dict[str, Any], document: dict[str, Any], named: Collection[str], options: Options
) -> tuple[dict[str, Any], list[Note]]:
    """Returns the result with the parameters that `options` asks for, and a note if the limit decided.

    `document` is the one that was translated. `named` holds input names (`P_Node__Socket`) that the artist marked. The
    document names others: Value and RGB nodes, and input entries whose key `named` is true.
    """
    possible = result["params"].keys() - made_by_passes(document)
    choice = options.parameters
    if choice == "auto":
        choice = "all" if len(possible) <= options.parameter_limit else "named"
    kept = set(possible) if choice == "all" else set()
    if choice == "named":
        kept = possible & {*named, *named_by(document)}
    notes = []
    if choice != options.parameters and choice == "named":
        text = (
            f"{len(possible)} values could be parameters, which is more than the limit of {options.parameter_limit}: "
            f"the {len(kept)} named ones are, all others are fixed in the text"
        )
        notes.append(Note("", text, "info"))
    dropped = result["params"].keys() - kept
    return (with_literals(result, dropped) if dropped else result), notes


def named_by(document: dict[str, Any]) -> Iterable[str]:
    """The names of the parameters that count as named because of the document."""
    for node in document["nodes"]:
        if node["type"] in NAMED_BY_TYPE:
            yield parameter_name(node["id"], NAMED_BY_TYPE[node["type"]])
        for socket, entry in node["in"].items():
            if entry.get("named"):
                yield parameter_name(node["id"], socket)


def made_by_passes(document: dict[str, Any]) -> set[str]:
    """Parameters of nodes and stops that a pass inserted. The artist doesn't know them, so they are never live."""
    found: set[str] = set()
    for node in document["nodes"]:
        made = node.get("made")
        found.update(
            parameter_name(node["id"], socket) for socket, entry in node["in"].items() if made or entry.get("made")
        )
        if "origin" in node.get("ramp", ()):
            name = parameter_name(node["id"], "stop")
            places = [place for place, origin in enumerate(node["ramp"]["origin"]) if origin is None]
            found.update(f"{name}{place}_{part}" for place in places for part in ("pos", "col"))
    return found


def with_literals(result: dict[str, Any], dropped: Collection[str]) -> dict[str, Any]:
    """The result with the values of the dropped parameters in its HLSL."""
    params = {name: pair for name, pair in result["params"].items() if name not in dropped}
    changed = without(result, dropped, result["params"]) | {"params": params}
    if result["displacement"]:
        changed["displacement"] = without(result["displacement"], dropped, result["params"])
    return changed


def without(record: dict[str, Any], dropped: Collection[str], params: dict[str, Any]) -> dict[str, Any]:
    """A copy of a result or of its displacement, with literals for the dropped parameters and without their inputs."""
    literals: dict[str, str] = {}  # parameter in the HLSL -> its replacement

    def literal(match: re.Match[str]) -> str:
        text = match[0]
        if text not in literals:
            name, mask = match.groups()
            kind, value = params[name] if name in dropped else ("", None)
            literals[text] = written(kind, value, mask) if kind else text
        return literals[text]

    inputs = [entry for entry in record["inputs"] if entry["name"] not in dropped]
    return record | {"code": PARAMETER.sub(literal, record["code"]), "inputs": inputs}


def written(kind: str, value: Any, mask: str | None) -> str:
    """A parameter's value as the translator writes it if there are no parameters. Only ramps read all four components
    of a vector."""
    if kind == "scalar":
        return number(value) + (mask or "")
    return constructor("float3", value[:3]) if mask else constructor("float4", value)


def parameter_name(node: str, socket: str) -> str:
    """The input's name, as the translator's `param_name` makes it."""
    return "P_" + re.sub("[^A-Za-z0-9_]", "_", f"{node}__{socket}")


# Literals for NaN and infinities, by their repr: the translator writes finite ones.
NOT_FINITE = {"nan": "0.0", "inf": "3.402823466e+38", "-inf": "-3.402823466e+38"}


def number(value: float) -> str:
    """A float literal as the translator writes it: the shortest decimal that reads back to the same value, and
    finite."""
    text = repr(float(value))
    return NOT_FINITE.get(text, text)


def constructor(word: str, values: Iterable[float]) -> str:
    return f"{word}({', '.join([number(value) for value in values])})"
