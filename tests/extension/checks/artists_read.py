"""Labels, errors and remarks that are shown to artists."""

import json
from unittest import mock

import bpy

import quillgen
from quillgen_blender import exporting, read
from quillgen_blender.read import labels
from quillgen_blender.ui import state

from .setting import active, refused, setting


def check_labels_are_those_of_the_sockets():
    setting()
    material = bpy.data.materials["Wall: brick?"]
    reading = read.flatten(material)
    found = labels.labels(material, reading.document, reading.paths)
    scale = found["Group/Noise Texture", "Scale"]
    assert (scale.header, scale.socket, scale.minimum, scale.maximum) == ("Worn", "Amount", 0.25, 4.0)
    assert scale.description == "How worn it is"
    assert found["Principled BSDF", "Metallic"][5:7] == (0.0, 1.0)
    assert found["Principled BSDF", "Base Color"].color and not found["Principled BSDF", "IOR"].color
    assert found["Group/Noise Texture", "Detail"].groups == ("Worn",)


def check_a_header_reads_as_in_the_editor():
    setting()
    tree = bpy.data.materials["Oak"].node_tree
    node = tree.nodes.new("ShaderNodeMath")
    node.operation = "MULTIPLY"
    assert labels.header(node) == "Multiply"
    node.label = "How rough"
    assert labels.header(node) == "How rough"
    mix = tree.nodes.new("ShaderNodeMix")
    assert labels.header(mix) == "Mix"
    mix.data_type, mix.blend_type = "RGBA", "DIFFERENCE"
    assert labels.header(mix) == "Difference"
    assert labels.header(tree.nodes["Noise Texture"]) == "Noise Texture"


def check_every_parameter_has_a_label_from_blender():
    setting()
    for material in bpy.data.materials:
        if exporting.exportable(material):
            continue
        reading = read.flatten(material)
        found = labels.labels(material, reading.document, reading.paths)
        for node in reading.document["nodes"]:
            for socket, entry in node["in"].items():
                assert "link" in entry or (node["id"], socket) in found, (material.name, node["id"], socket)


def check_errors_name_the_material_and_the_node():
    setting()
    material = active("Oak")
    tree = material.node_tree
    mix = tree.nodes.new("ShaderNodeMixShader")
    mix.name = "My Mix"
    tree.links.new(mix.outputs[0], tree.get_output_node("CYCLES").inputs["Surface"])
    unsupported = quillgen.Unsupported("ShaderNodeMixShader: no input Fac")  # of a Blender that has another name for it
    with mock.patch.object(quillgen, "compile", side_effect=unsupported):
        text = refused(bpy.ops.quillgen.export)
        assert "Oak, My Mix: " in text and "no input Fac" in text, text
        assert state.last(material).node == "My Mix"
        assert "Oak, My Mix" in refused(bpy.ops.quillgen.copy_hlsl)
        assert "Oak, My Mix" in refused(bpy.ops.quillgen.check)
    tree.links.clear()
    assert "Oak: nothing is connected to the Surface" in refused(bpy.ops.quillgen.export)


def check_a_material_that_fails_stops_no_other():
    out = setting()
    bpy.data.materials["Oak"].node_tree.links.clear()
    assert "Oak: nothing is connected" in (refused(bpy.ops.quillgen.export, scope="FILE") or "")
    assert (out / "Wire").is_dir() and not (out / "Oak").exists()


def check_polls_say_why_not():
    setting()
    bpy.context.scene.quillgen.folder = "//unreal"
    assert "Save the file first" in refused(bpy.ops.quillgen.export)
    active("Oak")
    bpy.context.object.active_material = None
    assert "There is no material here" in refused(bpy.ops.quillgen.check)
    assert "There is no material here" in refused(bpy.ops.quillgen.copy_hlsl)


def check_a_folder_that_cannot_be_made_is_reported():
    out = setting()
    (out / "file").write_text("")
    bpy.context.scene.quillgen.folder = str(out / "file")
    assert "is a file" in refused(bpy.ops.quillgen.export)


def check_a_relative_folder_is_that_of_the_file():
    out = setting()
    bpy.ops.wm.save_as_mainfile(filepath=str(out / "scene.blend"))
    bpy.context.scene.quillgen.folder = "//here"
    active("Sand")
    bpy.ops.quillgen.export()
    assert (out / "here" / "Sand" / "material.json").is_file()
    bpy.context.scene.quillgen.folder = ""
    bpy.ops.quillgen.export()
    assert (out / "unreal" / "Sand" / "material.json").is_file()


def check_remarks_lead_to_their_node():
    setting()
    material = active("Wire")
    bpy.ops.quillgen.check()
    outcome = state.last(material)
    assert outcome.changed == "text" and outcome.folder == ""
    (path,) = {outcome.paths[remark["node"]] for remark in outcome.remarks if remark["node"] in outcome.paths}
    assert path == ("My Wire",)
    assert bpy.ops.quillgen.select_node(material="Wire", path=json.dumps(path)) == {"FINISHED"}
    tree = material.node_tree
    assert tree.nodes.active.name == "My Wire" and [node.name for node in tree.nodes if node.select] == ["My Wire"]
    assert "no longer there" in refused(bpy.ops.quillgen.select_node, material="Wire", path='["gone"]')


def check_a_node_in_a_group_is_selected_there():
    setting()
    bpy.ops.quillgen.select_node(material="Wall: brick?", path='["Group", "Noise Texture"]')
    assert bpy.data.node_groups["Worn"].nodes.active.name == "Noise Texture"
