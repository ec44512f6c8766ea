"""The operators behind the buttons. Exports change nothing in the file; selecting or marking a node can be undone."""

import json
import time
from collections.abc import Iterator
from typing import Any

import bpy

from .. import exporting, pipeline, write
from ..exporting import Outcome
from . import log, progress, settings, state

SLICE = 0.03  # seconds of work between two checks of the keyboard
SCOPES = (
    ("MATERIAL", "This Material", "The material that is shown"),
    ("SELECTED", "Selected Objects", "All materials of the selected objects"),
    ("FILE", "Whole File", "All materials of the file that something uses"),
)


def shown_material(context: Any) -> Any:
    """The material of the editor, or else of the active object."""
    space = context.space_data
    if space and space.type == "NODE_EDITOR" and isinstance(space.id, bpy.types.Material):
        return space.id
    return getattr(context, "material", None) or (context.object and context.object.active_material)


def wanted(context: Any, scope: str) -> tuple[list[Any], str]:
    """The materials of a scope, or the reason why there are none."""
    if scope == "MATERIAL":
        material = shown_material(context)
        why = exporting.exportable(material)
        return ([], why) if why else ([material], "")
    if scope == "SELECTED":
        found = exporting.materials_of(context.selected_objects)
        return found, "" if found else "No selected object has a material with nodes"
    found = exporting.all_materials()
    return found, "" if found else "The file has no material with nodes that something uses"


class Export(bpy.types.Operator):
    """Write the files that Unreal makes a material of"""

    bl_idname = "quillgen.export"
    bl_label = "Export to Unreal"
    bl_options = {"REGISTER"}

    scope: bpy.props.EnumProperty(name="Materials", items=SCOPES, default="MATERIAL", options={"SKIP_SAVE"})

    @classmethod
    def description(cls, context: Any, properties: Any) -> str:
        return f"Write the files that Unreal makes a material of: { {s[0]: s[2] for s in SCOPES}[properties.scope] }"

    @classmethod
    def poll(cls, context: Any) -> bool:
        _, why = exporting.target_folder(settings.folder_of(context))
        if not why and not bpy.data.materials:
            why = "The file has no materials"
        if why:
            cls.poll_message_set(why)
        return not why

    def begin(self, context: Any) -> bool:
        """Whether there is something to do; if not, the report says why."""
        self.materials, why = wanted(context, self.scope)
        folder, refused = exporting.target_folder(settings.folder_of(context))
        if why or folder is None:
            self.report({"ERROR"}, why or refused)
            return False
        try:
            target = write.look(folder)
        except OSError as error:
            self.report({"ERROR"}, f"{folder}: {error.strerror}")
            return False
        self.outcomes: list[Outcome] = []
        self.work = self.jobs(target, settings.chosen(context), context.scene.quillgen.textures)
        return True

    def jobs(self, target: write.Target, chosen: pipeline.Settings, textures: bool) -> Iterator[str]:
        for material in self.materials:
            uid = material.session_uid
            job = exporting.steps(material, target, chosen, textures)
            while True:
                try:
                    step = next(job)
                except StopIteration as end:
                    self.outcomes.append(end.value)
                    state.keep(uid, end.value)
                    break
                yield f"{material.name}: {step}"

    def execute(self, context: Any) -> set[str]:
        if not self.begin(context):
            return {"CANCELLED"}
        for _ in self.work:
            pass
        return self.summary()

    def invoke(self, context: Any, event: Any) -> set[str]:
        if self.scope == "MATERIAL" or not context.window:
            return self.execute(context)
        if not self.begin(context):
            return {"CANCELLED"}
        self.timer = context.window_manager.event_timer_add(0.01, window=context.window)
        context.window_manager.modal_handler_add(self)
        return {"RUNNING_MODAL"}

    def modal(self, context: Any, event: Any) -> set[str]:
        if event.type == "ESC":
            self.end(context)
            return self.summary(stopped=True)
        if event.type != "TIMER":
            return {"PASS_THROUGH"}
        until = time.perf_counter() + SLICE
        try:
            while time.perf_counter() < until:
                progress.show(next(self.work), len(self.outcomes), len(self.materials))
        except (StopIteration, ReferenceError):  # a material may be removed meanwhile
            self.end(context)
            return self.summary(stopped=len(self.outcomes) < len(self.materials))
        return {"RUNNING_MODAL"}

    def cancel(self, context: Any) -> None:
        self.end(context)

    def end(self, context: Any) -> None:
        context.window_manager.event_timer_remove(self.timer)
        progress.hide()

    def summary(self, stopped: bool = False) -> set[str]:
        failed = [outcome for outcome in self.outcomes if outcome.error]
        for outcome in failed:
            self.report({"ERROR"}, f"{outcome.where}: {outcome.error}")
        done = len(self.outcomes) - len(failed)
        if self.scope == "MATERIAL" and done:
            self.report({"INFO"}, summary_of(self.outcomes[0]))
        elif done or stopped:
            differing = sum(bool(outcome.remarks) for outcome in self.outcomes)
            text = f"{done} of {len(self.materials)} materials exported"
            text += f", {differing} of them with remarks" if differing else ""
            self.report({"WARNING" if stopped else "INFO"}, text + (", then stopped" if stopped else ""))
        return {"FINISHED"} if done or stopped else {"CANCELLED"}


