"""The manifest of a material, `material.json`, and the file of its values, `parameters.json`."""

import json
from collections.abc import Mapping, Sequence
from dataclasses import dataclass, field
from typing import Any

from ..labels import Label
from ..notes import Note
from ..passes import support
from . import files, parameters
from .textures import Picture

FORMAT, VERSION = "quillgen-material", 1
VALUES_FORMAT = "quillgen-parameters"
KEYS = {
    "name",
    "library",
    "made_by",
    "mode",
    "settings",
    "surface",
    "displacement",
    "parameters",
    "textures",
    "remarks",
}
MANIFEST, VALUES, SURFACE, DISPLACEMENT = "material.json", "parameters.json", "surface.hlsl", "displacement.hlsl"


@dataclass(frozen=True)
class Material:
    """All that the files of one material are made from.

    `document` is what was translated and `result` what `quillgen.compile` returned for it in the mode `mode`. `library`
    names the file that the material is linked from, "" for the open file: name and library together identify a
    material. The keys of `labels` are node id and socket; None means the labels of the last export. The keys of
    `pictures` are image names. `made_by`: versions by name.
    """

    name: str
    document: Mapping[str, Any]
    result: Mapping[str, Any]
    mode: str = "surface"
    library: str = ""
    notes: Sequence[Note] = ()
    labels: Mapping[tuple[str, str], Label] | None = field(default_factory=dict)
    pictures: Mapping[str, Picture] = field(default_factory=dict)
    made_by: Mapping[str, str] = field(default_factory=dict)
    records: list[dict[str, Any]] | None = None  # of the parameters, if `target.named` has made them already


def texts(result: Mapping[str, Any]) -> dict[str, bytes]:
    """File name -> content of the HLSL files."""
    found = {SURFACE: encoded(result["code"] + "\n")}
    if result["displacement"]:
        found[DISPLACEMENT] = encoded(result["displacement"]["code"] + "\n")
    return found


def manifest(
    material: Material,
    contents: Mapping[str, bytes],
    textures: list[dict[str, Any]],
    before: Mapping[str, Any] | None,
) -> dict[str, Any]:
    result = material.result
    displacement = result["displacement"]
    return {
        "format": FORMAT,
        "version": VERSION,
        "name": material.name,
        "library": material.library,
        "made_by": dict(material.made_by),
        "mode": material.mode,
        "settings": dict(result["material"]),
        "surface": {
            "file": SURFACE,
            "sha256": files.checksum(contents[SURFACE]),
            "inputs": [wired(entry) for entry in result["inputs"]],
            "outputs": [dict(entry) for entry in result["outputs"]],
        },
        "displacement": displacement
        and {
            "file": DISPLACEMENT,
            "sha256": files.checksum(contents[DISPLACEMENT]),
            "inputs": [wired(entry) for entry in displacement["inputs"]],
            "magnitude": displacement["magnitude"],
        },
        "parameters": {
            "file": VALUES,
            "records": records(material, before) if material.records is None else material.records,
        },
        "textures": textures,
        "remarks": remarks(result["warnings"], material.notes, material.document),
    }


def records(material: Material, before: Mapping[str, Any] | None) -> list[dict[str, Any]]:
    """One record for each parameter. If labels and names are those of the last export, its records are reused."""
    last = before["parameters"]["records"] if before else []
    if material.labels is None and {row["name"] for row in last} == material.result["params"].keys():
        return last
    return parameters.records(material.result, material.document, material.labels or {}, last)


def wired(entry: Mapping[str, Any]) -> dict[str, Any]:
    """An input with a default that JSON can hold."""
    value = entry.get("default")
    if value is None or parameters.finite(value) is value:
        return dict(entry)
    return {**entry, "default": parameters.finite(value)}


def values(result: Mapping[str, Any]) -> dict[str, Any]:
    return {"format": VALUES_FORMAT, "version": VERSION, "values": parameters.values(result)}


def same_but_values(one: Any, other: Any) -> bool:
    """Whether two manifests are equal except for the values of the keys `default`."""
    if one is other or one == other:
        return True
    if isinstance(one, dict) and isinstance(other, dict):
        return one.keys() == other.keys() and all(
            key == "default" or same_but_values(value, other[key]) for key, value in one.items()
        )
    if isinstance(one, list) and isinstance(other, list):
        return len(one) == len(other) and all(map(same_but_values, one, other))
    return False


def remarks(warnings: Sequence[str], notes: Sequence[Note], document: Mapping[str, Any]) -> list[dict[str, str]]:
    """What differs from Blender, without duplicates: the notes of the reader and the passes, and the warnings of the
    translator. For a node that is lost as a whole, the text is that of the table of nodes."""
    types = {node["id"]: node["type"] for node in document["nodes"]}
    lost = {row.type: row.text for row in support.rows() if not row.feature and row.loss == "lost"}
    ids = sorted(types, key=len, reverse=True)
    originals = {node["id"]: node["copy_of"] for node in document["nodes"] if "copy_of" in node}
    found = [{"node": note.node, "text": note.text, "loss": note.loss} for note in notes]
    for warning in warnings:
        node = next((name for name in ids if warning.startswith((f"{name}: ", f"{name} ("))), "")
        text = warning[len(node) :].removeprefix(": ").strip() if node else warning
        node = originals.get(node, node)
        if types.get(node) in lost:
            found.append({"node": node, "text": lost[types[node]], "loss": "lost"})
        else:
            found.append({"node": node, "text": text, "loss": "warning"})
    return [remark for place, remark in enumerate(found) if remark not in found[:place]]


def encoded(text: str) -> bytes:
    return text.encode("utf-8", "replace")


def dumped(content: Mapping[str, Any]) -> bytes:
    """JSON with one value per line. With an indent json uses its slow path, which takes ten times as long."""
    return encoded(json.dumps(content, ensure_ascii=False, allow_nan=False, separators=(",\n", ": ")) + "\n")
