"""The files of an export: complete, separate for each material, and valid by their schema."""

import dataclasses
import hashlib
import json
import os
from pathlib import Path

import jsonschema
import pytest

import quillgen
from quillgen_blender import pipeline, write
from quillgen_blender.notes import Note
from quillgen_blender.passes import support
from quillgen_blender.write import files, names

ROOT = Path(__file__).resolve().parents[2]
DOCUMENTS = sorted((ROOT / "examples" / "materials").glob("*.json"))
SCHEMA = json.loads((ROOT / "docs" / "exchange.schema.json").read_text(encoding="utf-8"))
VALIDATOR = jsonschema.Draft202012Validator(SCHEMA)


def document(strength=1.0, color=(1.0, 1.0, 1.0, 1.0), nodes=()):
    shader = {
        "id": "Emission",
        "type": "ShaderNodeEmission",
        "in": {"Color": {"t": "RGBA", "v": list(color)}, "Strength": {"t": "VALUE", "v": strength}},
        "outs": {"Emission": "SHADER"},
        "props": {},
    }
    return {"nodes": [shader, *nodes], "out": {"surface": ["Emission", "Emission"]}}


def displaced():
    found = document()
    found["nodes"].append(
        {
            "id": "Displacement",
            "type": "ShaderNodeDisplacement",
            "in": {
                "Height": {"t": "VALUE", "v": 1.0},
                "Midlevel": {"t": "VALUE", "v": 0.5},
                "Scale": {"t": "VALUE", "v": 0.1},
                "Normal": {"t": "VECTOR", "v": [0, 0, 0]},
            },
            "outs": {"Displacement": "VECTOR"},
            "props": {"space": "OBJECT"},
        }
    )
    found["out"]["displacement"] = ["Displacement", "Displacement"]
    found["settings"] = {"displacement": "BOTH"}
    return found


def pictured(image="Bark.png"):
    found = document()
    found["images"] = {image: {"name": image, "colorspace": "sRGB"}}
    found["nodes"][0]["in"]["Color"] = {"t": "RGBA", "link": ["Image", "Color", "RGBA"]}
    found["nodes"].append(
        {
            "id": "Image",
            "type": "ShaderNodeTexImage",
            "in": {"Vector": {"t": "VECTOR", "v": [0, 0, 0]}},
            "outs": {"Color": "RGBA", "Alpha": "VALUE"},
            "props": {"image": image, "interpolation": "Linear", "extension": "REPEAT", "projection": "FLAT"},
        }
    )
    return found


def export(folder, name="Oak", made=None, **more):
    return pipeline.export_document(write.look(folder), name, made or document(), **more)


def valid(folder):
    """Returns a material's manifest after checking it like a reader would."""
    found = json.loads((folder / "material.json").read_bytes())
    VALIDATOR.validate(found)
    VALIDATOR.validate(json.loads((folder / "parameters.json").read_bytes()))
    for part in (found["surface"], found["displacement"]):
        if part:
            assert hashlib.sha256((folder / part["file"]).read_bytes()).hexdigest() == part["sha256"]
    for record in found["textures"]:
        if record["file"]:
            assert hashlib.sha256((folder / record["file"]).read_bytes()).hexdigest() == record["sha256"]
    return found


def listing(folder):
    return {path.relative_to(folder).as_posix(): path.read_bytes() for path in folder.rglob("*") if path.is_file()}


def test_the_schema_is_one():
    jsonschema.Draft202012Validator.check_schema(SCHEMA)
    assert not VALIDATOR.is_valid({"format": "quillgen-material", "version": 1})


def test_all_examples_are_exported_as_the_schema_says(tmp_path):
    for path, written in zip(DOCUMENTS, pipeline.export_examples(tmp_path, DOCUMENTS), strict=True):
        found = valid(written.folder)
        result = pipeline.translate("", json.loads(path.read_bytes())).result
        named = {row["name"] for row in found["parameters"]["records"]}
        assert named == set(result["params"])
        assert all(row["node"] for row in found["parameters"]["records"]), "each leads to its node"
        assert all(record["file"] for record in found["textures"])
    crate = valid(tmp_path / "Pbr Crate")
    assert len(crate["textures"]) == 4
    assert not list(tmp_path.rglob(names.TEMPORARY + "*"))


def test_the_text_stands_in_the_file_as_it_is(tmp_path):
    folder = export(tmp_path).folder
    assert (folder / "surface.hlsl").read_bytes().decode() == quillgen.compile(document())["code"] + "\n"


def test_only_values_write_only_the_values(tmp_path):
    folder = export(tmp_path).folder
    before = listing(tmp_path)
    assert export(tmp_path).changed == "nothing"
    assert export(tmp_path, made=document(strength=2.5)).changed == "parameters"
    after = listing(tmp_path)
    assert {name for name in after if after[name] != before[name]} == {"Oak/parameters.json"}
    assert json.loads(after["Oak/parameters.json"])["values"]["P_Emission__Strength"] == 2.5
    valid(folder)


