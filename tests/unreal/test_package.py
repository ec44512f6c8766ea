"""The plugin's folder: its version, Python version, dependencies, and the layout of its graphs."""

import ast
import json
import shutil
import subprocess
import sys
import tomllib

import pytest

import double
from conftest import ROOT, SCRIPTS
from double import tables
from examples.gallery import materials

FILES = sorted(SCRIPTS.rglob("*.py"))
OLDEST = (3, 9)  # the Python of Unreal 5.3
IN_THE_EDITOR = {
    "apply",
    "checklist",
    "dialog",
    "importer",
    "instances",
    "live",
    "menu",
    "settings",
    "textures",
    "init_unreal",
    "__init__",
}


def test_the_version():
    plugin = json.loads((SCRIPTS.parents[1] / "Quillgen.uplugin").read_text(encoding="utf-8"))
    project = tomllib.loads((ROOT / "pyproject.toml").read_text(encoding="utf-8"))["project"]
    assert plugin["VersionName"] == project["version"]
    assert plugin["CanContainContent"] is True  # otherwise Content/Python isn't loaded
    assert {"PythonScriptPlugin", "EditorScriptingUtilities"} == {p["Name"] for p in plugin["Plugins"] if p["Enabled"]}


@pytest.mark.parametrize("path", FILES, ids=lambda p: p.name)
def test_every_file_is_of_the_oldest_python_and_needs_nothing_else(path):
    tree = ast.parse(path.read_text(encoding="utf-8"), feature_version=OLDEST)
    needed = set()
    for node in ast.walk(tree):
        if isinstance(node, ast.Import):
            needed |= {alias.name.split(".")[0] for alias in node.names}
        elif isinstance(node, ast.ImportFrom) and not node.level:
            needed.add(node.module.split(".")[0])
    allowed = set(sys.stdlib_module_names) | ({"unreal", "quillgen_unreal"} if path.stem in IN_THE_EDITOR else set())
    assert needed <= allowed


def test_what_is_not_tried_is_said_first():
    first = (SCRIPTS / "quillgen_unreal" / "__init__.py").read_text(encoding="utf-8").split("\n\n")[1]
    assert first.startswith("NOT TRIED IN UNREAL")


def test_the_plan_is_built_by_the_oldest_python(examples, tmp_path):
    """Python 3.9, if it is installed, makes the same clipboard text."""
    candidates = [*ROOT.home().glob(".pyenv/versions/3.9*/bin/python3.9"), shutil.which("python3.9")]
    runs = [p for p in candidates if p and subprocess.run([p, "-c", ""], capture_output=True).returncode == 0]
    python = next(iter(runs), "")
    if not python:
        pytest.skip("no Python 3.9 at hand")
    texts = []
    for found in (python, sys.executable):
        folder = tmp_path / f"copy{len(texts)}"
        shutil.copytree(examples, folder)
        subprocess.run(
            [found, "-m", "quillgen_unreal.clipboard", str(folder / "Pbr Crate")],
            check=True,
            cwd=SCRIPTS,
            stdout=subprocess.DEVNULL,
        )
        texts.append((folder / "Pbr Crate" / "paste.txt").read_bytes())
    assert texts[0] == texts[1]


# the graph


def built(start, examples, name, version=(5, 4)):
    ue = start(version)
    export = ue.exchange.read(examples / name)
    paths = {p.name: f"/Game/T_{p.name}" for p in export.pictures}
    return ue, ue.build.plan(export, paths, ue.engine.Features.of_version(*version))


@pytest.mark.parametrize("name", [n.replace("_", " ").title() for n in materials.names()])
def test_nothing_overlaps_and_wires_run_to_the_right(start, examples, name):
    ue, plan = built(start, examples, name)
    boxes, comments = ue.layout.place(plan.graph)
    assert set(boxes) == set(plan.graph.expressions)
    every = list(boxes.values())
    for number, a in enumerate(every):
        assert a.x + a.width <= 0  # the material's own node is at x = 0
        for b in every[number + 1 :]:
            assert a.x + a.width <= b.x or b.x + b.width <= a.x or a.y + a.height <= b.y or b.y + b.height <= a.y
    for key, expression in plan.graph.expressions.items():
        for wire in expression.wires:
            source = boxes[wire.source.expression]
            assert source.x + source.width < boxes[key].x
    for box in every:
        around = [
            c
            for _, c in comments
            if c.x <= box.x
            and box.x + box.width <= c.x + c.width
            and c.y <= box.y
            and box.y + box.height <= c.y + c.height
        ]
        assert len(around) == 1
    for number, (_, a) in enumerate(comments):
        for _, b in comments[number + 1 :]:
            assert a.x + a.width <= b.x or b.x + b.width <= a.x


def test_the_editor_of_a_version_has_the_features_of_its_number(start):
    for version in tables.VERSIONS:
        ue = start(version)
        assert ue.engine.Features.of_editor(ue.unreal) == ue.engine.Features.of_version(*version)


