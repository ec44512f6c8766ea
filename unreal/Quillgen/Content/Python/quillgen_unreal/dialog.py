"""Asks the user for a folder, and shows errors."""

from __future__ import annotations

import unreal

from .settings import Settings

TITLE = "Materials from Blender"


@unreal.uclass()
class QuillgenImportOptions(unreal.Object):
    """What the dialog shows; Unreal makes the fields of it."""

    export_folder = unreal.uproperty(unreal.DirectoryPath, meta={"ToolTip": "The folder that Blender exports to"})
    content_path = unreal.uproperty(str, meta={"ToolTip": "Where the assets go, such as /Game/Blender"})
    instanced = unreal.uproperty(bool, meta={"ToolTip": "The meshes are drawn as instances, such as foliage"})


def ask(settings: Settings) -> Settings | None:
    """The user's Settings, or None for Cancel."""
    options = unreal.new_object(QuillgenImportOptions)
    folder = unreal.DirectoryPath()
    folder.set_editor_property("path", settings.folder)
    options.set_editor_property("export_folder", folder)
    options.set_editor_property("content_path", settings.content_path)
    options.set_editor_property("instanced", settings.instanced)
    if not unreal.EditorDialog.show_object_details_view(TITLE, options):
        return None
    return Settings(
        folder=options.get_editor_property("export_folder").get_editor_property("path"),
        content_path=options.get_editor_property("content_path"),
        instanced=options.get_editor_property("instanced"),
    )


def message(text: str) -> None:
    unreal.EditorDialog.show_message(TITLE, text, unreal.AppMsgType.OK)
