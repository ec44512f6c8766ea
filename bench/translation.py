"""Measures translation: time relative to the floor, growth with the size, import.

Each call gets a document that has not been translated before, in two forms: as an add-on makes it, of new dicts, lists,
numbers and strings, but with the keys that are literals in its code; and as json.loads makes it.
"""

import gc
import json
import pathlib
import statistics
import subprocess
import sys
import time

import documents
import quillgen
from floor import Floor

SIZES = (10, 30, 60, 300)
GROWTH = (10, 30, 100, 300, 1000, 3000)
REPEATS = 15
BATCH = 0.003  # approximate seconds of processor time for one reading of the clock
# Keys that are literals in the code of an add-on: the same object in each document.
KEYS = {
    "nodes",
    "out",
    "settings",
    "images",
    "uv_maps",
    "surface",
    "displacement",
    "id",
    "type",
    "in",
    "outs",
    "props",
    "ramp",
    "curve",
    "t",
    "v",
    "link",
    "stops",
    "interp",
    "mode",
    "tables",
    "min",
    "max",
    "extend",
}


def surface_parts(document):
    return quillgen.parts(document, "surface", True)


CALLS = {"compile": quillgen.compile, "parts": surface_parts}


def as_an_addon_makes_it(thing):
    """A copy of a document, made of new objects except for the keys in KEYS."""
    if isinstance(thing, dict):
        return {
            sys.intern(key) if key in KEYS else "".join(list(key)): as_an_addon_makes_it(value)
            for key, value in thing.items()
        }
    if isinstance(thing, list):
        return [as_an_addon_makes_it(value) for value in thing]
    if isinstance(thing, str):
        return "".join(list(thing))
    return float(repr(thing)) if isinstance(thing, float) else thing


def from_json(thing):
    return json.loads(json.dumps(thing))


FORMS = {"add-on": as_an_addon_makes_it, "JSON": from_json}


def _time(call, arguments):
    """Processor time per call in microseconds. The results are freed after the measurement, like the arguments."""
    results = []
    start = time.process_time()
    for argument in arguments:
        results.append(call(argument))
    return (time.process_time() - start) / len(arguments) * 1e6


def beside_floor(name, document, repeats=REPEATS):
    """Form -> (times of a call, times of the floor), measured alternately."""
    call = CALLS[name]
    floor = Floor(call, document, surface_parts(document)["need"])
    count = max(1, int(BATCH / (_time(call, [from_json(document) for _ in range(5)]) * 1e-6)))
    readings = {form: ([], []) for form in FORMS}
    gc.collect()
    gc.disable()
    for _ in range(repeats):
        for form, copied in FORMS.items():
            readings[form][0].append(_time(call, [copied(document) for _ in range(count)]))
            readings[form][1].append(_time(Floor.run, [floor.prepared(copied(document)) for _ in range(count)]))
    gc.enable()
    return readings


def cases():
    """Name -> document, in the order of the table."""
    found = {f"chain of {n}": documents.chain(n) for n in SIZES}
    found |= {f"material of {n}": documents.mixed(n) for n in SIZES}
    return found | documents.examples()


def growth():
    """Rows of (nodes, microseconds of compile, microseconds of its floor) for trees of Math nodes in the form of an
    add-on."""
    rows = []
    for size in GROWTH:
        times, floor_times = beside_floor("compile", documents.tree(size), 5)["add-on"]
        rows.append((size, min(times), min(floor_times)))
    return rows


def imports():
    """Name -> minimum and median milliseconds of its import after re, hashlib and math, and the size of its file."""
    found = {}
    for name in ("quillgen_lib", "quillgen"):
        before = "import re, hashlib, math, time, sys; "
        before += "import quillgen_lib; " if name == "quillgen" else ""
        code = f"{before}t = time.process_time(); import {name}; print(time.process_time() - t)"
        printed = [subprocess.check_output([sys.executable, "-c", code]) for _ in range(REPEATS)]
        readings = [float(text) * 1e3 for text in printed]
        file = pathlib.Path(__import__(name).__file__)
        found[name] = (min(readings), statistics.median(readings), file.stat().st_size)
    return found
