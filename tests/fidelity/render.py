"""Renders the exact value of a socket with Cycles, as the colour of an emission. Runs inside Blender."""

import math
import tempfile

import bpy
import numpy as np

from builder import SIDE, Canvas


def settings(width, height):
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    cycles = scene.cycles
    cycles.samples, cycles.max_bounces, cycles.use_denoising, cycles.use_adaptive_sampling = (
        1,
        0,
        False,
        False,
    )
    cycles.pixel_filter_type, cycles.filter_width = "BOX", 0.01
    scene.render.resolution_x, scene.render.resolution_y, scene.render.resolution_percentage = (
        width,
        height,
        100,
    )
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"
    scene.view_settings.view_transform = "Raw"
    scene.world = scene.world or bpy.data.worlds.new("Black")
    scene.world.use_nodes = True
    scene.world.node_tree.nodes.clear()
    return scene


def picture():
    """Renders the scene. Returns [height, width, 3], row 0 at the bottom."""
    scene = bpy.context.scene
    with tempfile.TemporaryDirectory() as folder:
        scene.render.filepath = folder + "/picture.exr"
        bpy.ops.render.render(write_still=True)
        image = bpy.data.images.load(scene.render.filepath)
        pixels = np.empty(len(image.pixels), np.float32)
        image.pixels.foreach_get(pixels)
        pixels = pixels.reshape(image.size[1], image.size[0], 4)
        bpy.data.images.remove(image)
    return pixels[..., :3].copy()


def material(name, build):
    """A material that emits the socket returned by `build`, or uses it as its shader if it is one."""
    made = bpy.data.materials.new(name)
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()
    end, glow = tree.nodes.new("ShaderNodeOutputMaterial"), tree.nodes.new("ShaderNodeEmission")
    tree.links.new(glow.outputs[0], end.inputs["Surface"])
    canvas = Canvas(tree)
    shown = build(canvas)
    tree.links.new(shown, end.inputs["Surface"] if shown.type == "SHADER" else glow.inputs["Color"])
    made.displacement_method = canvas.method
    return made


def squares(count, columns):
    """A mesh of unit squares, each with the UV map from 0 to 1."""
    corners = [
        (n % columns + dx, n // columns + dy, 0.0) for n in range(count) for dx, dy in ((0, 0), (1, 0), (1, 1), (0, 1))
    ]
    mesh = bpy.data.meshes.new("Squares")
    mesh.from_pydata(corners, [], [range(4 * n, 4 * n + 4) for n in range(count)])
    square = np.array([0, 0, 1, 0, 1, 1, 0, 1], "f")
    mesh.uv_layers.new(name="UVMap").data.foreach_set("uv", np.tile(square, count))
    return mesh


def tiles(materials):
    """Renders each material on its own square: [materials, SIDE, SIDE, 3], row 0 at the bottom."""
    count = len(materials)
    columns = math.ceil(math.sqrt(count))
    rows = math.ceil(count / columns)
    mesh = squares(count, columns)
    for one in materials:
        mesh.materials.append(one)
    mesh.polygons.foreach_set("material_index", np.arange(count, dtype="i"))
    scene = settings(columns * SIDE, rows * SIDE)
    camera = bpy.data.cameras.new("Camera")
    camera.type, camera.ortho_scale = "ORTHO", max(columns, rows)
    things = [bpy.data.objects.new("Squares", mesh), bpy.data.objects.new("Camera", camera)]
    for thing in things:
        scene.collection.objects.link(thing)
    things[1].location = columns / 2, rows / 2, 5.0
    scene.camera = things[1]
    whole = picture().reshape(rows, SIDE, columns, SIDE, 3).swapaxes(1, 2).reshape(-1, SIDE, SIDE, 3)
    for thing in things:
        bpy.data.objects.remove(thing)
    return whole[:count]
