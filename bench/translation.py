"""What a translation costs: time beside the floor, allocations, growth with the size, import.

A document comes again and again while its material is edited. Two edits are measured: a slider is dragged, which
changes the value of one parameter from call to call, and the graph changes from call to call, so that all of it is
translated each time.
"""
import copy
import ctypes
import gc
import itertools
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
    """For each call its processor times in microseconds, one of each round in which the calls take turns."""
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
    return readings


def cases():
    """Name -> document, in the order of the table."""
    found = {f"chain of {n}": documents.chain(n) for n in SIZES}
    found |= {f"material of {n}": documents.mixed(n) for n in SIZES}
    return found | documents.examples()


def _slider(document):
    """The entry of a socket whose value is a parameter's and nothing else."""
    code = quillgen.compile(document)["code"]
    for entry in (entry for node in document["nodes"] for entry in node["in"].values()):
        before = entry.get("v")
        if isinstance(before, float):
            entry["v"] = before + 0.25
            result = quillgen.compile(document)
            entry["v"] = before
            if result["code"] == code and ["scalar", before + 0.25] in result["params"].values():
                return entry
    raise LookupError("no slider")


def _dragged(call, document):
    """The call, with a slider of the document at another value each time."""
    document = copy.deepcopy(document)
    entry, values = _slider(document), itertools.cycle((0.125, 0.375, 0.625, 0.875))

    def dragged():
        entry["v"] = next(values)
        return call(document)

    return dragged


def _rebuilt(call, document):
    """The call, with a property of a node in the middle of the document another one each time."""
    document = copy.deepcopy(document)
    document["nodes"].reverse()  # so that it is another material than the one whose slider is dragged
    properties, numbers = document["nodes"][len(document["nodes"]) // 2]["props"], itertools.count()

    def rebuilt():
        properties["edited"] = next(numbers)
        return call(document)

    return rebuilt


def calls(document):
    """The calls that are compared, three of compile and three of parts: with a slider dragged, with the graph changed,
    and the floor."""
    need = _surface_parts(document)["need"]
    return [timed for call in (quillgen.compile, _surface_parts)
            for timed in (_dragged(call, document), _rebuilt(call, document), floor(call, document, need))]


def _kilobytes(result):
    texts = result["code"] + (result["displacement"] or {"code": ""})["code"]
    return len(texts.encode()) / 1000


def table():
    """A row for each document, with the times and allocations of the six calls."""
    counted = _allocations()
    rows = []
    for name, document in cases().items():
        rows.append({"name": name, "nodes": len(document["nodes"]), "allocations": counted[name],
                     "kilobytes": _kilobytes(quillgen.compile(document)), "times": times(*calls(document))})
    return rows


def growth():
    """Rows of (nodes, microseconds of the three calls of compile) for trees of Math nodes. One call after the other, as
    the largest documents do not fit the processor's caches side by side."""
    return [(size, *(min(times(call)[0]) for call in calls(documents.tree(size))[:3])) for size in GROWTH]


def _allocations():
    """Name -> allocations of the six calls, counted where Python takes all memory from malloc."""
    env = os.environ | {"LD_PRELOAD": str(native.built("allocations")), "PYTHONMALLOC": "malloc"}
    return json.loads(subprocess.check_output([sys.executable, __file__, "allocations"], env=env))


def _count_allocations():
    counter = ctypes.c_ulong.in_dll(ctypes.CDLL(None), "allocations")

    def count(call):
        for _ in range(5):  # what comes again is kept by then
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
