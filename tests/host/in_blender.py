"""Reads the document of every small test material, prepares it for the translator, rebuilds it as a plain tree, and
renders both. Writes one JSON object to the given file: {name: {"document": ..., "difference": the largest difference
between the two pictures}}. Runs inside Blender.
"""

import json
import sys
import tempfile
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import newer_trees
import trees
from quillgen_blender import passes, read
from rebuild import rebuild

TREES = trees.TREES + newer_trees.TREES

SIDE = 16


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    grid = canvas(len(TREES))
    shown = [material(fill) for fill in TREES]
    documents = [read.flatten(one, grid).document for one in shown]
    report = compared(TREES, grid, shown, documents, [passes.prepare(document)[0] for document in documents])
    Path(sys.argv[1]).write_text(json.dumps(report))


def compared(fills, grid, shown, documents, prepared):
    """The report on materials: their pictures beside those of what is rebuilt from the prepared documents."""
    again = [rebuild(json.loads(json.dumps(document))) for document in prepared]
    first, second = (picture(grid, materials) for materials in (shown, again))
    return {
        fill.__name__: {
            "document": document,
            "difference": float(np.abs(a - b).max()),
            "spread": float(np.ptp(a)),
        }
        for fill, document, a, b in zip(fills, documents, first, second)
    }


def material(fill):
    made = bpy.data.materials.new(getattr(fill, "__name__", "Tree"))
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()
    glow = tree.nodes.new("ShaderNodeEmission")
    end = tree.nodes.new("ShaderNodeOutputMaterial")
    shown = fill(tree)
    tree.links.new(glow.outputs[0], end.inputs["Surface"])
    tree.links.new(shown, end.inputs["Surface"] if shown.type == "SHADER" else glow.inputs["Color"])
    return made


def canvas(count):
    """A mesh of unit squares side by side, with two UV maps, and a camera above it."""
    corners = [(x + dx, dy, 0.0) for x in range(count) for dx, dy in ((0, 0), (1, 0), (1, 1), (0, 1))]
    mesh = bpy.data.meshes.new("Canvas")
    mesh.from_pydata(corners, [], [range(4 * n, 4 * n + 4) for n in range(count)])
    square = np.array([0, 0, 1, 0, 1, 1, 0, 1], "f")
    for name, factor in (("UVMap", 1.0), ("Second", -3.0)):
        mesh.uv_layers.new(name=name).data.foreach_set("uv", np.tile(square * factor, count))
    mesh.polygons.foreach_set("material_index", np.arange(count, dtype="i"))
    scene = bpy.context.scene
    scene.collection.objects.link(bpy.data.objects.new("Canvas", mesh))
    camera = bpy.data.cameras.new("Camera")
    camera.type, camera.ortho_scale = "ORTHO", count
    scene.camera = bpy.data.objects.new("Camera", camera)
    scene.camera.location = count / 2, 0.5, 5.0
    scene.collection.objects.link(scene.camera)
    settings(scene, count)
    return mesh


def settings(scene, count):
    scene.render.engine = "CYCLES"
    scene.cycles.samples, scene.cycles.max_bounces, scene.cycles.use_denoising = 1, 0, False
    scene.cycles.pixel_filter_type, scene.cycles.filter_width = "BOX", 0.01
    scene.render.resolution_x, scene.render.resolution_y = count * SIDE, SIDE
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"


def picture(mesh, materials):
    mesh.materials.clear()
    for one in materials:
        mesh.materials.append(one)
    mesh.polygons.foreach_set("material_index", np.arange(len(materials), dtype="i"))
    with tempfile.TemporaryDirectory() as folder:
        bpy.context.scene.render.filepath = folder + "/picture.exr"
        bpy.ops.render.render(write_still=True)
        image = bpy.data.images.load(folder + "/picture.exr")
        pixels = np.array(image.pixels[:], "f").reshape(SIDE, len(materials), SIDE, 4)
    return pixels.swapaxes(0, 1)[..., :3]


if __name__ == "__main__":
    main()
