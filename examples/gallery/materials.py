"""The example materials: their documents, pictures and reference values; their texts run on the device."""

import copy
import json
from pathlib import Path

import numpy as np
from PIL import Image

import custom_expression
from quillgen_blender import passes

from . import scenes

ROOT = Path(__file__).resolve().parents[2]
FOLDER = ROOT / "examples" / "materials"

POINTS_AT_ONCE = 1 << 17  # small enough for the device to answer within seconds


def names():
    return sorted(path.stem for path in FOLDER.glob("*.json"))


def document(name):
    return _read(f"{name}.json")


def exported(name):
    """The document after the extension's passes, as an export passes it to the translator."""
    return passes.prepare(scenes.with_hues(name, document(name)), passes.Options())[0]


def base_document(name):
    """The document that outputs only the base colour (or the emission)."""
    return _read(f"reference/{name}.base.json")


def facts(name):
    return _read(f"reference/{name}.meta.json")


def reference(name):
    """Blender's values: name -> array, row 0 at the bottom."""
    with np.load(FOLDER / "reference" / f"{name}.npz") as arrays:
        return dict(arrays)


def preview(name):
    """Cycles' picture, [256, 256, 3] bytes, row 0 on top."""
    return np.asarray(Image.open(FOLDER / "reference" / f"{name}.png").convert("RGB"))


def undithered(ir):
    """A copy of a document with blend mode BLENDED, because the opacity of a masked material is dithered."""
    ir = copy.deepcopy(ir)
    ir.setdefault("settings", {})["blend"] = "BLENDED"
    return ir


def kind_of(entry):
    """The key of an input's kind: "texcoord:0", "ddx:world_position_cr", "object_axis:y" ..."""
    if "of" in entry:
        return f"{entry['kind']}:{kind_of(entry['of'])}"
    detail = entry.get("axis", entry.get("index"))
    return entry["kind"] if detail is None else f"{entry['kind']}:{detail}"


def evaluate(result, inputs):
    """Runs a translated text. Returns {"result": array, "OutRoughness": array, ...}.

    `inputs`: kind -> array [n, width] or [1, width]. Parameters keep their defaults.
    """
    values, count = _wired(result, inputs)
    pieces = []
    for begin in range(0, count, POINTS_AT_ONCE):
        part = {name: v if len(v) == 1 else v[begin : begin + POINTS_AT_ONCE] for name, v in values.items()}
        pieces.append(custom_expression.evaluate(result, _fitting(part), textures(result)))
    return {name: np.concatenate([piece[name] for piece in pieces]) for name in pieces[0]}


def textures(result):
    """Input name -> stored pixels of the image, for every image that a text reads."""
    return {
        name: np.asarray(Image.open(FOLDER / "textures" / record["image"]).convert("RGBA"))
        for name, record in custom_expression.inputs_of(result)
        if record["kind"] == "texture"
    }


def _wired(result, inputs):
    wired = {
        name: np.atleast_2d(np.float32(inputs[kind_of({"name": name, **record})]))
        for name, record in custom_expression.inputs_of(result)
        if record["kind"] != "texture" and "default" not in record
    }
    return wired, max(map(len, wired.values()), default=1)


def _fitting(values):
    """Converts varying values to arrays, and values that are the same at all points to tuples."""
    fitting = {}
    for name, value in values.items():
        column = value[:, 0] if value.shape[1] == 1 else value
        fitting[name] = column if len(value) > 1 else tuple(value[0].tolist())
    return fitting


def _read(path):
    return json.loads((FOLDER / path).read_text(encoding="utf-8"))
