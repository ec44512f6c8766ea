"""The command line as a separate process. checks/command_line.py tests its functions."""

import json
import os
import subprocess
import sys
from pathlib import Path

import pytest

import quillgen

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.path.insert(0, str(HERE.parent / "host"))

import blenders

BUILD = """
import sys, bpy
sys.path.insert(0, sys.argv[1])
import materials
bpy.ops.wm.read_factory_settings(use_empty=True)
materials.build()
bpy.ops.wm.save_as_mainfile(filepath=sys.argv[2])
"""


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def blender(request, tmp_path_factory):
    """The Python of a Blender, its environment and a file with materials."""
    python = ROOT / f".venv-blender-{request.param}" / "bin" / "python"
    if not python.exists():
        pytest.skip(f"no Blender {request.param} here: tools/setup blender={request.param} makes it")
    folder = tmp_path_factory.mktemp("command")
    environment = os.environ | {
        "BLENDER_USER_RESOURCES": str(folder / "user"),
        "PYTHONPATH": os.pathsep.join([str(ROOT / "blender"), str(Path(quillgen.__file__).parent)]),
    }
    file = folder / "scene.blend"
    subprocess.run([python, "-W", "ignore", "-c", BUILD, HERE, file], env=environment, check=True, capture_output=True)
    return python, environment, file


def run(blender, *words):
    python, environment, _ = blender
    done = subprocess.run([python, "-W", "ignore", *words], env=environment, capture_output=True, text=True)
    return done.returncode, done.stdout, done.stderr


def test_as_a_module(blender, tmp_path):
    code, told, errors = run(blender, "-m", "quillgen_blender", blender[2], "--out", tmp_path / "out")
    assert code == 0, told + errors
    assert "6 exported, 0 unchanged, 0 failed" in told
    assert {json.loads(path.read_bytes())["name"] for path in tmp_path.glob("out/*/material.json")} >= {"Oak", "OAK"}


def test_as_a_script_with_blenders_own_words_ahead(blender, tmp_path):
    script = ROOT / "blender" / "quillgen_blender" / "__main__.py"
    words = ("--background", "--", blender[2], "--out", tmp_path / "out", "--material", "Sand")
    code, told, errors = run(blender, script, *words)
    assert code == 0 and "1 exported" in told, told + errors
    assert [path.name for path in (tmp_path / "out").iterdir()] == ["Sand"]


def test_the_exit_code_reaches_the_shell(blender, tmp_path):
    code, _, errors = run(blender, "-m", "quillgen_blender", tmp_path / "gone.blend", "--out", tmp_path)
    assert code == 2 and "no such file" in errors
    assert run(blender, "-m", "quillgen_blender", "--help")[0] == 0
