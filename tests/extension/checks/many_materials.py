"""An export of many materials: slices, Esc, the progress bar."""

import types

import bpy
from recording import Layout

from quillgen_blender.ui import operators, progress

from .setting import setting


class Running:
    """The export operator as Blender runs it, without a window."""

    def __init__(self, scope):
        self.scope, self.reports, self.timer = scope, [], None
        for name in ("begin", "jobs", "modal", "end", "summary"):
            setattr(self, name, types.MethodType(vars(operators.Export)[name], self))
        manager = types.SimpleNamespace(event_timer_remove=lambda timer: self.reports.append("timer removed"))
        self.context = types.SimpleNamespace(
            scene=bpy.context.scene,
            preferences=bpy.context.preferences,
            selected_objects=bpy.context.selected_objects,
            window_manager=manager,
        )
        assert self.begin(self.context)

    def report(self, kinds, text):
        self.reports.append(f"{min(kinds)}: {text}")

    def event(self, kind):
        return self.modal(self.context, types.SimpleNamespace(type=kind))


def check_many_materials_are_exported_in_slices():
    out = setting()
    running = Running("FILE")
    turns = 0
    while running.event("TIMER") == {"RUNNING_MODAL"}:
        turns += 1
        assert running.event("MOUSEMOVE") == {"PASS_THROUGH"}, "Blender stays usable"
    assert running.reports[0] == "timer removed" and running.reports[-1].startswith("INFO: 6 of 6 materials exported")
    assert len(list(out.glob("*/material.json"))) == 6


def check_escape_stops_and_keeps_what_is_done():
    out = setting()
    running = Running("FILE")
    while len(running.outcomes) < 2:
        next(running.work)
    assert running.event("ESC") == {"FINISHED"}
    assert "WARNING: 2 of 6 materials exported" in running.reports[-1] and "stopped" in running.reports[-1]
    assert "timer removed" in running.reports and len(list(out.glob("*/material.json"))) == 2


def check_a_material_that_is_removed_ends_the_export():
    setting()
    running = Running("FILE")
    next(running.work)
    for material in list(bpy.data.materials):
        bpy.data.materials.remove(material)
    while running.event("TIMER") == {"RUNNING_MODAL"}:
        pass
    assert "timer removed" in running.reports


def check_the_progress_bar_shows_how_far_it_is():
    layout = Layout()
    progress._now.text, progress._now.done, progress._now.of = "Oak: reading", 3, 12
    progress.draw(types.SimpleNamespace(layout=layout), bpy.context)
    bar = next(item for item in layout.items() if item.kind == "progress")
    assert (bar.text, bar.data) == ("3 of 12: Oak: reading", 0.25)
