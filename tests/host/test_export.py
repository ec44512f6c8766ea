"""From a material in Blender to the files that Unreal needs, in each Blender that there is an environment
for."""

import json
import sys
from pathlib import Path

import pytest
import quillgen

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import blenders  # noqa: E402


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def exported(request, tmp_path_factory):
    folder = tmp_path_factory.mktemp("unreal")
    lines = blenders.run(request.param, HERE / "export_in_blender.py", Path(quillgen.__file__).parent, folder)
    return folder, json.loads(lines[-1])


def test_all_files_are_written(exported):
    folder, report = exported
    assert report["files"] == [
        "Wall.hlsl",
        "Wall.displacement.hlsl",
        "Wall.json",
        "Wall.md",
        "Wall.document.json",
    ]
    result = quillgen.compile(report["document"])
    assert (folder / "Wall.hlsl").read_text() == result["code"] + "\n"
    assert (folder / "Wall.displacement.hlsl").read_text() == result["displacement"]["code"] + "\n"
    assert json.loads((folder / "Wall.document.json").read_text()) == report["document"]


def test_the_tables_name_everything_to_wire(exported):
    folder, report = exported
    result = quillgen.compile(report["document"])
    table, text = json.loads((folder / "Wall.json").read_text()), (folder / "Wall.md").read_text()
    assert table["inputs"] == result["inputs"] and table["outputs"] == result["outputs"]
    assert table["displacement"]["magnitude"] == result["displacement"]["magnitude"] and table["notes"] == [
        "a note"
    ]
    names = [
        entry["name"] for entry in result["inputs"] + result["outputs"] + result["displacement"]["inputs"]
    ]
    assert len(names) > 50 and all(f" {name} " in text or f" {name}:" in text for name in names)
    assert "{" not in text.replace("{}", "") and "a note" in text


def test_textures_hold_the_pixels_of_their_images(exported, request):
    folder, report = exported
    own = blenders.at_least(request.node.callspec.params["exported"], 5, 1)
    assert sorted(report["same"].values()) == [["Bytes.png"], ["Light"]]
    assert {name: found["alpha"] for name, found in report["images"].items()} == {
        "Bytes.png": "PREMUL" if own else "STRAIGHT",
        "Light": "STRAIGHT" if own else "PREMUL",
    }
    assert {path.suffix for path in folder.glob("T_*")} == {".png", ".exr"}
