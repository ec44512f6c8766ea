"""Folder names that are valid on every file system."""

import re

import pytest

from quillgen_blender.write import names

WINDOWS = re.compile(r'[<>:"/\\|?*\x00-\x1f]|[. ]$')


@pytest.mark.parametrize(
    ("name", "folder"),
    [
        ("Oak Planks", "Oak Planks"),
        ("Wood.001", "Wood.001"),
        ("Wall: Brick / old?", "Wall_ Brick _ old_"),
        ("end. .", "end___"),
        (".hidden", "_hidden"),
        (" blank", "_blank"),
        ("con", "_con"),
        ("LPT1.png", "_LPT1.png"),
        ("COM\u00b9", "_COM\u00b9"),
        ("Console", "Console"),
        ("\u6728\u76ee", "\u6728\u76ee"),
        ("bad \udcff byte", "bad _ byte"),
        ("tab\there", "tab_here"),
        ("..", "__"),
        ("", "_"),
    ],
)
def test_what_a_file_system_refuses_is_replaced(name, folder):
    assert names.plain(name) == folder
    assert not WINDOWS.search(folder) and not names.DEVICES.fullmatch(folder)


def test_a_long_name_is_cut_between_letters():
    cut = names.plain("\u00e4" * 200)
    assert cut == "\u00e4" * 60
    assert names.plain("x" * 119 + ". y") == "x" * 119 + "_"


def test_names_that_differ_in_case_or_accents_only_are_kept_apart():
    taken = set()
    found = []
    for name in ("Wood", "wood", "WOOD", "caf\u00e9", "cafe\u0301", "Stra\u00dfe", "strasse", "a?", "a*"):
        found.append(names.free(name, taken))
        taken.add(names.key(found[-1]))
    assert found[:3] == ["Wood", "wood 2", "WOOD 3"]
    assert found[4] == "cafe\u0301 2" and found[6] == "strasse 2" and found[7:] == ["a_", "a_ 2"]
    assert len({names.key(name) for name in found}) == len(found)


def test_the_folder_of_the_pictures_is_nobodys():
    assert names.free("_textures", set()) == "_textures 2"
    assert names.free("_Textures", set()) == "_Textures 2"


def test_the_file_of_a_picture_has_letters_that_need_no_quotes():
    assert names.stem("Crate Planks_BaseColor.png") == "Crate_Planks_BaseColor"
    assert names.stem("../../etc/passwd") == "etc_passwd"
    assert names.stem("\u6728.png") == "picture"
