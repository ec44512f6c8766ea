"""Rebuilds a material with Blender's own nodes from a flat document. Runs inside Blender."""

import bpy


def rebuild(document, name="Rebuilt"):
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    tree = material.node_tree
    tree.nodes.clear()
    nodes = {record["id"]: node(tree, record) for record in document["nodes"]}
    for record in document["nodes"]:
        for socket, entry in record["in"].items():
            if "link" in entry:
                source, out, seen = entry["link"]
                connect(tree, named(nodes[source].outputs, out), seen, named(nodes[record["id"]].inputs, socket))
    end = tree.nodes.new("ShaderNodeOutputMaterial")
    for socket, (source, out) in document["out"].items():
        tree.links.new(named(nodes[source].outputs, out), end.inputs[socket.title()])
    settings = document.get("settings", {})
    material.use_backface_culling = settings.get("backface_culling", False)
    material.displacement_method = settings.get("displacement", "BUMP")
    material.surface_render_method = settings.get("blend", "DITHERED")
    return material


def named(sockets, identifier):
    return next(socket for socket in sockets if socket.identifier == identifier)


def connect(tree, out, seen, socket):
    """Links two sockets. If the document reads the value as a type other than the output's, the link goes through a
    node of that type."""
    if (out.type, seen, socket.type) in (("VECTOR", "RGBA", "VALUE"), ("RGBA", "VECTOR", "VALUE")):
        between = tree.nodes.new("ShaderNodeRGBToBW" if seen == "RGBA" else "ShaderNodeVectorMath")
        if seen == "VECTOR":
            between.operation = "DOT_PRODUCT"
            between.inputs[1].default_value = (1 / 3,) * 3
        tree.links.new(out, between.inputs[0])
        out = named(between.outputs, "Val" if seen == "RGBA" else "Value")
    tree.links.new(out, socket)


def node(tree, record):
    made = tree.nodes.new(record["type"])
    made.name = record["id"]
    for key, value in record["props"].items():
        if key == "image":
            made.image = bpy.data.images[value]
        elif made.bl_idname in ("ShaderNodeValue", "ShaderNodeRGB", "ShaderNodeNormal"):
            made.outputs[0].default_value = value
        elif hasattr(made, key):
            setattr(made, key, value)
    for socket, entry in record["in"].items():
        if socket == "Filter Width" and socket not in made.inputs:
            assert entry["v"] == 1.0  # what Blender does before it has the socket
        elif "v" in entry:
            target = named(made.inputs, socket)
            value = entry["v"]
            target.default_value = value[: len(target.default_value)] if isinstance(value, list) else value
    if record["type"] == "ShaderNodeMath":
        for socket in ("Value", "Value_001", "Value_002"):
            if socket not in record["in"]:
                named(made.inputs, socket).default_value = 0.0
    if "ramp" in record:
        ramp(made.color_ramp, record["ramp"])
    if "curve" in record:
        curve(made.mapping, record)
    return made


def ramp(band, record):
    band.color_mode, band.interpolation = record["mode"], record["interp"]
    band.hue_interpolation = record.get("hue", "NEAR")
    while len(band.elements) > 1:
        band.elements.remove(band.elements[-1])
    for number, (position, color) in enumerate(record["stops"]):
        stop = band.elements[0] if number == 0 else band.elements.new(position)
        stop.position, stop.color = position, color


def curve(mapping, record):
    """Fills a curve mapping with straight segments between the samples."""
    tables, low, high = (record["curve"][key] for key in ("tables", "min", "max"))
    mapping.extend = record["curve"]["extend"]
    mapping.use_clip = False
    for part, table in zip(mapping.curves, tables):
        step = (high - low) / (len(table) - 1)
        while len(part.points) > 2:
            part.points.remove(part.points[1])
        for point, place in zip(part.points, (0, len(table) - 1)):
            point.location = low + place * step, table[place]
        for place in range(1, len(table) - 1):
            part.points.new(low + place * step, table[place])
        for point in part.points:
            point.handle_type = "VECTOR"
    mapping.update()
