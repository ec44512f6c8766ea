"""Small materials with everything that a flat document doesn't have. Each function fills a node tree and returns the
socket to render. Runs inside Blender."""

import bpy


def add(tree, kind, inputs=None, **settings):
    """A node; inputs are values, or sockets to link."""
    node = tree.nodes.new(kind if kind.startswith(("Node", "GeometryNode", "FunctionNode")) else "ShaderNode" + kind)
    for key, value in settings.items():
        setattr(node, key, value)
    for key, value in (inputs or {}).items():
        socket = node.inputs[key] if isinstance(key, int) else named(node.inputs, key)
        if isinstance(value, bpy.types.NodeSocket):
            tree.links.new(value, socket)
        else:
            socket.default_value = value
    return node


def named(sockets, identifier):
    return next(socket for socket in sockets if socket.identifier == identifier)


def vector(tree):
    """A vector whose three components differ everywhere."""
    uv = add(tree, "UVMap").outputs[0]
    return add(tree, "VectorMath", {0: uv, 1: (3.0, -2.0, 1.0), 2: (0.1, 0.2, 0.5)}, operation="MULTIPLY_ADD").outputs[
        0
    ]


def colour(tree):
    return add(tree, "BrightContrast", {"Color": vector(tree), "Bright": 0.3}).outputs[0]


def group(name, inputs, outputs, fill):
    """A node group. inputs and outputs are (name, type) pairs; fill(tree, inputs, outputs) links the nodes."""
    tree = bpy.data.node_groups.new(name, "ShaderNodeTree")
    for way, sockets in (("INPUT", inputs), ("OUTPUT", outputs)):
        for label, kind in sockets:
            tree.interface.new_socket(label, in_out=way, socket_type="NodeSocket" + kind)
    begin, end = tree.nodes.new("NodeGroupInput"), tree.nodes.new("NodeGroupOutput")
    fill(tree, begin.outputs, end.inputs)
    return tree


def use(tree, inner, inputs=None, name=None):
    node = add(tree, "Group", node_tree=inner)
    node.name = name or inner.name.split(".")[0]
    for key, value in (inputs or {}).items():
        if isinstance(value, bpy.types.NodeSocket):
            tree.links.new(value, node.inputs[key])
        else:
            node.inputs[key].default_value = value
    return node


def through(kind, reader="VectorMath"):
    """A group that passes an input of a type to a reader node."""

    def fill(tree, begin, end):
        node = add(tree, reader)
        socket = named(node.inputs, {"VectorMath": "Vector", "Math": "Value"}[reader])
        tree.links.new(begin[0], socket)
        tree.links.new(node.outputs[0], end[0])

    return group("Through", [("In", kind)], [("Out", "Color")], fill)


def nested_groups(tree):
    """Two instances of a group that contains a group, with linked and unlinked inputs."""

    def inner(tree, begin, end):
        noise = add(tree, "TexNoise", {"Vector": begin[0], "Scale": begin[1]})
        tree.links.new(add(tree, "Math", {0: noise.outputs[0], 1: begin[1]}, operation="MULTIPLY").outputs[0], end[0])

    deep = group("Deep", [("Where", "Vector"), ("Size", "Float")], [("Out", "Float")], inner)

    def outer(tree, begin, end):
        bigger = add(tree, "Math", {0: begin[1], 1: 2.0}, operation="MULTIPLY").outputs[0]
        first = use(tree, deep, {0: begin[0], 1: bigger}, "First")
        second = use(tree, deep, {0: first.outputs[0], 1: 3.0}, "Second")
        tree.links.new(second.outputs[0], end[0])

    wide = group("Wide", [("Where", "Vector"), ("Size", "Float")], [("Out", "Float")], outer)
    one = use(tree, wide, {0: vector(tree), 1: 1.5}, "One")
    two = use(tree, wide, {0: colour(tree), 1: one.outputs[0]}, "Two")
    return add(tree, "Math", {0: one.outputs[0], 1: two.outputs[0]}).outputs[0]


def colour_through_float(tree):
    return use(tree, through("Float"), {0: colour(tree)}).outputs[0]


def colour_through_vector_to_number(tree):
    return use(tree, through("Vector", "Math"), {0: colour(tree)}).outputs[0]


def vector_through_colour_to_number(tree):
    return use(tree, through("Color", "Math"), {0: vector(tree)}).outputs[0]


def vector_through_integer(tree):
    return use(tree, through("Int"), {0: vector(tree)}).outputs[0]


def number_through_vector(tree):
    number = add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[1]
    return use(tree, through("Vector"), {0: number}).outputs[0]


