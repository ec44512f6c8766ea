"""The Blender side of quillgen: material -> document -> HLSL and a table of what Unreal has to wire.

import blender_host
document = blender_host.flatten(bpy.data.materials["Brick"])
result = blender_host.translate(document)
blender_host.write(result, "out", "Brick", document)
"""

from .flatten import flatten
from .export import save_textures, translate, write

__all__ = ["flatten", "translate", "write", "save_textures"]