def summary_of(outcome: Outcome) -> str:
    written = {"all": "exported", "parameters": "its values exported", "nothing": "unchanged since the last export"}
    text = f"{outcome.name}: {written.get(outcome.changed, 'translated')}"
    return text + (f", {len(outcome.remarks)} remarks" if outcome.remarks else "")


class MaterialOperator:
    """An operator on the material that is shown."""

    @classmethod
    def poll(cls, context: Any) -> bool:
        why = exporting.exportable(shown_material(context))
        if why:
            cls.poll_message_set(why)  # type: ignore[attr-defined]
        return not why


class Check(MaterialOperator, bpy.types.Operator):
    """Find out what Unreal will show differently, without writing a file"""

    bl_idname = "quillgen.check"
    bl_label = "Check"
    bl_options = {"REGISTER"}

    def execute(self, context: Any) -> set[str]:
        material = shown_material(context)
        outcome = exporting.finish(exporting.steps(material, None, settings.chosen(context)))
        state.keep(material.session_uid, outcome)
        if outcome.error:
            self.report({"ERROR"}, f"{outcome.where}: {outcome.error}")
            return {"CANCELLED"}
        self.report({"INFO"}, summary_of(outcome))
        return {"FINISHED"}


class CopyText(MaterialOperator, bpy.types.Operator):
    """Copy the HLSL of the Custom expression to the clipboard"""

    bl_idname = "quillgen.copy_hlsl"
    bl_label = "Copy HLSL"
    bl_options = {"REGISTER"}

    def execute(self, context: Any) -> set[str]:
        material = shown_material(context)
        try:
            made = exporting.text(material, settings.chosen(context))
        except pipeline.Failed as error:
            where = f"{material.name}, {error.node}" if error.node else material.name
            self.report({"ERROR"}, f"{where}: {error}")
            return {"CANCELLED"}
        context.window_manager.clipboard = made
        self.report({"INFO"}, f"{material.name}: {len(made.encode()) // 1024 + 1} KB of HLSL copied")
        log.LOGGER.info("%s: text copied", material.name)
        return {"FINISHED"}


class MarkNode(bpy.types.Operator):
    """Keep the values of the active node live in Unreal where only named values are"""

    bl_idname = "quillgen.mark_node"
    bl_label = "Live in Unreal"
    bl_options = {"REGISTER", "UNDO"}

    @classmethod
    def poll(cls, context: Any) -> bool:
        if active_node(context) is None:
            cls.poll_message_set("No node is active")
            return False
        return True

    def execute(self, context: Any) -> set[str]:
        node = active_node(context)
        if node.get(exporting.MARK):
            del node[exporting.MARK]
        else:
            node[exporting.MARK] = True
        node.id_data.update_tag()
        return {"FINISHED"}


def active_node(context: Any) -> Any:
    """The active node of the tree that the Shader Editor shows, or else of the material."""
    tree = getattr(context.space_data, "edit_tree", None)
    if tree is None:
        material = shown_material(context)
        tree = material.node_tree if material else None
    return tree.nodes.active if tree else None


class SelectNode(bpy.types.Operator):
    """Select this node and show it in the Shader Editor"""

    bl_idname = "quillgen.select_node"
    bl_label = "Select Node"
    bl_options = {"REGISTER", "UNDO", "INTERNAL"}

    material: bpy.props.StringProperty()
    library: bpy.props.StringProperty(description="The path of the file that the material is linked from")
    path: bpy.props.StringProperty(description="The names of the groups around the node, and its own, as JSON")

    def execute(self, context: Any) -> set[str]:
        material = bpy.data.materials.get((self.material, self.library or None))
        chain = exporting.nodes_on(material, json.loads(self.path)) if material else ()
        if not chain:
            self.report({"ERROR"}, f"{self.material}: the node is no longer there")
            return {"CANCELLED"}
        node = chain[-1]
        for other in node.id_data.nodes:
            other.select = other == node
        node.id_data.nodes.active = node
        if not show_node(context, material, chain):
            self.report({"INFO"}, f"{node.name} is selected; open a Shader Editor to see it")
        return {"FINISHED"}


def show_node(context: Any, material: Any, chain: tuple[Any, ...]) -> bool:
    """Brings a node into view in the first Shader Editor of the window; False if there is none."""
    areas = context.screen.areas if context.screen else ()
    for area in areas:
        space = area.spaces.active
        if area.type != "NODE_EDITOR" or space.tree_type != "ShaderNodeTree":
            continue
        if space.id != material:
            slots = [slot.material for slot in context.object.material_slots] if context.object else []
            if material in slots:
                context.object.active_material_index = slots.index(material)
            else:
                space.pin = True
                space.node_tree = material.node_tree
        space.path.start(material.node_tree)
        for group in chain[:-1]:
            space.path.append(group.node_tree, node=group)
        region = next(region for region in area.regions if region.type == "WINDOW")
        with context.temp_override(area=area, region=region):
            bpy.ops.node.view_selected()
        return True
    return False


CLASSES = (Export, Check, CopyText, MarkNode, SelectNode)
