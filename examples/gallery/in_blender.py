"""Renders the example materials with Cycles in the scenes of scenes.py. Runs inside Blender.

    .venv-blender-5.2/bin/python examples/gallery/in_blender.py FOLDER PIXELS SAMPLES [--part=L,T,W,H] NAME ...

Writes NAME.npy, the radiance [PIXELS, PIXELS, 3] with row 0 on top. --part restricts it to a rectangle with this left,
top, width and height in pixels. Materials are rebuilt from their documents. Light is traced over one bounce, as in the
shader that lights the texts.
"""

import json
import sys
import time
from pathlib import Path

import bpy
import numpy as np
from mathutils import Matrix, Vector

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT), str(ROOT / "tests" / "host")]

from examples.gallery import scenes, surfaces
from examples.gallery.camera import Part
from rebuild import rebuild

MATERIALS = ROOT / "examples" / "materials"
PART = "--part="
SPHERE_ROWS = 256  # rows of faces; there are twice as many columns
WIDE = 40.0  # metres from the centre to the edges of the studio's floor and wall


def main(folder, pixels, samples, words):
    parts = [Part(*map(int, word[len(PART) :].split(","))) for word in words if word.startswith(PART)]
    names = [word for word in words if not word.startswith(PART)]
    for name in names:
        bpy.ops.wm.read_factory_settings(use_empty=True)
        scene = scenes.scene(name)
        settings(pixels, samples)
        for part in parts:
            only(part, pixels)
        surround(scene)
        document = scenes.with_hues(name, json.loads((MATERIALS / f"{name}.json").read_text(encoding="utf-8")))
        load_images(document)
        material = rebuild(document, name)
        for thing in scene.things:
            if not thing.far:  # a far side belongs to an object that is placed already
                place(thing, mesh(thing.shape, scene.relief_rows), material)
        begun = time.time()
        np.save(folder / f"{name}.npy", rendered(folder / "picture.exr"))
        print(f"{name}: {time.time() - begun:.0f} s", flush=True)


def settings(pixels, samples):
    scene = bpy.context.scene
    scene.render.engine = "CYCLES"
    cycles = scene.cycles
    cycles.samples, cycles.use_adaptive_sampling, cycles.use_light_tree = samples, False, False
    cycles.use_denoising, cycles.denoiser, cycles.denoising_input_passes = True, "OPENIMAGEDENOISE", "RGB_ALBEDO_NORMAL"
    cycles.max_bounces, cycles.transparent_max_bounces = 1, 16
    cycles.sample_clamp_indirect = 12.0
    cycles.pixel_filter_type, cycles.filter_width = "BLACKMAN_HARRIS", 1.5
    scene.render.resolution_x = scene.render.resolution_y = pixels
    scene.render.resolution_percentage = 100
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"


def only(part, pixels):
    render = bpy.context.scene.render
    render.use_border = render.use_crop_to_border = True
    render.border_min_x, render.border_max_x = part.left / pixels, (part.left + part.width) / pixels
    render.border_min_y, render.border_max_y = 1 - (part.top + part.height) / pixels, 1 - part.top / pixels


def rendered(path):
    bpy.context.scene.render.filepath = str(path)
    bpy.ops.render.render(write_still=True)
    image = bpy.data.images.load(str(path))
    width, height = image.size
    values = np.array(image.pixels[:], np.float32).reshape(height, width, -1)
    bpy.data.images.remove(image)
    path.unlink()
    return values[::-1, :, :3]


# ---- the surroundings


def surround(scene):
    around = scene.around
    for light in around.lights:
        add_light(light)
    camera = bpy.data.cameras.new("Camera")
    camera.lens, camera.sensor_width = scene.camera.lens, 36.0
    bpy.context.scene.camera = add("Camera", camera)
    aim(bpy.context.scene.camera, scene.camera.eye, scene.camera.target)
    bpy.context.scene.world = world(around, scene.behind)
    if around.floor is not None:
        add("Studio", studio(*around.studio)).data.materials.append(matt(around.floor))
    if scene.panel:
        panel = surfaces.Thing(surfaces.square(WIDE), surfaces.turned(90, "x"), (0.0, 2e-3, 0.0))
        place(panel, mesh(panel.shape, 0), plain(scene.panel))


