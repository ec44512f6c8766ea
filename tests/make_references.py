"""Makes the reference data of the example materials: rebuilds each from its documents, renders it with Cycles on the
flat square that its meta file describes, and writes the values. Runs inside Blender.

    .venv-blender-5.2/bin/python tests/make_references.py [--into=FOLDER] [name ...]

Without --into it replaces the data in examples/materials/reference, except for two materials whose documents don't hold
all of their trees. To check that the data are reproducible, write them to a folder with the Blender version in their
meta file: they are the same except for these two materials and a few last bits.
"""

import json
import re
import sys
from collections.abc import Iterator
from pathlib import Path
from typing import Any

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
EXAMPLES = HERE.parent / "examples" / "materials"
REFERENCE = EXAMPLES / "reference"
sys.path[:0] = [str(HERE / "fidelity"), str(HERE / "host")]

import render
from rebuild import rebuild

SIDE = 64
# Array -> inputs of a Principled BSDF whose value it holds: a colour or number, and its strength.
ARRAYS = {
    "emission": ("Emission Color", "Emission Strength"),
    "metallic": ("Metallic", None),
    "roughness": ("Roughness", None),
    "alpha": ("Alpha", None),
}
OTHERS = {"Roughness": 0.5}  # value for shaders without the input, if not 0
CHANNELS = {"value": slice(3), "emission": slice(3), "uv": slice(2)}  # the others are numbers
# Not replaced: their documents lack parts of their trees, namely the points of curves and the directions of hue
# interpolation.
KEPT = {"glazed_vase", "ramp_banner"}

Json = dict[str, Any]


def main(words: list[str]) -> None:
    into = next((Path(word.partition("=")[2]) for word in words if word.startswith("--into=")), REFERENCE)
    into.mkdir(parents=True, exist_ok=True)
    names = {word for word in words if not word.startswith("--")} or {path.stem for path in EXAMPLES.glob("*.json")}
    for name in sorted(names - KEPT if into.resolve() == REFERENCE else names):
        bpy.ops.wm.read_factory_settings(use_empty=True)
        square = stage()
        present = np.load(REFERENCE / f"{name}.npz").files
        arrays = {key: shown(square, document)[..., CHANNELS.get(key, 0)] for key, document in documents(name, present)}
        np.savez_compressed(into / f"{name}.npz", **arrays)
        (into / f"{name}.meta.json").write_text(described(name, arrays["value"]))


def stage() -> bpy.types.Object:
    """Builds the square, with two UV maps and a colour attribute, and the camera above it."""
    mesh = render.squares(1, 1)
    corners = np.array([0, 0, 1, 0, 1, 1, 0, 1], "f")
    mesh.uv_layers.new(name="DetailUV").data.foreach_set("uv", 2 * corners)
    colours = np.concatenate([corners.reshape(4, 2), np.tile(np.float32([0.5, 1.0]), (4, 1))], axis=1)
    mesh.color_attributes.new("Col", "FLOAT_COLOR", "CORNER").data.foreach_set("color", colours.ravel())
    scene = render.settings(SIDE, SIDE)
    square = bpy.data.objects.new("Square", mesh)
    camera = bpy.data.objects.new("Camera", bpy.data.cameras.new("Camera"))
    camera.data.type, camera.data.ortho_scale, camera.location = "ORTHO", 1.0, (0.5, 0.5, 10.0)
    for thing in (square, camera):
        scene.collection.objects.link(thing)
    scene.camera = camera
    return square


def documents(name: str, present: list[str]) -> Iterator[tuple[str, Json]]:
    """Yields (array name, a document that emits its values)."""
    whole = json.loads((EXAMPLES / f"{name}.json").read_text())
    for key in present:
        if key == "value":
            yield key, json.loads((REFERENCE / f"{name}.base.json").read_text())
        elif key == "uv":
            node = {"id": "UV", "type": "ShaderNodeTexCoord", "props": {}, "in": {}}
            glow = emission("Glow", {"t": "RGBA", "link": ["UV", "UV", "VECTOR"]})
            yield key, {"nodes": [node, glow], "out": {"surface": ["Glow", "Emission"]}}
        else:
            yield key, glowing(whole, *ARRAYS[key])


def emission(name: str, colour: Json, strength: Json | None = None) -> Json:
    inputs = {"Color": colour, "Strength": strength or {"t": "VALUE", "v": 1.0}}
    return {"id": name, "type": "ShaderNodeEmission", "props": {}, "in": inputs}


def glowing(document: Json, colour: str, strength: str | None) -> Json:
    """Replaces each Principled BSDF by an emission of one of its inputs, each transparent shader by a constant."""
    nodes = []
    for record in document["nodes"]:
        kind = record["type"]
        if kind == "ShaderNodeBsdfPrincipled":
            given = record["in"][colour]
            if given["t"] == "VALUE":  # through a float socket, because the linked output may be a colour
                terms = {"Value": given, "Value_001": {"t": "VALUE", "v": 0.0}}
                number = record["id"] + " number"
                nodes.append({"id": number, "type": "ShaderNodeMath", "props": {"operation": "ADD"}, "in": terms})
                given = {"t": "RGBA", "link": [number, "Value", "VALUE"]}
            nodes.append(emission(record["id"], given, record["in"][strength] if strength else None))
        elif kind == "ShaderNodeBsdfTransparent":
            grey = OTHERS.get(colour, 0.0)
            nodes.append(emission(record["id"], {"t": "RGBA", "v": [grey, grey, grey, 1.0]}))
        else:
            nodes.append(record)
    surface = {"surface": document["out"]["surface"]}
    return json.loads(json.dumps({**document, "nodes": nodes, "out": surface}).replace('"BSDF"', '"Emission"'))


def shown(square: bpy.types.Object, document: Json) -> np.ndarray:
    """The rendered pixels of a document: [SIDE, SIDE, 3], row 0 at the bottom."""
    for name, facts in document.get("images", {}).items():
        if name not in bpy.data.images:
            image = bpy.data.images.load(str(EXAMPLES / "textures" / name))
            image.name, image.colorspace_settings.name, image.alpha_mode = name, facts["colorspace"], facts["alpha"]
    square.data.materials.clear()
    square.data.materials.append(rebuild(document))
    return render.picture()


def described(name: str, value: np.ndarray) -> str:
    """The text of the meta file, updated with this Blender's value range and version."""
    text = (REFERENCE / f"{name}.meta.json").read_text()
    spread = json.dumps([float(value.min()), float(value.max())])
    text = re.sub(r'"value_range": \[.*\]', f'"value_range": {spread}', text)
    text = re.sub(r'\n  "blender": .*', "", text)
    version = ".".join(str(part) for part in bpy.app.version)
    of = json.dumps({"arrays": version, "documents and picture": "5.0.1"})
    return re.sub(r'(\n  "name": .*)', rf'\1\n  "blender": {of},', text)


if __name__ == "__main__":
    main(sys.argv[1:])