def test_a_text_that_someone_changed_is_written_again(tmp_path):
    folder = export(tmp_path).folder
    (folder / "surface.hlsl").write_text("mine")
    assert export(tmp_path).changed == "all"
    valid(folder)


def test_a_displacement_that_went_takes_its_own_file_along(tmp_path):
    folder = export(tmp_path, made=displaced()).folder
    assert valid(folder)["displacement"]["magnitude"] > 1
    export(tmp_path)
    assert valid(folder)["displacement"] is None and not (folder / "displacement.hlsl").exists()


def test_displacement_may_be_left_out(tmp_path):
    folder = export(tmp_path, made=displaced(), settings=pipeline.Settings(displacement=False)).folder
    assert valid(folder)["displacement"] is None


def test_nothing_else_is_removed(tmp_path):
    folder = export(tmp_path, made=displaced()).folder
    (folder / "displacement.hlsl").write_text("what an artist made of it")
    (folder / "notes.txt").write_text("mine")
    (tmp_path / "other").mkdir()
    (tmp_path / "_textures").mkdir()
    (tmp_path / "_textures" / "mine.png").write_bytes(b"png")
    export(tmp_path)
    valid(folder)
    assert (folder / "displacement.hlsl").read_text() == "what an artist made of it"
    assert (folder / "notes.txt").exists() and (tmp_path / "other").exists()
    assert (tmp_path / "_textures" / "mine.png").exists()


def test_a_folder_of_someone_else_is_left_alone(tmp_path):
    (tmp_path / "Oak").mkdir()
    (tmp_path / "Oak" / "surface.hlsl").write_text("mine")
    (tmp_path / "Elm").mkdir()
    (tmp_path / "Ash").write_text("a file")
    assert export(tmp_path).folder.name == "Oak 2"
    assert export(tmp_path, "Elm").folder.name == "Elm"  # it was empty
    assert export(tmp_path, "Ash").folder.name == "Ash 2"
    assert (tmp_path / "Oak" / "surface.hlsl").read_text() == "mine"


@pytest.mark.parametrize(
    "content",
    [
        "{",
        "[]",
        '{"format": "quillgen-material", "version": 1}',
        '{"format": "quillgen-material", "version": 2}',
        '{"format": "other"}',
    ],
)
def test_a_manifest_that_is_none_of_ours_keeps_its_folder(tmp_path, content):
    (tmp_path / "Oak").mkdir()
    (tmp_path / "Oak" / "material.json").write_text(content)
    assert export(tmp_path).folder.name == "Oak 2"
    assert (tmp_path / "Oak" / "material.json").read_text() == content


def test_materials_keep_their_folders_whatever_comes_later(tmp_path):
    assert export(tmp_path, "wood").folder.name == "wood"
    assert export(tmp_path, "Wood").folder.name == "Wood 2"
    assert export(tmp_path, "wood").folder.name == "wood"
    assert export(tmp_path, "Wood").folder.name == "Wood 2"
    assert valid(tmp_path / "Wood 2")["name"] == "Wood"


def test_two_materials_of_one_name_are_told_by_their_libraries(tmp_path):
    made = pipeline.translate("Oak", document())
    target = write.look(tmp_path)
    for library in ("", "trees.blend"):
        write.write_material(target, dataclasses.replace(made, library=library))
    assert [valid(tmp_path / name)["library"] for name in ("Oak", "Oak 2")] == ["", "trees.blend"]


def test_a_write_that_fails_leaves_the_last_export(tmp_path, monkeypatch):
    export(tmp_path, made=displaced())
    before = listing(tmp_path)
    done = []

    def breaks(source, place):
        done.append(place.name)
        if len(done) == 2:
            raise OSError("disk full")
        os.replace(source, place)

    monkeypatch.setattr(files, "move", breaks)
    with pytest.raises(OSError, match="disk full"):
        export(tmp_path, made=document(nodes=[]))
    assert listing(tmp_path) == before and len(done) == 2


def test_a_first_write_that_fails_leaves_nothing(tmp_path, monkeypatch):
    monkeypatch.setattr(os, "rename", lambda *_: (_ for _ in ()).throw(OSError("no")))
    with pytest.raises(OSError, match="no"):
        export(tmp_path)
    assert listing(tmp_path) == {}


def test_what_a_killed_export_left_is_swept_later(tmp_path):
    old, new = tmp_path / ".quillgen-old", tmp_path / ".quillgen-new"
    old.mkdir()
    new.mkdir()
    os.utime(old, (0, 0))
    export(tmp_path)
    assert not old.exists() and new.exists()


