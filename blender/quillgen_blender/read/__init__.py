"""Reading Blender: a material as a plain document. This room imports bpy."""

from .material import Reading, flatten

__all__ = ["Reading", "flatten"]
