"""Small materials with nodes that Blender 5.0 and later resolve before rendering: menus, zones, closures, bundles,
constants. Each function fills a node tree and returns the socket to render. Runs inside Blender."""

import bpy

from trees import add, colour, group, use, vector

VERSION = bpy.app.version


def menu(tree, data_type, word, items, name="Menu Switch"):
    node = add(tree, "GeometryNodeMenuSwitch", data_type=data_type)
    node.name = name
    node.inputs["Menu"].default_value = word
    for socket, source in zip(node.inputs[1:], items):
        if isinstance(source, bpy.types.NodeSocket):
            tree.links.new(source, socket)
        elif source is not None:
            socket.default_value = source
    return node


def menu_switch(tree):
    return menu(tree, "VECTOR", "B", (colour(tree), vector(tree))).outputs[0]


def menu_switch_with_a_value(tree):
    return menu(tree, "RGBA", "A", ((0.3, 0.5, 0.2, 1.0), vector(tree))).outputs[0]


def menu_switch_of_numbers(tree):
    """A colour linked to a menu switch of floats."""
    number = menu(tree, "FLOAT", "B", (0.5, colour(tree))).outputs[0]
    return add(tree, "VectorMath", {0: number, 1: (1.0, 2.0, 3.0)}).outputs[0]


def menu_switch_says_which(tree):
    return menu(tree, "FLOAT", "B", (0.5, 0.25)).outputs["B"]


def menu_from_outside(tree):
    """The menu choice is an input of a group."""

    def fill(inner, begin, end):
        switch = menu(inner, "VECTOR", "A", (begin["One"], begin["Two"]))
        inner.links.new(begin["Choice"], switch.inputs["Menu"])
        inner.links.new(switch.outputs[0], end[0])

    sockets = [("Choice", "Menu"), ("One", "Vector"), ("Two", "Vector")]
    node = use(tree, group("Chooser", sockets, [("Out", "Vector")], fill), {1: colour(tree), 2: vector(tree)})
    node.inputs[0].default_value = "B"
    return node.outputs[0]


def shader_switch(tree):
    """A menu switch of shaders."""
    glow = add(tree, "Emission", {"Color": vector(tree)})
    return menu(tree, "SHADER", "B", (add(tree, "BsdfDiffuse").outputs[0], glow.outputs[0])).outputs[0]


def repeat(tree, items, turns, body):
    """A repeat zone. items: [(type, name, start)], body: (tree, sockets in, iteration) -> sockets out."""
    begin, end = add(tree, "GeometryNodeRepeatInput"), add(tree, "GeometryNodeRepeatOutput")
    begin.pair_with_output(end)
    end.repeat_items.clear()
    for kind, name, _ in items:
        end.repeat_items.new(kind, name)
    if isinstance(turns, int):
        begin.inputs["Iterations"].default_value = turns
    else:
        tree.links.new(turns, begin.inputs["Iterations"])
    for _, name, start in items:
        if isinstance(start, bpy.types.NodeSocket):
            tree.links.new(start, begin.inputs[name])
        elif start is not None:
            begin.inputs[name].default_value = start
    outs = body(tree, {name: begin.outputs[name] for _, name, _ in items}, begin.outputs["Iteration"])
    for (_, name, _), out in zip(items, outs):
        tree.links.new(out, end.inputs[name])
    return end


def repeat_zone(tree):
    """Three iterations that add 1/1, 1/2 and 1/3 of a value from outside the zone."""
    outside = vector(tree)

    def body(tree, given, turn):
        share = add(tree, "Math", {0: 1.0, 1: add(tree, "Math", {0: turn, 1: 1.0}).outputs[0]}, operation="DIVIDE")
        part = add(tree, "VectorMath", {0: outside, "Scale": share.outputs[0]}, operation="SCALE")
        return [add(tree, "VectorMath", {0: given["Sum"], 1: part.outputs[0]}).outputs[0]]

    return repeat(tree, [("VECTOR", "Sum", (0.1, 0.2, 0.3))], 3, body).outputs["Sum"]


def repeat_without_turns(tree):
    return repeat(tree, [("VECTOR", "Sum", vector(tree))], 0, lambda tree, given, turn: [given["Sum"]]).outputs["Sum"]


def repeat_that_swaps(tree):
    """Two values that are swapped three times by links alone, without a node."""
    items = [("RGBA", "One", vector(tree)), ("RGBA", "Two", (0.5, 0.25, 0.125, 1.0))]
    zone = repeat(tree, items, 3, lambda tree, given, turn: [given["Two"], given["One"]])
    return add(tree, "VectorMath", {0: zone.outputs["One"], 1: zone.outputs["Two"]}, operation="SUBTRACT").outputs[0]


