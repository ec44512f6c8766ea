"""Makes docs/assets/nearest.png: shaders without an equivalent in Unreal, and their closest replacements.

    PYTHONPATH=build/g++ .venv/bin/python -m examples.gallery.nearest [BLENDER'S PYTHON]

A row for each material of nearest_in_blender.py: on the left Cycles, in the middle the text of the original document,
on the right that of the document with the closest shaders. The gallery's own renderer lights both texts.
"""

import json
import subprocess
import sys
import tempfile
from pathlib import Path

import numpy as np

from . import page, render, tone

sys.path.insert(0, str(page.FOLDER.parents[1] / "blender"))

from quillgen_blender import passes

PIXELS, SAMPLES = 160, 48
GAP = 4
TARGET = page.FOLDER.parent / "assets" / "nearest.png"


def main(python):
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        script = Path(__file__).with_name("nearest_in_blender.py")
        subprocess.run([python, "-W", "ignore", script, folder, str(PIXELS), str(SAMPLES)], check=True)
        for path in sorted(Path(folder).glob("*.json")):
            document = json.loads(path.read_text())
            cycles = tone.srgb(tone.neutral(np.load(path.with_suffix(".npy"))))
            pictures = [cycles]
            for nearest in (False, True):
                prepared, notes = passes.prepare(document, passes.Options(nearest_shaders=nearest))
                pictures.append(render.picture(path.stem, subdivision=2, samples=8, pixels=PIXELS, ir=prepared))
            print(path.stem, *(f"{found.node}: {found.text}" for found in notes), flush=True)
            rows.append(joined(pictures, axis=1))
    tone.save(joined(rows, axis=0), TARGET)


def joined(pictures, axis):
    shape = list(pictures[0].shape)
    shape[axis] = GAP
    gap = np.full(shape, 255, np.uint8)
    parts = [part for picture in pictures for part in (picture, gap)]
    return np.concatenate(parts[:-1], axis=axis)


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else ".venv-blender-5.2/bin/python")
