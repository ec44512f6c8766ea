"""The Blenders that tests run in: bpy of several versions, each in an environment that tools/setup makes.

QUILLGEN_BLENDERS names the versions, such as "4.2 5.2" (tools/test --blender sets it). Tests for a version that is not
installed are skipped and name it.
"""

import json
import os
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
ALL = ("4.2", "4.5", "5.0", "5.1", "5.2")
VERSIONS = tuple(os.environ.get("QUILLGEN_BLENDERS", "4.2 5.2").split())


def run(version, script, *words):
    """Runs a script in a Blender version. Returns the lines that it prints."""
    python = ROOT / f".venv-blender-{version}" / "bin" / "python"
    if not python.exists():
        pytest.skip(f"no Blender {version} here: tools/setup blender={version} makes it")
    done = subprocess.run([python, "-W", "ignore", script, *words], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr[-4000:]
    return done.stdout.splitlines()


def report(version, script, folder):
    """The JSON object that a script writes to the file it is given."""
    path = folder / "report.json"
    run(version, script, path)
    return json.loads(path.read_text())


def at_least(version, major, minor):
    return tuple(map(int, version.split("."))) >= (major, minor)
