"""Runs the user interface checks of checks/ in each Blender."""

import ast
import json
import os
import subprocess
import sys
from pathlib import Path

import pytest

import quillgen

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "host"))

from checks import SUBJECTS

import blenders

# Collected from the source texts, because importing the checks needs Blender.
NAMES = [
    node.name
    for subject in SUBJECTS
    for node in ast.parse((HERE / "checks" / f"{subject}.py").read_text(encoding="utf-8")).body
    if isinstance(node, ast.FunctionDef) and node.name.startswith("check_")
]


def test_every_subject_is_run():
    files = {path.stem for path in (HERE / "checks").glob("*.py")}
    assert files - {"__init__", "setting"} == set(SUBJECTS) and len(NAMES) == len(set(NAMES))


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def found(request, tmp_path_factory):
    return in_blender(request.param, tmp_path_factory.mktemp("interface"))


def in_blender(version, folder):
    python = blenders.ROOT / f".venv-blender-{version}" / "bin" / "python"
    if not python.exists():
        pytest.skip(f"no Blender {version} here: tools/setup blender={version} makes it")
    environment = os.environ | {
        "BLENDER_USER_RESOURCES": str(folder / "user"),
        "PYTHONPATH": str(Path(quillgen.__file__).parent),
    }
    done = subprocess.run(
        [python, "-W", "ignore", HERE / "run_checks.py", folder / "report.json"],
        capture_output=True,
        text=True,
        env=environment,
    )
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr[-4000:]
    report = json.loads((folder / "report.json").read_text())
    print(f"Blender {version}:", ", ".join(f"{name} {number:.2f}" for name, number in report["numbers"].items()))
    return report["checks"]


@pytest.mark.parametrize("name", NAMES)
def test_interface(found, name):
    assert found[name] == ""
