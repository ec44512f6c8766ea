"""Invalid exports: one message names the file and the material, and the old asset is unchanged."""

import hashlib
import json

import numpy as np
import pytest
from PIL import Image

import test_inputs

SETTINGS = {"shading": "default_lit", "blend": "opaque", "two_sided": True, "tangent_space_normal": False}


def edit(folder, change, file="material.json"):
    path = folder / file
    content = json.loads(path.read_text(encoding="utf-8"))
    change(content)
    path.write_text(json.dumps(content), encoding="utf-8")


def retext(folder, text):
    (folder / "surface.hlsl").write_text(text, encoding="utf-8")
    digest = hashlib.sha256(text.encode()).hexdigest()
    edit(folder, lambda m: m["surface"].update(sha256=digest))


def state(editor):
    """Everything that an import could change."""
    found = {}
    for path, asset in editor.assets.items():
        found[path] = repr((asset._values, asset._tags))
        for number, e in enumerate(getattr(asset, "_expressions", ())):
            wires = {pin: (s.get_name(), i) for pin, (s, i) in e._wires.items()}
            found[path, number] = repr((e.get_name(), sorted(e._values), e._values.get("code"), wires))
    return found


def put(record, key, value):
    record[key] = value


# Modification of a valid export -> words of the message, and the file that it names.
CASES = {
    "newer version": (lambda f: edit(f, lambda m: put(m, "version", 2)), "version 2", "material.json"),
    "older values": (
        lambda f: edit(f, lambda m: put(m, "version", 0), "parameters.json"),
        "version 0",
        "parameters.json",
    ),
    "another format": (lambda f: edit(f, lambda m: put(m, "format", "gltf")), "format", "material.json"),
    "no manifest": (lambda f: (f / "material.json").unlink(), "missing", "material.json"),
    "half a manifest": (lambda f: (f / "material.json").write_text('{"format": "qui'), "no JSON", "material.json"),
    "no text": (lambda f: (f / "surface.hlsl").unlink(), "missing", "surface.hlsl"),
    "another text": (lambda f: (f / "surface.hlsl").write_text("return 1;"), "isn't the one", "surface.hlsl"),
    "no values": (lambda f: (f / "parameters.json").unlink(), "missing", "parameters.json"),
    "no picture": (lambda f: next((f.parent / "_textures").iterdir()).unlink(), "'T_", "_textures"),
    "another picture": (
        lambda f: next((f.parent / "_textures").iterdir()).write_bytes(b"\x89PNG"),
        "isn't the one",
        "_textures",
    ),
    "unknown kind": (
        lambda f: edit(f, lambda m: put(m["surface"]["inputs"][-1], "kind", "moon_phase")),
        "moon_phase",
        "material.json",
    ),
    "unknown derivative": (
        lambda f: edit(f, lambda m: m["surface"]["inputs"][-1].update(kind="ddx", of={"kind": "moon"})),
        "moon",
        "material.json",
    ),
    "unknown axis": (
        lambda f: edit(f, lambda m: m["surface"]["inputs"][-1].update(kind="view_axis", axis="w")),
        "'w'",
        "material.json",
    ),
    "unknown property": (
        lambda f: edit(f, lambda m: put(m["surface"]["outputs"][0], "property", "sheen")),
        "sheen",
        "material.json",
    ),
    "unknown shading": (lambda f: edit(f, lambda m: put(m["settings"], "shading", "toon")), "toon", "material.json"),
    "unknown mode": (lambda f: edit(f, lambda m: put(m, "mode", "volume")), "volume", "material.json"),
    "a name that HLSL refuses": (
        lambda f: edit(f, lambda m: put(m["surface"]["inputs"][-1], "name", "a-b")),
        "a-b",
        "material.json",
    ),
    "a text elsewhere": (
        lambda f: edit(f, lambda m: put(m["surface"], "file", "../x.hlsl")),
        "another folder",
        "material.json",
    ),
    "a parameter without a record": (
        lambda f: edit(f, lambda m: m["parameters"]["records"].pop()),
        "no record",
        "material.json",
    ),
    "a value that is none": (
        lambda f: edit(f, lambda v: put(v["values"], next(iter(v["values"])), "red"), "parameters.json"),
        "red",
        "parameters.json",
    ),
    "a value beyond all floats": (
        lambda f: edit(f, lambda v: put(v["values"], next(iter(v["values"])), 1e39), "parameters.json"),
        "1e+39",
        "parameters.json",
    ),
    "two of one label": (
        lambda f: edit(
            f, lambda m: put(m["parameters"]["records"][1], "label", m["parameters"]["records"][0]["label"].upper())
        ),
        "one name",
        "material.json",
    ),
    "no settings": (lambda f: edit(f, lambda m: m.pop("settings")), "settings", "material.json"),
}


