"""Measures the time to read materials: rebuilds documents (JSON files given as arguments) as materials and reads each
of them repeatedly. Prints one JSON object: {name: {"nodes": ..., "seconds": the shortest CPU time, "touch": the CPU
time of accessing every socket of the material's own tree}}. Runs inside Blender."""

import json
import sys
import time
from pathlib import Path

import bpy

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

from quillgen_blender import read
from rebuild import rebuild
from trees import add, group, use


def main(paths):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    materials = {path.stem: rebuilt(path) for path in paths} | {"large": large()}
    print(json.dumps({name: measured(material) for name, material in materials.items()}))


def rebuilt(path):
    document = json.loads(path.read_text())
    for name in document.get("images", {}):
        bpy.data.images.new(name, 4, 4)
    return rebuild(document, path.stem)


def large():
    """A material of 474 nodes: forty instances of a group with textures, ramps and curves, and the nodes that connect
    them."""
    material = bpy.data.materials.new("Large")
    material.use_nodes = True
    tree = material.node_tree
    layer = group("Layer", [("Where", "Vector"), ("Size", "Float")], [("Out", "Color")], fill)
    before = add(tree, "TexCoord").outputs["Object"]
    for number in range(40):
        before = use(tree, layer, {0: before, 1: 1.0 + number}, f"Layer {number}").outputs[0]
    tree.links.new(before, tree.nodes["Principled BSDF"].inputs["Base Color"])
    return material


def fill(tree, begin, end):
    moved = add(tree, "Mapping", {0: begin[0]}).outputs[0]
    noise = add(tree, "TexNoise", {"Vector": moved, "Scale": begin[1]})
    cells = add(tree, "TexVoronoi", {"Vector": moved, "Scale": begin[1]})
    waves = add(tree, "TexWave", {"Vector": moved, "Scale": begin[1]})
    ramp = add(tree, "ValToRGB", {0: noise.outputs[0]})
    range_ = add(tree, "MapRange", {"Value": cells.outputs["Distance"]})
    total = add(tree, "Math", {0: range_.outputs[0], 1: waves.outputs["Fac"]}).outputs[0]
    mixed = add(tree, "Mix", {"Factor_Float": total, "A_Color": ramp.outputs[0]}, data_type="RGBA")
    first = add(tree, "NodeReroute")
    tree.links.new(mixed.outputs["Result"] if len(mixed.outputs) == 1 else mixed.outputs[2], first.inputs[0])
    shifted = add(tree, "HueSaturation", {"Color": first.outputs[0]}).outputs[0]
    moved = add(tree, "VectorMath", {0: shifted, 1: begin[0]}).outputs[0]
    tree.links.new(add(tree, "Gamma", {"Color": moved}).outputs[0], end[0])


def measured(material):
    nodes = len(read.flatten(material).document["nodes"])
    rounds = [(timed(read.flatten, material), timed(touch, material)) for _ in range(25)]
    return {"nodes": nodes, "seconds": min(one for one, _ in rounds), "touch": min(other for _, other in rounds)}


def touch(material):
    """The minimum work of reading: accesses the identifier, type and value of every socket once."""
    for node in material.node_tree.nodes:
        for socket in node.inputs:
            _ = socket.identifier, socket.type, getattr(socket, "default_value", None)


def timed(what, material):
    start = time.process_time()
    what(material)
    return time.process_time() - start


if __name__ == "__main__":
    main([Path(word) for word in sys.argv[1:]])
