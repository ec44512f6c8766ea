"""Finds the samples of each case for which Blender's result is finite, by rendering them with Cycles.

.venv-blender-5.0/bin/python tests/robustness/extremes/make.py
"""

import pathlib
import sys
import types

TESTS = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(TESTS), str(TESTS / "host"), str(TESTS / "fidelity")]
sys.modules["quillgen"] = types.ModuleType("quillgen")  # a stub, because only tables of the golden cases are used

import bpy
import numpy as np

import render
from golden.node_types import TYPES
from robustness.extremes.cases import CASES, SIDE, samples
from trees import add, named

PER_PICTURE = 64
HUGE = 3e38  # overflows to infinity when doubled


def picture(name, values):
    image = bpy.data.images.new(name, SIDE, SIDE, alpha=True, float_buffer=True, is_data=True)
    image.alpha_mode = "CHANNEL_PACKED"
    image.pixels.foreach_set(np.c_[values, np.ones(SIDE * SIDE, "f")].ravel())
    image.update()
    return image


def pictures():
    """Two images for each socket; each pixel is a sample. Cycles can't read infinity or NaN from an image. So the nodes
    double and halve the first image, which turns 3e38 into infinity, and add the doubled second one to make NaN."""
    images = []
    for place, values in enumerate(samples()):
        doubled = np.where(np.isfinite(values), values, np.where(values < 0.0, -HUGE, HUGE)).astype("f")
        added = np.where(np.isnan(values), -HUGE, np.float32(-0.0)).astype("f")
        images.append((picture(f"socket {place}", doubled), picture(f"added to {place}", added)))
    return images


def fed(tree, node, case, images):
    """Links every socket of the node to its images."""
    uv = add(tree, "UVMap").outputs[0]

    def scaled(image, *factors):
        value = add(tree, "TexImage", {"Vector": uv}, image=image, interpolation="Closest").outputs["Color"]
        for factor in factors:
            value = add(tree, "VectorMath", {0: value, 1: (factor,) * 3}, operation="MULTIPLY").outputs[0]
        return value

    sockets, _, _ = TYPES[case.kind]
    for name, (doubled, added) in zip(sockets, images):
        socket = next((s for s in node.inputs if s.identifier == name), None)
        if socket is None:
            continue
        value = add(tree, "VectorMath", {0: scaled(doubled, 2.0, 0.5), 1: scaled(added, 2.0)}, operation="ADD").outputs[
            0
        ]
        if sockets[name]["t"] == "VALUE":
            value = add(tree, "SeparateXYZ", {"Vector": value}).outputs["X"]
        tree.links.new(value, socket)


def shown(case, images):
    """1 for each finite component of a node's output. x - x is 0 if x is finite, otherwise NaN."""

    def build(canvas):
        tree = canvas.tree
        node = tree.nodes.new(case.kind)
        for key, value in case.props:
            setattr(node, key, value)
        fed(tree, node, case, images)
        output = named(node.outputs, case.output)
        parts = [output] if output.type == "VALUE" else add(tree, "SeparateXYZ", {"Vector": output}).outputs[:3]
        finite = []
        for part in parts:
            nothing = add(tree, "Math", {0: part, 1: part}, operation="SUBTRACT").outputs[0]
            finite.append(add(tree, "Math", {0: nothing, 1: 0.0, 2: 0.5}, operation="COMPARE").outputs[0])
        return add(tree, "CombineXYZ", dict(enumerate((finite * 3)[:3]))).outputs[0]

    return build


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    render.SIDE = SIDE
    images = pictures()
    finite = []
    for start in range(0, len(CASES), PER_PICTURE):
        materials = [render.material(case.title, shown(case, images)) for case in CASES[start : start + PER_PICTURE]]
        finite.append(render.tiles(materials).reshape(-1, SIDE * SIDE, 3) == 1.0)
        for one in materials:
            bpy.data.materials.remove(one)
    finite = np.packbits(np.concatenate(finite))
    np.savez_compressed(
        pathlib.Path(__file__).with_name("finite.npz"), titles=[case.title for case in CASES], finite=finite
    )


if __name__ == "__main__":
    main()