@pytest.fixture
def crate(tmp_path):
    """The folder of an exported material with parameters and textures."""
    from conftest import ROOT
    from quillgen_blender import pipeline

    pipeline.export_examples(tmp_path / "out", [ROOT / "examples" / "materials" / "pbr_crate.json"])
    return tmp_path / "out" / "Pbr Crate"


@pytest.mark.parametrize("case", CASES)
@pytest.mark.parametrize("again", [False, True], ids=["new", "old asset"])
def test_bad_exports(start, crate, case, again):
    spoil, words, file = CASES[case]
    ue = start()
    ue.importer.PATIENCE = 0.0
    if again:
        ue.plugin.import_material(crate)
        retext(crate, "return float3(0, 0, 0);  // another")
        if file == "_textures":  # the textures must be new too
            ue.editor.assets = {p: a for p, a in ue.editor.assets.items() if "/Textures/" not in p}
    ue.editor.save_all()
    before = state(ue.editor)
    spoil(crate)
    outcome = ue.importer.attempt(crate, "/Game/Blender", patience=0.0)
    assert outcome.status == "failed"
    (message,) = ue.editor.texts("log_error")
    assert words in message and file in message and "Pbr Crate" in message and "\n" not in message
    after = state(ue.editor)
    assert {k: v for k, v in after.items() if "/Textures/" not in str(k)} == {
        k: v for k, v in before.items() if "/Textures/" not in str(k)
    }
    assert not ue.editor.compiled[1 if again else 0 :]


def test_what_this_editor_refuses_shows_before_the_old_graph_goes(start, crate):
    """If a version doesn't have a pin, the old graph is kept."""
    ue = start()
    ue.plugin.import_material(crate)
    retext(crate, "return float3(0, 0, 0);  // another")
    ue.editor.save_all()
    before = state(ue.editor)
    custom = ue.unreal.MaterialExpressionMakeMaterialAttributes
    custom._pins_in = tuple(pin for pin in custom._pins_in if pin != "Normal")
    with pytest.raises(ue.errors.Refused, match=r"Pbr Crate: this version of Unreal has no such pins.*Normal"):
        ue.plugin.import_material(crate)
    assert state(ue.editor) == before and not ue.editor.unsaved


def test_a_new_material_that_fails_leaves_no_asset(start, crate):
    ue = start()
    custom = ue.unreal.MaterialExpressionMakeMaterialAttributes
    custom._pins_in = tuple(pin for pin in custom._pins_in if pin != "Normal")
    with pytest.raises(ue.errors.Refused, match="Normal"):
        ue.plugin.import_material(crate)
    assert not [path for path in ue.editor.assets if "/M_" in path or "/MI_" in path]


@pytest.mark.parametrize("path", ["Game/Blender", "D:/Materials", "/Game/My Folder", "/Game//x", "", "/Game/a.b"])
def test_a_content_path_that_is_none(start, crate, path):
    ue = start()
    with pytest.raises(ue.errors.Refused, match="no folder of the content browser"):
        ue.plugin.import_all(crate.parent, path)
    assert not ue.editor.assets


def test_names(start, tmp_path):
    ue = start()
    plain = tmp_path / "out"
    one = ({"kind": "vertex_normal"},)
    assert (
        ue.plugin.import_material(test_inputs.export(plain, one, "Öl & Holz.001")).material
        == "/Game/Blender/M_Öl___Holz_001"
    )
    with pytest.raises(ue.errors.Refused, match="no asset can have this name"):
        ue.plugin.import_material(test_inputs.export(plain, one, "???"))
    with pytest.raises(ue.errors.Refused, match="characters long"):
        ue.plugin.import_material(test_inputs.export(plain, one, "x" * 60), "/Game/" + "y" * 150)