def test_displacement(start, tmp_path):
    from quillgen_blender import pipeline

    for version in tables.VERSIONS:
        ue = start(version)
        folder = tmp_path / f"{version[1]}"
        pipeline.export_examples(folder, [ROOT / "examples" / "materials" / "mossy_rock.json"])
        manifest = json.loads((folder / "Mossy Rock" / "material.json").read_text(encoding="utf-8"))
        outcome = ue.plugin.import_material(folder / "Mossy Rock")
        material = ue.editor.assets[outcome.material]
        root = material._attributes[0]
        pin = root.inputs().index("Displacement")
        if version == (5, 3):
            assert pin not in root._wires and any("5.4" in text for text in outcome.remarks)
            continue
        custom, index = root._wires[pin]
        assert index == 0 and custom.output_type.name == "CMOT_FLOAT1"
        assert material.enable_tessellation and material.used_with_nanite
        scaling = material.displacement_scaling
        assert (scaling.magnitude, scaling.center) == (manifest["displacement"]["magnitude"], 0.5)
        assert any("r.Nanite.Tessellation=1" in text for text in outcome.remarks)
        ue.editor.console.update({"r.Nanite.AllowTessellation": 1, "r.Nanite.Tessellation": 1})
        assert not any("r.Nanite" in text for text in ue.plugin.import_material(folder / "Mossy Rock").remarks)


def test_the_materials_own_properties(start, examples):
    ue = start()
    ue.plugin.import_all(examples)
    for name in materials.names():
        settings = json.loads((examples / name.replace("_", " ").title() / "material.json").read_text(encoding="utf-8"))
        settings = settings["settings"]
        made = ue.editor.assets[f"/Game/Blender/M_{name.title()}"]
        assert made.shading_model.name == "MSM_" + settings["shading"].upper()
        assert made.blend_mode.name == "BLEND_" + settings["blend"].upper()
        assert (made.two_sided, made.tangent_space_normal) == (settings["two_sided"], settings["tangent_space_normal"])
        assert made.translucency_lighting_mode.name == "TLM_SURFACE_PER_PIXEL_LIGHTING"
        assert made.float_precision_mode.name == "MFPM_FULL_MATERIAL_EXPRESSION_ONLY"
        assert made.use_material_attributes
        if settings["blend"] == "masked":
            assert made.opacity_mask_clip_value == settings["clip"]


# the text for the clipboard


def parsed(text):
    """Parses a clipboard text: node name -> (class, properties of the expression, pins)."""
    nodes, stack = {}, []
    for line in text.splitlines():
        word = line.strip()
        if word.startswith("Begin Object"):
            stack.append(word)
            if len(stack) == 1:
                name = word.split('Name="')[1].rstrip('"')
                nodes[name] = {"class": "", "properties": {}, "pins": []}
            elif "Class=" in word:
                nodes[name]["class"] = word.split("Class=")[1].split()[0].rsplit(".", 1)[1]
        elif word == "End Object":
            stack.pop()
        elif word.startswith("CustomProperties Pin"):
            nodes[name]["pins"].append(word)
        elif len(stack) == 2:
            key, value = word.split("=", 1)
            nodes[name]["properties"][key] = value
    assert not stack
    return nodes


@pytest.mark.parametrize("version", [(5, 3), (5, 7)])
def test_the_clipboard_holds_the_same_graph(start, examples, version):
    for example in sorted(p for p in examples.iterdir() if (p / "material.json").is_file()):
        ue, plan = built(start, examples, example.name, version)
        export = ue.exchange.read(example)
        text = ue.clipboard.text(plan, export.name)
        assert text == ue.clipboard.text(plan, export.name)
        nodes = parsed(text)
        keys = {f"MaterialGraphNode_{n}": key for n, key in enumerate(plan.graph.expressions)}
        assert set(keys) | {n for n in nodes if "Comment" in n} == set(nodes)
        ids = [pin.split("PinId=")[1][:32] for node in nodes.values() for pin in node["pins"]]
        assert len(set(ids)) == len(ids)
        for node, key in keys.items():
            expression, found = plan.graph.expressions[key], nodes[node]
            assert found["class"] == f"MaterialExpression{expression.kind}"
            settings = dict(expression.settings)
            if "code" in settings:
                assert unquoted(found["properties"]["Code"]) == settings["code"]
            for number, wire in enumerate(expression.wires):
                slot = f"Inputs({number})" if expression.kind == "Custom" else wire.pin or "Input"
                source = next(n for n, k in keys.items() if k == wire.source.expression)
                assert f"'{source}.MaterialExpression{wire.source.expression}'" in found["properties"][slot]
                # The pins at both ends name the same connection.
                named = [pin for pin in found["pins"] if f'PinName="{wire.pin or "Input"}"' in pin]
                own = next(pin for pin in named if "Direction" not in pin)
                other, pin_id = own.split("LinkedTo=(")[1].split(",")[0].split()
                assert other == source
                back = next(pin for pin in nodes[source]["pins"] if f"PinId={pin_id}" in pin)
                assert f"{node} {own.split('PinId=')[1][:32]}" in back and "EGPD_Output" in back


