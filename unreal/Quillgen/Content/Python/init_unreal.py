"""Runs when the editor starts: adds the menu. Unreal finds this file by its name."""

import unreal

if not unreal.SystemLibrary.is_unattended():  # a cook or a commandlet has no menus
    try:
        from quillgen_unreal import menu

        menu.register()
    except Exception as error:  # the editor has to start in any case
        unreal.log_error(f"Quillgen: the menu can't be made: {error}")
