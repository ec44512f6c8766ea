"""Compares images in every colour space of Blender: how Cycles renders them, and the values that the text reads from
the saved textures. Prints one JSON object: {kind of image: {space: the median difference, relative above 1}}. Runs
inside Blender.

Arguments: a folder to write to, the file's working space ("" for the default), and "as they stand" to save without
conversion.
"""

import json
import sys
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import in_blender
from quillgen_blender.read import colour, pictures
from trees import add

SIDE = in_blender.SIDE
KINDS = {"bytes": False, "bytes on the disk": False, "OpenEXR on the disk": True, "OpenEXR": True}


def main(folder, working="", way=""):
    if way == "as they stand":
        colour.converted = lambda space, is_float: False
    bpy.ops.wm.read_factory_settings(use_empty=True)
    if working:
        bpy.ops.wm.set_working_color_space(working_space=working, convert_colors=False)
    spaces = bpy.data.images.new("x", 1, 1).colorspace_settings.bl_rna.properties["name"].enum_items.keys()
    report = {}
    for kind, is_float in KINDS.items():
        made = [picture(folder, kind, is_float, space) for space in spaces]
        shown = [one if space in colour.DATA else to_rec709(one) for space, one in zip(spaces, rendered(made))]
        report[kind] = {
            space: float(np.median(np.abs(one - read_back(image, folder, space)) / np.maximum(1, np.abs(one))))
            for space, image, one in zip(spaces, made, shown)
        }
    print(json.dumps(report))


def picture(folder, kind, is_float, space):
    values = np.random.default_rng(len(space)).integers(0, 256, (SIDE, SIDE, 4)) / 255
    values[..., 3] = 1
    path = folder / f"{kind} {space}.{'exr' if is_float else 'png'}".replace("/", "-")
    colour.save(values, path, is_float)
    loaded = bpy.data.images.load(str(path))
    loaded.colorspace_settings.name = space
    if "disk" not in kind:
        loaded.pack()
    return loaded


def rendered(images):
    """The images rendered by Cycles: [images, SIDE, SIDE, 3] in the working space."""
    mesh = in_blender.canvas(len(images))

    def material(image):
        return in_blender.material(lambda tree: add(tree, "TexImage", image=image, interpolation="Closest").outputs[0])

    return in_blender.picture(mesh, [material(image) for image in images])


def to_rec709(shown):
    matrix = colour.to_rec709()
    return shown if matrix is None else shown @ matrix


def read_back(image, folder, space):
    """The values that the text reads from a saved texture."""
    path, record = pictures.save_picture(image, folder, "saved " + space.replace("/", "-"))
    saved = bpy.data.images.load(str(path))
    saved.colorspace_settings.name = "Non-Color"
    values = colour.pixels(saved)[..., :3].astype(np.float64)
    bpy.data.images.remove(saved)
    if record["colorspace"] == "sRGB" and not record["float"]:
        return np.where(values < 0.04045, values / 12.92, ((values + 0.055) / 1.055) ** 2.4)
    return values


if __name__ == "__main__":
    main(Path(sys.argv[1]), *sys.argv[2:4])
