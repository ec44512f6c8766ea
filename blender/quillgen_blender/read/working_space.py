"""Converts the stored colours of a document from the working space of the file to Linear Rec.709.

Mixing, adding and scaling colours gives the same result in both spaces. Nonlinear operations on single channels don't:
their nodes get a note.
"""

from typing import Any

import numpy as np

from . import colour

BENDING = (
    "ShaderNodeGamma",
    "ShaderNodeHueSaturation",
    "ShaderNodeRGBCurve",
    "ShaderNodeSeparateColor",
    "ShaderNodeCombineColor",
)
STRAIGHT = ("MIX", "ADD", "SUBTRACT")


def to_rec709(writer: Any) -> None:
    """Converts the records of a writer that has finished."""
    matrix = colour.to_rec709()
    if matrix is None:
        return
    for record in writer.nodes:
        for entry in record["in"].values():
            if entry.get("t") == "RGBA" and "v" in entry:
                entry["v"] = turned(entry["v"], matrix)
        props = record["props"]
        if record["type"] == "ShaderNodeRGB":
            props["color"] = turned(props["color"], matrix)
        for stop in record.get("ramp", {}).get("stops", ()):
            stop[1] = turned(stop[1], matrix)
        if bends(record):
            writer.note(record["id"], f"bends colours in {colour.working_space()}, here in {colour.LINEAR}", "near")


def turned(value: list[float], matrix: np.ndarray) -> list[float]:
    return [*(np.array(value[:3]) @ matrix).tolist(), *value[3:]]


def bends(record: dict[str, Any]) -> bool:
    """Whether a node doesn't commute with a change of the primaries."""
    kind, props = record["type"], record["props"]
    if kind in ("ShaderNodeMix", "ShaderNodeMixRGB"):
        return props.get("data_type", "RGBA") == "RGBA" and props["blend_type"] not in STRAIGHT
    return kind in BENDING or kind == "ShaderNodeValToRGB" and record["ramp"]["mode"] != "RGB"
