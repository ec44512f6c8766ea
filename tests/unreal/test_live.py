"""Updates in place, live and by the menu: which assets change, which are compiled, which are kept."""

import json
import shutil

import pytest

import test_inputs
from double.libraries import width_of
from examples.gallery import materials
from quillgen_blender import pipeline, write
from shader import kind_of, wires
from test_refused import edit, put, retext

M, MI = "/Game/Blender/M_Car_Paint", "/Game/Blender/MI_Car_Paint"


def export(folder, change=lambda document: None):
    """Exports one example as Blender would after a change. Returns what was written."""
    document = materials.document("car_paint")
    change(document)
    return pipeline.export_document(write.look(folder), "Car Paint", document)


def slide(value):
    """A change that sets the value of a socket."""

    def change(document):
        node = next(n for n in document["nodes"] if n["type"] == "ShaderNodeBsdfPrincipled")
        node["in"]["Coat Roughness"]["v"] = value

    return change


def another_text(document):
    node = next(n for n in document["nodes"] if n["type"].startswith("ShaderNodeTex"))
    node["in"]["Scale"] = {"t": "VALUE", "link": ["Extra", "Value", "VALUE"]}
    document["nodes"].append(
        {
            "id": "Extra",
            "type": "ShaderNodeValue",
            "in": {},
            "outs": {"Value": "VALUE"},
            "props": {"value": 3.0},
            "value": 3.0,
        }
    )


def held(editor, path=MI):
    instance = editor.assets[path]
    return {
        r.parameter_info.name: r.parameter_value
        for key in ("scalar_parameter_values", "vector_parameter_values")
        for r in instance._values[key]
    }


@pytest.fixture
def paint(start, tmp_path):
    ue = start()
    ue.folder = tmp_path / "out"
    export(ue.folder)
    ue.plugin.import_all(ue.folder)
    ue.editor.save_all()
    ue.editor.compiled.clear()
    return ue


def test_the_instance_holds_the_values(paint):
    records = json.loads((paint.folder / "Car Paint" / "material.json").read_text(encoding="utf-8"))["parameters"]
    found = held(paint.editor)
    assert set(found) == {r["label"] for r in records["records"]}
    for record in records["records"]:
        value = found[record["label"]]
        value = [value.r, value.g, value.b, value.a] if record["kind"] == "vector" else value
        assert value == pytest.approx(record["default"], rel=1e-6)


def test_parameters_as_an_artist_reads_them(paint):
    records = json.loads((paint.folder / "Car Paint" / "material.json").read_text(encoding="utf-8"))["parameters"]
    made = {
        e.parameter_name: e
        for e in paint.editor.assets[M]._expressions
        if type(e).__name__.endswith(("ScalarParameter", "VectorParameter"))
    }
    assert set(made) == {r["label"] for r in records["records"]}
    custom = next(e for e in paint.editor.assets[M]._expressions if kind_of(e) == "Custom" and len(e.outputs()) > 1)
    for name, source, index in wires(custom):
        if kind_of(source) == "VectorParameter":
            assert width_of(source, index) == 4, name  # the output with all four components
    for record in records["records"]:
        e = made[record["label"]]
        assert (e.group, e.sort_priority) == (record["group"], record["order"])
        assert type(e).__name__ == f"MaterialExpression{record['kind'].capitalize()}Parameter"
        if record["kind"] == "scalar" and None not in (record["min"], record["max"]):
            assert (e.slider_min, e.slider_max) == pytest.approx((record["min"], record["max"]))


def test_a_slider_touches_the_instance_alone(paint):
    written = export(paint.folder, slide(0.625))
    assert written.changed == "parameters"
    (outcome,) = paint.plugin.import_all(paint.folder)
    assert outcome.status == "values"
    assert paint.editor.unsaved == {MI} and not paint.editor.compiled
    assert 0.625 in held(paint.editor).values()


def test_values_that_32_bits_round_are_set_once(paint):
    export(paint.folder, slide(0.1))
    assert paint.plugin.import_all(paint.folder)[0].status == "values"
    paint.editor.save_all()
    assert paint.plugin.import_all(paint.folder)[0].status == "unchanged"
    assert not paint.editor.unsaved


def test_other_defaults_alone_compile_nothing(paint):
    """This is the state after an export of everything: the text is unchanged, and the instance has the values."""
    folder = paint.folder / "Car Paint"

    def change(manifest):
        for record in (*manifest["parameters"]["records"], *manifest["surface"]["inputs"]):
            if record["kind"] == "scalar":
                record["default"] = 0.5

    edit(folder, change)
    assert paint.plugin.import_all(paint.folder)[0].status == "unchanged"
    (folder / "parameters.json").write_text('{"format": "quillgen-parameters", "version": 1, "values": {}}')
    assert paint.plugin.import_all(paint.folder)[0].status == "values"
    assert not paint.editor.compiled and paint.editor.unsaved == {MI}


