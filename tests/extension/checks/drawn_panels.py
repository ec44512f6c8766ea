"""What the panels show."""

import bpy
from recording import Layout, context_of, drawn, operator_type

from quillgen_blender.ui import panels

from .setting import active, setting


def check_panels_show_what_there_is():
    out = setting()
    material = active("Wire")
    for panel in panels.CLASSES:
        assert drawn(panel, context_of(panel, material)) is not None or "remarks" in panel.bl_idname
    before = drawn(panels.CLASSES[0], context_of(panels.CLASSES[0], material)).texts()
    assert {"Export Material", "Selected Objects", "Whole File", "Check", "Copy HLSL", "Folder"} <= set(before), before
    bpy.ops.quillgen.export()
    after = drawn(panels.CLASSES[0], context_of(panels.CLASSES[0], material)).texts()
    assert any(text.startswith("Exported at ") for text in after) and any("parameter" in text for text in after), after
    remarks = drawn(panels.CLASSES[1], context_of(panels.CLASSES[1], material))
    assert "My Wire" in remarks.texts() and remarks.count("quillgen.select_node") >= 1
    bpy.context.scene.quillgen.folder = "//unreal"
    assert (
        "Save the file first: the target folder is relative to it"
        in drawn(panels.CLASSES[0], context_of(panels.CLASSES[0], material)).texts()
    )
    assert out.is_dir()


def check_panels_draw_in_a_real_layout_only_what_exists():
    """Every property and operator that a panel uses exists."""
    setting()
    material = active("Wire")
    bpy.ops.quillgen.check()
    for panel in panels.CLASSES:
        layout = drawn(panel, context_of(panel, material))
        for item in (layout or Layout()).items():
            if item.kind == "operator":
                known = operator_type(item.name).properties.keys()
                assert set(item.properties) <= set(known), item
            if item.kind == "prop":
                assert item.name in item.data.bl_rna.properties, item.name


def check_the_drawing_in_the_docs_is_that_of_the_panels():
    """If this fails, run tools/draw_panels.py to update the drawing."""
    import draw_panels

    assert draw_panels.DRAWING.read_text(encoding="utf-8") == draw_panels.drawing()
