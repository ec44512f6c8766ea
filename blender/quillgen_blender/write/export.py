"""From a document to the files that Unreal needs."""

import json
import shutil
from pathlib import Path

import bpy

# The material expression that feeds each kind of input.
WIRING = {
    "scalar": "Scalar Parameter",
    "vector": "Vector Parameter, all four channels",
    "texture": "Texture Object Parameter; sRGB off, no compression that changes bytes, no mip maps",
    "texcoord": "Texture Coordinate {index}",
    "ddx": "DDX of: {of}",
    "ddy": "DDY of: {of}",
    "world_position": "Absolute World Position",
    "world_position_cr": "Camera Relative World Position",
    "local_position": "Local Position",
    "cycles_normal": "Vertex Normal WS, corrected for non-uniform scale, never turned to the viewer",
    "vertex_normal": "Vertex Normal WS",
    "camera_vector": "Camera Vector WS",
    "object_origin": "Transform Position (0, 0, 0), Local Space to Absolute World Space",
    "object_axis": "Transform Vector, the unit vector {axis}, Local Space to World Space",
    "local_bounds_min": "Object Local Bounds, Min",
    "local_bounds_max": "Object Local Bounds, Max",
    "vertex_color": "Vertex Color, RGBA",
    "two_sided_sign": "Two Sided Sign",
    "tangent_world": "Vertex Tangent WS",
    "bitangent_world": "Transform Vector (0, 1, 0), Tangent Space to World Space",
    "camera_position": "Camera Position WS",
    "pixel_depth": "Pixel Depth",
    "tan_half_fov": "View Property Tan Half Field Of View",
    "view_size": "View Property View Size",
    "view_axis": "Transform Vector, the unit vector {axis} (y up, z forwards), View Space to World Space",
    "pixel_position": "Screen Position, in pixels",
    "temporal_index": "the temporal anti-aliasing sample index",
}


def translate(document, mode="surface", use_params=True):
    """quillgen's result for a document. Imported here, so that flattening works without the module."""
    import quillgen

    return quillgen.compile(document, mode, use_params)


def write(result, folder, name, document=None, notes=()):
    """Writes NAME.hlsl, NAME.displacement.hlsl if there is one, NAME.json with all but the texts, NAME.md, a
    table to wire by, and NAME.document.json if the document is given. Returns the paths."""
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    displacement = result["displacement"]
    texts = {f"{name}.hlsl": result["code"] + "\n"}
    table = {key: value for key, value in result.items() if key not in ("code", "displacement")}
    if displacement:
        texts[f"{name}.displacement.hlsl"] = displacement["code"] + "\n"
        table["displacement"] = {key: value for key, value in displacement.items() if key != "code"}
    table["notes"] = list(notes)
    texts[f"{name}.json"] = json.dumps(table, indent=1, ensure_ascii=False) + "\n"
    texts[f"{name}.md"] = wiring(table, name)
    if document:
        texts[f"{name}.document.json"] = json.dumps(document, indent=1, ensure_ascii=False) + "\n"
    for file, text in texts.items():
        (folder / file).write_text(text, encoding="utf-8")
    return [folder / file for file in texts]


def wiring(table, name):
    """The inputs and outputs of the Custom expression, for whoever builds the material by hand."""
    material = ", ".join(f"{key} {value}" for key, value in table["material"].items())
    lines = [
        f"# {name}",
        "",
        f"Material: {material}.",
        "",
        "| Input | Expression | Default |",
        "| --- | --- | --- |",
    ]
    for entry in table["inputs"]:
        default = entry.get("default", entry.get("image", ""))
        lines.append(f"| {entry['name']} | {expression(entry)} | {default} |")
    lines += [
        "",
        "| Additional output | Type | Goes to |",
        "| --- | --- | --- |",
        "| (the result) | float3 | base_color |",
    ]
    lines += [f"| {out['name']} | {out['type']} | {out['property']} |" for out in table["outputs"]]
    if "displacement" in table:
        lines += ["", f"Displacement: magnitude {table['displacement']['magnitude']} cm, centre 0.5.", ""]
        lines += [f"- {entry['name']}: {expression(entry)}" for entry in table["displacement"]["inputs"]]
    remarks = list(table["warnings"]) + list(table["notes"])
    if remarks:
        lines += ["", "What differs from Blender:", ""] + [f"- {remark}" for remark in remarks]
    return "\n".join(lines) + "\n"


def expression(entry):
    text = WIRING[entry["kind"]]
    inner = expression(entry["of"]) if "of" in entry else ""
    return text.format(index=entry.get("index"), axis=entry.get("axis"), of=inner)


def save_textures(result, folder):
    """Saves the pictures that the inputs name: pictures in bytes as they are stored, others as OpenEXR with
    the scene-linear pixels that the node tree sees. Returns {input name: path}."""
    folder = Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    inputs = result["inputs"] + (result["displacement"] or {"inputs": []})["inputs"]
    return {
        entry["name"]: save_texture(bpy.data.images[entry["image"]], folder / entry["name"])
        for entry in inputs
        if entry["kind"] == "texture"
    }


def save_texture(picture, path):
    """A file on the disk goes as it is if its pixels are what the node tree sees. All others are written from
    the pixels that Blender holds: those of 16-bit files are decoded and multiplied by alpha only there."""
    stored = Path(bpy.path.abspath(picture.filepath)) if picture.filepath else None
    whole = not picture.is_float or picture.file_format in ("OPEN_EXR", "HDR")
    if whole and not picture.is_dirty and not picture.packed_file and stored and stored.is_file():
        path = path.with_suffix(stored.suffix)
        shutil.copyfile(stored, path)
        return path
    path = path.with_suffix(".exr" if picture.is_float else ".png")
    copy = bpy.data.images.new("copy", *picture.size, alpha=True, float_buffer=picture.is_float)
    copy.alpha_mode = "CHANNEL_PACKED"  # nothing is multiplied on the way
    copy.colorspace_settings.name = "Non-Color"
    copy.pixels.foreach_set(picture.pixels[:])
    copy.file_format = "OPEN_EXR" if picture.is_float else "PNG"
    copy.save(filepath=str(path))
    bpy.data.images.remove(copy)
    return path
