"""A node's own settings as plain data: ramps, curves, images, and what some nodes have instead of properties."""

import bpy
from mathutils import Vector

SAMPLES = 257  # what Cycles samples a curve with; a table of another size bends at other places
OUTPUT_VALUES = {"ShaderNodeValue": "value", "ShaderNodeRGB": "color", "ShaderNodeNormal": "normal"}
MOVING = {
    "SEQUENCE": "is a sequence of pictures: the one that is shown now is taken",
    "MOVIE": "is a movie: the picture that is shown now is taken",
    "TILED": "has UDIM tiles: the first one is taken everywhere",
}


def add_own(writer, node, kind, record):
    """What a record holds beside sockets and plain properties."""
    if kind.ramp:
        record["ramp"] = ramp(node)
    if kind.curve:
        record["curve"] = curve(node)
    if kind.name in OUTPUT_VALUES:
        record["props"][OUTPUT_VALUES[kind.name]] = output_value(node)
    if kind.image and node.image:
        add_image(writer, node, record)
    if kind.object and node.object:
        record["object_matrix"] = [part for row in node.object.matrix_world.inverted_safe() for part in row]
    if kind.mapping and moved(node.texture_mapping):
        writer.note(record["id"], "its own mapping, a panel of older Blenders, has no effect: use a Mapping node")


def output_value(node):
    value = node.outputs[0].default_value
    if node.bl_idname == "ShaderNodeNormal":  # a direction, however long the stored vector is
        return list(Vector(value).normalized())
    return value if node.bl_idname == "ShaderNodeValue" else list(value)


def combined(identity, value):
    """A record that makes a vector of three numbers."""
    return {
        "id": identity,
        "type": "ShaderNodeCombineXYZ",
        "in": {name: {"t": "VALUE", "v": part} for name, part in zip("XYZ", value, strict=False)},
        "outs": {"Vector": "VECTOR"},
        "props": {},
    }


def ramp(node):
    """A colour ramp as it stands: the stops in the order of their list, the words that rule what lies between."""
    band = node.color_ramp
    return {
        "stops": [[stop.position, list(stop.color)] for stop in band.elements],
        "interp": band.interpolation,
        "mode": band.color_mode,
        "hue": band.hue_interpolation,
    }


def curve(node):
    """The curves as tables over the range of all control points. An RGB curve's common curve is applied
    before those of the channels, as Blender does."""
    mapping = node.mapping
    mapping.update()
    evaluate, parts = mapping.evaluate, list(mapping.curves)
    ends = [point.location[0] for part in parts for point in part.points]
    low, high = min(ends), max(ends)
    places = [low + (high - low) * step / (SAMPLES - 1) for step in range(SAMPLES)]
    if node.bl_idname == "ShaderNodeRGBCurve":
        common = parts.pop()
        places = [evaluate(common, place) for place in places]
    return {
        "tables": [[evaluate(part, place) for place in places] for part in parts],
        "min": low,
        "max": high,
        "extend": mapping.extend,
    }


def add_image(writer, node, record):
    picture = node.image
    record["props"]["image"] = picture.name
    if picture.name not in writer.images:
        writer.images[picture.name] = image(picture)
    if picture.source in MOVING:
        writer.note(record["id"], f"{picture.name} {MOVING[picture.source]}", "near")


def image(picture):
    return {
        "name": picture.name,
        "colorspace": picture.colorspace_settings.name,
        "alpha": alpha(picture),
        "float": picture.is_float,
    }


def alpha(picture):
    """The alpha mode under which the translator shows what Cycles shows.

    From Blender 5.1 on that is the image's own mode, but for straight TIFF files: their pixels are multiplied as they
    load. Up to 5.0 Cycles multiplies bytes by their alpha under Premultiplied too, and float pixels never.
    """
    mode = picture.alpha_mode
    if mode in ("STRAIGHT", "PREMUL"):
        if bpy.app.version < (5, 1, 0):
            return "PREMUL" if picture.is_float else "STRAIGHT"
        if picture.file_format == "TIFF":
            return "PREMUL"
    return mode


def moved(mapping):
    """Whether a texture's own mapping does anything."""
    return (
        tuple(mapping.translation) != (0, 0, 0)
        or tuple(mapping.rotation) != (0, 0, 0)
        or tuple(mapping.scale) != (1, 1, 1)
        or mapping.use_min
        or mapping.use_max
        or (mapping.mapping_x, mapping.mapping_y, mapping.mapping_z) != ("X", "Y", "Z")
    )