def test_another_text_rebuilds_the_material_in_place(paint):
    material, instance = paint.editor.assets[M], paint.editor.assets[MI]
    own = paint.unreal.AssetToolsHelpers.get_asset_tools().create_asset(
        "MI_Mine", "/Game", paint.unreal.MaterialInstanceConstant, paint.unreal.MaterialInstanceConstantFactoryNew()
    )
    library = paint.unreal.MaterialEditingLibrary
    library.set_material_instance_parent(own, material)
    name = next(n for n, v in held(paint.editor).items() if isinstance(v, float))
    assert library.set_material_instance_scalar_parameter_value(own, name, 0.125)
    paint.editor.save_all()
    export(paint.folder, another_text)
    (outcome,) = paint.plugin.import_all(paint.folder)
    assert outcome.status == "updated" and paint.editor.compiled == [M]
    assert paint.editor.assets[M] is material and paint.editor.assets[MI] is instance
    assert "/Game/MI_Mine" not in paint.editor.unsaved and own.parent is material
    assert held(paint.editor, "/Game/MI_Mine") == {name: 0.125}
    assert name in {e.parameter_name for e in material._expressions if "parameter_name" in e._types}
    assert paint.editor.transactions[-2:] == ["Import Car Paint from Blender", ""]


def test_force_builds_anew(paint):
    (outcome,) = paint.plugin.import_all(paint.folder, force=True)
    assert outcome.status == "updated" and paint.editor.compiled == [M]


def test_an_instance_whose_material_was_deleted_gets_the_new_one(paint):
    """Deleting the material leaves the instance without a parent."""
    del paint.editor.assets[M]
    paint.editor.assets[MI]._values["parent"] = None
    (outcome,) = paint.plugin.import_all(paint.folder)
    assert outcome.status == "updated" and not paint.editor.texts("log_error")
    assert paint.editor.assets[MI].parent is paint.editor.assets[M]


def test_an_instance_keeps_the_parent_that_somebody_gave_it(paint):
    """For example an instance between it and the material."""
    tools = paint.unreal.AssetToolsHelpers.get_asset_tools()
    other = tools.create_asset("M_Other", "/Game", paint.unreal.Material, paint.unreal.MaterialFactoryNew())
    paint.editor.assets[MI].set_editor_property("parent", other)
    export(paint.folder, another_text)
    paint.plugin.import_all(paint.folder)
    assert paint.editor.assets[MI].parent is other


def test_settings_that_a_material_no_longer_has_are_taken_back(start, tmp_path):
    ue = start()
    folder = test_inputs.export(tmp_path / "out", ({"kind": "vertex_normal"},), "Leaf", "masked")
    ue.plugin.import_material(folder)
    material = ue.editor.assets["/Game/Blender/M_Leaf"]
    assert material.blend_mode.name == "BLEND_MASKED" and material.opacity_mask_clip_value == 0.5
    test_inputs.export(tmp_path / "out", ({"kind": "vertex_normal"},), "Leaf", "opaque")
    ue.plugin.import_material(folder)
    assert material.blend_mode.name == "BLEND_OPAQUE"


def test_cancel(start, examples):
    ue = start()
    ue.editor.cancel_after = 3
    outcomes = ue.plugin.import_all(examples)
    assert 0 < len(outcomes) < 22
    assert any("cancelled" in text for text in ue.editor.texts("log_warning"))
    for path, asset in ue.editor.assets.items():
        if path.startswith("/Game/Blender/M_"):
            assert asset._attributes, f"{path} is half made"
    ue.editor.cancel_after = None
    assert {o.status for o in ue.plugin.import_all(examples)} <= {"made", "unchanged"}


# live


class Clock:
    now = 100.0

    def monotonic(self):
        return self.now

    def sleep(self, seconds):
        raise AssertionError("a tick may not wait")


def ticks(ue, clock, count=4):
    for _ in range(count):
        clock.now += 0.3
        for function in list(ue.editor.ticks.values()):
            function(0.016)


@pytest.fixture
def live(paint, monkeypatch):
    clock = Clock()
    paint.clock = clock
    paint.plugin.start_live(paint.folder)
    monkeypatch.setattr(paint.live, "time", clock)
    monkeypatch.setattr(paint.importer, "time", clock)
    ticks(paint, clock)
    paint.editor.save_all()
    return paint


def test_live_follows_values_and_texts(live):
    ticks(live, live.clock)
    assert not live.editor.unsaved and not live.editor.compiled
    export(live.folder, slide(0.625))
    ticks(live, live.clock)
    assert live.editor.unsaved == {MI} and not live.editor.compiled
    assert 0.625 in held(live.editor).values()
    export(live.folder, another_text)
    ticks(live, live.clock)
    assert live.editor.compiled == [M]


def test_live_waits_for_an_export_that_is_under_way(live):
    folder = live.folder / "Car Paint"
    whole = (folder / "surface.hlsl").read_bytes()
    (folder / "surface.hlsl").write_bytes(whole[:100])
    edit(folder, lambda m: put(m, "made_by", {}))  # the manifest changed, but the text is incomplete
    ticks(live, live.clock)
    assert not live.editor.texts("log_error") and not live.editor.compiled
    (folder / "surface.hlsl").write_bytes(whole)
    ticks(live, live.clock)
    assert not live.editor.texts("log_error")
    (folder / "surface.hlsl").write_bytes(whole[:100])
    edit(folder, lambda m: put(m, "made_by", {"quillgen": "1"}))
    ticks(live, live.clock, 60)
    assert len(live.editor.texts("log_error")) == 1


