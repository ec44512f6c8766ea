"""The extension's preferences."""

from types import SimpleNamespace
from typing import Any

import bpy

from . import log

PACKAGE = __package__.rpartition(".")[0]
FOLDER, REST = "//unreal", 0.3


def switch_log(self: Any, context: Any) -> None:
    log.switch(self.log)


class QuillgenPreferences(bpy.types.AddonPreferences):
    bl_idname = PACKAGE

    folder: bpy.props.StringProperty(
        name="Folder",
        description="Where scenes without a folder of their own export to; // is the folder of the .blend file",
        subtype="DIR_PATH",
        default=FOLDER,
    )
    live: bpy.props.BoolProperty(
        name="Live Update", description="Allow scenes to export materials while they are edited", default=True
    )
    rest: bpy.props.FloatProperty(
        name="Rest",
        description="How long an edit has to rest before it is exported",
        subtype="TIME_ABSOLUTE",
        unit="TIME_ABSOLUTE",
        default=REST,
        min=0.05,
        max=10.0,
    )
    log: bpy.props.BoolProperty(
        name="Log", description="Write every export and its remarks to the console", default=False, update=switch_log
    )

    def draw(self, context: Any) -> None:
        layout = self.layout
        layout.use_property_split = True
        layout.prop(self, "folder")
        layout.prop(self, "live")
        row = layout.row()
        row.active = self.live
        row.prop(self, "rest")
        layout.prop(self, "log")


CLASSES = (QuillgenPreferences,)


def of(context: Any) -> Any:
    """The preferences, or their defaults if the package isn't installed as an extension."""
    found = context.preferences.addons.get(PACKAGE)
    return found.preferences if found else SimpleNamespace(folder=FOLDER, live=True, rest=REST, log=False)