def test_pictures_are_shared_and_go_when_nobody_needs_them(tmp_path):
    out, picture = tmp_path / "out", tmp_path / "bark.PNG"
    picture.write_bytes(b"first")
    for name in ("Oak", "Elm"):
        export(out, name, pictured(), pictures={"Bark.png": picture})
    first = [path.name for path in (out / "_textures").iterdir()]
    assert first == [f"Bark-{hashlib.sha256(b'first').hexdigest()[:8]}.png"]
    picture.write_bytes(b"second")
    export(out, "Oak", pictured(), pictures={"Bark.png": picture})
    assert len(list((out / "_textures").iterdir())) == 2
    export(out, "Elm", pictured(), pictures={"Bark.png": picture})
    assert first[0] not in [path.name for path in (out / "_textures").iterdir()]
    record = valid(out / "Oak")["textures"][0]
    assert record["import"] == {
        "srgb": False,
        "compression": "rgba8",
        "mipmaps": False,
        "streaming": False,
        "virtual": False,
    }


@pytest.mark.parametrize("other", ["Elm", "Ash"], ids=["there before", "new"])
def test_a_picture_stays_that_somebody_else_has_begun_to_use(tmp_path, other):
    """Live update caches the state of the folder while the buttons export to it."""
    out = tmp_path / "out"
    first, second = tmp_path / "first.png", tmp_path / "second.png"
    first.write_bytes(b"first")
    second.write_bytes(b"second")
    export(out, "Oak", pictured(), pictures={"Bark.png": first})
    export(out, "Elm", pictured(), pictures={"Bark.png": second})
    known = write.look(out)
    export(out, other, pictured(), pictures={"Bark.png": first})
    made = write.Material("Oak", pictured(), quillgen.compile(pictured()), pictures={"Bark.png": write.Picture(second)})
    write.write_material(known, made)
    assert (out / other / valid(out / other)["textures"][0]["file"]).is_file()


def test_a_picture_that_someone_changed_stays(tmp_path):
    out, picture = tmp_path / "out", tmp_path / "bark.png"
    picture.write_bytes(b"first")
    export(out, "Oak", pictured(), pictures={"Bark.png": picture})
    (mine,) = (out / "_textures").iterdir()
    mine.write_bytes(b"painted over")
    picture.write_bytes(b"second")
    export(out, "Oak", pictured(), pictures={"Bark.png": picture})
    assert mine.read_bytes() == b"painted over"


def test_without_pictures_those_of_the_last_export_stay(tmp_path):
    picture = tmp_path / "bark.png"
    picture.write_bytes(b"first")
    folder = export(tmp_path / "out", "Oak", pictured()).folder
    assert valid(folder)["textures"][0]["file"] is None
    export(tmp_path / "out", "Oak", pictured(), pictures={"Bark.png": picture})
    export(tmp_path / "out", "Oak", pictured())
    assert valid(folder)["textures"][0]["file"].startswith("../_textures/Bark-")


def test_a_displacement_that_is_too_deep_is_told_in_words():
    made = displaced()
    last = made["out"]["displacement"]
    for place in range(600):
        entries = {"Vector": {"t": "VECTOR", "link": [*last, "VECTOR"]}, "Vector_001": {"t": "VECTOR", "v": [0, 0, 0]}}
        name = f"Add {place}"
        made["nodes"].append(
            {
                "id": name,
                "type": "ShaderNodeVectorMath",
                "in": entries,
                "outs": {"Vector": "VECTOR"},
                "props": {"operation": "ADD"},
            }
        )
        last = [name, "Vector"]
    made["out"]["displacement"] = last
    with pytest.raises(pipeline.Failed, match="follow one another"):
        pipeline.translate("Deep", made)


def test_remarks_name_the_node_in_the_artists_words(tmp_path):
    lost = {"id": "Script", "type": "ShaderNodeScript", "in": {}, "outs": {"BSDF": "SHADER"}, "props": {}}
    unknown = lost | {"id": "New (one)", "type": "ShaderNodeOfTomorrow"}
    for node, text, loss in (
        (lost, support.support("ShaderNodeScript").text, "lost"),
        (unknown, "(ShaderNodeOfTomorrow) has no Unreal equivalent - its outputs are 0", "warning"),
    ):
        made = document(nodes=[node])
        made["out"]["surface"] = [node["id"], "BSDF"]
        notes = [Note("", "a driver", "info"), Note("", "a driver", "info")]
        folder = write.write_material(write.look(tmp_path), pipeline.translate(node["id"], made, notes)).folder
        remarks = valid(folder)["remarks"]
        assert remarks == [
            {"node": "", "text": "a driver", "loss": "info"},
            {"node": node["id"], "text": text, "loss": loss},
        ]