def constant_through_borders(tree):
    """An unlinked vector input that is passed through a float input of an inner group."""
    inner = through("Float")
    outer = group(
        "Outer",
        [("In", "Vector")],
        [("Out", "Color")],
        lambda tree, begin, end: tree.links.new(use(tree, inner, {0: begin[0]}).outputs[0], end[0]),
    )
    return use(tree, outer, {0: (0.1, 0.2, 0.4)}).outputs[0]


def constant_for_a_texture(tree):
    inner = group(
        "Stripes",
        [("Where", "Vector")],
        [("Out", "Color")],
        lambda tree, begin, end: tree.links.new(add(tree, "TexGradient", {"Vector": begin[0]}).outputs[0], end[0]),
    )
    return use(tree, inner, {0: (0.25, 0.5, 0.75)}).outputs[0]


def numbers_through_truths(tree):
    """Up to 4.5 a boolean socket holds an integer: 3 stays 3, and 0.75 becomes 0."""

    def fill(tree, begin, end):
        for source, target in zip(begin[:2], end[:2]):
            tree.links.new(source, target)

    inner = group("Truths", [("A", "Int"), ("B", "Float")], [("A", "Bool"), ("B", "Bool")], fill)
    found = use(tree, inner, {0: 3, 1: 0.75})
    factors = add(tree, "CombineXYZ", {0: found.outputs[0], 1: found.outputs[1], 2: 1.0}).outputs[0]
    return add(tree, "VectorMath", {0: vector(tree), 1: factors}, operation="MULTIPLY").outputs[0]


def rim(hidden):
    inner = group(
        "Rim",
        [("Normal", "Vector")],
        [("Out", "Float")],
        lambda tree, begin, end: tree.links.new(
            add(tree, "LayerWeight", {"Normal": begin[0], "Blend": 0.3}).outputs["Facing"], end[0]
        ),
    )
    for item in inner.interface.items_tree:
        if item.in_out == "INPUT":
            item.hide_value = hidden
    return inner


def constant_for_a_normal(tree):
    return use(tree, rim(False), {0: (0.25, 0.5, 0.75)}).outputs[0]


def hidden_constant_for_a_normal(tree):
    return use(tree, rim(True), {0: (0.25, 0.5, 0.75)}).outputs[0]


def group_without_links_inside(tree):
    inner = group(
        "Plain",
        [],
        [("Out", "Color")],
        lambda tree, begin, end: setattr(end[0], "default_value", (0.1, 0.2, 0.3, 1.0)),
    )
    return add(tree, "VectorMath", {0: use(tree, inner).outputs[0]}).outputs[0]


def group_input_outside_of_groups(tree):
    """Copying nodes out of a group can leave a Group Input at the top level. Up to 4.5 its links are ignored, since 5.0
    its value is zero."""
    tree.interface.new_socket("Stray", in_out="INPUT", socket_type="NodeSocketVector").default_value = (0.9, 0.1, 0.2)
    node = add(tree, "VectorMath", {0: (0.4, 0.5, 0.6), 1: vector(tree)})
    tree.links.new(tree.nodes.new("NodeGroupInput").outputs[0], node.inputs[0])
    return node.outputs[0]


def reroutes(tree):
    first = add(tree, "NodeReroute")
    tree.links.new(vector(tree), first.inputs[0])
    second = add(tree, "NodeReroute")
    tree.links.new(first.outputs[0], second.inputs[0])
    return add(tree, "VectorMath", {0: second.outputs[0], 1: (1.0, 2.0, 3.0)}).outputs[0]


def empty_reroute(tree):
    node = add(tree, "VectorMath", {0: (0.4, 0.5, 0.6), 1: (1.0, 2.0, 3.0)})
    tree.links.new(add(tree, "NodeReroute").outputs[0], node.inputs[0])
    return node.outputs[0]


def muted(tree):
    """A muted Math node passes its first input through; up to 4.5 only as a float."""
    return add(tree, "Math", {0: vector(tree), 1: 5.0}, mute=True).outputs[0]


def muted_without_a_link(tree):
    node = add(tree, "VectorMath", {0: (0.4, 0.5, 0.6)})
    tree.links.new(add(tree, "Math", {0: 0.7}, mute=True).outputs[0], node.inputs[0])
    return node.outputs[0]


def muted_without_a_way(tree):
    node = add(tree, "VectorMath", {0: (0.4, 0.5, 0.6)})
    tree.links.new(add(tree, "TexCoord", mute=True).outputs[0], node.inputs[0])
    return node.outputs[0]


