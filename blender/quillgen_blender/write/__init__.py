"""Writes the files of an export. Plain Python without bpy.

    target = look(Path("unreal"))
    written = write_material(target, Material(name="Oak", document=document, result=quillgen.compile(document)))

docs/exchange.md describes the format.
"""

from .manifest import Material, remarks
from .parameters import inputs, origins
from .target import Stamp, Target, Written, commit, look, named, prepare, stamp, write_material
from .textures import Picture

__all__ = [
    "Material",
    "Picture",
    "Stamp",
    "Target",
    "Written",
    "commit",
    "inputs",
    "look",
    "named",
    "origins",
    "prepare",
    "remarks",
    "stamp",
    "write_material",
]