def repeat_through_numbers(tree):
    """A float item whose initial value is a linked colour."""
    zone = repeat(tree, [("FLOAT", "N", colour(tree))], 2, lambda tree, given, turn: [given["N"]])
    return add(tree, "VectorMath", {0: zone.outputs[0], 1: (1.0, 2.0, 3.0)}).outputs[0]


def repeat_within_repeat(tree):
    start = vector(tree)

    def inner(tree, given, turn):
        return [add(tree, "VectorMath", {0: given["V"], 1: start}, operation="MULTIPLY").outputs[0]]

    def outer(tree, given, turn):
        half = add(tree, "VectorMath", {0: given["V"], "Scale": 0.5}, operation="SCALE").outputs[0]
        return [repeat(tree, [("VECTOR", "V", half)], 2, inner).outputs["V"]]

    return repeat(tree, [("VECTOR", "V", start)], 2, outer).outputs["V"]


def repeat_in_a_group(tree):
    """The number of iterations and the step are inputs of a group."""

    def fill(inner, begin, end):
        def body(tree, given, turn):
            return [add(tree, "Math", {0: given["N"], 1: begin["Step"]}).outputs[0]]

        zone = repeat(inner, [("FLOAT", "N", 0.0)], begin["Turns"], body)
        inner.links.new(zone.outputs["N"], end[0])

    made = group("Repeater", [("Turns", "Int"), ("Step", "Float")], [("Out", "Float")], fill)
    return use(tree, made, {0: 4, 1: add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]}).outputs[0]


def closure(tree, given, made, body):
    """Defines a closure; given and made are [(type, name)] of its inputs and outputs."""
    begin, end = add(tree, "NodeClosureInput"), add(tree, "NodeClosureOutput")
    begin.pair_with_output(end)
    for kind, name in given:
        end.input_items.new(kind, name)
    for kind, name in made:
        end.output_items.new(kind, name)
    outs = body(tree, {name: begin.outputs[name] for _, name in given})
    for (_, name), out in zip(made, outs):
        tree.links.new(out, end.inputs[name])
    return end.outputs["Closure"]


def evaluate(tree, source, given, made):
    """A node that evaluates a closure; given is [(type, name, value)]."""
    node = add(tree, "NodeEvaluateClosure")
    for kind, name, _ in given:
        node.input_items.new(kind, name)
    for kind, name in made:
        node.output_items.new(kind, name)
    tree.links.new(source, node.inputs["Closure"])
    for _, name, value in given:
        if isinstance(value, bpy.types.NodeSocket):
            tree.links.new(value, node.inputs[name])
        elif value is not None:
            node.inputs[name].default_value = value
    return node


def closures(tree):
    """One closure that is evaluated twice with different values. A part of it doesn't depend on its inputs."""
    outside = vector(tree)

    def body(tree, given):
        bent = add(tree, "VectorMath", {0: outside, 1: (2.0, 1.0, 0.5)}, operation="MULTIPLY").outputs[0]
        return [add(tree, "VectorMath", {0: given["V"], 1: bent}).outputs[0]]

    made = closure(tree, [("VECTOR", "V")], [("VECTOR", "Out")], body)
    one = evaluate(tree, made, [("VECTOR", "V", (0.1, 0.2, 0.3))], [("VECTOR", "Out")])
    two = evaluate(tree, made, [("VECTOR", "V", one.outputs["Out"])], [("VECTOR", "Out")])
    return two.outputs["Out"]


def closure_through_a_group(tree):
    """A group that evaluates a closure from its input."""

    def fill(inner, begin, end):
        one = evaluate(inner, begin["F"], [("FLOAT", "X", begin["X"])], [("FLOAT", "Y")])
        inner.links.new(one.outputs["Y"], end[0])

    caller = group("Caller", [("F", "Closure"), ("X", "Float")], [("Out", "Float")], fill)
    source = add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]
    made = closure(
        tree,
        [("FLOAT", "X")],
        [("FLOAT", "Y")],
        lambda tree, given: [add(tree, "Math", {0: given["X"], 1: 3.0}).outputs[0]],
    )
    return use(tree, caller, {0: made, 1: source}).outputs[0]


