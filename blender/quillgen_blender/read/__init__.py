"""Reads a Blender material as a plain document. This package imports bpy."""

from .material import Reading, flatten

__all__ = ["Reading", "flatten"]
