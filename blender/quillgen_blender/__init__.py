"""The Blender side of quillgen: material -> document -> HLSL and a table of what Unreal has to wire."""
