"""The reference data on disk: for each family of cases a list of records and the pixels of all of them.

A record is {"node", "name", "reason", "document"} and whatever else its family needs. Values are float32.
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


def load(family):
    """(records, {name: array})"""
    records = json.loads(lzma.decompress((DATA / f"{family}.json.xz").read_bytes()))
    with np.load(io.BytesIO(lzma.decompress((DATA / f"{family}.npz.xz").read_bytes()))) as arrays:
        return records, {name: arrays[name] for name in arrays.files}


def save_settings(settings):
    DATA.mkdir(parents=True, exist_ok=True)
    (DATA / "settings.json").write_text(json.dumps(settings, indent=1) + "\n")


def load_settings():
    return json.loads((DATA / "settings.json").read_text())


def families():
    return sorted(path.name.removesuffix(".json.xz") for path in DATA.glob("*.json.xz"))
