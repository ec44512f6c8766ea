"""Makes the gallery: docs/gallery.md, its pictures, and the one of the README.

    PYTHONPATH=build/g++ .venv/bin/python -m examples.gallery.make [--steps=values,text,cycles] [--blender=PYTHON]
        [NAME ...]

Steps, for the named or all materials: "values" compares the base colour with Blender's on a flat square (a strip of
Blender's, ours and ten times the difference), "text" renders the picture of the text, "cycles" that of Cycles, which
requires Blender. The numbers are stored in docs/gallery/numbers.json; those of a pair of pictures are computed from the
files.
"""

import argparse
import json
import subprocess
import tempfile
import time
from pathlib import Path

import numpy as np

import device

from . import materials, page, ramps, render, square, tone

GAP = 4
PIXELS, CYCLES_SAMPLES = 512, 16
SIDES = ("cycles", "text")
OVERVIEW = ("rusted_paint", "chequered_floor")  # in the README
device.TIMEOUT = 2400  # the first compilation of glazed_vase takes minutes: six tables of 257 entries


def strip(wanted, found):
    """A picture of Blender's values, ours and ten times the difference, each 256 wide; row 0 of the values is at the
    bottom."""
    pictures = [tone.srgb(wanted), tone.srgb(found), tone.srgb(10 * np.abs(found - wanted))]
    return side_by_side([picture[::-1].repeat(4, axis=0).repeat(4, axis=1) for picture in pictures])


def side_by_side(pictures):
    gap = np.full((pictures[0].shape[0], GAP, 3), 255, np.uint8)
    joined = [part for picture in pictures for part in (picture, gap)]
    return np.concatenate(joined[:-1], axis=1)


def values(name):
    """Writes a material's strip. Returns {array: (largest difference, share within 1e-4, within 1e-3)}."""
    pairs = square.compare(name)
    tone.save(strip(*pairs["value"]), page.FOLDER / f"{name}_base.png")
    numbers = {array: square.numbers(*pair) for array, pair in pairs.items()}
    base = materials.base_document(name)
    if ramps.has(base):
        tables = square.compare(name, base_ir=ramps.as_cycles(base))
        numbers["value_tables"] = square.numbers(*tables["value"])
    return numbers


def text(name):
    tone.save(render.picture(name, pixels=PIXELS), page.picture(name, "text"))


def cycles(name, python):
    script = Path(__file__).with_name("in_blender.py")
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([python, "-W", "ignore", script, folder, str(PIXELS), str(CYCLES_SAMPLES), name], check=True)
        light = np.load(Path(folder) / f"{name}.npy")
    tone.save(tone.srgb(tone.neutral(light)), page.picture(name, "cycles"))


def compared(name):
    """Returns (mean difference of the two stored pictures, share of pixels within 5 %), relative to white."""
    wanted, found = (np.float64(tone.load(page.picture(name, side))) / 255 for side in SIDES)
    off = np.abs(found - wanted)
    return float(off.mean()), float((off.max(axis=2) <= 0.05).mean())


def overview():
    """Writes the README's picture, with a row for each material."""
    rows = [side_by_side([tone.load(page.picture(name, side)) for side in SIDES]) for name in OVERVIEW]
    gap = np.full((GAP, rows[0].shape[1], 3), 255, np.uint8)
    tone.save(np.concatenate([rows[0], gap, rows[1]]), page.DOCS / "assets" / "overview.jpg")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("names", nargs="*", metavar="NAME")
    parser.add_argument("--steps", default="values,text,cycles")
    parser.add_argument("--blender", default=".venv-blender-5.2/bin/python", metavar="PYTHON")
    chosen = parser.parse_args()
    steps = chosen.steps.split(",")
    page.FOLDER.mkdir(parents=True, exist_ok=True)
    for name in chosen.names or materials.names():
        begun = time.monotonic()
        numbers = page.numbers()
        known = numbers.get(name, {})
        if "values" in steps:
            known = values(name)
        if "text" in steps:
            text(name)
        if "cycles" in steps:
            cycles(name, chosen.blender)
        numbers[name] = known | {"picture": compared(name)}
        page.NUMBERS.write_text(json.dumps({name: numbers[name] for name in sorted(numbers)}, indent=1) + "\n")
        page.write(numbers)
        print(f"{name}: {time.monotonic() - begun:.0f} s, pictures {numbers[name]['picture'][0]:.3%} apart", flush=True)
    overview()


if __name__ == "__main__":
    main()
