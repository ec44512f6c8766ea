"""Which materials an export includes, and what it writes."""

import bpy

from quillgen_blender.read import pictures
from quillgen_blender.ui import state

from .setting import active, manifest, refused, setting


def check_all_materials_of_the_file_are_exported():
    out = setting()
    assert bpy.ops.quillgen.export(scope="FILE") == {"FINISHED"}
    assert sorted(path.name for path in out.iterdir() if not path.name.startswith("_")) == [
        "OAK 2",
        "Oak",
        "Poster",
        "Sand",
        "Wall_ brick_",
        "Wire",
    ]
    assert manifest(out / "Wall_ brick_")["name"] == "Wall: brick?"
    assert manifest(out / "Sand")["displacement"]["magnitude"] > 0
    made_by = manifest(out / "Oak")["made_by"]
    assert made_by["blender"] == ".".join(map(str, bpy.app.version))


def check_one_material_and_those_of_selected_objects():
    out = setting()
    active("Sand")
    assert bpy.ops.quillgen.export(scope="MATERIAL") == {"FINISHED"}
    assert [path.name for path in out.iterdir()] == ["Sand"]
    bpy.ops.object.select_all(action="DESELECT")
    assert "No selected object has a material" in refused(bpy.ops.quillgen.export, scope="SELECTED")
    bpy.context.object.select_set(True)
    assert bpy.ops.quillgen.export(scope="SELECTED") == {"FINISHED"}
    assert (out / "Oak").is_dir()


def check_a_picture_is_saved_once():
    out = setting()
    active("Poster")
    bpy.ops.quillgen.export()
    (record,) = manifest(out / "Poster")["textures"]
    saved = out / "Poster" / record["file"]
    picture = bpy.data.images.load(str(saved))
    picture.colorspace_settings.name = "Non-Color"
    assert [round(part, 2) for part in picture.pixels[:4]] == [0.25, 0.5, 0.75, 1.0], picture.pixels[:4]
    assert saved.name.startswith("Paint_ing-")


def check_a_picture_is_called_by_its_format():
    """Unreal detects a file's format by its extension, Blender by its contents."""
    out = setting()
    image = bpy.data.images["Paint ing.png"]
    for kind, name, ending in (("PNG", "one.dat", ".png"), ("JPEG", "two", ".jpg"), ("BMP", "three.png", ".bmp")):
        image.file_format = kind
        image.save(filepath=str(out / name))
        loaded = bpy.data.images.load(str(out / name))
        assert pictures.save_picture(loaded, out, "saved")[0].name == f"saved{ending}"
        assert (out / f"saved{ending}").read_bytes() == (out / name).read_bytes()


def check_a_picture_that_is_gone_is_told():
    out = setting()
    material = active("Poster")
    image = bpy.data.images.new("gone.png", 4, 4)
    image.source, image.filepath = "FILE", str(out / "gone.png")
    material.node_tree.nodes["Image Texture"].image = image
    assert bpy.ops.quillgen.export() == {"FINISHED"}
    assert manifest(out / "Poster")["textures"][0]["file"] is None
    assert any("gone.png isn't exported" in remark["text"] for remark in state.last(material).remarks)


def check_a_sequence_of_which_nothing_is_shown_is_told():
    """Blender without a window loads no image of a sequence."""
    out = setting()
    material = active("Poster")
    bpy.data.images["Paint ing.png"].save(filepath=str(out / "walk_0001.png"))
    image = bpy.data.images.load(str(out / "walk_0001.png"))
    image.source = "SEQUENCE"
    material.node_tree.nodes["Image Texture"].image = image
    assert bpy.ops.quillgen.export() == {"FINISHED"}
    texts = [remark["text"] for remark in state.last(material).remarks]
    assert any("no picture is shown: export from Blender's window" in text for text in texts), texts
    assert not any("shown now is taken" in text for text in texts), texts


def check_what_blender_says_of_a_picture_is_told_in_a_line():
    out = setting()
    material = active("Poster")
    bpy.data.images["Paint ing.png"].save(filepath=str(out / "there.png"))
    material.node_tree.nodes["Image Texture"].image = image = bpy.data.images.load(str(out / "there.png"))
    assert len(image.pixels)
    (out / "there.png").unlink()
    bpy.ops.quillgen.export()
    (text,) = [remark["text"] for remark in state.last(material).remarks if "isn't exported" in remark["text"]]
    assert text.startswith("the picture there.png isn't exported: Cannot read") and text == text.strip(), repr(text)


def check_options_change_what_is_exported():
    out = setting()
    scene = bpy.context.scene.quillgen
    scene.parameters, scene.displacement, scene.textures = "none", False, False
    bpy.ops.quillgen.export(scope="FILE")
    assert manifest(out / "Sand")["displacement"] is None
    assert manifest(out / "Oak")["parameters"]["records"] == []
    assert manifest(out / "Poster")["textures"][0]["file"] is None
    scene.parameters = "named"
    bpy.ops.quillgen.export(scope="FILE")
    assert [row["label"] for row in manifest(out / "Wall_ brick_")["parameters"]["records"]] == ["Worn / Amount"]


def check_a_marked_node_stays_live():
    out = setting()
    material = active("Oak")
    scene = bpy.context.scene.quillgen
    scene.parameters = "named"
    bpy.ops.quillgen.export()
    assert manifest(out / "Oak")["parameters"]["records"] == []
    material.node_tree.nodes.active = material.node_tree.nodes["Noise Texture"]
    assert bpy.ops.quillgen.mark_node() == {"FINISHED"}
    bpy.ops.quillgen.export()
    found = {row["node"] for row in manifest(out / "Oak")["parameters"]["records"]}
    assert found == {"Noise Texture"}
    bpy.ops.quillgen.mark_node()
    bpy.ops.quillgen.export()
    assert manifest(out / "Oak")["parameters"]["records"] == []


def check_nothing_in_the_file_changes():
    setting()
    names = sorted(each.name for kind in (bpy.data.images, bpy.data.node_groups, bpy.data.materials) for each in kind)
    bpy.ops.quillgen.export(scope="FILE")
    bpy.ops.quillgen.check()
    bpy.ops.quillgen.copy_hlsl()
    found = sorted(each.name for kind in (bpy.data.images, bpy.data.node_groups, bpy.data.materials) for each in kind)
    assert found == names
