"""The panels, in the Material tab and in the Shader Editor's sidebar."""

import json
import textwrap
from typing import Any

import bpy

from .. import exporting
from ..exporting import Outcome
from . import operators, preferences, settings, state

ICONS = {"lost": "CANCEL", "warning": "ERROR", "near": "CHECKMARK", "info": "INFO"}
ORDER = ("lost", "warning", "near", "info")
LETTER = 7.0  # pixels, at a resolution scale of 1


class InMaterialTab:
    bl_space_type = "PROPERTIES"
    bl_region_type = "WINDOW"
    bl_context = "material"

    @classmethod
    def poll(cls, context: Any) -> bool:
        return operators.shown_material(context) is not None


class InShaderEditor:
    bl_space_type = "NODE_EDITOR"
    bl_region_type = "UI"
    bl_category = "Unreal"

    @classmethod
    def poll(cls, context: Any) -> bool:
        space = context.space_data
        return space.tree_type == "ShaderNodeTree" and operators.shown_material(context) is not None


class ExportPanel:
    bl_label = "Unreal"

    def draw(self, context: Any) -> None:
        layout = self.layout  # type: ignore[attr-defined]
        scene = context.scene.quillgen
        outcome = state.last(operators.shown_material(context))
        column = layout.column(align=True)
        row = column.row(align=True)
        row.scale_y = 1.4
        row.operator("quillgen.export", text="Export Material", icon="EXPORT").scope = "MATERIAL"
        row = column.row(align=True)
        row.operator("quillgen.export", text="Selected Objects").scope = "SELECTED"
        row.operator("quillgen.export", text="Whole File").scope = "FILE"
        row = layout.row(align=True)
        row.operator("quillgen.check", icon="VIEWZOOM")
        row.operator("quillgen.copy_hlsl", icon="COPYDOWN")
        row = layout.row()
        row.prop(scene, "folder", placeholder=settings.folder_of(context)) if PLACEHOLDER else row.prop(scene, "folder")
        _, why = exporting.target_folder(settings.folder_of(context))
        if why:
            layout.label(text=why, icon="ERROR")
        row = layout.row()
        row.active = preferences.of(context).live
        row.prop(scene, "live", icon="FILE_REFRESH")
        if outcome:
            draw_outcome(layout, outcome)


class OptionsPanel:
    bl_label = "Options"
    bl_options = {"DEFAULT_CLOSED"}

    def draw(self, context: Any) -> None:
        layout = self.layout  # type: ignore[attr-defined]
        layout.use_property_split = True
        layout.use_property_decorate = False
        scene = context.scene.quillgen
        layout.prop(scene, "parameters")
        row = layout.row()
        row.active = scene.parameters == "auto"
        row.prop(scene, "limit")
        node = operators.active_node(context) if scene.parameters in ("auto", "named") else None
        if node:
            marked = bool(node.get(exporting.MARK))
            layout.operator("quillgen.mark_node", text=f"{node.name}: Live in Unreal", depress=marked)
        layout.prop(scene, "displacement")
        layout.prop(scene, "textures")


class RemarksPanel:
    bl_label = "Differs from Blender"

    @classmethod
    def poll(cls, context: Any) -> bool:
        outcome = state.last(operators.shown_material(context))
        return bool(outcome and outcome.remarks) and super().poll(context)  # type: ignore[misc]

    def draw(self, context: Any) -> None:
        material = operators.shown_material(context)
        outcome = state.last(material)
        if outcome is None:
            return
        width = int((context.region.width - 80) / (LETTER * (context.preferences.system.ui_scale or 1.0)))
        for remark in sorted(outcome.remarks, key=lambda remark: ORDER.index(remark["loss"])):
            draw_remark(self.layout, remark, material, outcome, max(width, 20))  # type: ignore[attr-defined]


PLACEHOLDER = "placeholder" in bpy.types.UILayout.bl_rna.functions["prop"].parameters


def draw_outcome(layout: Any, outcome: Outcome) -> None:
    box = layout.box().column(align=True)
    if outcome.error:
        box.label(text="Not exported", icon="CANCEL")
        for line in textwrap.wrap(f"{outcome.where}: {outcome.error}", 48):
            box.label(text=line)
        return
    done = {"text": "Checked", "nothing": "Unchanged", "parameters": "Values exported"}.get(outcome.changed, "Exported")
    box.label(text=f"{done} at {state.clock(outcome.at)} in {1000 * outcome.seconds:.0f} ms", icon="CHECKMARK")
    box.label(text=f"{counted(outcome.inputs, 'input')}, {counted(outcome.parameters, 'parameter')}")
    box.label(text=counted(outcome.textures, "texture"))
    if not outcome.remarks:
        box.label(text="Nothing differs from Blender")


def counted(number: int, word: str) -> str:
    return f"{number} {word}" if number == 1 else f"{number} {word}s"


def draw_remark(layout: Any, remark: dict[str, str], material: Any, outcome: Outcome, width: int) -> None:
    path = outcome.paths.get(remark["node"])
    row = layout.box().row()
    column = row.column(align=True)
    column.label(text=" / ".join(path) if path else remark["node"] or material.name, icon=ICONS[remark["loss"]])
    for line in textwrap.wrap(remark["text"], width):
        column.label(text=line)
    if path:
        button = row.operator("quillgen.select_node", text="", icon="RESTRICT_SELECT_OFF", emboss=False)
        button.material, button.path = material.name, json.dumps(path)
        button.library = material.library.filepath if material.library else ""


def placed(name: str, where: type, what: type, parent: str = "") -> type:
    """Makes the class of a panel for one of the two editors."""
    body = {"bl_idname": name} | ({"bl_parent_id": parent} if parent else {})
    return type(name, (what, where, bpy.types.Panel), body)


CLASSES = tuple(
    placed(f"{prefix}_PT_quillgen_{word}", where, what, f"{prefix}_PT_quillgen_export" if word != "export" else "")
    for prefix, where in (("MATERIAL", InMaterialTab), ("NODE", InShaderEditor))
    for word, what in (("export", ExportPanel), ("remarks", RemarksPanel), ("options", OptionsPanel))
)
