"""Makes the reference data of the example materials: builds each from its documents on the flat square that its meta
file describes and writes what Cycles shows there. Runs inside Blender.

    .venv-blender-5.2/bin/python tests/make_references.py [--into=FOLDER] [name ...]

Without --into the data in examples/materials/reference are replaced, but for two materials whose documents don't tell
all that their trees had. To see that data are made as before, make them into a folder with the Blender of their meta
file: they are the same then, but for these two and a few last bits.
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
# The inputs of a Principled BSDF that an array holds: colour or number, and strength.
ARRAYS = {
    "emission": ("Emission Color", "Emission Strength"),
    "metallic": ("Metallic", None),
    "roughness": ("Roughness", None),
    "alpha": ("Alpha", None),
}
OTHERS = {"Roughness": 0.5}  # what shaders without the input count as, where not 0
CHANNELS = {"value": slice(3), "emission": slice(3), "uv": slice(2)}  # the others are numbers
# Stay as they are: their documents don't tell all that their trees had, the points of the curves and the directions in
# which hues run.
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
    """The square below its camera: two UV maps, a layer of colours."""
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
    """(array, a document whose surface is an emission of it)"""
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
    """Each Principled BSDF emits the value of an input instead, a transparent shader what it counts as."""
    nodes = []
    for record in document["nodes"]:
        kind = record["type"]
        if kind == "ShaderNodeBsdfPrincipled":
            given = record["in"][colour]
            if given["t"] == "VALUE":  # through a number's socket: what is linked may be a colour
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
    """[SIDE, SIDE, 3], row 0 at the bottom."""
    for name, facts in document.get("images", {}).items():
        if name not in bpy.data.images:
            image = bpy.data.images.load(str(EXAMPLES / "textures" / name))
            image.name, image.colorspace_settings.name, image.alpha_mode = name, facts["colorspace"], facts["alpha"]
    square.data.materials.clear()
    square.data.materials.append(rebuild(document))
    return render.picture()


def described(name: str, value: np.ndarray) -> str:
    """The meta file's text with what this Blender gives."""
    text = (REFERENCE / f"{name}.meta.json").read_text()
    spread = json.dumps([float(value.min()), float(value.max())])
    text = re.sub(r'"value_range": \[.*\]', f'"value_range": {spread}', text)
    text = re.sub(r'\n  "blender": .*', "", text)
    version = ".".join(str(part) for part in bpy.app.version)
    of = json.dumps({"arrays": version, "documents and picture": "5.0.1"})
    return re.sub(r'(\n  "name": .*)', rf'\1\n  "blender": {of},', text)


if __name__ == "__main__":
    main(sys.argv[1:])
