"""The Blender side of quillgen: material -> document -> HLSL and a table of what Unreal has to wire.

import quillgen_blender
document = quillgen_blender.flatten(bpy.data.materials["Brick"])
result = quillgen_blender.translate(document)
quillgen_blender.write(result, "out", "Brick", document)
"""

from .read.flatten import flatten
from .write.export import save_textures, translate, write

__all__ = ["flatten", "translate", "write", "save_textures"]
