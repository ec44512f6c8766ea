"""The scripts of tools/: their messages if something is missing or a path is wrong."""

import importlib.util
import os
import shutil
import subprocess
import sys
from importlib.machinery import SourceFileLoader
from pathlib import Path

import pytest

import quillgen

ROOT = Path(__file__).resolve().parents[2]


@pytest.mark.parametrize(
    "script, first",
    [
        ("make-docs", "tools/setup docs"),
        ("make-docs serve", "tools/setup docs"),
        ("check-stubs", "tools/setup tests lint types"),
        ("check-types", "tools/setup lint"),
        ("tidy", "tools/test --part clang"),
        ("sanitize --short", "tools/setup"),
    ],
)
def test_what_has_to_be_there_first_is_told(tmp_path, script, first):
    name, *arguments = script.split()
    (tmp_path / "tools").mkdir()
    shutil.copy(ROOT / "tools" / name, tmp_path / "tools")
    ended = subprocess.run([tmp_path / "tools" / name, *arguments], capture_output=True, text=True)
    assert ended.returncode == 2 and ended.stdout == ""
    (line,) = ended.stderr.splitlines()
    assert line.startswith(f"tools/{name} needs ") and first in line


@pytest.mark.parametrize("arguments", [["--help"], ["folder", "--tset"], ["folder", "--test", "more"], []])
def test_a_wrong_command_line_makes_no_machine(tmp_path, arguments):
    (tmp_path / "tools").mkdir()
    shutil.copy(ROOT / "tools" / "bare-machine", tmp_path / "tools")
    stub = tmp_path / "bin" / "debootstrap"
    stub.parent.mkdir()
    stub.write_text("#!/bin/sh\nexit 3\n")
    stub.chmod(0o755)
    ended = subprocess.run(
        [tmp_path / "tools" / "bare-machine", *arguments],
        env={**os.environ, "PATH": f"{stub.parent}:{os.environ['PATH']}"},
        capture_output=True,
        text=True,
    )
    assert (ended.returncode, ended.stdout) == (2, "")
    assert ended.stderr == "usage: tools/bare-machine FOLDER [--test]\n"


def test_the_example_for_pipelines_tells_of_a_folder_without_documents(tmp_path):
    example = ROOT / "examples" / "pipeline.py"
    folders = [str(Path(quillgen.__file__).parent), str(ROOT / "binding" / "python")]
    ended = subprocess.run(
        [sys.executable, example, tmp_path / "nowhere"],
        env={**os.environ, "PYTHONPATH": os.pathsep.join(folders)},
        capture_output=True,
        text=True,
    )
    assert ended.returncode == 1 and ended.stderr == f"no documents in {tmp_path / 'nowhere'}\n"


@pytest.fixture
def extension():
    loader = SourceFileLoader("make_extension", str(ROOT / "tools" / "extension"))
    spec = importlib.util.spec_from_loader("make_extension", loader)
    module = importlib.util.module_from_spec(spec)
    loader.exec_module(module)
    return module


def run(extension, monkeypatch, *arguments):
    monkeypatch.setattr("sys.argv", ["tools/extension", *map(str, arguments)])
    return extension.main()


def test_an_output_that_is_no_folder_is_a_mistake_of_the_command_line(extension, monkeypatch, tmp_path, capsys):
    out = tmp_path / "out"
    out.write_text("a file")
    with pytest.raises(SystemExit, match="2"):
        run(extension, monkeypatch, "--wheels", tmp_path, "--out", out)
    assert f"{out} is no folder" in capsys.readouterr().err


def test_a_wheel_of_no_platform_of_blender_makes_no_extension(extension, monkeypatch, tmp_path):
    (tmp_path / f"quillgen-{extension.project_version()}-cp311-abi3-linux_riscv64.whl").touch()
    monkeypatch.setattr(extension.subprocess, "run", lambda *command: subprocess.CompletedProcess(command, 0))
    with pytest.raises(SystemExit, match="no wheel there is for a platform of Blender: .*linux_riscv64"):
        run(extension, monkeypatch, "--wheels", tmp_path, "--out", tmp_path / "out")
    assert not list(tmp_path.rglob("*.zip"))


def test_a_wheel_that_cannot_be_built_is_told_without_a_traceback(extension, monkeypatch, tmp_path):
    monkeypatch.setattr(extension, "ROOT", tmp_path)  # an empty folder, which pip can't build
    with pytest.raises(SystemExit, match="the wheel for this machine could not be built"):
        extension.built(tmp_path / "wheels", "0.0.0")
