"""Unusual materials: names in other scripts, animated nodes, graphs without an output, and graphs that are too deep."""

import inspect
import sys

import bpy
from materials import fresh

from quillgen_blender import exporting, read
from quillgen_blender.exporting import Settings
from quillgen_blender.read import labels, values

from .setting import refused, setting


def exported(material):
    return exporting.finish(exporting.steps(material, None, Settings()))


def check_a_material_for_another_render_engine_says_so():
    setting()
    material, tree, _ = fresh("Elm")
    tree.nodes["Material Output"].target = "EEVEE"
    assert exported(material).error == "it has no Material Output whose target is All or Cycles"


def check_an_output_of_a_world_is_no_error():
    """It can arrive with copied nodes. If it is the active one, Blender uses it as the material's output."""
    setting()
    for kind in ("ShaderNodeOutputWorld", "ShaderNodeOutputLight"):
        material, tree, shader = fresh("Elm")
        other = tree.nodes.new(kind)
        tree.nodes.remove(tree.nodes["Material Output"])
        other.is_active_output = True
        tree.links.new(shader.outputs[0], other.inputs["Surface"])
        error = exported(material).error
        assert error == "" if tree.get_output_node("CYCLES") == other else "no Material Output" in error


def check_what_gives_no_shader_is_not_called_nothing():
    setting()
    material, tree, shader = fresh("Elm")
    shader.mute = True
    assert "what is connected to the Surface of the Material Output gives no shader" in exported(material).error
    shader.mute = False
    group = tree.nodes.new("ShaderNodeGroup")
    group.node_tree = bpy.data.node_groups.new("Empty", "ShaderNodeTree")
    group.node_tree.interface.new_socket("Shader", in_out="OUTPUT", socket_type="NodeSocketShader")
    tree.links.new(group.outputs[0], tree.nodes["Material Output"].inputs["Surface"])
    assert "gives no shader" in exported(material).error
    tree.links.clear()
    assert "nothing is connected to the Surface" in exported(material).error


def check_a_graph_that_is_too_deep_is_told_in_words():
    setting()
    material, tree, shader = fresh("Elm")
    bpy.context.object.active_material = material
    end = tree.nodes.new("ShaderNodeTexNoise").outputs[0]
    for _ in range(60):
        reroute = tree.nodes.new("NodeReroute")
        tree.links.new(end, reroute.inputs[0])
        end = reroute.outputs[0]
    tree.links.new(end, shader.inputs["Roughness"])
    limit = sys.getrecursionlimit()
    sys.setrecursionlimit(len(inspect.stack()) + 120)
    try:
        outcome = exported(material)
        copied = refused(bpy.ops.quillgen.copy_hlsl)
    finally:
        sys.setrecursionlimit(limit)
    assert outcome.error == "too many of its nodes, or turns of repeat zones, follow one another"
    assert outcome.error in copied and "Traceback" not in copied


def check_labels_of_nodes_whose_names_have_other_letters():
    """Parameter names contain only ASCII letters, so ids in other scripts are numbered. Labels keep their letters."""
    setting()
    material, tree, shader = fresh("Elm")
    for name, socket in (("Шум", "Roughness"), ("Вал", "Metallic"), ("Wood / Fine", "IOR"), ("Math Value", "Alpha")):
        node = tree.nodes.new("ShaderNodeMath" if name == "Math Value" else "ShaderNodeTexNoise")
        node.name = name
        node.label = f"My {name}"
        tree.links.new(node.outputs[0], shader.inputs[socket])
    reading = read.flatten(material)
    assert "Шум 2" in reading.paths and "Шум" not in reading.paths
    found = labels.labels(material, reading.document, reading.paths)
    for identity, path in reading.paths.items():
        if path[0] in ("Шум", "Вал", "Wood / Fine"):
            label = found[identity, "Roughness"]
            assert (label.header, label.node, label.minimum, label.maximum) == (f"My {path[0]}", path[0], 0.0, 1.0)
    assert found["Math Value", "Value"].header == "My Math Value"


def check_animated_and_driven_nodes_are_found():
    setting()
    material, tree, shader = fresh("Elm")
    noise = tree.nodes.new("ShaderNodeTexNoise")
    noise.name = 'My "Best" [Noise] \\'
    tree.links.new(noise.outputs[0], shader.inputs["Metallic"])
    tree.links.new(tree.nodes.new("ShaderNodeTexVoronoi").outputs[0], shader.inputs["IOR"])
    assert read.flatten(material).document["host"]["drivers"] == []
    noise.inputs["Scale"].driver_add("default_value")
    shader.inputs["Roughness"].keyframe_insert("default_value", frame=1)
    assert read.flatten(material).document["host"]["drivers"] == sorted([noise.name, "Principled BSDF"])


def check_nodes_that_the_nonlinear_animation_moves_are_found():
    setting()
    material, tree, shader = fresh("Elm")
    shader.inputs["Roughness"].keyframe_insert("default_value", frame=1)
    data = tree.animation_data
    action, slot = data.action, getattr(data, "action_slot", None)
    data.action = None
    assert read.flatten(material).document["host"]["drivers"] == []
    track = data.nla_tracks.new()
    strip = track.strips.new("Wear", 1, action)
    if slot:
        strip.action_slot = slot
    assert read.flatten(material).document["host"]["drivers"] == ["Principled BSDF"]
    track.mute = True
    assert read.flatten(material).document["host"]["drivers"] == []
    track.mute, strip.mute = False, True
    assert read.flatten(material).document["host"]["drivers"] == []


def check_a_constant_that_is_no_number_crosses_into_an_integer():
    for number in (float("nan"), float("inf"), -float("inf")):
        assert values.convert(number, "VALUE", "INT") == 0


def check_a_folder_that_no_file_system_takes_is_told():
    setting()
    folder, why = exporting.target_folder("/" + "a" * 5000)
    assert folder is None and "too long" in why
