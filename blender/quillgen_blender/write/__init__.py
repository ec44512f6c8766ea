"""Writing the files of an export: plain Python without bpy."""