def test_live_says_an_error_once_and_goes_on(live):
    edit(live.folder / "Car Paint", lambda m: put(m, "version", 5))
    test_inputs.export(live.folder, ({"kind": "vertex_normal"},), "Zinc")
    ticks(live, live.clock, 20)
    (message,) = live.editor.texts("log_error")
    assert "Car Paint" in message and "version 5" in message
    assert "/Game/Blender/M_Zinc" in live.editor.assets


def test_live_is_switched_off_and_over(live, tmp_path):
    other = tmp_path / "other"
    other.mkdir()
    live.plugin.start_live(other)
    assert len(live.editor.ticks) == 1 and live.live.running().root == other
    live.plugin.stop_live()
    assert not live.editor.ticks and live.live.running() is None
    with pytest.raises(live.errors.Refused, match="isn't there"):
        live.plugin.start_live(tmp_path / "none")
    assert not live.editor.ticks


def test_live_survives_a_folder_that_goes(live):
    live.folder.rename(live.folder.with_name("gone"))
    ticks(live, live.clock)
    live.folder.with_name("gone").rename(live.folder)
    export(live.folder, slide(0.375))
    ticks(live, live.clock)
    assert 0.375 in held(live.editor).values() and not live.editor.texts("log_error")


# the menu


def command(ue, label):
    menu = ue.editor.menus["LevelEditor.MainMenu.Tools.QuillgenMenu"]
    exec(next(e.command for e in menu.entries.values() if e.label == label), {})


def test_the_menu(start, tmp_path):
    import importlib
    import sys

    ue = start()
    sys.modules.pop("init_unreal", None)
    importlib.import_module("init_unreal")
    export(tmp_path / "out")
    command(ue, "Import Again")  # no folder was chosen yet, so it opens a dialog, which the user cancels
    assert not ue.editor.assets and not ue.editor.messages

    def choose(options):
        folder = ue.unreal.DirectoryPath()
        folder.set_editor_property("path", str(tmp_path / "out"))
        options.set_editor_property("export_folder", folder)
        options.set_editor_property("content_path", "/Game/Mine")
        return True

    ue.editor.dialog = choose
    command(ue, "Import from a Folder...")
    assert "/Game/Mine/M_Car_Paint" in ue.editor.assets and not ue.editor.messages
    command(ue, "Live On/Off")
    assert len(ue.editor.ticks) == 1
    command(ue, "Live On/Off")
    assert not ue.editor.ticks
    command(ue, "Write Texts for the Clipboard")
    assert (tmp_path / "out" / "Car Paint" / "paste.txt").is_file()
    retext(tmp_path / "out" / "Car Paint", "return 0;")
    edit(tmp_path / "out" / "Car Paint", lambda m: put(m, "version", 7))
    command(ue, "Import Again")
    assert "version 7" in ue.editor.messages[-1]
    other = test_inputs.export(tmp_path / "out", ({"kind": "vertex_normal"},), "Zinc")
    command(ue, "Write Texts for the Clipboard")
    assert (other / "paste.txt").is_file(), "one that fails stops no other"
    assert "1 texts are written" in ue.editor.messages[-1] and "version 7" in ue.editor.messages[-1]
    command(ue, "Build the Checklist Level")
    assert ue.editor.level == "/Game/BlenderChecklist/L_Checklist"


def test_the_menu_says_so_where_a_folder_has_no_materials(start, tmp_path):
    ue = start()
    folder = test_inputs.export(tmp_path / "out", ({"kind": "vertex_normal"},), "Zinc")
    ue.settings.save(ue.settings.Settings(folder=str(folder)))
    ue.menu.run("again")
    assert ue.editor.messages[-1] == f"There is no material below {folder}: choose the folder that Blender exports to."
    assert not ue.editor.assets


def test_the_texts_of_the_menu_name_the_textures_that_an_import_makes(start, examples, tmp_path):
    shutil.copytree(examples, tmp_path / "out")
    ue = start()
    ue.settings.save(ue.settings.Settings(folder=str(tmp_path / "out"), content_path="/Game/Mine"))
    ue.menu.run("paste_texts")
    assert "'/Game/Mine/Textures/T_" in (tmp_path / "out" / "Pbr Crate" / "paste.txt").read_text(encoding="utf-8")


def test_the_start_up_script_never_stops_the_editor(start):
    import importlib
    import sys

    for spoil in ("menu", "cook"):
        ue = start()
        ue.editor.unattended = spoil == "cook"
        ue.unreal.ToolMenus = None
        sys.modules.pop("init_unreal", None)
        importlib.import_module("init_unreal")
        assert len(ue.editor.texts("log_error")) == (spoil == "menu")
