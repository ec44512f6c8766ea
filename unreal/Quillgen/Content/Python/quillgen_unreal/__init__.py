"""Materials from Blender: imports the folders that the extension Quillgen writes, and builds their materials.

NOT TRIED IN UNREAL: this was written and tested without the editor, against a double of its Python interface. The
double can't show how the editor itself draws, compiles and saves what is built here, the names of pins that no
reference lists, the look of dialogs and menus, or the text for the clipboard. docs/unreal.md has a checklist of five
minutes for someone who has Unreal; quillgen_unreal.build_checklist() makes its level.

    import quillgen_unreal
    quillgen_unreal.import_all("D:/Materials")                              # every material below a folder
    quillgen_unreal.import_material("D:/Materials/Oak Planks", "/Game/Blender")
    quillgen_unreal.start_live("D:/Materials"), quillgen_unreal.stop_live()

For Unreal 5.3 to 5.7; needs only the standard library of its Python. It creates, and later updates in place, M_Name
with the graph and MI_Name, an instance that holds the values; textures go to the folder Textures beside them.
Parameters keep their names, so instances of your own keep their overrides. Nothing is saved: you do that.
"""

from __future__ import annotations

from pathlib import Path
from typing import TYPE_CHECKING

if TYPE_CHECKING:
    from .importer import Outcome

DEFAULT_PATH = "/Game/Blender"


def import_material(
    folder: str | Path, content_path: str = DEFAULT_PATH, instanced: bool = False, force: bool = False
) -> Outcome:
    """Imports the material in a folder and returns an `importer.Outcome`.

    `instanced`: the meshes are drawn as instances (foliage, instanced static meshes). `force` rebuilds the graph even
    if nothing has changed. Raises `errors.Refused`, naming the file and the material, or `errors.Cancelled`: M_Name is
    unchanged then.
    """
    import unreal

    from . import importer

    with unreal.ScopedSlowTask(1, "A material from Blender") as task:
        task.make_dialog(True)
        outcome = importer.bring(folder, content_path, importer._progress(task), instanced, force)
    importer.summarise([outcome], folder)
    return outcome


def import_all(
    folder: str | Path, content_path: str = DEFAULT_PATH, instanced: bool = False, force: bool = False
) -> list[Outcome]:
    """Imports every material below a folder; returns a list of `importer.Outcome`. A failure does not stop the
    others."""
    from . import importer

    return importer.bring_all(folder, content_path, instanced, force)


def start_live(folder: str | Path, content_path: str = DEFAULT_PATH, instanced: bool = False) -> None:
    """Follows a folder: what Blender exports there is shown in the open level until `stop_live`."""
    from . import live

    live.start(folder, content_path, instanced)


def stop_live() -> None:
    from . import live

    live.stop()


def build_checklist(content_path: str = "/Game/BlenderChecklist") -> str:
    """Makes a level with a sphere for each kind of input, to check that this version of Unreal supplies it
    correctly."""
    from . import checklist

    return checklist.build_level(content_path)