def add(name, data):
    made = bpy.data.objects.new(name, data)
    bpy.context.scene.collection.objects.link(made)
    return made


def aim(thing, eye, target):
    turn = (Vector(target) - Vector(eye)).to_track_quat("-Z", "Y")
    thing.location, thing.rotation_euler = eye, turn.to_euler()


def add_light(light):
    data = bpy.data.lights.new("Light", "AREA")
    strongest = max(light.glow)
    data.size, data.color = light.size, [part / strongest for part in light.glow]
    data.energy = strongest * np.pi * light.size**2  # the power of a square light with this radiance
    made = add("Light", data)
    made.visible_camera = False
    aim(made, light.at, light.towards)


def world(around, behind):
    """A world whose radiance blends from ground to sky. Camera rays see the background of the picture instead."""
    made = bpy.data.worlds.new("Sky")
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()
    coordinates, path = tree.nodes.new("ShaderNodeTexCoord"), tree.nodes.new("ShaderNodeLightPath")
    half = tree.nodes.new("ShaderNodeMath")
    half.operation, half.inputs[1].default_value, half.inputs[2].default_value = "MULTIPLY_ADD", 0.5, 0.5
    tree.links.new(axis(tree, coordinates.outputs["Generated"], "Z"), half.inputs[0])
    around_it = mixed(tree, half.outputs[0], around.ground, around.sky)
    seen = mixed(tree, axis(tree, coordinates.outputs["Window"], "Y"), *behind)
    background, end = tree.nodes.new("ShaderNodeBackground"), tree.nodes.new("ShaderNodeOutputWorld")
    tree.links.new(mixed(tree, path.outputs["Is Camera Ray"], around_it, seen), background.inputs["Color"])
    tree.links.new(background.outputs[0], end.inputs["Surface"])
    return made


def axis(tree, vector, name):
    parts = tree.nodes.new("ShaderNodeSeparateXYZ")
    tree.links.new(vector, parts.inputs[0])
    return parts.outputs[name]


def mixed(tree, share, *colors):
    """The output of a node that mixes two colours or outputs."""
    node = tree.nodes.new("ShaderNodeMix")
    node.data_type = "RGBA"
    tree.links.new(share, node.inputs[0])
    for socket, color in zip([socket for socket in node.inputs if socket.type == "RGBA"], colors, strict=True):
        if isinstance(color, tuple):
            socket.default_value = (*color, 1.0)
        else:
            tree.links.new(color, socket)
    return next(socket for socket in node.outputs if socket.type == "RGBA")


def shaded(name, kind, **inputs):
    made = bpy.data.materials.new(name)
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()
    shader, end = tree.nodes.new(kind), tree.nodes.new("ShaderNodeOutputMaterial")
    for socket, value in inputs.items():
        shader.inputs[socket].default_value = value
    tree.links.new(shader.outputs[0], end.inputs["Surface"])
    return made


def matt(color):
    return shaded("Floor", "ShaderNodeBsdfDiffuse", Color=(*color, 1.0))


def plain(values):
    inputs = {"Base Color": (*values["base"], 1.0), "Metallic": values["metallic"], "Roughness": values["roughness"]}
    return shaded("Panel", "ShaderNodeBsdfPrincipled", **inputs)


def studio(begin, radius, level=-1.0):
    """Adds a floor that curves up into a wall."""
    turn = np.linspace(0, np.pi / 2, 65)
    rise = np.stack([begin + radius * np.sin(turn), level + radius * (1 - np.cos(turn))], axis=1)
    line = np.concatenate([[(-WIDE, level)], rise, [(begin + radius, WIDE)]])
    points = [(x, y, z) for y, z in line for x in (-WIDE, WIDE)]
    faces = [(2 * n, 2 * n + 1, 2 * n + 3, 2 * n + 2) for n in range(len(line) - 1)]
    made = bpy.data.meshes.new("Studio")
    made.from_pydata(points, [], faces)
    made.shade_smooth()
    return made


# ---- the objects


