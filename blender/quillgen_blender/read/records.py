"""A node's own settings as plain data: properties, colour ramps, curves and images."""

import bpy
from mathutils import Vector

SAMPLES = 257  # what Cycles samples a curve with; a table of another size bends at other places
PLAIN = ("ENUM", "BOOLEAN", "INT", "FLOAT", "STRING")
CURVES = ("ShaderNodeRGBCurve", "ShaderNodeVectorCurve", "ShaderNodeFloatCurve")
OUTPUT_VALUES = {"ShaderNodeValue": "value", "ShaderNodeRGB": "color", "ShaderNodeNormal": "normal"}


def properties(node):
    """What the node type adds to a plain node: enumerations, switches, numbers and names."""
    common = bpy.types.ShaderNode.bl_rna.properties.keys()
    found = {}
    for prop in node.bl_rna.properties:
        if prop.type not in PLAIN or prop.is_readonly or prop.identifier in common:
            continue
        value = getattr(node, prop.identifier)
        if getattr(prop, "is_array", False):
            value = list(value)
        elif prop.type == "ENUM" and prop.is_enum_flag:
            value = sorted(value)
        found[prop.identifier] = value
    if node.bl_idname in OUTPUT_VALUES:
        value = node.outputs[0].default_value
        if node.bl_idname == "ShaderNodeNormal":  # a direction, however long the stored vector is
            value = Vector(value).normalized()
        found[OUTPUT_VALUES[node.bl_idname]] = value if node.bl_idname == "ShaderNodeValue" else list(value)
    if getattr(node, "image", None):
        found["image"] = node.image.name
    return found


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
    ends = [point.location[0] for part in mapping.curves for point in part.points]
    low, high = min(ends), max(ends)
    places = [low + (high - low) * step / (SAMPLES - 1) for step in range(SAMPLES)]
    parts = list(mapping.curves)
    if node.bl_idname == "ShaderNodeRGBCurve":
        common = parts.pop()
        places = [mapping.evaluate(common, place) for place in places]
    return {
        "tables": [[mapping.evaluate(part, place) for place in places] for part in parts],
        "min": low,
        "max": high,
        "extend": mapping.extend,
    }


def image(picture):
    """An image as the translator has to take it so that it shows what Cycles shows. Bytes are always
    multiplied by their alpha as they load, under Premultiplied too. Float pixels come to a texture as Blender
    holds them, and then nothing is left to multiply."""
    alpha = picture.alpha_mode
    if alpha in ("STRAIGHT", "PREMUL"):
        alpha = "PREMUL" if picture.is_float else "STRAIGHT"
    return {
        "name": picture.name,
        "colorspace": picture.colorspace_settings.name,
        "alpha": alpha,
        "float": picture.is_float,
    }
