"""Builds the material of a plan in the editor."""

from __future__ import annotations

from collections.abc import Mapping
from typing import Any, NoReturn

import unreal

from .errors import Refused
from .layout import Box
from .plan import Color, Displacement, Enum, Expression, Inputs, Outputs, Plan, Texture

MEL = unreal.MaterialEditingLibrary
MOST_SWEEPS = 32  # one call may not delete all expressions


def value(plain: object) -> Any:
    """The editor's own value for a value in a plan."""
    if isinstance(plain, Enum):
        return getattr(getattr(unreal, plain.type), plain.member)
    if isinstance(plain, Color):
        return unreal.LinearColor(plain.r, plain.g, plain.b, plain.a)
    if isinstance(plain, Texture):
        return unreal.EditorAssetLibrary.load_asset(plain.path)
    if isinstance(plain, Displacement):
        return unreal.DisplacementScaling(magnitude=plain.magnitude, center=plain.center)
    if isinstance(plain, Inputs):
        return [_filled(unreal.CustomInput(), input_name=name) for name in plain.names]
    if isinstance(plain, Outputs):
        pairs = plain.pairs
        return [_filled(unreal.CustomOutput(), output_name=name, output_type=value(kind)) for name, kind in pairs]
    return plain


def _filled(record: Any, **properties: Any) -> Any:
    for name, content in properties.items():
        record.set_editor_property(name, content)
    return record


def build(plan: Plan, boxes: Mapping[str, Box], material: unreal.Material, name: str) -> None:
    """Replaces all expressions of a material by those of the plan, and sets its properties."""
    clear(material, name)
    for key, content in plan.settings:
        material.set_editor_property(key, value(content))
    made = {}
    for key, expression in plan.graph.expressions.items():
        made[key] = _expression(expression, boxes[key], material)
        for wire in expression.wires:
            begin = made[wire.source.expression]
            if not MEL.connect_material_expressions(begin, wire.source.pin, made[key], wire.pin):
                _unwired(name, f"{wire.source.expression} {wire.source.pin!r} to {key} {wire.pin!r}")
    attributes = unreal.MaterialProperty.MP_MATERIAL_ATTRIBUTES
    if not MEL.connect_material_property(made[plan.root.expression], plan.root.pin, attributes):
        _unwired(name, f"{plan.root.expression} to the material")


def _expression(expression: Expression, box: Box, material: unreal.Material) -> unreal.MaterialExpression:
    kind = getattr(unreal, f"MaterialExpression{expression.kind}")
    made = MEL.create_material_expression(material, kind, box.x, box.y)
    # The inputs of a Custom expression must be set before its wires: a new list removes existing wires.
    for key, content in expression.settings:
        made.set_editor_property(key, value(content))
    if expression.comment and not any(key == "desc" for key, _ in expression.settings):
        made.set_editor_property("desc", expression.comment)
    return made


def _unwired(name: str, wire: str) -> NoReturn:
    raise Refused(name, "", f"this version of Unreal has no such pins: {wire}. Please report it")


def clear(material: unreal.Material, name: str) -> None:
    for _ in range(MOST_SWEEPS):
        MEL.delete_all_material_expressions(material)
        if not MEL.get_num_material_expressions(material):
            return
    raise Refused(name, material.get_path_name(), "the material's old expressions can't be deleted")