def unquoted(text):
    assert text[0] == text[-1] == '"' and "\n" not in text
    return text[1:-1].replace("\\r\\n", "\n").replace('\\"', '"').replace("\\t", "\t").replace("\\\\", "\\")


def test_what_stays_to_be_done_by_hand_is_said(start, examples, tmp_path):
    ue = start()
    shutil.copytree(examples, tmp_path / "copy")
    folder = tmp_path / "copy" / "Pbr Crate"
    ue.clipboard.write(folder)
    notes = (folder / "paste_by_hand.txt").read_text(encoding="utf-8")
    for words in (
        "ShadingModel = MSM_DefaultLit",
        "UseMaterialAttributes = True",
        "TangentSpaceNormal = False",
        "MakeMaterialAttributes",
        "/Game/Blender/Textures/T_",
    ):
        assert words in notes
    assert all(str(path.name) in notes for path in (tmp_path / "copy" / "_textures").glob("Crate*"))


def test_the_pasted_graph_has_the_values_of_now(start, tmp_path):
    """If only values changed, the records keep the defaults of the previous export."""
    from quillgen_blender import pipeline, write

    document = materials.document("car_paint")
    pipeline.export_document(write.look(tmp_path), "Car Paint", document)
    shader = next(node for node in document["nodes"] if node["type"] == "ShaderNodeBsdfPrincipled")
    shader["in"]["Coat Roughness"]["v"] = 0.625
    assert pipeline.export_document(write.look(tmp_path), "Car Paint", document).changed == "parameters"
    assert "DefaultValue=0.625000" in start().clipboard.write(tmp_path / "Car Paint").read_text(encoding="utf-8")


def test_the_command_line_says_what_is_wrong_in_a_line(start, tmp_path, capsys):
    ue = start()
    for words, told in (
        ([str(tmp_path)], f"{tmp_path / 'material.json'}"),
        ([str(tmp_path), "--unreal", "five"], "five"),
        ([str(tmp_path), "--unreal", "6"], "6"),
    ):
        with pytest.raises(SystemExit) as ended:
            ue.clipboard.main(words)
        assert ended.value.code == 2
        assert told in capsys.readouterr().err.splitlines()[-1]


def test_pictures_come_first_in_what_is_done_by_hand(start, examples, tmp_path):
    ue = start()
    shutil.copytree(examples, tmp_path / "copy")
    ue.clipboard.write(tmp_path / "copy" / "Pbr Crate")
    notes = (tmp_path / "copy" / "Pbr Crate" / "paste_by_hand.txt").read_text(encoding="utf-8")
    assert notes.index("/Game/Blender/Textures/T_") < notes.index("copy all of paste.txt")


def test_texts_are_quoted(start):
    ue = start()
    nasty = 'a "b" \\ c\n\td'
    assert unquoted(ue.clipboard.quoted(nasty)) == nasty


# the double itself: it raises the errors of the editor


def refusing(unreal):
    tools = unreal.AssetToolsHelpers.get_asset_tools()
    material = tools.create_asset("M", "/Game", unreal.Material, unreal.MaterialFactoryNew())
    mel = unreal.MaterialEditingLibrary
    custom = mel.create_material_expression(material, unreal.MaterialExpressionCustom)
    normal = mel.create_material_expression(material, unreal.MaterialExpressionVertexNormalWS)
    return mel, custom, normal


def test_the_double_is_strict(start):
    ue = start((5, 4))
    unreal = ue.unreal
    mel, custom, normal = refusing(unreal)
    with pytest.raises(Exception, match="Failed to find property"):
        normal.set_editor_property("normalise", True)
    with pytest.raises(AttributeError):
        normal.normalise = True
    with pytest.raises(TypeError):
        custom.set_editor_property("output_type", unreal.BlendMode.BLEND_OPAQUE)
    with pytest.raises(TypeError):
        custom.set_editor_property("output_type", 3)
    with pytest.raises(AttributeError):
        unreal.MaterialProperty.MP_CUSTOM_DATA0  # noqa: B018
    with pytest.raises(AttributeError):
        unreal.MaterialProperty.MP_DISPLACEMENT  # noqa: B018
    with pytest.raises(AttributeError):
        unreal.MaterialExpressionLocalPosition  # noqa: B018
    assert not mel.connect_material_expressions(normal, "", custom, "N")
    assert not mel.connect_material_expressions(normal, "XYZ", custom, "")
    custom.set_editor_property("inputs", [unreal.CustomInput(input_name="N")])
    assert mel.connect_material_expressions(normal, "", custom, "N") and custom._wires
    custom.set_editor_property("inputs", [unreal.CustomInput(input_name="N")])
    assert not custom._wires
    assert not mel.connect_material_property(custom, "", unreal.MaterialProperty.MP_MATERIAL_ATTRIBUTES)
    older, _ = double.make((5, 3))
    assert not hasattr(older, "DisplacementScaling")
    with pytest.raises(ValueError):
        double.make((5, 2))
