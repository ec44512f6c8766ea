"""The material instance that holds the values. Setting a value compiles nothing."""

from __future__ import annotations

import struct
from typing import Any

import unreal

from . import naming
from .exchange import Export
from .plan import Color

MEL = unreal.MaterialEditingLibrary


def _rounded(number: float) -> float:
    """Rounded to 32 bits, as the engine stores it."""
    rounded: float = struct.unpack("f", struct.pack("f", number))[0]
    return rounded


def _held(instance: unreal.MaterialInstanceConstant, key: str) -> dict[str, Any]:
    """Parameter name -> value, for the overrides of an instance."""
    records = instance.get_editor_property(key)
    return {
        str(r.get_editor_property("parameter_info").get_editor_property("name")): r.get_editor_property(
            "parameter_value"
        )
        for r in records
    }


def update(instance: unreal.MaterialInstanceConstant, export: Export) -> int:
    """Sets the values that differ from the export's. Returns how many there were."""
    named = naming.parameters(export.parameters)
    scalars = _held(instance, "scalar_parameter_values")
    vectors = _held(instance, "vector_parameter_values")
    changed = 0
    for record in export.parameters:
        name, wanted = named[record.name], export.values[record.name]
        if not isinstance(wanted, tuple):
            if scalars.get(name) != _rounded(wanted):
                MEL.set_material_instance_scalar_parameter_value(instance, name, wanted)
                changed += 1
        elif _components(vectors.get(name)) != tuple(map(_rounded, wanted)):
            MEL.set_material_instance_vector_parameter_value(instance, name, unreal.LinearColor(*Color(*wanted)))
            changed += 1
    if changed:
        MEL.update_material_instance(instance)
    return changed


def _components(color: unreal.LinearColor | None) -> Any:
    return color and (color.r, color.g, color.b, color.a)
