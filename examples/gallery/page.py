"""Writes docs/gallery.md: the pictures, the numbers under them, and what is known to differ."""

from . import materials

DOCS = materials.ROOT / "docs"
FOLDER = DOCS / "gallery"

HEAD = """# Gallery

The example materials, from Blender's pictures and values on one side and the generated text on the other.
All of it is made by one command, on a machine without a GPU:

    .venv/bin/python -m examples.gallery.make

**The strips** show the base colour on a flat square of one metre: Blender's values, those of the text at
the same 64 x 64 points, and ten times the difference. Where a material has colour ramps, Cycles reads them
from a table of 257 entries; the numbers "with Cycles' tables" are those of the same graph with such tables
in place of its ramps, so that what is left has another reason.

**The pictures** show Cycles' preview and, beside it, all outputs of the text (base colour, metallic,
roughness, specular, normal with its bumps, emission, opacity, clear coat, and real displacement), lit by a
small, plain physically based shader (`examples/gallery/shade.hlsl`) on a Vulkan device. Every input is
computed in Unreal's frame: left-handed, in centimetres. Objects, cameras and lights are those of the
previews as far as the previews tell; for a few materials the size of the object is a guess. Three things
are as a host would have to wire them to get Blender's picture:

- The clear coat lies on the mesh's own normal, as Blender's does while Coat Normal is empty: in Unreal,
  `OutNormal` goes to Clear Coat Bottom Normal. What glows is below the coat.
- Masked materials are the mean of eight frames of their dithered opacity.
- `hologram` and `hazard_decal` mix with a Transparent BSDF, which multiplies all of the record by the
  opacity: they are composed as Unreal's blend mode AlphaComposite does.

"""

# What differs beyond what the facts of a material tell, each found by following the difference through the nodes.
NOTES = {
    "brick_wall": ["In the picture, the wall of the preview is a mesh of some fineness, ours is followed exactly."],
    "chequered_floor": [
        "The veins are ramps that rise within a hundredth of a noise's range: they magnify the last "
        "bits of the noise's coordinate thirty times and more."
    ],
    "glazed_vase": [
        "The document's curve tables have 256 entries, Cycles' own 257 over the range of the control "
        "points: they differ a little where a curve bends. The documents of the example host have "
        "257."
    ],
    "mossy_rock": [
        "In the picture, moss grows by the normal that Geometry gives. Blender's surface sees the "
        "bumped normal there; in the text a node that feeds the displacement too keeps the plain one."
    ],
    "oak_planks": [
        "Each plank moves its noise by 41.7 times a grey: Blender's weights of red, green and blue "
        "sum up to 1.000001, the text's to 1. Nine folds of that noise magnify it."
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
        "Blender tints what is behind by the Transparent BSDF's colour, which an opacity of one "
        "number cannot do: the glass looks paler before a bright background."
    ],
}


def write(numbers):
    lines = [HEAD + summary(numbers)]
    for name in sorted(numbers):
        lines += section(name, numbers[name])
    (DOCS / "gallery.md").write_text("\n".join(lines), encoding="utf-8")


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
    lines = [
        f"## {name}",
        "",
        facts["what"] + ".",
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
    lines += ["", f"![{name}: Cycles' preview and ours](gallery/{name}.png)", ""]
    known = [sentence(text) for text in facts["differs"]] + NOTES.get(name, [])
    return lines + [f"- {text}" for text in known] + [""] * bool(known)


def told(numbers):
    worst, close, near = numbers
    return f"largest difference {worst:.1e}, {close:.2%} of the points within 1e-4, {near:.2%} within 1e-3."


def sentence(text):
    return text[0].upper() + text[1:] + "."
