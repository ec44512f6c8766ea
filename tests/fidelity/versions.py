"""Compares the pixels of the reference data with those of the same cases in other Blender versions.

    .venv/bin/python tests/fidelity/versions.py 5.0.1=FOLDER ...   # FOLDER: output of make_cases.py in that version

Writes data/versions.json, which is the source of a table in docs/fidelity.md.
"""

import json
import sys
from collections import defaultdict
from pathlib import Path

import numpy as np

import store

TOLERANCE = 1e-4  # absolute up to 1, relative above
KEPT = store.DATA / "versions.json"
# Node -> reason of the difference. Other nodes differ only by rounding.
REASONS = {
    "Noise Texture": "six of the 24 offsets of Color and Distortion are one step of a float off since 5.1",
    "Wave Texture": "its distortion is noise",
    "Magic Texture": "up to 5.1 the remainder by a whole turn is taken of the coordinate, not of it times Scale",
    "Blackbody": "a linked temperature goes through a matrix that is nearly one since 5.1",
    "Image Texture": "up to 5.0 bytes are multiplied by alpha under Premultiplied too, floats never",
    "Normal Map": "up to 5.0 it stands on the interpolated normal at its own length, since 5.1 at unit length",
    "Environment Texture": "up to 5.0 floats are never multiplied by alpha",
    **dict.fromkeys(
        ("Bump", "Displacement", "Vector Displacement", "Fresnel", "Layer Weight", "Texture Coordinate"),
        "interpolated normals are rounded otherwise since 5.1, which shows where the surface is seen from its edge",
    ),
    **dict.fromkeys(("Ambient Occlusion", "Bevel"), "other random rays"),
}


def main(words):
    found = {}
    for word in words:
        version, _, folder = word.partition("=")
        found[version] = compared(Path(folder))
    KEPT.write_text(json.dumps(found, indent=1) + "\n")


def compared(folder):
    """{node: [cases, differing cases, largest difference]} of the cases that both versions have."""
    nodes = defaultdict(lambda: [0, 0, 0.0])
    for family in store.families():
        ours, theirs = captured(store.DATA, family), captured(folder, family)
        for key in ours.keys() & theirs.keys():
            if ours[key].shape == theirs[key].shape:
                with np.errstate(invalid="ignore", over="ignore"):
                    off = np.abs(ours[key] - theirs[key]) / np.maximum(1, np.abs(ours[key]))
                worst = float(np.nan_to_num(off, nan=0.0, posinf=1e9).max())
                node = nodes[key[0]]
                node[:] = node[0] + 1, node[1] + (worst > TOLERANCE), max(node[2], worst)
    return {name: node for name, node in sorted(nodes.items()) if node[1]}


def captured(folder, family):
    records, arrays = store.load(family, folder)
    return {(record["node"], record["name"]): arrays["values"][number] for number, record in enumerate(records)}


def table():
    """The differences of the other versions, as a Markdown table."""
    kept = json.loads(KEPT.read_text()) if KEPT.exists() else {}
    lines = ["| Node | Blender | Cases that differ | Largest difference | Why |", "| --- | --- | --- | --- | --- |"]
    for version, nodes in kept.items():
        for name, (cases, differ, worst) in nodes.items():
            reason = REASONS.get(name, "roundings")
            lines.append(f"| {name} | {version} | {differ} of {cases} | {worst:.1e} | {reason} |")
    return "\n".join(lines)


if __name__ == "__main__":
    main(sys.argv[1:])
