"""Renders the materials of nearest.py with Cycles in the studio of the gallery. Runs inside Blender.

    .venv-blender-5.2/bin/python examples/gallery/nearest_in_blender.py FOLDER PIXELS SAMPLES

Writes NAME.json, the document, and NAME.npy, the radiance [pixels, pixels, 3] with row 0 on top.
"""

import json
import sys
from pathlib import Path

import bpy
import numpy as np
from mathutils import Vector

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "blender"))

from quillgen_blender import read

# As in scenes.py: position, side length in metres and radiance of each light.
LIGHTS = (
    ((-3.11, -3.27, 4.3), 2.4, (19.7, 19.1, 18.5)),
    ((3.93, -3.48, 1.74), 3.0, (3.7, 4.0, 4.4)),
    ((1.8, 3.04, 4.63), 2.2, (20.2, 20.5, 21.4)),
)
EYE, TARGET, LENS = (0.0, -5.9, 1.4), (0.0, 0.0, -0.036), 74.0
LEAF = (0.15, 0.42, 0.05, 1.0)


def leaf(add):
    """Half diffuse, half translucent, as is common for leaves and cloth."""
    return add(
        "MixShader",
        Fac=0.5,
        Shader=add("BsdfDiffuse", Color=LEAF),
        Shader_001=add("BsdfTranslucent", Color=LEAF),
    )


def glass(add):
    return add("BsdfGlass", Color=(0.55, 0.85, 0.7, 1.0), Roughness=0.05, IOR=1.45)


def wine(add):
    """A Principled BSDF with transmission."""
    inputs = {"Base Color": (0.6, 0.05, 0.1, 1.0), "Roughness": 0.08, "Transmission Weight": 1.0}
    return add("BsdfPrincipled", **inputs)


def wax(add):
    inputs = {"Base Color": (0.85, 0.65, 0.45, 1.0), "Roughness": 0.4, "Subsurface Weight": 1.0}
    return add("BsdfPrincipled", **inputs, **{"Subsurface Scale": 0.2})


def velvet(add):
    inputs = {"Base Color": (0.12, 0.01, 0.05, 1.0), "Roughness": 0.9, "Sheen Weight": 1.0, "Sheen Roughness": 0.5}
    return add("BsdfPrincipled", **inputs, **{"Sheen Tint": (1.0, 0.6, 0.8, 1.0)})


def foil(add):
    """A coloured filter."""
    return add("BsdfTransparent", Color=(0.2, 0.45, 0.8, 1.0))


MATERIALS = (leaf, glass, wine, wax, velvet, foil)


def material(build):
    made = bpy.data.materials.new(build.__name__)
    made.use_nodes = True
    tree = made.node_tree
    tree.nodes.clear()

    def add(kind, **inputs):
        node = tree.nodes.new(f"ShaderNode{kind}")
        sockets = {socket.identifier: socket for socket in node.inputs}
        for name, value in inputs.items():
            if isinstance(value, bpy.types.Node):
                tree.links.new(value.outputs[0], sockets[name])
            else:
                sockets[name].default_value = value
        return node

    end = tree.nodes.new("ShaderNodeOutputMaterial")
    tree.links.new(build(add).outputs[0], end.inputs["Surface"])
    return made


def studio(pixels, samples):
    """Builds a ball on a floor, three lights and a uniform sky. Returns the ball."""
    scene = bpy.context.scene
    for thing in list(bpy.data.objects):
        bpy.data.objects.remove(thing)
    scene.render.engine = "CYCLES"
    scene.cycles.samples, scene.cycles.use_denoising = samples, False
    scene.render.resolution_x = scene.render.resolution_y = pixels
    scene.render.resolution_percentage = 100
    scene.render.image_settings.file_format, scene.render.image_settings.color_depth = "OPEN_EXR", "32"
    world = bpy.data.worlds.new("Sky")
    world.use_nodes = True
    world.node_tree.nodes["Background"].inputs["Color"].default_value = (0.092, 0.096, 0.12, 1.0)
    scene.world = world
    for at, side, glow in LIGHTS:
        light = bpy.data.lights.new("Light", "AREA")
        light.size, light.color = side, [part / max(glow) for part in glow]
        light.energy = max(glow) * np.pi * side * side  # the power of a square light with this radiance
        lamp = bpy.data.objects.new("Light", light)
        lamp.location, lamp.rotation_euler = at, (-Vector(at)).to_track_quat("-Z", "Y").to_euler()
        scene.collection.objects.link(lamp)
    camera = bpy.data.cameras.new("Camera")
    camera.lens = LENS
    eye = bpy.data.objects.new("Camera", camera)
    eye.location, eye.rotation_euler = EYE, (Vector(TARGET) - Vector(EYE)).to_track_quat("-Z", "Y").to_euler()
    scene.collection.objects.link(eye)
    scene.camera = eye
    bpy.ops.mesh.primitive_plane_add(size=40, location=(0, 0, -1))
    floor = bpy.data.materials.new("Floor")
    floor.use_nodes = True
    floor.node_tree.nodes.clear()
    paint, end = (
        floor.node_tree.nodes.new("ShaderNodeBsdfDiffuse"),
        floor.node_tree.nodes.new("ShaderNodeOutputMaterial"),
    )
    paint.inputs["Color"].default_value = (0.338, 0.338, 0.338, 1.0)
    floor.node_tree.links.new(paint.outputs[0], end.inputs["Surface"])
    bpy.context.object.data.materials.append(floor)
    bpy.ops.mesh.primitive_uv_sphere_add(segments=128, ring_count=64, radius=1)
    bpy.ops.object.shade_smooth()
    return bpy.context.object


def main(folder, pixels, samples):
    ball = studio(pixels, samples)
    for build in MATERIALS:
        made = material(build)
        ball.data.materials.clear()
        ball.data.materials.append(made)
        document = read.flatten(made, ball.data).document
        (folder / f"{build.__name__}.json").write_text(json.dumps(document))
        bpy.context.scene.render.filepath = str(folder / "picture.exr")
        bpy.ops.render.render(write_still=True)
        image = bpy.data.images.load(str(folder / "picture.exr"))
        values = np.array(image.pixels[:], np.float32).reshape(pixels, pixels, 4)
        bpy.data.images.remove(image)
        np.save(folder / f"{build.__name__}.npy", values[::-1, :, :3])


if __name__ == "__main__":
    main(Path(sys.argv[1]), int(sys.argv[2]), int(sys.argv[3]))
