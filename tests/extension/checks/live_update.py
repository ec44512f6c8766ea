"""Which files an edit rewrites while live update is on."""

import types

import bpy

from quillgen_blender import exporting
from quillgen_blender.ui import live, state

from .setting import Clock, active, manifest, run_timers, setting, values


def watched(name):
    """Exports a material and switches live update on. Returns the target folder and the material."""
    out = setting()
    material = active(name)
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
    return out, material


def check_a_slider_rewrites_its_values_only():
    out, material = watched("Oak")
    before = {path: path.stat().st_mtime_ns for path in (out / "Oak").iterdir()}
    material.node_tree.nodes["Noise Texture"].inputs["Scale"].default_value = 7.5
    bpy.context.view_layer.update()
    assert values(out / "Oak")["P_Noise_Texture__Scale"] != 7.5, "the handler itself exports nothing"
    run_timers()
    assert values(out / "Oak")["P_Noise_Texture__Scale"] == 7.5
    after = {path: path.stat().st_mtime_ns for path in (out / "Oak").iterdir()}
    assert {path.name for path in after if after[path] != before.get(path)} == {"parameters.json"}
    assert state.last(material).changed == "parameters"


def check_an_edit_of_the_graph_rewrites_the_text():
    out, material = watched("Oak")
    text = (out / "Oak" / "surface.hlsl").read_bytes()
    material.node_tree.nodes["Noise Texture"].noise_dimensions = "4D"
    bpy.context.view_layer.update()
    run_timers()
    assert (out / "Oak" / "surface.hlsl").read_bytes() != text


def check_an_edit_of_a_group_reaches_its_materials():
    out, _ = watched("Wall: brick?")
    bpy.data.node_groups["Worn"].nodes["Noise Texture"].inputs["Detail"].default_value = 9.0
    bpy.context.view_layer.update()
    run_timers()
    assert values(out / "Wall_ brick_")["P_Group_Noise_Texture__Detail"] == 9.0


def check_a_painted_picture_is_saved_again():
    out, _ = watched("Poster")
    first = manifest(out / "Poster")["textures"][0]["file"]
    image = bpy.data.images["Paint ing.png"]
    image.pixels = [0.5] * 64
    image.update()
    image.update_tag()
    bpy.context.view_layer.update()
    run_timers()
    assert manifest(out / "Poster")["textures"][0]["file"] != first
    assert not (out / "Poster" / first).exists()


def check_only_what_was_exported_is_updated():
    out = setting()
    active("Oak")
    bpy.context.scene.quillgen.live = True
    bpy.data.materials["Oak"].node_tree.nodes["Noise Texture"].inputs["Scale"].default_value = 7.5
    bpy.context.view_layer.update()
    run_timers()
    assert not (out / "Oak").exists()


def check_an_edit_that_goes_on_waits():
    out, material = watched("Oak")
    scale = material.node_tree.nodes["Noise Texture"].inputs["Scale"]
    for step in range(5):
        scale.default_value = step
        bpy.context.view_layer.update()
        Clock.now += 0.25
        live.tick()
        assert values(out / "Oak")["P_Noise_Texture__Scale"] == 5.0
    run_timers()
    assert values(out / "Oak")["P_Noise_Texture__Scale"] == 4.0


def check_live_update_ends_with_its_switch_and_with_the_file():
    out = setting()
    material = active("Oak")
    bpy.ops.quillgen.export()
    scene = bpy.context.scene.quillgen
    scene.live = True
    slide(material, 7.5)
    scene.live = False
    run_timers()
    assert scale_in(out) == 5.0, "what was noted ahead of the switch isn't exported behind it"
    slide(material, 8.5)
    run_timers()
    assert scale_in(out) == 5.0 and not live._waiting.materials
    scene.live = True
    slide(material, 9.5)
    bpy.ops.wm.read_factory_settings(use_empty=True)
    assert not live._waiting.materials and not bpy.app.timers.is_registered(live.tick)


def check_each_scene_has_a_switch_of_its_own():
    out, material = watched("Oak")
    other = bpy.data.scenes.new("Other").quillgen
    other.live = True
    other.live = False
    slide(material, 7.5)
    run_timers()
    assert scale_in(out) == 7.5


def check_a_picture_that_is_painted_while_another_material_is_exported():
    out = setting()
    active("Poster")
    bpy.ops.quillgen.export(scope="FILE")
    bpy.context.scene.quillgen.live = True
    first = manifest(out / "Poster")["textures"][0]["file"]
    slide(bpy.data.materials["Oak"], 7.5)
    Clock.now += 0.35
    assert live.begin(bpy.context, 0.3)
    image = bpy.data.images["Paint ing.png"]
    image.pixels = [0.5] * 64
    hear_of(image)
    run_timers()
    assert scale_in(out) == 7.5 and manifest(out / "Poster")["textures"][0]["file"] != first


def check_a_node_that_is_marked_becomes_a_parameter():
    out = setting()
    material = active("Oak")
    bpy.context.scene.quillgen.parameters = "named"
    bpy.context.scene.quillgen.live = True
    bpy.ops.quillgen.export()
    slide(material, 7.5)
    run_timers()
    assert manifest(out / "Oak")["parameters"]["records"] == []
    material.node_tree.nodes.active = material.node_tree.nodes["Noise Texture"]
    bpy.ops.quillgen.mark_node()
    bpy.context.view_layer.update()
    run_timers()
    assert {row["node"] for row in manifest(out / "Oak")["parameters"]["records"]} == {"Noise Texture"}


