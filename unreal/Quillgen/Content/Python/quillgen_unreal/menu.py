"""The menu Tools > Materials from Blender."""

from __future__ import annotations

import unreal

from . import dialog, importer, live, settings
from .errors import Refused

OWNER, PARENT, NAME = "Quillgen", "LevelEditor.MainMenu.Tools", "QuillgenMenu"

ENTRIES = (
    ("choose", "Import from a Folder...", "Choose the folder that Blender exports to, and import all its materials"),
    ("again", "Import Again", "Import what has changed in the folder that was chosen last"),
    ("toggle_live", "Live On/Off", "Follow the folder: what Blender exports appears by itself"),
    ("paste_texts", "Write Texts for the Clipboard", "Beside each export, a text that pastes into a material editor"),
    (
        "checklist",
        "Build the Checklist Level",
        "A level with a sphere for each kind of input, to see that all is right",
    ),
)


def register() -> None:
    menus = unreal.ToolMenus.get()
    parent = menus.extend_menu(PARENT)  # it may not exist yet when the editor starts
    menu = parent.add_sub_menu(OWNER, "Quillgen", NAME, "Materials from Blender", "Quillgen")
    menu.add_section("Quillgen", "Materials from Blender")
    for function, label, tip in ENTRIES:
        entry = unreal.ToolMenuEntry(name=f"Quillgen_{function}", type=unreal.MultiBlockType.MENU_ENTRY)
        entry.set_label(label)
        entry.set_tool_tip(tip)
        command = f"from quillgen_unreal import menu; menu.run('{function}')"
        entry.set_string_command(unreal.ToolMenuStringCommandType.PYTHON, "", command)
        menu.add_menu_entry("Quillgen", entry)
    menus.refresh_all_widgets()


def run(function: str) -> None:
    """Runs a menu entry. Shows a message if it is refused."""
    try:
        text = globals()[function]()
    except Refused as error:
        text = str(error)
    if text:
        dialog.message(text)


def choose() -> str:
    chosen = dialog.ask(settings.load())
    if chosen is None:
        return ""
    settings.save(chosen)
    return again()


def again() -> str:
    chosen = settings.load()
    if not chosen.folder:
        return choose()
    outcomes = importer.bring_all(chosen.folder, chosen.content_path, chosen.instanced)
    if not outcomes:
        return f"There is no material below {chosen.folder}: choose the folder that Blender exports to."
    failed = [o for o in outcomes if o.status == "failed"]
    return "\n\n".join(text for o in failed for text in o.remarks)


def toggle_live() -> str:
    if live.running():
        live.stop()
        return "Live is off."
    chosen = settings.load()
    if not chosen.folder:
        asked = dialog.ask(chosen)
        if asked is None:
            return ""
        chosen = asked
        settings.save(chosen)
    live.start(chosen.folder, chosen.content_path, chosen.instanced)
    return f"Live is on: following {chosen.folder}."


def paste_texts() -> str:
    from . import clipboard

    chosen = settings.load()
    if not chosen.folder:
        return "First choose a folder, by Import from a Folder."
    written, failed = 0, []
    for folder in importer.folders(chosen.folder):
        try:
            clipboard.write(folder, content_path=chosen.content_path)
            written += 1
        except Refused as error:
            failed.append(str(error))
    done = f"{written} texts are written, each as {clipboard.FILE} in the folder of its material."
    return "\n\n".join([done, *failed])


def checklist() -> str:
    from . import checklist as level

    return level.build_level("/Game/BlenderChecklist")