def load_images(document):
    for name, facts in document.get("images", {}).items():
        image = bpy.data.images.load(str(MATERIALS / "textures" / name))
        image.name, image.colorspace_settings.name, image.alpha_mode = name, facts["colorspace"], facts["alpha"]


def place(thing, data, material):
    data.materials.append(material)
    made = add("Object", data)
    turn = Matrix(thing.turn.tolist()).to_4x4()
    made.matrix_world = Matrix.Translation(thing.place) @ turn @ Matrix.Scale(thing.scale, 4)


def mesh(shape, rows):
    """A mesh of the shape in object space. `rows`: rows of faces, if the surface is displaced."""
    build = {"sphere": ball, "square": sheet, "box": cube}[shape.name]
    points, corners, uv = build(shape, rows)
    kept = corners != np.roll(corners, 1, axis=1)  # faces at the poles are triangles
    made = bpy.data.meshes.new("Shape")
    made.vertices.add(len(points))
    made.vertices.foreach_set("co", np.float32(points).ravel())
    made.loops.add(int(kept.sum()))
    made.loops.foreach_set("vertex_index", np.int32(corners[kept]))
    made.polygons.add(len(corners))
    made.polygons.foreach_set("loop_start", np.int32(np.cumsum(kept.sum(axis=1)) - kept.sum(axis=1)))
    made.update(calc_edges=True)
    for name in ("UVMap", "DetailUV"):
        made.uv_layers.new(name=name).data.foreach_set("uv", np.float32(uv[kept]).ravel())
    if shape.name == "sphere":
        made.shade_smooth()
        if not rows:
            made.normals_split_custom_set_from_vertices(points)
    return made


def ball(shape, rows):
    """Returns (points, corners of the faces, their UV coordinates). The seam is at +y, where u wraps from 1 to 0."""
    rows = rows or SPHERE_ROWS
    columns = 2 * rows
    v, u = np.meshgrid(np.arange(1, rows) / rows, np.arange(columns) / columns, indexing="ij")
    turn, tilt = (u.ravel() - 0.5) * 2 * np.pi, (1 - v.ravel()) * np.pi
    rings = np.stack([np.sin(tilt) * np.sin(turn), -np.sin(tilt) * np.cos(turn), np.cos(tilt)], axis=1)
    points = np.concatenate([rings, [(0, 0, -1), (0, 0, 1)]]) * shape.high[2]
    index = np.empty((rows + 1, columns + 1), int)
    index[1:-1, :-1] = np.arange(len(rings)).reshape(rows - 1, columns)
    index[0], index[-1] = len(rings), len(rings) + 1
    index[:, -1] = index[:, 0]
    return points, *quads(index)


def sheet(shape, rows):
    across = np.linspace(shape.low[0], shape.high[0], (rows or 1) + 1)
    y, x = np.meshgrid(across, across, indexing="ij")
    points = np.stack([x.ravel(), y.ravel(), 0 * x.ravel()], axis=1)
    corners, _ = quads(np.arange(len(points)).reshape(x.shape))
    return points, corners, shape.uv(points, None)[corners]


def quads(index):
    """The faces of a grid of points, counter-clockwise, with UV coordinates from 0 to 1."""
    rows, columns = np.subtract(index.shape, 1)
    places = np.moveaxis(np.indices(index.shape), 0, -1)[..., ::-1] / (columns, rows)
    around = (np.s_[:-1, :-1], np.s_[:-1, 1:], np.s_[1:, 1:], np.s_[1:, :-1])
    corners, uv = (np.stack([grid[some] for some in around], axis=2) for grid in (index, places))
    return corners.reshape(-1, 4), uv.reshape(-1, 4, 2)


def cube(shape, _rows):
    half, points, uv = shape.high[2], [], []
    for normal in (*np.eye(3), *-np.eye(3)):
        (_,), (along,) = shape.frame(normal[None])
        up = np.cross(normal, along)
        for s, t in ((-1, -1), (1, -1), (1, 1), (-1, 1)):
            points.append(half * (normal + s * along + t * up))
            uv.append(((s + 1) / 2, (t + 1) / 2))
    return np.array(points), np.arange(24).reshape(6, 4), np.array(uv).reshape(6, 4, 2)


if __name__ == "__main__":
    main(Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]), sys.argv[4:])
