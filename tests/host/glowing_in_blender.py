"""Builds materials with values where shaders belong, which Blender shows as emissions. Renders each, and rebuilds and
renders its document. Writes one JSON object to the given file: {name: {"difference": the largest difference between the
two pictures, "spread": that within a picture, "document": ...}}. Runs inside Blender.
"""

import json
import sys
from pathlib import Path

import bpy

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import in_blender
from quillgen_blender import read
from trees import add, colour, group, use, vector


def a_colour(tree):
    return colour(tree)


def a_vector(tree):
    return vector(tree)


def a_number(tree):
    return add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]


def a_constant(tree):
    """A group's own colour, which no node holds."""
    inner = group("Plain", [("In", "Color")], [("Out", "Shader")], lambda t, begin, end: t.links.new(begin[0], end[0]))
    return use(tree, inner, {0: (0.25, 0.5, 0.75, 1.0)}).outputs[0]


def a_colour_in_a_mix(tree):
    white = add(tree, "Emission", {"Color": (1.0, 1.0, 1.0, 1.0)}).outputs[0]
    return add(tree, "MixShader", {0: 0.25, 1: white, 2: colour(tree)}).outputs[0]


def a_colour_into_a_group(tree):
    inner = group(
        "Half",
        [("In", "Shader")],
        [("Out", "Shader")],
        lambda t, begin, end: t.links.new(add(t, "MixShader", {0: 0.75, 1: begin[0]}).outputs[0], end[0]),
    )
    return use(tree, inner, {0: colour(tree)}).outputs[0]


def a_colour_through_a_number(tree):
    """Up to 4.5 the group's socket makes it grey."""
    inner = group("Grey", [("In", "Float")], [("Out", "Shader")], lambda t, begin, end: t.links.new(begin[0], end[0]))
    return use(tree, inner, {0: colour(tree)}).outputs[0]


FILLS = (
    a_colour,
    a_vector,
    a_number,
    a_constant,
    a_colour_in_a_mix,
    a_colour_into_a_group,
    a_colour_through_a_number,
)


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    grid = in_blender.canvas(len(FILLS))
    shown = [material(fill) for fill in FILLS]
    documents = [read.flatten(one, grid).document for one in shown]
    report = in_blender.compared(FILLS, grid, shown, documents, documents)
    Path(sys.argv[1]).write_text(json.dumps(report))


def material(fill):
    made = bpy.data.materials.new(fill.__name__)
    made.use_nodes = True
    made.node_tree.nodes.clear()
    end = add(made.node_tree, "OutputMaterial")
    made.node_tree.links.new(fill(made.node_tree), end.inputs["Surface"])
    return made


if __name__ == "__main__":
    main()
