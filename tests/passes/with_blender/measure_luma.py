"""Measures how Cycles converts pure red, green and blue to a float, by a link and by RGB to BW. Runs inside Blender.
Prints JSON."""

import json
import tempfile

import bpy
import numpy as np

COLOURS = ((1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0))


def material(colour, by_node):
    made = bpy.data.materials.new("Luma")
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()
    source, add, glow, end = (
        tree.nodes.new(f"ShaderNode{kind}") for kind in ("RGB", "Math", "Emission", "OutputMaterial")
    )
    source.outputs[0].default_value = (*colour, 1.0)
    add.operation, add.inputs[1].default_value = "ADD", 0.0
    number = source.outputs[0]
    if by_node:
        grey = tree.nodes.new("ShaderNodeRGBToBW")
        tree.links.new(number, grey.inputs[0])
        number = grey.outputs[0]
    tree.links.new(number, add.inputs[0])
    tree.links.new(add.outputs[0], glow.inputs["Color"])
    tree.links.new(glow.outputs[0], end.inputs["Surface"])
    return made


def shown(materials):
    """Renders one pixel of each material. The picture has the minimum height of Blender, four pixels."""
    count = len(materials)
    for thing in list(bpy.data.objects):  # of Blender's startup scene
        bpy.data.objects.remove(thing)
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    scene.cycles.samples, scene.cycles.use_denoising, scene.cycles.use_adaptive_sampling = 1, False, False
    scene.render.resolution_x, scene.render.resolution_y, scene.render.resolution_percentage = count, 4, 100
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"
    scene.view_settings.view_transform = "Raw"
    mesh = bpy.data.meshes.new("Squares")
    corners = [(n + x, y, 0.0) for n in range(count) for x, y in ((0, -9), (1, -9), (1, 9), (0, 9))]
    mesh.from_pydata(corners, [], [range(4 * n, 4 * n + 4) for n in range(count)])
    for number, one in enumerate(materials):
        mesh.materials.append(one)
        mesh.polygons[number].material_index = number
    camera = bpy.data.cameras.new("Camera")
    camera.type, camera.ortho_scale = "ORTHO", count
    eye = bpy.data.objects.new("Camera", camera)
    eye.location = count / 2, 0.5, 5.0
    scene.collection.objects.link(bpy.data.objects.new("Squares", mesh))
    scene.collection.objects.link(eye)
    scene.camera = eye
    with tempfile.TemporaryDirectory() as folder:
        scene.render.filepath = folder + "/picture.exr"
        bpy.ops.render.render(write_still=True)
        pixels = np.array(bpy.data.images.load(scene.render.filepath).pixels[:], np.float32)
    return [float(value) for value in pixels.reshape(4, count, 4)[0, :, 0]]


weights = shown([material(colour, by_node) for by_node in (False, True) for colour in COLOURS])
print(json.dumps({"link": weights[:3], "node": weights[3:]}))
