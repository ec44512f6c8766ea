"""Image and environment textures."""

import tempfile

import bpy
import numpy as np

from builder import Case, words

FOLDER = tempfile.TemporaryDirectory()  # for image files
FOREIGN = ("ACEScg", "Linear Rec.2020", "Display P3", "Rec.1886", "Gamma 2.2 Encoded Rec.709", "sRGB Encoded P3-D65")
AGAIN = "bytes in other colour spaces are rounded once more: to half floats, in Cycles by another rule, or to bytes"
HALF = "Cycles multiplies and filters pictures of 16 bits on the disk before it decodes them"
FILES = "PNG 8", "PNG 16", "OPEN_EXR 32", "TIFF 8", "TIFF 16"
SUFFIXES = {"PNG": "png", "TIFF": "tif", "OPEN_EXR": "exr"}
SIZES = {"tall": (5, 7), "wide": (16, 9), "single": (1, 1), "column": (1, 4), "small": (3, 2)}
OFF_TEXELS = (3 / 16, (-1.0 + 1 / 64, -1.0 + 3 / 128, 0.5 + 1 / 64))  # never on a border between texels


def cases():
    for size in SIZES:
        for interpolation in words("TexImage", "interpolation"):
            for extension in words("TexImage", "extension"):
                yield image(
                    f"{size} {interpolation} {extension}",
                    ("byte", "sRGB", "STRAIGHT", size),
                    "Color",
                    interpolation=interpolation,
                    extension=extension,
                )
    for projection in ("BOX", "SPHERE", "TUBE"):
        for interpolation in ("Linear", "Closest", "Cubic"):
            for extension in ("REPEAT", "CLIP", "MIRROR", "EXTEND"):
                yield image(
                    f"{projection} {interpolation} {extension}",
                    ("byte", "sRGB", "STRAIGHT", "wide"),
                    "Color",
                    projection=projection,
                    interpolation=interpolation,
                    extension=extension,
                )
    for kind in ("byte", "float"):
        for space in ("sRGB", "Non-Color", "Linear Rec.709"):
            for alpha in ("STRAIGHT", "PREMUL", "CHANNEL_PACKED", "NONE"):
                for interpolation in ("Linear", "Closest", "Cubic"):
                    for out in ("Color", "Color beside Alpha", "Alpha"):
                        yield image(
                            f"{kind} {space} {alpha} {interpolation} {out}",
                            (kind, space, alpha, "tall"),
                            out,
                            interpolation=interpolation,
                        )
    for space in FOREIGN:
        for kind in ("byte", "OPEN_EXR 32", "OPEN_EXR 32 disk"):
            for alpha in ("NONE", "STRAIGHT"):
                reason = AGAIN if kind == "byte" else ""
                key = kind, space, alpha, "wide"
                yield image(f"{kind} {space} {alpha}", key, "Color", reason, interpolation="Closest")
    for file in [form + where for form in FILES for where in ("", " disk")]:
        for alpha in ("STRAIGHT", "PREMUL", "CHANNEL_PACKED", "NONE"):
            for out in ("Color", "Color beside Alpha", "Alpha"):
                half = file in ("PNG 16 disk", "TIFF 16 disk") and out != "Alpha"
                yield image(f"file {file} {alpha} {out}", (file, None, alpha, "small"), out, HALF if half else "")
    yield Case("Image Texture", "none", lambda c: c.node("TexImage", {"Vector": c.vector()}).outputs["Color"])
    yield from environments()


def image(name, key, out, reason="", **settings):
    def build(c):
        node = c.node("TexImage", {"Vector": c.vector(*OFF_TEXELS)}, image=picture(*key), **settings)
        if out != "Color beside Alpha":
            return node.outputs[out]
        return c.node("VectorMath", {0: node.outputs["Color"], 1: node.outputs["Alpha"]}).outputs[0]

    return Case("Image Texture", name, build, reason)


def environments():
    for projection in words("TexEnvironment", "projection"):
        for interpolation in words("TexEnvironment", "interpolation"):
            for kind, space in (("byte", "sRGB"), ("float", "Linear Rec.709")):

                def build(
                    c,
                    projection=projection,
                    interpolation=interpolation,
                    key=(kind, space, "STRAIGHT", "wide"),
                ):
                    return c.node(
                        "TexEnvironment",
                        {"Vector": c.vector(*OFF_TEXELS)},
                        image=picture(*key),
                        projection=projection,
                        interpolation=interpolation,
                    ).outputs[0]

                yield Case("Environment Texture", f"{projection} {interpolation} {kind}", build)


def picture(kind, space, alpha, size):
    """An image with these properties, created at its first use."""
    name = " ".join((kind, space or "", alpha, size))
    if name not in bpy.data.images:
        made = from_file(name, kind, alpha, size) if " " in kind else generated(name, kind, size)
        if space:
            made.colorspace_settings.name = space
        made.alpha_mode = alpha
    return bpy.data.images[name]


def generated(name, kind, size):
    width, height = SIZES[size]
    made = bpy.data.images.new(name, width, height, alpha=True, float_buffer=kind == "float")
    made.pixels.foreach_set(texels(width, height, kind == "float"))
    made.update()
    made.pack()
    return made


def texels(width, height, bright):
    random = np.random.default_rng(width * 100 + height)
    pixels = random.integers(0, 256, (height, width, 4)).astype(np.float32) / np.float32(255)
    pixels.reshape(-1, 4)[::3, 3] = 1.0
    pixels.reshape(-1, 4)[1::5, 3] = 0.0
    if bright:
        pixels[..., :3] = pixels[..., :3] * 4 - 1
    return pixels.ravel()


def from_file(name, kind, alpha, size):
    """The same texels, saved to a file and loaded: "PNG 8", "PNG 16", "OPEN_EXR 32"; packed unless "disk" follows."""
    form, depth, *rest = kind.split()
    width, height = SIZES[size]
    source = bpy.data.images.new("source", width, height, alpha=True, float_buffer=depth != "8")
    source.pixels.foreach_set(texels(width, height, False))
    path = f"{FOLDER.name}/{name}.{SUFFIXES[form]}"
    settings = bpy.context.scene.render.image_settings
    before = settings.file_format, settings.color_depth, settings.color_mode
    settings.file_format, settings.color_depth, settings.color_mode = form, depth, "RGBA"
    source.save_render(path)
    settings.file_format, settings.color_depth, settings.color_mode = before
    bpy.data.images.remove(source)
    made = bpy.data.images.load(path)
    made.name = name
    if not rest:
        made.pack()
    return made
