"""The reference data on disk: for each family of cases a list of records, and their pixels.

A record is {"node", "name", "reason", "document"} and further keys of its family. Values are float32.
"""

import io
import json
import lzma
import os
from pathlib import Path

import numpy as np

DATA = Path(os.environ.get("QUILLGEN_FIDELITY_DATA", Path(__file__).resolve().parent / "data"))


def save(family, records, arrays):
    DATA.mkdir(parents=True, exist_ok=True)
    text = json.dumps(records, ensure_ascii=False, separators=(",", ":")).encode()
    (DATA / f"{family}.json.xz").write_bytes(lzma.compress(text, preset=9))
    buffer = io.BytesIO()
    np.savez(buffer, **arrays)
    (DATA / f"{family}.npz.xz").write_bytes(lzma.compress(buffer.getvalue(), preset=9))


def load(family, folder=None):
    """Returns (records, {name: array})."""
    folder = folder or DATA
    records = json.loads(lzma.decompress((folder / f"{family}.json.xz").read_bytes()))
    with np.load(io.BytesIO(lzma.decompress((folder / f"{family}.npz.xz").read_bytes()))) as arrays:
        return records, {name: arrays[name] for name in arrays.files}


def save_settings(blender, settings):
    """`blender`: the version of Blender that made the data."""
    DATA.mkdir(parents=True, exist_ok=True)
    text = json.dumps({"blender": blender, "nodes": settings}, indent=1)
    (DATA / "settings.json").write_text(text + "\n")


def load_settings():
    return json.loads((DATA / "settings.json").read_text())["nodes"]


def blender():
    """The version of Blender that made the data."""
    return json.loads((DATA / "settings.json").read_text())["blender"]


def families():
    return sorted(path.name.removesuffix(".json.xz") for path in DATA.glob("*.json.xz"))