def closure_of_numbers(tree):
    """A colour linked to a float input of a closure."""
    made = closure(
        tree,
        [("FLOAT", "X")],
        [("FLOAT", "Y")],
        lambda tree, given: [add(tree, "VectorMath", {0: given["X"], 1: (1.0, 2.0, 3.0)}).outputs[0]],
    )
    return evaluate(tree, made, [("FLOAT", "X", colour(tree))], [("FLOAT", "Y")]).outputs["Y"]


def bundle(tree, items):
    node = add(tree, "NodeCombineBundle")
    for kind, name, _ in items:
        node.bundle_items.new(kind, name)
    for _, name, value in items:
        if isinstance(value, bpy.types.NodeSocket):
            tree.links.new(value, node.inputs[name])
        elif value is not None:
            node.inputs[name].default_value = value
    return node.outputs["Bundle"]


def separate(tree, source, kind, name):
    node = add(tree, "NodeSeparateBundle")
    node.bundle_items.new(kind, name)
    tree.links.new(source, node.inputs["Bundle"])
    return node.outputs[name]


def bundles(tree):
    made = bundle(tree, [("VECTOR", "V", vector(tree)), ("FLOAT", "N", 0.25)])
    parts = separate(tree, made, "VECTOR", "V"), separate(tree, made, "FLOAT", "N")
    return add(tree, "VectorMath", {0: parts[0], 1: parts[1]}).outputs[0]


def bundle_taken_out_as_another_type(tree):
    made = bundle(tree, [("RGBA", "V", colour(tree))])
    return add(tree, "VectorMath", {0: separate(tree, made, "FLOAT", "V"), 1: (1.0, 2.0, 3.0)}).outputs[0]


def bundle_through_a_group(tree):
    def fill(inner, begin, end):
        inner.links.new(separate(inner, begin["B"], "VECTOR", "V"), end[0])

    taker = group("Taker", [("B", "Bundle")], [("Out", "Vector")], fill)
    return use(tree, taker, {0: bundle(tree, [("VECTOR", "V", vector(tree))])}).outputs[0]


def joined_bundles(tree):
    join = add(tree, "NodeJoinBundle")
    for items in ([("VECTOR", "V", vector(tree))], [("FLOAT", "N", 0.25), ("VECTOR", "V", (0.5, 0.75, 1.0))]):
        tree.links.new(bundle(tree, items), join.inputs[0])
    parts = separate(tree, join.outputs[0], "VECTOR", "V"), separate(tree, join.outputs[0], "FLOAT", "N")
    return add(tree, "VectorMath", {0: parts[0], 1: parts[1]}).outputs[0]


def joined_bundles_in_another_order(tree):
    """The same with the order of the links swapped."""
    out = joined_bundles(tree)
    one, two = (link for link in tree.links if link.to_node.bl_idname == "NodeJoinBundle")
    one.swap_multi_input_sort_id(two)
    return out


def constants(tree):
    """Constant integer, boolean and vector nodes."""
    number = add(tree, "FunctionNodeInputInt", integer=3).outputs[0]
    truth = add(tree, "FunctionNodeInputBool", boolean=True).outputs[0]
    fixed = add(tree, "FunctionNodeInputVector", vector=(0.1, 0.2, 0.3)).outputs[0]
    total = add(tree, "Math", {0: number, 1: truth}).outputs[0]
    return add(tree, "VectorMath", {0: fixed, 1: total}).outputs[0]


def scene_time(tree):
    bpy.context.scene.frame_set(12)
    node = add(tree, "GeometryNodeInputSceneTime")
    return add(tree, "CombineXYZ", {0: node.outputs["Seconds"], 1: node.outputs["Frame"]}).outputs[0]


def conversion(tree, kind, source):
    node = add(tree, "NodeImplicitConversion", data_type=kind)
    tree.links.new(source, node.inputs[0])
    return node.outputs[0]


def conversion_to_a_number(tree):
    return add(tree, "VectorMath", {0: conversion(tree, "FLOAT", colour(tree)), 1: (1.0, 2.0, 3.0)}).outputs[0]


def conversion_to_a_vector(tree):
    return add(tree, "Math", {0: conversion(tree, "VECTOR", colour(tree)), 1: 0.0}).outputs[0]


def conversion_to_an_integer(tree):
    return add(tree, "Math", {0: conversion(tree, "INT", colour(tree)), 1: 0.0}).outputs[0]


def conversion_of_nothing(tree):
    node = add(tree, "NodeImplicitConversion", data_type="VECTOR")
    node.inputs[0].default_value = (0.2, 0.3, 0.4)
    return add(tree, "VectorMath", {0: node.outputs[0], 1: (1.0, 2.0, 3.0)}).outputs[0]


