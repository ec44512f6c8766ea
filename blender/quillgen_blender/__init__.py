"""The Blender side of quillgen: material -> document -> HLSL and a folder that Unreal makes a material of.

Blender calls `register` and `unregister`. What the interface does by its buttons, scripts do with `exporting`.
"""


def register() -> None:
    from . import ui

    ui.register()


def unregister() -> None:
    from . import ui

    ui.unregister()
