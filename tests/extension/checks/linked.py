"""Materials, groups and images linked from other files, some with the same names as local ones."""

import json

import bpy
from materials import fresh

from quillgen_blender import exporting
from quillgen_blender.read import pictures

from .setting import manifest, setting

RED, GREEN = (1.0, 0.0, 0.0, 1.0), (0.0, 1.0, 0.0, 1.0)


def check_a_linked_material_has_a_folder_of_its_own():
    out = setting()
    library = str(out / "library.blend")
    bpy.ops.wm.save_as_mainfile(filepath=library, copy=True)
    with bpy.data.libraries.load(library, link=True) as (_, wanted):
        wanted.materials = ["Oak"]
    bpy.context.object.data.materials.append(wanted.materials[0])
    target = out / "exported"
    bpy.context.scene.quillgen.folder = str(target)
    bpy.ops.quillgen.export(scope="FILE")
    found = sorted(
        (manifest(path)["name"], manifest(path)["library"]) for path in target.iterdir() if path.name[0] != "_"
    )
    assert ("Oak", "") in found and ("Oak", "library.blend") in found


def check_libraries_of_one_name_are_told_apart():
    out = setting()
    libraries = [out / name / "library.blend" for name in ("one", "two")]
    for library in libraries:
        library.parent.mkdir()
        bpy.ops.wm.save_as_mainfile(filepath=str(library), copy=True)
    bpy.ops.wm.read_factory_settings(use_empty=True)
    bpy.ops.mesh.primitive_cube_add()
    for library in libraries:
        with bpy.data.libraries.load(str(library), link=True) as (_, wanted):
            wanted.materials = ["Oak"]
        bpy.context.object.data.materials.append(wanted.materials[0])
    bpy.context.scene.quillgen.folder = str(out / "exported")
    bpy.ops.quillgen.export(scope="FILE")
    found = [manifest(path) for path in (out / "exported").iterdir()]
    assert len({each["library"] for each in found}) == 2 and {each["name"] for each in found} == {"Oak"}
    assert "library.blend" in {each["library"] for each in found}, "the first has its file's name"


def with_a_library():
    """Makes a file with the material Wood and the image wood.png beside it. It links a material and a group of a file
    in another folder, which has an image with the same name. Returns the folder."""
    out = setting()
    library, scene = out / "library" / "library.blend", out / "scene" / "scene.blend"
    for file, color in ((library, RED), (scene, GREEN)):
        bpy.ops.wm.read_factory_settings(use_empty=True)
        file.parent.mkdir()
        image = bpy.data.images.new("new", 4, 4)
        image.pixels = color * 16
        image.file_format = "PNG"
        image.save(filepath=str(file.with_name("wood.png")))
        bpy.data.images.remove(image)
        bpy.ops.wm.save_as_mainfile(filepath=str(file))
        material, tree, shader = fresh("Wood")
        reads_wood(tree, shader.inputs["Base Color"])
        if file == library:
            material.use_fake_user = True
            group = bpy.data.node_groups.new("Woods", "ShaderNodeTree")
            group.interface.new_socket("Color", in_out="OUTPUT", socket_type="NodeSocketColor")
            reads_wood(group, group.nodes.new("NodeGroupOutput").inputs[0])
            group.use_fake_user = True
            bpy.ops.wm.save_mainfile()
    bpy.ops.mesh.primitive_cube_add()
    bpy.context.object.data.materials.append(material)
    with bpy.data.libraries.load(str(library), link=True, relative=True) as (_, wanted):
        wanted.materials, wanted.node_groups = ["Wood"], ["Woods"]
    bpy.context.object.data.materials.append(wanted.materials[0])
    node = tree.nodes.new("ShaderNodeGroup")
    node.node_tree = wanted.node_groups[0]
    tree.links.new(node.outputs[0], shader.inputs["Emission Color"])
    shader.inputs["Emission Strength"].default_value = 1.0
    bpy.context.scene.quillgen.folder = str(out / "exported")
    bpy.ops.wm.save_mainfile()
    return out


def reads_wood(tree, socket):
    node = tree.nodes.new("ShaderNodeTexImage")
    node.image = bpy.data.images.get("wood.png") or bpy.data.images.load("//wood.png")
    tree.links.new(node.outputs[0], socket)


def color_of(folder, record):
    """The colour of an exported image."""
    image = bpy.data.images.load(str(folder / record["file"]))
    found = tuple(round(part) for part in image.pixels[:4])
    bpy.data.images.remove(image)
    return found


def own_and_linked():
    own = next(each for each in bpy.data.materials if each.name == "Wood" and not each.library)
    return own, next(each for each in bpy.data.materials if each.library)


def check_pictures_of_one_name_are_told_apart():
    target = with_a_library() / "exported"
    bpy.ops.quillgen.export(scope="FILE")
    shown = {}
    for folder in (target / "Wood", target / "Wood 2"):
        found = manifest(folder)
        shown[found["library"]] = {record["image"]: color_of(folder, record) for record in found["textures"]}
    assert shown["library.blend"] == {"wood.png": RED}, shown
    assert sorted(shown[""].values()) == [GREEN, RED], "the material's own, and that of the group"


def check_a_linked_picture_lies_beside_its_library():
    with_a_library()
    own, linked = own_and_linked()
    for material, color in ((own, GREEN), (linked, RED)):
        image = next(node.image for node in material.node_tree.nodes if node.type == "TEX_IMAGE")
        assert pictures.as_read(image, pictures.record(image))[0, 0].tolist() == list(color)
        outcome = exporting.finish(exporting.steps(material, None, exporting.Settings()))
        assert not [remark for remark in outcome.remarks if "missing" in remark["text"]], outcome.remarks


def check_the_file_of_a_linked_picture_is_gone():
    out = with_a_library()
    (out / "library" / "wood.png").unlink()
    bpy.ops.wm.open_mainfile(filepath=str(out / "scene" / "scene.blend"))
    remarks = exporting.finish(exporting.steps(own_and_linked()[1], None, exporting.Settings())).remarks
    assert any("the file of wood.png is missing" in remark["text"] for remark in remarks), remarks


def check_a_library_that_is_gone_is_named():
    out = with_a_library()
    (out / "library" / "library.blend").unlink()
    bpy.ops.wm.open_mainfile(filepath=str(out / "scene" / "scene.blend"))
    linked = own_and_linked()[1]
    assert exporting.exportable(linked) == "Wood isn't in library.blend any more, or that library isn't there"
    assert bpy.ops.quillgen.export(scope="FILE") == {"FINISHED"}
    assert [path.name for path in (out / "exported").glob("Wood*")] == ["Wood"]


def check_a_remark_leads_to_the_node_of_the_linked_material():
    with_a_library()
    own, linked = own_and_linked()
    image = next(node for node in linked.node_tree.nodes if node.type == "TEX_IMAGE")
    words = {"material": "Wood", "path": json.dumps([image.name])}
    bpy.ops.quillgen.select_node(library=linked.library.filepath, **words)
    assert linked.node_tree.nodes.active == image and own.node_tree.nodes.active != own.node_tree.nodes[image.name]


def check_the_command_line_takes_all_of_a_name():
    from .command_line import ran

    out = with_a_library()
    code, told, errors = ran(out / "scene" / "scene.blend", "--out", out / "exported", "--material", "Wood")
    assert code == 0 and "2 exported" in told, told + errors
