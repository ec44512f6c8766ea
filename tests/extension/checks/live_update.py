"""What an edit rewrites while live update is on."""

import bpy

from quillgen_blender.ui import live, state

from .setting import Clock, active, manifest, run_timers, setting, values


def check_a_slider_rewrites_its_values_only():
    out = setting()
    material = active("Oak")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
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
    out = setting()
    material = active("Oak")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
    text = (out / "Oak" / "surface.hlsl").read_bytes()
    material.node_tree.nodes["Noise Texture"].noise_dimensions = "4D"
    bpy.context.view_layer.update()
    run_timers()
    assert (out / "Oak" / "surface.hlsl").read_bytes() != text


def check_an_edit_of_a_group_reaches_its_materials():
    out = setting()
    active("Wall: brick?")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
    bpy.data.node_groups["Worn"].nodes["Noise Texture"].inputs["Detail"].default_value = 9.0
    bpy.context.view_layer.update()
    run_timers()
    assert values(out / "Wall_ brick_")["P_Group_Noise_Texture__Detail"] == 9.0


def check_a_painted_picture_is_saved_again():
    out = setting()
    active("Poster")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
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
    out = setting()
    material = active("Oak")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
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
    setting()
    scene = bpy.context.scene.quillgen
    scene.live = True
    assert live.changed in bpy.app.handlers.depsgraph_update_post
    scene.live = False
    assert live.changed not in bpy.app.handlers.depsgraph_update_post
    scene.live = True
    bpy.ops.wm.read_factory_settings(use_empty=True)
    assert live.changed not in bpy.app.handlers.depsgraph_update_post


def check_a_material_that_is_removed_meanwhile():
    setting()
    material = active("Oak")
    bpy.ops.quillgen.export()
    bpy.context.scene.quillgen.live = True
    material.node_tree.nodes["Noise Texture"].inputs["Scale"].default_value = 7.5
    bpy.context.view_layer.update()
    Clock.now += 0.35
    assert live.begin(bpy.context, 0.3)
    live.step()
    bpy.data.materials.remove(material)
    run_timers()
    assert live._waiting.job is None
