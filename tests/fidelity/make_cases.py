"""Makes the reference data: builds the node trees of all families in the Blender that runs it, renders each with Cycles
and reads its document with blender/quillgen_blender.

    .venv-blender-5.2/bin/python tests/fidelity/make_cases.py [--every=N] [family ...]

--every=N makes only every N-th case of a family. QUILLGEN_FIDELITY_DATA names another folder for the data.
"""

import importlib
import sys
import tempfile
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "host"), str(HERE.parents[1] / "blender")]

import render
import store
from builder import SIDE
from quillgen_blender import read
from quillgen_blender.read import pictures
from scenes import facts, normals, rays, stage, textures

TILED = (
    "value",
    "vector",
    "mix",
    "colour",
    "patterns",
    "noise",
    "tables",
    "pictures",
    "shaders",
    "flattening",
)
PER_PICTURE = 400
JITTER = 1 / 2048, 1 / 2048  # offset of Cycles' single sample from the pixel centre


def main(words):
    every = next((int(word.partition("=")[2]) for word in words if word.startswith("--every=")), 1)
    wanted = [word for word in words if not word.startswith("--")]
    store.save_settings(bpy.app.version_string, settings())
    for family in wanted or TILED + ("scenes",):
        bpy.ops.wm.read_factory_settings(use_empty=True)
        if family == "scenes":
            save_scenes()
            continue
        cases = list(importlib.import_module("families." + family).cases())[::every]
        records, values = tiled(cases)
        save(family, records, values, {})


def settings():
    """{node type: {property: possible values}} of all enumeration and boolean properties in Blender."""
    common = bpy.types.ShaderNode.bl_rna.properties.keys()
    found = {}
    for name in sorted(dir(bpy.types)):
        if name.startswith("ShaderNode") and name != "ShaderNode":
            own = [prop for prop in getattr(bpy.types, name).bl_rna.properties if prop.identifier not in common]
            found[name] = {
                prop.identifier: [item.identifier for item in prop.enum_items] for prop in own if prop.type == "ENUM"
            }
            found[name] |= {prop.identifier: [False, True] for prop in own if prop.type == "BOOLEAN"}
    return found


def tiled(cases):
    records, values = [], []
    mesh = render.squares(1, 1)
    for start in range(0, len(cases), PER_PICTURE):
        some = cases[start : start + PER_PICTURE]
        materials = [built(case) for case in some]
        some = [case for case, one in zip(some, materials) if one]
        materials = [one for one in materials if one]
        records += [
            {
                "node": case.node,
                "name": case.name,
                "reason": case.reason,
                "document": read.flatten(one, mesh).document,
            }
            for case, one in zip(some, materials)
        ]
        values.append(render.tiles(materials))
        for one in materials:
            bpy.data.materials.remove(one)
    values = np.concatenate(values)
    check_coordinates(len(values))
    return records, values.reshape(len(values), SIDE * SIDE, 3)


def built(case):
    """The material of a case. None if an older Blender lacks a node, a setting or a colour space of it."""
    try:
        return render.material(f"{case.node} {case.name}", case.build)
    except (AttributeError, KeyError, RuntimeError, StopIteration, TypeError) as trouble:
        if bpy.app.version >= (5, 2, 0):
            raise
        print(f"left out: {case.node} {case.name}: {trouble}")
        return None


def check_coordinates(count):
    """Renders a second frame and checks that every pixel's UV coordinate is in the expected cell."""
    shown = render.material("UV", lambda canvas: canvas.node("UVMap").outputs[0])
    uv = render.tiles([shown] * min(count, PER_PICTURE))[..., :2]
    cells = np.stack(np.meshgrid(np.arange(SIDE), np.arange(SIDE)), axis=-1)
    assert (np.floor(uv * SIDE) == cells).all(), "the camera's jitter moves pixels into other cells"


def save_scenes():
    """Saves one family per scene: all of its cases, the pixels that see the object, and their inputs."""
    for scene in stage.SCENES:
        bpy.ops.wm.read_factory_settings(use_empty=True)
        thing, camera = stage.build(scene)
        render.settings(stage.PIXELS, stage.PIXELS)
        surface, view = rays.Surface(thing), rays.View(camera, JITTER)
        columns, rows, triangles = rays.look(surface, view)
        inputs = rays.inputs(surface, view, columns, rows, triangles)
        check_positions(thing, inputs, columns, rows)
        inputs["cycles_normal"] = shading_normals(thing, inputs["cycles_normal"], columns, rows)
        records, values = [], []
        for case in [case for part in (facts, textures, normals) for case in part.cases(scene)]:
            shown = render.material(f"{case.node} {case.name}", case.build)
            records.append(
                {
                    "node": case.node,
                    "name": f"{scene.name}: {case.name}",
                    "reason": case.reason,
                    "document": read.flatten(shown, thing.data).document,
                }
            )
            values.append(wear(thing, shown)[rows, columns])
            bpy.data.materials.remove(shown)
        save(
            "scene_" + scene.name.replace(" ", "_"),
            records,
            np.array(values),
            {"input " + kind: value for kind, value in inputs.items()},
        )


def wear(thing, material):
    thing.data.materials.clear()
    thing.data.materials.append(material)
    return render.picture()


def check_positions(thing, inputs, columns, rows):
    """Renders a separate frame and checks that our rays hit the surface where Cycles' rays do."""
    shown = wear(thing, render.material("Position", lambda canvas: canvas.node("NewGeometry").outputs["Position"]))
    ours = inputs["world_position"] * rays.FLIP / 100
    assert np.abs(shown[rows, columns] - ours).max() < 5e-5 and (np.abs(shown).sum(axis=2) > 0).sum() == len(rows)


def shading_normals(thing, ours, columns, rows):
    """Renders another frame and returns the normals that Cycles uses. Since 5.1 they differ by up to 6e-5 from those of
    the mesh, which is visible in steep reflections."""
    shown = wear(thing, render.material("Normal", lambda canvas: canvas.node("NewGeometry").outputs["Normal"]))
    found = shown[rows, columns] * rays.FLIP
    found *= np.where((found * ours).sum(axis=1) < 0, -1, 1)[:, None]  # Blender flips them towards the viewer
    assert np.abs(found - ours).max() < 2e-4
    return found.astype(np.float32)


def save(family, records, values, arrays):
    used = {name for record in records for name in record["document"]["images"]}
    store.save(
        family,
        records,
        {"values": values} | arrays | {"texture " + name: texels(name) for name in sorted(used)},
    )
    print(f"{family}: {values.shape[0]} cases of {values.shape[1]} pixels, {len(used)} textures", flush=True)


def texels(name):
    """The texels of an image as the extension saves it, row 0 on top, without colour conversion of bytes."""
    with tempfile.TemporaryDirectory() as folder:
        path, record = pictures.save_picture(bpy.data.images[name], Path(folder), "texture")
        image = bpy.data.images.load(str(path))
        image.alpha_mode, image.colorspace_settings.name = "CHANNEL_PACKED", "Non-Color"
        pixels = np.empty(len(image.pixels), np.float32)
        image.pixels.foreach_get(pixels)
        pixels = pixels.reshape(image.size[1], image.size[0], 4)[::-1]
        pixels = pixels if record["float"] else np.rint(pixels * 255).astype(np.uint8)
        bpy.data.images.remove(image)
    return pixels


if __name__ == "__main__":
    main(sys.argv[1:])
