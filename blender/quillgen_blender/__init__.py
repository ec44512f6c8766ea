"""The Blender side of quillgen: converts a material to a document, and exports its HLSL and a folder from which Unreal
builds a material.

Blender calls `register` and `unregister`. Scripts do with `exporting` what the buttons of the interface do.
"""


def register() -> None:
    from . import ui

    ui.register()


def unregister() -> None:
    from . import ui

    ui.unregister()