def muted_group(tree):
    inner = group(
        "Off",
        [("In", "Color")],
        [("Out", "Color")],
        lambda tree, begin, end: tree.links.new(add(tree, "Invert", {"Color": begin[0]}).outputs[0], end[0]),
    )
    node = use(tree, inner, {0: colour(tree)})
    node.mute = True
    return add(tree, "VectorMath", {0: node.outputs[0]}).outputs[0]


def muted_link(tree):
    node = add(tree, "VectorMath", {0: (0.4, 0.5, 0.6)})
    tree.links.new(vector(tree), node.inputs[0]).is_muted = True
    return node.outputs[0]


def link_on_a_hidden_socket(tree):
    noise = add(tree, "TexNoise", noise_dimensions="4D")
    tree.links.new(add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0], noise.inputs["W"])
    tree.links.new(vector(tree), noise.inputs["Vector"])
    noise.noise_dimensions = "3D"
    return noise.outputs[0]


def white_noise(tree):
    return add(tree, "TexWhiteNoise", {"Vector": (0.25, 0.5, 1.0)}).outputs["Value"]


def attribute_without_a_name(tree):
    """An attribute without a name is 0, also as a texture coordinate, with an alpha of 1."""
    found = add(tree, "Attribute").outputs
    shade = add(tree, "TexGradient", {"Vector": found["Vector"]}).outputs[1]
    factors = add(tree, "CombineXYZ", {0: named(found, "Fac"), 1: found["Alpha"], 2: shade}).outputs[0]
    values = {0: vector(tree), 1: factors, 2: found["Color"]}
    return add(tree, "VectorMath", values, operation="MULTIPLY_ADD").outputs[0]


def second_uv_map(tree):
    return add(tree, "UVMap", uv_map="Second").outputs[0]


def ramp_in_hsv(tree):
    node = add(tree, "ValToRGB", {0: add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]})
    band = node.color_ramp
    band.color_mode, band.interpolation = "HSV", "EASE"
    band.elements[0].color, band.elements[1].color = (0.8, 0.1, 0.2, 1.0), (0.3, 0.9, 0.1, 0.5)
    band.elements.new(0.25).color = (0.2, 0.3, 0.9, 1.0)
    return node.outputs[0]


def ramp_past_red(tree):
    """The shortest path between the hues crosses red. The document interpolates hues linearly and never crosses it."""
    node = add(tree, "ValToRGB", {0: add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]})
    band = node.color_ramp
    band.color_mode = "HSL"
    band.elements[0].color, band.elements[1].color = (0.8, 0.5, 0.2, 1.0), (0.9, 0.7, 0.1, 0.5)
    band.elements.new(0.25).color = (0.9, 0.2, 0.6, 1.0)
    return node.outputs[0]


def rgb_curves(tree):
    """The combined curve and the curve of one channel are bent."""
    node = add(tree, "RGBCurve", {"Color": vector(tree)})
    for part, place in ((3, (0.4, 0.7)), (0, (0.6, 0.2))):
        node.mapping.curves[part].points.new(*place)
    node.mapping.update()
    return node.outputs[0]


def direction(tree):
    """A Normal node whose vector is not normalized."""
    node = add(tree, "Normal", {"Normal": vector(tree)})
    node.outputs["Normal"].default_value = (0.3, -0.4, 0.2)
    return node.outputs["Dot"]


def bumped(tree):
    height = add(tree, "TexNoise", {"Vector": vector(tree), "Scale": 2.0}).outputs[0]
    return add(tree, "Bump", {"Height": height}).outputs[0]


def unused_branch(tree):
    add(tree, "TexNoise", {"Vector": vector(tree)})
    add(tree, "NodeFrame")
    return add(tree, "Math", {0: 0.25, 1: 0.5}).outputs[0]


def names_that_clash(tree):
    inner = group(
        "A",
        [],
        [("Out", "Float")],
        lambda tree, begin, end: tree.links.new(add(tree, "Value", name="B").outputs[0], end[0]),
    )
    inner.nodes["B"].outputs[0].default_value = 0.5
    first = use(tree, inner, name="A").outputs[0]
    second = add(tree, "Value", name="A/B")
    second.outputs[0].default_value = 0.25
    third = add(tree, "Value", name="A_B")
    third.outputs[0].default_value = 0.125
    total = add(tree, "Math", {0: first, 1: second.outputs[0]}, name="Sum").outputs[0]
    return add(tree, "Math", {0: total, 1: third.outputs[0]}, name="Sum.001").outputs[0]


TREES = [
    thing
    for name, thing in list(globals().items())
    if callable(thing)
    and getattr(thing, "__module__", "") == __name__
    and name not in ("add", "named", "vector", "colour", "group", "use", "through", "rim")
]
