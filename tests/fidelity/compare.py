"""Compares the generated texts with Cycles: translates every case of the reference data, compiles it with DXC, runs it
on the software Vulkan device and compares each pixel.

    PYTHONPATH=build/g++ .venv/bin/python tests/fidelity/compare.py [part of a name ...]   # a table, what disagrees
    PYTHONPATH=build/g++ .venv/bin/python tests/fidelity/compare.py --write                # writes docs/fidelity.md
"""

import json
import multiprocessing
import os
import sys
from collections import defaultdict
from pathlib import Path
from typing import NamedTuple

import numpy as np

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parent / "gpu"), str(HERE.parents[1] / "blender")]

import store
from quillgen_blender import passes

# The software Vulkan device approximates these two with errors up to 4e-4. GPUs don't.
ACCURATE = """#define asin(x) atan2(x, sqrt((1.0 - (x)) * (1.0 + (x))))
#define acos(x) atan2(sqrt((1.0 - (x)) * (1.0 + (x))), x)
"""
TOLERANCE = 1e-4  # absolute up to 1, relative above
SIDE = 16
MOST_POINTS = 40000  # per run of a shader


class Outcome(NamedTuple):
    node: str
    name: str
    reason: str
    pixels: int
    agreeing: int
    worst: float  # the largest difference, measured like TOLERANCE
    error: str = ""


def run(parts=(), workers=None, every=1):
    """The Outcome of every case whose node or name contains one of the parts (default: all). `every`: only every n-th
    case of a family."""
    groups = defaultdict(list)
    outcomes = []
    for family in store.families():
        records, arrays = store.load(family)
        given = inputs_of(arrays)
        for number, record in enumerate(records):
            if number % every:
                continue
            if parts and not any(
                part.lower() in f"{family} {record['node']} {record['name']}".lower() for part in parts
            ):
                continue
            try:
                key, task = prepare(record, arrays, given, number, literal=family.startswith("scene"))
                groups[key].append(task)
            except Exception as trouble:  # a case that can't be translated counts as disagreeing
                outcomes.append(failed(record, len(arrays["values"][number]), trouble))
    tasks = sorted(chunks(groups), key=lambda chunk: -len(chunk))
    context = multiprocessing.get_context("spawn")
    with context.Pool(workers or os.cpu_count()) as pool:
        for some in pool.imap_unordered(evaluate, tasks):
            outcomes += some
    return sorted(outcomes, key=lambda outcome: (outcome.node, outcome.name))


def inputs_of(arrays):
    found = {name.removeprefix("input "): value for name, value in arrays.items() if name.startswith("input ")}
    return found or tile_inputs()


def tile_inputs():
    """Values of the text's inputs on a tile: a unit square in the xy plane, seen from straight above."""
    rows, columns = np.mgrid[:SIDE, :SIDE].reshape(2, -1)
    u, v = (columns + 0.5) / SIDE, (rows + 0.5) / SIDE
    fixed = {
        "cycles_normal": (0, 0, 1),
        "vertex_normal": (0, 0, 1),
        "camera_vector": (0, 0, 1),
        "two_sided_sign": (1,),
        "object_axis:x": (1, 0, 0),
        "object_axis:y": (0, 1, 0),
        "object_axis:z": (0, 0, 1),
        "object_origin": (0, 0, 0),
    }
    return {"texcoord:0": np.float32(np.stack([u, 1 - v], axis=1))} | {
        name: np.float32([value]) for name, value in fixed.items()
    }


def prepare(record, arrays, given, number, literal):
    """Returns (the part that is shared by all cases of one shader, the part of this case)."""
    import quillgen

    result = quillgen.compile(passes.prepare(record["document"], mode="emission")[0], "emission", not literal)
    wanted = arrays["values"][number]
    names = [entry["name"] for entry in result["inputs"] if entry["kind"] != "texture"]
    values = {
        entry["name"]: value_of(entry, given, len(wanted)) for entry in result["inputs"] if entry["name"] in names
    }
    textures = {
        entry["name"]: arrays["texture " + entry["image"]] for entry in result["inputs"] if entry["kind"] == "texture"
    }
    shared = {
        "code": ACCURATE + result["code"],
        "outputs": [],
        "inputs": [{key: value for key, value in entry.items() if key != "default"} for entry in result["inputs"]],
    }
    return json.dumps(shared, sort_keys=True), (record_head(record), values, textures, wanted)


def record_head(record):
    return {key: record[key] for key in ("node", "name", "reason")}


def kind_of(entry):
    if "of" in entry:
        return f"{entry['kind']}:{kind_of(entry['of'])}"
    detail = entry.get("axis", entry.get("index"))
    return entry["kind"] if detail is None else f"{entry['kind']}:{detail}"


def value_of(entry, given, points):
    value = np.atleast_2d(np.float32(entry["default"])) if "default" in entry else given[kind_of(entry)]
    return np.broadcast_to(value, (points, value.shape[1]))


def chunks(groups):
    for key, tasks in groups.items():
        some, points = [], 0
        for task in tasks:
            if some and points + len(task[3]) > MOST_POINTS:
                yield key, some
                some, points = [], 0
            some.append(task)
            points += len(task[3])
        yield key, some


def evaluate(chunk):
    """Runs one shader over the points of all its cases."""
    import custom_expression

    shared, tasks = json.loads(chunk[0]), chunk[1]
    values = {name: np.concatenate([task[1][name] for task in tasks]) for name in tasks[0][1]}
    values = {name: value[:, 0] if value.shape[1] == 1 else value for name, value in values.items()}
    points = np.cumsum([0] + [len(task[3]) for task in tasks])
    try:
        values = values or {"": np.zeros(points[-1], np.float32)}
        got = custom_expression.evaluate(shared, values, tasks[0][2])["result"]
    except Exception as trouble:
        return [failed(task[0], len(task[3]), trouble) for task in tasks]
    got = np.broadcast_to(got, (points[-1], 3))
    return [judge(task[0], got[begin:end], task[3]) for task, begin, end in zip(tasks, points, points[1:])]


def judge(record, got, wanted):
    with np.errstate(invalid="ignore", over="ignore"):
        off = np.abs(got - wanted) / np.maximum(1, np.abs(wanted))
    off = np.where(np.isfinite(off), off, np.inf).max(axis=1)
    return Outcome(**record, pixels=len(off), agreeing=int((off <= TOLERANCE).sum()), worst=float(off.max()))


def failed(record, pixels, trouble):
    return Outcome(
        **record_head(record),
        pixels=pixels,
        agreeing=0,
        worst=float("inf"),
        error=f"{type(trouble).__name__}: {str(trouble)[:300]}",
    )


def main(words):
    import report

    outcomes = run([word for word in words if word != "--write"])
    print(report.table(outcomes))
    print(report.troubles(outcomes))
    if "--write" in words:
        report.write(outcomes)


if __name__ == "__main__":
    main(sys.argv[1:])
