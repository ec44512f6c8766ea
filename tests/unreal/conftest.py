"""Loads the plugin's scripts with a test double in place of the editor."""

import importlib
import pathlib
import sys
import types

import pytest

HERE = pathlib.Path(__file__).parent
ROOT = HERE.parents[1]
SCRIPTS = ROOT / "unreal" / "Quillgen" / "Content" / "Python"
for folder in (ROOT, ROOT / "blender", SCRIPTS, HERE, HERE.parent / "gpu"):
    sys.path.insert(0, str(folder))

import double
from double import tables

NEWEST = tables.VERSIONS[-1]


def _forget():
    for name in [name for name in sys.modules if name == "unreal" or name.split(".")[0] == "quillgen_unreal"]:
        del sys.modules[name]


@pytest.fixture
def start(tmp_path):
    """start(version) loads the plugin in a double of that editor version. Returns a namespace with `unreal`, `editor`,
    `plugin` and the plugin's modules."""

    def started(version=NEWEST):
        _forget()
        unreal, editor = double.make(version, tmp_path)
        sys.modules["unreal"] = unreal
        plugin = importlib.import_module("quillgen_unreal")
        modules = {
            path.stem: importlib.import_module(f"quillgen_unreal.{path.stem}")
            for path in (SCRIPTS / "quillgen_unreal").glob("*.py")
            if path.stem != "__init__"
        }
        return types.SimpleNamespace(unreal=unreal, editor=editor, plugin=plugin, **modules)

    yield started
    _forget()


@pytest.fixture(scope="session")
def examples(tmp_path_factory):
    """The folder to which all example materials were exported."""
    from quillgen_blender import pipeline

    folder = tmp_path_factory.mktemp("examples")
    pipeline.export_examples(folder, sorted((ROOT / "examples" / "materials").glob("*.json")))
    return folder
