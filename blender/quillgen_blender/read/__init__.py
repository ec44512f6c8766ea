"""Reading Blender: a material as a plain document. This room imports bpy."""