def check_what_somebody_else_wrote_is_no_reason_to_write_nothing():
    """An export by the button happens between two edits, and the second edit restores the state that live update wrote
    last."""
    out, material = watched("Oak")
    slide(material, 7.5)
    run_timers()
    slide(material, 8.5)
    bpy.ops.quillgen.export()
    slide(material, 7.5)
    assert scale_in(out) == 8.5
    run_timers()
    assert scale_in(out) == 7.5


def check_what_could_not_be_written_is_written_the_next_time():
    out, material = watched("Oak")
    slide(material, 7.5)
    run_timers()
    whole = exporting.write.commit

    def full(*words):
        raise OSError(28, "No space left on device")

    exporting.write.commit = full
    try:
        slide(material, 8.5)
        run_timers()
    finally:
        exporting.write.commit = whole
    assert state.last(material).error == "No space left on device" and scale_in(out) == 7.5
    material.node_tree.nodes["Noise Texture"].location.x += 10
    material.node_tree.update_tag()
    bpy.context.view_layer.update()
    run_timers()
    assert scale_in(out) == 8.5


def check_a_graph_that_is_whole_again_is_no_longer_called_broken():
    """Even if the graph is the one that was exported before, so that nothing is written."""
    _, material = watched("Wire")
    tree = material.node_tree
    shader, end = tree.nodes["Principled BSDF"].outputs[0], tree.get_output_node("CYCLES").inputs["Surface"]
    for _ in range(2):
        tree.links.remove(end.links[0])
        bpy.context.view_layer.update()
        run_timers()
        assert "nothing is connected" in state.last(material).error
        tree.links.new(shader, end)
        bpy.context.view_layer.update()
        run_timers()
        outcome = state.last(material)
        assert (outcome.error, outcome.changed) == ("", "nothing") and outcome.parameters and outcome.remarks


def check_a_material_that_is_removed_meanwhile():
    _, material = watched("Oak")
    material.node_tree.nodes["Noise Texture"].inputs["Scale"].default_value = 7.5
    bpy.context.view_layer.update()
    Clock.now += 0.35
    assert live.begin(bpy.context, 0.3)
    live.step()
    bpy.data.materials.remove(material)
    run_timers()
    assert live._waiting.job is None and not live._waiting.materials


def check_a_group_is_edited_while_a_material_is_removed():
    """The search for the materials that use the group restarts."""
    out, _ = watched("Wall: brick?")
    group = bpy.data.node_groups["Worn"]
    group.nodes["Noise Texture"].inputs["Detail"].default_value = 9.0
    hear_of(group)
    Clock.now += 0.35
    assert live.begin(bpy.context, 0.3)
    live.step()
    bpy.data.materials.remove(bpy.data.materials["Oak"])
    run_timers()
    assert values(out / "Wall_ brick_")["P_Group_Noise_Texture__Detail"] == 9.0


def check_an_undo_is_an_edit():
    out, material = watched("Oak")
    bpy.ops.ed.undo_push(message="as it was")
    slide(material, 7.5)
    bpy.ops.ed.undo_push(message="edited")
    run_timers()
    for step, wanted in ((bpy.ops.ed.undo, 5.0), (bpy.ops.ed.redo, 7.5)):
        step()
        bpy.context.view_layer.update()
        run_timers()
        assert scale_in(out) == wanted


def check_an_undo_of_the_switch_counts():
    out = setting()
    bpy.ops.quillgen.export(scope="FILE")
    scene = bpy.context.scene.quillgen
    scene.live = True
    bpy.ops.ed.undo_push(message="on")
    scene.live = False
    bpy.ops.ed.undo_push(message="off")
    bpy.ops.ed.undo()
    assert bpy.context.scene.quillgen.live
    slide(bpy.data.materials["Oak"], 7.5)
    run_timers()
    assert scale_in(out) == 7.5


def check_an_undo_in_the_midst_of_an_export():
    """An undo at each step of the export. The last export matches the file's state."""
    out, _ = watched("Oak")
    for steps in range(1, 10):
        bpy.ops.ed.undo_push(message="as it was")
        tree = bpy.data.materials["Oak"].node_tree
        extra = tree.nodes.new("ShaderNodeMath")
        tree.links.new(extra.outputs[0], tree.nodes["Noise Texture"].inputs["Detail"])
        slide(bpy.data.materials["Oak"], 10.0 + steps)
        bpy.ops.ed.undo_push(message="edited")
        Clock.now += 0.35
        assert live.begin(bpy.context, 0.3)
        for _ in range(steps):
            live.step()
        bpy.ops.ed.undo()
        bpy.context.view_layer.update()
        run_timers()
        assert live._waiting.job is None and scale_in(out) == 5.0, steps


def slide(material, value):
    """Simulates dragging a slider."""
    material.node_tree.nodes["Noise Texture"].inputs["Scale"].default_value = value
    bpy.context.view_layer.update()


def hear_of(thing):
    """Sends an update for a datablock that doesn't name the materials that use it."""
    live.changed(bpy.context.scene, types.SimpleNamespace(updates=[types.SimpleNamespace(id=thing)]))


def scale_in(out):
    return values(out / "Oak")["P_Noise_Texture__Scale"]
