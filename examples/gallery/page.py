"""Writes docs/gallery.md: the pictures, their numbers, and the known differences."""

import json

from . import materials

DOCS = materials.ROOT / "docs"
FOLDER = DOCS / "gallery"
NUMBERS = FOLDER / "numbers.json"

HEAD = """# Gallery

The example materials, from Blender's pictures and values on one side and the generated text on the other.
All of it is made by one command, on a machine without a GPU but with Blender 5.2 as a Python package
(`tools/setup blender=5.2`), after `tools/test --part build`:

    PYTHONPATH=build/g++ .venv/bin/python -m examples.gallery.make

**The pictures** are 512 pixels wide. One is Cycles of Blender 5.2, which has the material rebuilt from its document,
with 16 samples a pixel and Blender's denoiser. The other shows all outputs of the text (base colour, metallic,
roughness, specular, normal with its bumps, emission, opacity, clear coat, and real displacement), lit by a small,
plain physically based shader (`examples/gallery/shade.hlsl`) on a Vulkan device, with 72 samples a pixel and no
denoiser. The text is that of an export: the extension's passes went over the document first. Every input is computed
in Unreal's frame: left-handed, in centimetres. Object, camera, lights and the view, Khronos PBR Neutral, are the same
on both sides, and light is followed over one bounce. Three things are as a host would have to wire them to get
Blender's picture:

- The clear coat lies on the mesh's own normal, as Blender's does while Coat Normal is empty: in Unreal,
  `OutNormal` goes to Clear Coat Bottom Normal. What glows is below the coat.
- Masked materials are the mean of eight frames of their dithered opacity.

Below each pair stands how far the two files are apart, as a screen shows them: the shader of one is not that of the
other, so this tells of light and noise as well as of the material.

**The strips** show the base colour alone, on a flat square of one metre: Blender's values, those of the text at
the same 64 x 64 points, each drawn four pixels wide, and ten times the difference. The numbers in the table and below
the strips are of these points. Where a material has colour ramps, Cycles reads them from a table of 257 entries; the
numbers "with Cycles' tables" are those of the same graph with such tables in place of its ramps, so that what is left
has another reason. Here the text is that of the document as it stands, without the extension's passes.

"""

# Further reasons for differences by material, each found by tracing the difference through the nodes.
NOTES = {
    "brick_wall": [
        "In Blender's picture the wall is a mesh of 1024 x 1024 faces, moved at its corners; ours is followed "
        "exactly between as many heights."
    ],
    "chequered_floor": [
        "The veins are ramps that rise within a hundredth of a noise's range: they magnify the last "
        "bits of the noise's coordinate thirty times and more."
    ],
    "copper_patina": [
        "In Blender's picture the denoiser has evened out the grain of the bare metal: Cycles without it shows the "
        "grain that the text's has."
    ],
    "glazed_vase": [
        "The document's curve tables have 256 entries, Cycles' own 257 over the range of the control "
        "points: they differ a little where a curve bends. The documents of the example host have "
        "257."
    ],
    "maple_leaf": ["In the picture, the shader of ours lets nothing cast shadows but balls and boxes."],
    "oak_planks": [
        "Each plank moves its noise by 41.7 times a grey: Blender's weights of red, green and blue "
        "sum up to 1.000001, the text's to 1. Nine folds of that noise magnify it."
    ],
    "ramp_banner": [
        "In the pictures the text has these ramps as the extension's passes make them: B-splines as linear stops, and "
        "every hue direction, which were found from Blender's values."
    ],
    "rosette_tiles": [
        "The points that differ lie on the picture's diagonal, exactly on the border of two wedges: "
        "the last bit decides which one they belong to."
    ],
    "rusted_paint": [
        "With tables, the points that differ lie on the diagonal where the square's two triangles meet: "
        "Cycles' rays find occlusion there."
    ],
    "stained_glass": [
        "Blender tints what is behind by the Transparent BSDF's colour, which an opacity of one number cannot do: the "
        "extension makes the glass the more opaque the darker that colour is, with that colour on it."
    ],
}


def numbers():
    return json.loads(NUMBERS.read_text(encoding="utf-8")) if NUMBERS.exists() else {}


def picture(name, side):
    """The path of a picture with 512 pixels; `side`: "cycles" or "text"."""
    return FOLDER / f"{name}_{side}.jpg"


def write(numbers):
    (DOCS / "gallery.md").write_text(text(numbers), encoding="utf-8")


def text(numbers):
    lines = [HEAD + summary(numbers)]
    for name in sorted(numbers):
        lines += section(name, numbers[name])
    return "\n".join(lines)


def summary(numbers):
    rows = [
        "| Material | Largest difference | Within 1e-4 | Within 1e-3 | With Cycles' tables, within 1e-4 |",
        "| --- | --- | --- | --- | --- |",
    ]
    for name in sorted(numbers):
        worst, close, near = numbers[name]["value"]
        tables = numbers[name].get("value_tables")
        with_tables = f"{tables[1]:.2%}" if tables else ""
        rows.append(f"| [{name}](#{name}) | {worst:.1e} | {close:.2%} | {near:.2%} | {with_tables} |")
    return "\n".join(rows) + "\n"


def section(name, numbers):
    facts = materials.facts(name)
    shown = "emission" if facts["kind"] == "emission" else "base colour"
    mean, near = numbers["picture"]
    lines = [
        f"## {name}",
        "",
        facts["what"] + ".",
        "",
        "| Cycles | The text |",
        "| --- | --- |",
        f"| ![{name} in Cycles](gallery/{name}_cycles.jpg) | ![{name}: the text](gallery/{name}_text.jpg) |",
        "",
        f"The pictures are {mean:.1%} of white apart in the mean; {near:.1%} of the pixels are within 5%.",
        "",
        f"![{name}: the {shown} from Blender, ours, ten times the difference](gallery/{name}_base.png)",
        "",
        f"{shown.capitalize()}: {told(numbers['value'])}",
    ]
    if "value_tables" in numbers:
        lines[-1] += f" With Cycles' tables: {told(numbers['value_tables'])}"
    others = [
        f"{array} {numbers[array][0]:.1e}"
        for array in ("base", "emission", "metallic", "roughness", "alpha")
        if array in numbers
    ]
    if others:
        lines += ["", f"Largest differences of the further outputs: {', '.join(others)}."]
    known = [sentence(text) for text in facts["differs"]] + NOTES.get(name, [])
    return [*lines, ""] + [f"- {text}" for text in known] + [""] * bool(known)


def told(numbers):
    worst, close, near = numbers
    return f"largest difference {worst:.1e}, {close:.2%} of the points within 1e-4, {near:.2%} within 1e-3."


def sentence(text):
    return text[0].upper() + text[1:] + "."
