"""A node's own settings as plain data: ramps, curves, images, and the values that some nodes store in their outputs."""

from collections.abc import Callable
from typing import Any

from mathutils import Vector

from . import pictures

SAMPLES = 257  # samples of a curve in Cycles; a table of another size bends at other places
CURVES = ("ShaderNodeRGBCurve", "ShaderNodeVectorCurve", "ShaderNodeFloatCurve")
MOVING = {
    "SEQUENCE": "is a sequence of pictures: the one that is shown now is taken",
    "MOVIE": "is a movie: the picture that is shown now is taken",
    "TILED": "has UDIM tiles: the first one is taken everywhere",
}
UNSHOWN = "is a sequence or a movie of which no picture is shown: export from Blender's window, where one is"


def own(name: str, pointers: set[str]) -> tuple[Callable[..., None], ...]:
    """The functions that add what a node type has besides sockets and plain properties to its record. `pointers`: its
    properties that are not plain values."""
    found = [OUTPUT_VALUES[name]] if name in OUTPUT_VALUES else []
    found += [add for pointer, add in POINTERS.items() if pointer in pointers]
    return (*found, add_curve) if name in CURVES else tuple(found)


def add_value(writer: Any, node: Any, record: dict[str, Any]) -> None:
    record["props"]["value"] = node.outputs[0].default_value


def add_colour(writer: Any, node: Any, record: dict[str, Any]) -> None:
    record["props"]["color"] = list(node.outputs[0].default_value)


def add_direction(writer: Any, node: Any, record: dict[str, Any]) -> None:
    """The stored vector, normalized: only its direction counts."""
    record["props"]["normal"] = list(Vector(node.outputs[0].default_value).normalized())


def add_ramp(writer: Any, node: Any, record: dict[str, Any]) -> None:
    record["ramp"] = ramp(node)


def add_curve(writer: Any, node: Any, record: dict[str, Any]) -> None:
    record["curve"] = curve(node)


def add_object(writer: Any, node: Any, record: dict[str, Any]) -> None:
    if record["type"] == "ShaderNodeTexCoord" and node.object:
        record["object_matrix"] = [part for row in node.object.matrix_world.inverted_safe() for part in row]


def note_mapping(writer: Any, node: Any, record: dict[str, Any]) -> None:
    if moved(node.texture_mapping):
        writer.note(record["id"], "its own mapping, a panel of older Blenders, has no effect: use a Mapping node")


def combined(identity: str, value: Any) -> dict[str, Any]:
    """A record that makes a vector of three numbers."""
    return {
        "id": identity,
        "type": "ShaderNodeCombineXYZ",
        "in": {name: {"t": "VALUE", "v": part} for name, part in zip("XYZ", value, strict=False)},
        "outs": {"Vector": "VECTOR"},
        "props": {},
    }


def emission(identity: str, color: dict[str, Any]) -> dict[str, Any]:
    """A record that emits a colour. Its values never become parameters."""
    return {
        "id": identity,
        "type": "ShaderNodeEmission",
        "in": {"Color": color, "Strength": {"t": "VALUE", "v": 1.0}},
        "outs": {"Emission": "SHADER"},
        "props": {},
        "made": True,
    }


def ramp(node: Any) -> dict[str, Any]:
    """A colour ramp as Blender stores it: the stops in list order and the interpolation settings."""
    band = node.color_ramp
    return {
        "stops": [[stop.position, list(stop.color)] for stop in band.elements],
        "interp": band.interpolation,
        "mode": band.color_mode,
        "hue": band.hue_interpolation,
    }


def curve(node: Any) -> dict[str, Any]:
    """The curves as tables over the range of all control points. The common curve of an RGB Curves node is applied
    before the curves of the channels, as in Blender."""
    mapping = node.mapping
    mapping.update()
    parts = list(mapping.curves)
    ends = [point.location[0] for part in parts for point in part.points]
    low, high = min(ends), max(ends)
    places = [low + (high - low) * step / (SAMPLES - 1) for step in range(SAMPLES)]
    if node.bl_idname == "ShaderNodeRGBCurve":
        places = sampled(mapping, parts.pop(), places)
    return {
        "tables": [sampled(mapping, part, places) for part in parts],
        "min": low,
        "max": high,
        "extend": mapping.extend,
    }


def clip(curve: dict[str, Any], mapping: Any) -> None:
    """Clips a table to the clipping range. A curve that leaves the range beyond both ends stays at the limits there.
    For any other extrapolated curve the two samples at each end are kept, because they define the extrapolation."""
    low, high = mapping.clip_min_y, mapping.clip_max_y
    table = curve["tables"][0]
    clipped = [min(max(value, low), high) for value in table]
    if {clipped[0], clipped[-1]} <= {low, high} and (clipped[1], clipped[-2]) == (table[1], table[-2]):
        curve["extend"] = "HORIZONTAL"
    elif curve["extend"] == "EXTRAPOLATED":
        clipped[:2], clipped[-2:] = table[:2], table[-2:]
    curve["tables"] = [clipped]


def sampled(mapping: Any, part: Any, places: list[float]) -> list[float]:
    """Samples a curve. Most channels of most nodes are the default line from corner to corner, which is not evaluated:
    evaluating takes longer than the rest of reading."""
    if len(part.points) == 2 and min(places) >= part.points[0].location[0]:
        one, two = (tuple(point.location) for point in part.points)
        plain = all(point.handle_type in ("AUTO", "VECTOR") for point in part.points)
        if plain and one[0] == one[1] and two[0] == two[1] and max(places) <= two[0]:
            return places[:]
    evaluate = mapping.evaluate
    return [evaluate(part, place) for place in places]


def add_image(writer: Any, node: Any, record: dict[str, Any]) -> None:
    picture = node.image
    if picture is None:
        return
    name = record["props"]["image"] = writer.image(picture)
    if name not in writer.images:
        writer.images[name] = pictures.record(picture)
    if pictures.missing(picture):
        writer.note(record["id"], f"the file of {picture.name} is missing: Blender shows magenta")
    if picture.source in ("SEQUENCE", "MOVIE") and not pictures.has_pixels(picture):
        writer.note(record["id"], f"{picture.name} {UNSHOWN}")
    elif picture.source in MOVING:
        writer.note(record["id"], f"{picture.name} {MOVING[picture.source]}", "near")


def moved(mapping: Any) -> bool:
    """Whether a texture's own mapping has an effect."""
    return (
        tuple(mapping.translation) != (0, 0, 0)
        or tuple(mapping.rotation) != (0, 0, 0)
        or tuple(mapping.scale) != (1, 1, 1)
        or mapping.use_min
        or mapping.use_max
        or (mapping.mapping_x, mapping.mapping_y, mapping.mapping_z) != ("X", "Y", "Z")
    )


OUTPUT_VALUES = {"ShaderNodeValue": add_value, "ShaderNodeRGB": add_colour, "ShaderNodeNormal": add_direction}
POINTERS = {"color_ramp": add_ramp, "image": add_image, "object": add_object, "texture_mapping": note_mapping}
