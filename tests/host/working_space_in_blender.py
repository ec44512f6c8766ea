"""Renders materials in another working space, and their documents in Linear Rec.709, and compares them. Prints one JSON
object: {name: {"difference", "notes", "spread"}}. Runs inside Blender. Argument: the working space."""

import json
import sys
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import in_blender
from quillgen_blender import passes, read
from quillgen_blender.read import colour
from rebuild import rebuild
from trees import add, vector


def number(tree):
    return add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]


def constants(tree):
    """A colour of a node and two of sockets, mixed and added. All are inside the Rec.709 gamut (not below 0)."""
    fixed = add(tree, "RGB")
    fixed.outputs[0].default_value = (0.8, 0.4, 0.3, 1.0)
    mixed = add(tree, "MixRGB", {0: number(tree), 1: fixed.outputs[0], 2: (0.4, 0.3, 0.6, 1.0)})
    return add(tree, "MixRGB", {0: 0.5, 1: mixed.outputs[0], 2: (0.3, 0.6, 0.4, 1.0)}, blend_type="ADD").outputs[0]


def ramp(tree):
    node = add(tree, "ValToRGB", {0: number(tree)})
    node.color_ramp.elements[0].color = (0.8, 0.1, 0.2, 1.0)
    return node.outputs[0]


def picture(tree):
    image = bpy.data.images.new("Bytes", 8, 8)
    pixels = np.random.default_rng(1).random((64, 4)).astype(np.float32)
    pixels[:, 3] = 1
    image.pixels.foreach_set(pixels.ravel())
    image.pack()
    return add(tree, "TexImage", image=image, interpolation="Closest").outputs[0]


def blackbody(tree):
    return add(tree, "Blackbody", {0: 3000.0}).outputs[0]


def gamma(tree):
    return add(tree, "Gamma", {0: constants(tree), 1: 2.0}).outputs[0]


TREES = (constants, ramp, picture, blackbody, gamma)


def main(working):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    grid = in_blender.canvas(len(TREES))
    bpy.ops.wm.set_working_color_space(working_space=working, convert_colors=False)
    shown = [in_blender.material(fill) for fill in TREES]
    readings = [read.flatten(one, grid) for one in shown]
    first = in_blender.picture(grid, shown) @ colour.to_rec709()
    bpy.ops.wm.set_working_color_space(working_space=colour.LINEAR, convert_colors=False)
    again = [rebuild(json.loads(json.dumps(passes.prepare(reading.document)[0]))) for reading in readings]
    second = in_blender.picture(grid, again)
    report = {
        fill.__name__: {
            "difference": float(np.abs(a - b).max()),
            "notes": [note.text for note in reading.notes],
            "spread": float(np.ptp(a)),
        }
        for fill, reading, a, b in zip(TREES, readings, first, second)
    }
    print(json.dumps(report))


if __name__ == "__main__":
    main(sys.argv[1])
