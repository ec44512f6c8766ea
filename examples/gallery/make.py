"""Makes the gallery: docs/gallery.md and its pictures.

    .venv/bin/python -m examples.gallery.make [NAME ...]   # the named or all materials, and the page

For each material a strip of Blender's base colour, ours and ten times the difference, and a full picture of
ours beside the preview that Cycles made. The numbers are kept in docs/gallery/numbers.json.
"""

import json
import sys

import numpy as np

import device

from . import materials, page, ramps, render, square, tone

GAP = 4
COLORS = 160  # of a full picture's palette
device.TIMEOUT = 1800  # the first compilation of glazed_vase takes minutes: six tables of 257 entries


def strip(wanted, found):
    """Blender's values, ours and ten times the difference, 256 wide each; row 0 of the values is at the bottom."""
    pictures = [tone.srgb(wanted), tone.srgb(found), tone.srgb(10 * np.abs(found - wanted))]
    return side_by_side([picture[::-1].repeat(4, axis=0).repeat(4, axis=1) for picture in pictures])


def side_by_side(pictures):
    gap = np.full((pictures[0].shape[0], GAP, 3), 255, np.uint8)
    joined = [part for picture in pictures for part in (picture, gap)]
    return np.concatenate(joined[:-1], axis=1)


def make(name):
    """Writes a material's pictures; gives {array: (largest difference, share within 1e-4, within 1e-3)}."""
    pairs = square.compare(name)
    tone.save(strip(*pairs["value"]), page.FOLDER / f"{name}_base.png")
    ours = render.picture(name, subdivision=3, samples=16)
    tone.save(side_by_side([materials.preview(name), ours]), page.FOLDER / f"{name}.png", COLORS)
    numbers = {array: square.numbers(*pair) for array, pair in pairs.items()}
    base = materials.base_document(name)
    if ramps.has(base):
        tables = square.compare(name, base_ir=ramps.as_cycles(base))
        numbers["value_tables"] = square.numbers(*tables["value"])
    return numbers


def main(chosen):
    page.FOLDER.mkdir(parents=True, exist_ok=True)
    kept = page.FOLDER / "numbers.json"
    for name in chosen or materials.names():
        numbers = json.loads(kept.read_text()) if kept.exists() else {}
        numbers[name] = make(name)
        print(name, *(f"{number:.6g}" for number in numbers[name]["value"]), flush=True)
        kept.write_text(json.dumps({name: numbers[name] for name in sorted(numbers)}, indent=1) + "\n")
        page.write(numbers)


if __name__ == "__main__":
    main(sys.argv[1:])
