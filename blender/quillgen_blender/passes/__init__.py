"""What changes a document on its way to the translator: one pass a file, plain Python without bpy."""