def test_two_materials_whose_assets_would_be_the_same(start, tmp_path):
    ue = start()
    one = ({"kind": "vertex_normal"},)
    ue.plugin.import_material(test_inputs.export(tmp_path / "out", one, "Oak.Planks"))
    second = test_inputs.export(tmp_path / "out", one, "Oak Planks")
    with pytest.raises(
        ue.errors.Refused,
        match=r"Oak Planks: /Game/Blender/M_Oak_Planks is there already and belongs "
        "to the material 'Oak.Planks'",
    ):
        ue.plugin.import_material(second)


def test_assets_of_the_user_are_left_alone(start, tmp_path):
    ue = start()
    tools = ue.unreal.AssetToolsHelpers.get_asset_tools()
    tools.create_asset("M_Oak", "/Game/Blender", ue.unreal.Material, ue.unreal.MaterialFactoryNew())
    ue.editor.save_all()
    with pytest.raises(ue.errors.Refused, match="wasn't imported from Blender"):
        ue.plugin.import_material(test_inputs.export(tmp_path / "out", ({"kind": "vertex_normal"},), "Oak"))
    assert not ue.editor.unsaved


def test_one_that_fails_stops_no_other(start, crate, tmp_path):
    ue = start()
    test_inputs.export(crate.parent, ({"kind": "vertex_normal"},), "Aaa")
    test_inputs.export(crate.parent, ({"kind": "vertex_normal"},), "Zzz")
    edit(crate, lambda m: put(m, "version", 9))
    outcomes = ue.plugin.import_all(crate.parent)
    assert [o.status for o in outcomes] == ["made", "failed", "made"]
    assert "2 made, 1 failed" in ue.editor.texts("log")[-1]


def test_a_picture_that_unreal_refuses(start, crate):
    ue = start()
    ue.editor.unloadable |= {path.name for path in (crate.parent / "_textures").iterdir()}
    with pytest.raises(ue.errors.Refused, match="can't import the picture"):
        ue.plugin.import_material(crate)


def test_pictures_that_were_not_exported_this_time(start, crate):
    """Existing textures of the material are kept; if there are none, the material is refused."""

    def without(manifest):
        for record in manifest["textures"]:
            record.update(file=None, sha256=None)

    ue = start()
    ue.plugin.import_material(crate)
    used = {e.texture for e in ue.editor.assets["/Game/Blender/M_Pbr_Crate"]._expressions if "texture" in e._types}
    edit(crate, without)
    retext(crate, (crate / "surface.hlsl").read_text(encoding="utf-8") + "// more\n")
    assert ue.plugin.import_material(crate).status == "updated"
    again = {e.texture for e in ue.editor.assets["/Game/Blender/M_Pbr_Crate"]._expressions if "texture" in e._types}
    assert again == used and None not in again
    with pytest.raises(ue.errors.Refused, match="wasn't exported.*is the picture there in Blender, and Textures on"):
        ue.plugin.import_material(crate, "/Game/Elsewhere")


def test_pictures_are_imported_by_the_rules_and_shared(start, tmp_path):
    from quillgen_blender import write

    grey = tmp_path / "Wood_grey.png"
    Image.fromarray(np.full((4, 4), 77, np.uint8)).save(grey)
    image = {"name": "T_a", "kind": "texture", "image": "Wood_grey.png", "srgb": False, "float": False}
    for name in ("One", "Two"):
        result = {
            "code": "return 0;",
            "inputs": [image],
            "outputs": [],
            "material": SETTINGS,
            "warnings": [],
            "params": {},
            "displacement": None,
        }
        write.write_material(
            write.look(tmp_path / "out"),
            write.Material(
                name, {"nodes": []}, result, mode="emission", pictures={"Wood_grey.png": write.Picture(grey)}
            ),
        )
    ue = start()
    ue.editor.virtual_textures = True
    assert [o.status for o in ue.plugin.import_all(tmp_path / "out")] == ["made", "made"]
    (texture,) = [a for path, a in ue.editor.assets.items() if "/Textures/" in path]
    assert texture.compression_settings.name == "TC_VECTOR_DISPLACEMENTMAP"
    assert texture.mip_gen_settings.name == "TMGS_NO_MIPMAPS" and texture.never_stream
    assert not texture.srgb and not texture.virtual_texture_streaming and texture.max_texture_size == 0
    ue.editor.save_all()
    texture.set_editor_property("srgb", True)  # a manual change by the user
    assert "updated" in [o.status for o in ue.plugin.import_all(tmp_path / "out")]
    assert not texture.srgb
