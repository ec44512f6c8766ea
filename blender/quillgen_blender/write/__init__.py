"""Writing the files of an export: plain Python without bpy.

    target = look(Path("unreal"))
    written = write_material(target, Material(name="Oak", document=document, result=quillgen.compile(document)))

The format is told in docs/exchange.md.
"""

from .manifest import Material, remarks
from .parameters import inputs
from .target import Target, Written, look, stamp, write_material
from .textures import Picture

__all__ = ["Material", "Picture", "Target", "Written", "inputs", "look", "remarks", "stamp", "write_material"]
