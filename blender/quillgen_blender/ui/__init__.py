"""The interface: panels, operators, preferences, live update. This package imports bpy."""

from typing import Any

import bpy

from .. import command
from . import live, log, operators, panels, preferences, progress, settings, state

COMMAND = "quillgen"  # blender --command quillgen
CLASSES = (*settings.CLASSES, *preferences.CLASSES, *operators.CLASSES, *panels.CLASSES)


_commands: list[Any] = []


def register() -> None:
    for each in CLASSES:
        bpy.utils.register_class(each)
    settings.register()
    log.register(preferences.of(bpy.context).log)
    live.register()
    _commands.append(bpy.utils.register_cli_command(COMMAND, command.main))


def unregister() -> None:
    while _commands:
        bpy.utils.unregister_cli_command(_commands.pop())
    live.unregister()
    progress.hide()
    log.unregister()
    settings.unregister()
    for each in reversed(CLASSES):
        bpy.utils.unregister_class(each)
    state.forget()
