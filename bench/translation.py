"""What a translation costs: time beside the floor, allocations, growth with the size, import."""
import ctypes
import gc
import json
import os
import pathlib
import statistics
import subprocess
import sys
import time

import documents
import native
import quillgen
from floor import floor

SIZES = (10, 30, 60, 300)
GROWTH = (10, 30, 100, 300, 1000, 3000)
REPEATS = 15
BATCH = 0.003  # seconds of processor time that one reading of the clock covers at least


def _surface_parts(document):
    return quillgen.parts(document, "surface", True)


def _batch(call):
    """How many calls fill a batch."""
    count = 1
    while True:
        start = time.process_time()
        for _ in range(count):
            call()
        took = time.process_time() - start
        if took >= BATCH:
            return count
        count *= 4 if took < BATCH / 8 else 2


def times(*calls):
    """(minimum, median) of the processor time of each call in microseconds, the calls taking turns."""
    counts = [_batch(call) for call in calls]
    readings = [[] for _ in calls]
    gc.collect()
    gc.disable()
    for _ in range(REPEATS):
        for call, count, found in zip(calls, counts, readings):
            start = time.process_time()
            for _ in range(count):
                call()
            found.append((time.process_time() - start) / count * 1e6)
    gc.enable()
    return [(min(found), statistics.median(found)) for found in readings]


def cases():
    """Name -> document, in the order of the table."""
    found = {f"chain of {n}": documents.chain(n) for n in SIZES}
    found |= {f"material of {n}": documents.mixed(n) for n in SIZES}
    return found | documents.examples()


def calls(document):
    """The four calls that are compared: compile and its floor, parts and its floor."""
    need = _surface_parts(document)["need"]
    return (lambda: quillgen.compile(document), floor(quillgen.compile, document, need),
            lambda: _surface_parts(document), floor(_surface_parts, document, need))


def _kilobytes(result):
    texts = result["code"] + (result["displacement"] or {"code": ""})["code"]
    return len(texts.encode()) / 1000


def table():
    """A row for each document, with (minimum, median) and allocations of the four calls."""
    counted = _allocations()
    rows = []
    for name, document in cases().items():
        rows.append({"name": name, "nodes": len(document["nodes"]), "allocations": counted[name],
                     "kilobytes": _kilobytes(quillgen.compile(document)), "times": times(*calls(document))})
    return rows


def growth():
    """Rows of (nodes, microseconds for each node of a tree of Math nodes, the same of its floor)."""
    rows = []
    for size in GROWTH:
        compiled, least = times(*calls(documents.tree(size))[:2])
        rows.append((size, compiled[0], least[0]))
    return rows


def _allocations():
    """Name -> allocations of the four calls, counted where Python takes all memory from malloc."""
    env = os.environ | {"LD_PRELOAD": str(native.built("allocations")), "PYTHONMALLOC": "malloc"}
    return json.loads(subprocess.check_output([sys.executable, __file__, "allocations"], env=env))


def _count_allocations():
    counter = ctypes.c_ulong.in_dll(ctypes.CDLL(None), "allocations")

    def count(call):
        call()
        before = counter.value
        call()
        return counter.value - before

    own = count(lambda: None)  # of reading the counter
    found = {name: [count(call) - own for call in calls(document)] for name, document in cases().items()}
    print(json.dumps(found))


def imports():
    """Name -> minimum and median milliseconds of its import behind re, hashlib and math, and its size."""
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


def materialx(python):
    """What MaterialX needs for a material of ten nodes, by the interpreter that has it."""
    script = pathlib.Path(__file__).with_name("materialx_shader.py")
    return json.loads(subprocess.check_output([python, str(script), "3"]))


if __name__ == "__main__" and sys.argv[1:] == ["allocations"]:
    _count_allocations()
