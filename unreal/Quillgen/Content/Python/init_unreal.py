"""Adds the menu when the editor starts. Unreal finds this file by its name."""

import unreal

if not unreal.SystemLibrary.is_unattended():  # a cook or a commandlet has no menus
    try:
        from quillgen_unreal import menu

        menu.register()
    except Exception as error:  # the editor has to start even so
        unreal.log_error(f"Quillgen: the menu can't be made: {error}")
