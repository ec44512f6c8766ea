"""Builds materials with several Material Outputs, in the material's own tree and in groups, renders each and reads its
document. Each output shows an emission of another strength. Writes one JSON object to the given file:
{name: {"picture": the strength that Cycles shows, "document": the strength of the shader that the document names}}; 0
stands for none. Runs inside Blender.
"""

import json
import sys
from pathlib import Path

import bpy

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import in_blender
from quillgen_blender import read
from trees import add, group

A, C, E = "ALL", "CYCLES", "EEVEE"

# An output is (strength, target, active); strength 0: nothing is linked. A list is a group with these things in it.
MATERIALS = {
    "one": [(1, A, True)],
    "the second is active": [(1, A, False), (2, A, True)],
    "of Cycles and of all engines": [(1, A, True), (2, C, False)],
    "of EEVEE alone": [(1, E, True)],
    "in a group": [[(1, A, True)]],
    "of EEVEE in a group": [[(1, E, True)]],
    "in a group in a group": [[[(1, A, True)]]],
    "in two groups": [[(1, A, True)], [(2, A, True)]],
    "of all engines in a group, of Cycles in the next": [[(1, A, True)], [(2, C, True)]],
    "of all engines in a group, of Cycles in the group in it": [[(1, A, True), [(2, C, True)]]],
    "in a group and in the group in it": [[(1, A, True), [(2, A, True)]]],
    "in a group in a group and in the next": [[[(1, A, True)]], [(2, A, True)]],
    "outside and in a group": [(1, A, True), [(2, A, True)]],
    "outside, of Cycles in a group": [(1, A, True), [(2, C, True)]],
    "of EEVEE outside, in a group": [(1, E, True), [(2, A, True)]],
    "inactive outside, in a group": [(1, A, False), (3, E, True), [(2, A, True)]],
    "empty outside, in a group": [(0, A, True), [(1, A, True)]],
    "outside, empty in a group": [(1, A, True), [(0, C, True)]],
}


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    made = {name: material(name, things) for name, things in MATERIALS.items()}
    made["in a muted group"] = muted(material("muted", [(1, A, True), [(2, C, True)]]), "ShaderNodeGroup")
    made["muted"] = muted(material("muted output", [(1, A, True)]), "ShaderNodeOutputMaterial")
    grid = in_blender.canvas(len(made))
    pictures = in_blender.picture(grid, list(made.values()))
    report = {
        name: {"picture": round(float(shown.mean()), 4), "document": strength(read.flatten(one, grid).document)}
        for (name, one), shown in zip(made.items(), pictures)
    }
    Path(sys.argv[1]).write_text(json.dumps(report))


def material(name, things):
    made = bpy.data.materials.new(name)
    made.use_nodes = True
    made.node_tree.nodes.clear()
    fill(made.node_tree, things)
    return made


def fill(tree, things):
    active = []
    for thing in things:
        if isinstance(thing, list):
            inner = group("Inner", [], [], lambda tree, begin, end, thing=thing: fill(tree, thing))
            add(tree, "Group", node_tree=inner)
        else:
            strength, target, is_active = thing
            end = add(tree, "OutputMaterial", target=target, is_active_output=False)
            active += [end] if is_active else []
            if strength:
                tree.links.new(
                    add(tree, "Emission", {"Color": (1.0,) * 4, "Strength": strength}).outputs[0], end.inputs[0]
                )
    for end in active:
        end.is_active_output = True


def muted(made, kind):
    next(node for node in made.node_tree.nodes if node.bl_idname == kind).mute = True
    return made


def strength(document):
    surface = document["out"].get("surface", [""])[0]
    return next((node["in"]["Strength"]["v"] for node in document["nodes"] if node["id"] == surface), 0)


if __name__ == "__main__":
    main()
