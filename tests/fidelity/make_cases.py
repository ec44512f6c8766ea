"""Makes the reference data: builds the node trees of all families in Blender 5.0.1, renders each with Cycles and
flattens it with the host of examples/blender_host.

    .venv-blender-5.0/bin/python tests/fidelity/make_cases.py [family ...]
"""

import importlib
import sys
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "host"), str(HERE.parents[1] / "examples")]

import blender_host  # noqa: E402
import render  # noqa: E402
import store  # noqa: E402
from builder import SIDE, Canvas  # noqa: E402

TILED = ("value", "vector", "mix", "colour", "patterns", "noise", "tables", "pictures", "flattening")
PER_PICTURE = 400


def main(wanted):
    for family in wanted or TILED:
        bpy.ops.wm.read_factory_settings(use_empty=True)
        cases = list(importlib.import_module("families." + family).cases())
        records, values = tiled(cases)
        textures = {name: texels(name) for record in records for name in record["document"]["images"]}
        store.save(family, records, {"values": values} | {"texture " + name: data for name, data in textures.items()})
        print(f"{family}: {len(records)} cases, {len(textures)} textures", flush=True)


def tiled(cases):
    records, values = [], []
    mesh = render.squares(1, 1)
    for start in range(0, len(cases), PER_PICTURE):
        some = cases[start:start + PER_PICTURE]
        materials = [render.material(f"{case.node} {case.name}", lambda tree, case=case: case.build(Canvas(tree)))
                     for case in some]
        records += [{"node": case.node, "name": case.name, "reason": case.reason,
                     "document": blender_host.flatten(one, mesh)} for case, one in zip(some, materials)]
        values.append(render.tiles(materials))
        for one in materials:
            bpy.data.materials.remove(one)
    values = np.concatenate(values)
    check_coordinates(len(cases))
    return records, values.reshape(len(values), SIDE * SIDE, 3)


def check_coordinates(count):
    """The second frame: every pixel's UV coordinate lies in the cell that it should lie in."""
    shown = render.material("UV", lambda tree: tree.nodes.new("ShaderNodeUVMap").outputs[0])
    uv = render.tiles([shown] * min(count, PER_PICTURE))[..., :2]
    cells = np.stack(np.meshgrid(np.arange(SIDE), np.arange(SIDE)), axis=-1)
    assert (np.floor(uv * SIDE) == cells).all(), "the camera's jitter moves pixels into other cells"


def texels(name):
    """An image as a texture holds it, row 0 on top: bytes as they are, floats linear."""
    image = bpy.data.images[name]
    pixels = np.empty(len(image.pixels), np.float32)
    image.pixels.foreach_get(pixels)
    pixels = pixels.reshape(image.size[1], image.size[0], 4)[::-1]
    return pixels if image.is_float else np.rint(pixels * 255).astype(np.uint8)


if __name__ == "__main__":
    main(sys.argv[1:])
