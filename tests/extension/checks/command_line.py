"""The command line, called in this process."""

import contextlib
import io
import os
import sys

import bpy

from quillgen_blender import command, exporting

from .setting import setting


def saved():
    """A .blend file with materials, in an empty folder."""
    out = setting()
    file = out / "scene.blend"
    bpy.ops.wm.save_as_mainfile(filepath=str(file))
    return file


def ran(*words):
    """Runs a command line. Returns its exit code and its output on stdout and stderr."""
    texts = io.StringIO(), io.StringIO()
    with contextlib.redirect_stdout(texts[0]), contextlib.redirect_stderr(texts[1]):
        try:
            code = command.main([str(word) for word in words])
        except SystemExit as error:
            code = error.code
    return code, texts[0].getvalue(), texts[1].getvalue()


def check_command_exports_all_and_tells():
    file = saved()
    code, told, errors = ran(file, "--out", file.parent / "out")
    assert (code, errors) == (0, "")
    assert "6 exported, 0 unchanged, 0 failed" in told and "My Wire: " in told, told
    assert (file.parent / "out" / "Sand" / "material.json").is_file()
    assert not (file.parent / "out" / command.RUN).exists()
    assert "0 exported, 6 unchanged" in ran(file, "--out", file.parent / "out")[1]
    assert ran(file, "--out", file.parent / "out", "--quiet") == (0, "", "")


def check_command_takes_materials_by_name():
    file = saved()
    code, told, _ = ran(file, "--out", file.parent / "out", "--material", "Sand", "Oak")
    assert code == 0 and sorted(path.name for path in (file.parent / "out").iterdir()) == ["Oak", "Sand"], told
    code, _, errors = ran(file, "--out", file.parent / "other", "--material", "Sand", "Elm")
    assert code == 2 and "has no material Elm" in errors and not (file.parent / "other").exists()


def check_command_refuses_what_is_not_there():
    file = saved()
    assert ran(file.parent / "gone.blend", "--out", file.parent / "out")[::2] == (
        2,
        f"quillgen_blender: {file.parent / 'gone.blend'}: no such file\n",
    )
    (file.parent / "text.blend").write_text("no blend")
    assert ran(file.parent / "text.blend", "--out", file.parent / "out")[0] == 2
    assert ran(file, "--out", file)[0] == 2
    assert ran(file)[0] == 2


def check_command_names_the_module_that_is_not_there():
    file = saved()
    there = sys.modules.pop("quillgen", None)
    sys.modules["quillgen"] = None  # as if it weren't installed
    try:
        code, _, errors = ran(file, "--out", file.parent / "out")
    finally:
        del sys.modules["quillgen"]
        sys.modules.update({"quillgen": there} if there else {})
    assert code == 2 and errors.startswith("quillgen_blender: this Python has no quillgen: "), errors
    assert not (file.parent / "out").exists()


def check_command_tells_failures_by_its_exit_code():
    file = saved()
    bpy.data.materials["Oak"].node_tree.links.clear()
    bpy.ops.wm.save_as_mainfile(filepath=str(file))
    code, told, errors = ran(file, "--out", file.parent / "out")
    assert code == 1 and "Oak: nothing is connected" in errors and "5 exported, 0 unchanged, 1 failed" in told


def check_command_goes_on_where_it_was_interrupted():
    file = saved()
    out = file.parent / "out"
    whole, done = exporting.finish, []

    def interrupted(job):
        if len(done) == 2:
            raise KeyboardInterrupt
        done.append(whole(job))
        return done[-1]

    exporting.finish = interrupted
    try:
        code, _, errors = ran(file, "--out", out)
    finally:
        exporting.finish = whole
    assert code == 130 and "stopped after 2 of 6" in errors
    code, told, _ = ran(file, "--out", out)
    assert code == 0 and "2 of 6 are done" in told and "4 exported, 0 unchanged, 0 failed, 2 done before" in told, told
    exporting.finish = interrupted
    done.clear()
    try:
        ran(file, "--out", out)
    finally:
        exporting.finish = whole
    for path in (file.parent / "out").glob(".*"):
        os.utime(path, (0, 0))
    assert "2 of 6 are done" in ran(file, "--out", out)[1], "however long ago that was"
    exporting.finish = interrupted
    done.clear()
    try:
        ran(file, "--out", out)
    finally:
        exporting.finish = whole
    assert "done before" not in ran(file, "--out", out, "--parameters", "none")[1], "another run starts anew"
