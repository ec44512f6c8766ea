"""A material with pictures and displacement from Blender to the files for Unreal. Arguments: the folder of
quillgen, the folder to write to. Prints one JSON object. Runs inside Blender."""

import json
import sys
from pathlib import Path

import bpy
import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]
sys.path.append(sys.argv[1])  # behind Blender's own packages

from quillgen_blender import passes, read  # noqa: E402
from quillgen_blender.write import export  # noqa: E402
from trees import add  # noqa: E402


def main(folder):
    bpy.ops.wm.read_factory_settings(use_empty=True)
    material = bpy.data.materials.new("Wall: Brick")
    material.use_nodes = True
    material.displacement_method = "BOTH"
    tree = material.node_tree
    images = [picture("Bytes.png", False, "PREMUL"), picture("Light", True, "STRAIGHT")]
    both = add(
        tree,
        "MixRGB",
        {n + 1: add(tree, "TexImage", image=image).outputs[0] for n, image in enumerate(images)},
    )
    tree.links.new(both.outputs[0], tree.nodes["Principled BSDF"].inputs["Base Color"])
    height = add(tree, "Displacement", {0: add(tree, "TexNoise").outputs[0], "Scale": 0.05}).outputs[0]
    tree.links.new(height, tree.get_output_node("CYCLES").inputs["Displacement"])
    document, _ = passes.prepare(read.flatten(material).document)
    result = export.translate(document)
    files = export.write(result, folder, "Wall", document, ["a note"])
    saved = export.save_textures(result, folder)
    print(
        json.dumps(
            {
                "files": [path.name for path in files],
                "document": document,
                "same": {name: same(path, images) for name, path in saved.items()},
                "images": document["images"],
            }
        )
    )


def picture(name, bright, alpha):
    made = bpy.data.images.new(name, 5, 3, alpha=True, float_buffer=bright)
    pixels = np.random.default_rng(5).integers(0, 256, 60) / 255.0
    made.pixels.foreach_set((pixels * 3 if bright else pixels).astype(np.float32))
    made.alpha_mode = alpha
    return made


def same(path, images):
    """The name of the image whose pixels the file holds."""
    image = bpy.data.images.load(str(path))
    image.alpha_mode, image.colorspace_settings.name = "CHANNEL_PACKED", "Non-Color"
    return [one.name for one in images if np.allclose(one.pixels[:], image.pixels[:], atol=1e-6)]


if __name__ == "__main__":
    main(sys.argv[2])