def returned(tree, kind, fill):
    """A value computed from constants only, converted by a group output of a type."""
    inner = group("Fixed", [], [("Out", kind)], lambda tree, begin, end: tree.links.new(fill(tree), end[0]))
    return add(tree, "VectorMath", {0: vector(tree), 1: use(tree, inner).outputs[0]}, operation="MULTIPLY").outputs[0]


def fixed_colour(tree):
    number = add(tree, "CombineXYZ", {0: 1.0, 1: 0.25}).outputs[0]
    node = add(tree, "ValToRGB", {0: number})
    node.color_ramp.elements[0].color, node.color_ramp.elements[1].color = (0.9, 0.1, 0.3, 1.0), (0.2, 0.5, 0.7, 1.0)
    return node.outputs[0]


def worked_out_as_a_number(tree):
    return returned(tree, "Float", fixed_colour)


def worked_out_as_a_whole_number(tree):
    """A vector, which converts to an integer by its mean."""
    return returned(tree, "Int", lambda tree: add(tree, "CombineXYZ", {0: 3.5, 1: 2.0, 2: 1.0}).outputs[0])


def worked_out_as_a_truth(tree):
    """A vector is true unless all components are zero."""
    return returned(tree, "Bool", lambda tree: add(tree, "CombineXYZ", {0: -3.5, 1: 0.25}).outputs[0])


def constant_vector_as_a_truth(tree):
    """An unlinked group input that is passed to an inner group, without a node in between."""
    inner = group(
        "Truth", [("In", "Bool")], [("Out", "Color")], lambda tree, begin, end: tree.links.new(begin[0], end[0])
    )

    def fill(tree, begin, end):
        tree.links.new(use(tree, inner, {0: begin[0]}).outputs[0], end[0])

    outer = group("Holder", [("V", "Vector")], [("Out", "Color")], fill)
    found = use(tree, outer, {0: (-1.0, 0.25, 0.5)}).outputs[0]
    return add(tree, "VectorMath", {0: vector(tree), 1: found}, operation="MULTIPLY").outputs[0]


def texture_worked_out(tree):
    """A texture with a constant coordinate is constant too: the sum, slightly above 1, becomes an integer."""

    def fill(tree):
        where = add(tree, "CombineXYZ", {0: 0.3}).outputs[0]
        shade = add(tree, "TexGradient", {"Vector": where}).outputs[1]
        return add(tree, "Math", {0: shade, 1: 1.0}).outputs[0]

    return returned(tree, "Int", fill)


def float_curves_beyond_their_range(tree):
    """A constant input is clipped to 1 by the curve's clipping range, unless the curve goes on within it; a varying
    input is not clipped."""
    varying = add(tree, "SeparateXYZ", {0: vector(tree)}).outputs[0]
    curves = [add(tree, "FloatCurve", {"Value": value}) for value in (1.5, varying, 0.5, 1.5)]
    for one in curves[2:]:  # a peak that exceeds the range
        one.mapping.curves[0].points.new(0.5, 1.5)
        for point in one.mapping.curves[0].points:
            point.handle_type = "VECTOR"
        one.mapping.update()
    roof = add(tree, "Math", {0: curves[2].outputs[0], 1: curves[3].outputs[0]}).outputs[0]
    factors = add(tree, "CombineXYZ", {0: curves[0].outputs[0], 1: curves[1].outputs[0], 2: roof}).outputs[0]
    return add(tree, "VectorMath", {0: vector(tree), 1: factors}, operation="MULTIPLY").outputs[0]


def texture_with_its_own_coordinate(tree):
    """This texture varies, so its value keeps its fraction."""
    return returned(tree, "Int", lambda tree: add(tree, "Math", {0: add(tree, "TexGradient").outputs[1]}).outputs[0])


FIRST = {"joined_bundles": (5, 1), "joined_bundles_in_another_order": (5, 1)} | dict.fromkeys(
    (
        "constants",
        "scene_time",
        "conversion_to_a_number",
        "conversion_to_a_vector",
        "conversion_to_an_integer",
        "conversion_of_nothing",
    ),
    (5, 2),
)
HELPERS = (
    "menu",
    "repeat",
    "closure",
    "evaluate",
    "bundle",
    "separate",
    "conversion",
    "named",
    "add",
    "use",
    "group",
    "returned",
    "fixed_colour",
)
TREES = [
    thing
    for name, thing in list(globals().items())
    if callable(thing)
    and getattr(thing, "__module__", "") == __name__
    and name not in HELPERS
    and FIRST.get(name, (5, 0)) <= VERSION
]
