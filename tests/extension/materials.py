"""Materials that cover all of an export: groups, ramps, images, displacement, remarks. Runs inside Blender."""

import bpy


def build():
    """Fills the file with the materials below. Returns their names."""
    made = [plain(), grouped(), pictured(), displaced(), remarked()]
    twin = made[0].copy()
    twin.name = "OAK"  # differs in case only
    made.append(twin)
    bpy.ops.mesh.primitive_cube_add()
    for material in made:
        bpy.context.object.data.materials.append(material)
    return [material.name for material in made]


def fresh(name):
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    return material, material.node_tree, material.node_tree.nodes["Principled BSDF"]


def plain():
    """A noise and a ramp."""
    material, tree, shader = fresh("Oak")
    noise = tree.nodes.new("ShaderNodeTexNoise")
    ramp = tree.nodes.new("ShaderNodeValToRGB")
    tree.links.new(noise.outputs[0], ramp.inputs[0])
    tree.links.new(ramp.outputs[0], shader.inputs["Base Color"])
    return material


def grouped():
    """A group with an input, and a material name that file systems reject."""
    material, tree, shader = fresh("Wall: brick?")
    group = bpy.data.node_groups.new("Worn", "ShaderNodeTree")
    amount = group.interface.new_socket("Amount", in_out="INPUT", socket_type="NodeSocketFloat")
    amount.min_value, amount.max_value, amount.description = 0.25, 4.0, "How worn it is"
    amount.default_value = 2.0
    group.interface.new_socket("Value", in_out="OUTPUT", socket_type="NodeSocketFloat")
    start, end = group.nodes.new("NodeGroupInput"), group.nodes.new("NodeGroupOutput")
    noise = group.nodes.new("ShaderNodeTexNoise")
    group.links.new(start.outputs[0], noise.inputs["Scale"])
    group.links.new(noise.outputs[0], end.inputs[0])
    inside = tree.nodes.new("ShaderNodeGroup")
    inside.node_tree = group
    tree.links.new(inside.outputs[0], shader.inputs["Roughness"])
    return material


def pictured():
    """An image generated in Blender."""
    material, tree, shader = fresh("Poster")
    image = bpy.data.images.new("Paint ing.png", 4, 4)
    image.pixels = [0.25, 0.5, 0.75, 1.0] * 16
    node = tree.nodes.new("ShaderNodeTexImage")
    node.image = image
    tree.links.new(node.outputs[0], shader.inputs["Base Color"])
    return material


def displaced():
    """Real displacement."""
    material, tree, _ = fresh("Sand")
    material.displacement_method = "BOTH"
    displacement = tree.nodes.new("ShaderNodeDisplacement")
    noise = tree.nodes.new("ShaderNodeTexNoise")
    tree.links.new(noise.outputs[0], displacement.inputs["Height"])
    tree.links.new(displacement.outputs[0], tree.get_output_node("CYCLES").inputs["Displacement"])
    return material


def remarked():
    """A node without an equivalent in Unreal."""
    material, tree, shader = fresh("Wire")
    wire = tree.nodes.new("ShaderNodeWireframe")
    wire.name = "My Wire"
    tree.links.new(wire.outputs[0], shader.inputs["Roughness"])
    return material


def of_sixty_nodes():
    """A chain of the most common nodes, with the node count of a large material."""
    kinds = ("TexNoise", "Math", "MapRange", "Mix", "ValToRGB", "TexVoronoi", "Mapping", "VectorMath", "HueSaturation")
    material, tree, shader = fresh("Sixty")
    last = None
    for place in range(58):
        node = tree.nodes.new(f"ShaderNode{kinds[place % len(kinds)]}")
        if last:
            ends = [socket for socket in node.inputs if socket.enabled and socket.type in ("VALUE", "RGBA", "VECTOR")]
            tree.links.new(last.outputs[0], ends[0])
        last = node
    tree.links.new(last.outputs[0], shader.inputs["Base Color"])
    assert len(tree.nodes) == 60
    bpy.context.object.data.materials.append(material)
    return material
