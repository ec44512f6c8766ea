"""All measurements, as the table docs/performance.md.

    report.py PYTHON    PYTHON is an interpreter that has MaterialX; tools/bench makes one
"""
import json
import operator
import os
import pathlib
import platform
import statistics
import sys

import executed
import text_cost
import translation

BASELINE = pathlib.Path(__file__).with_name("baseline.json")
TARGET = translation.documents.ROOT / "docs" / "performance.md"
MOST_OVER_FLOOR = 1.5
LEAST_OVER_MATERIALX = 20.0
LONGEST_IMPORT = 5.0  # milliseconds
MISS = " **!**"

TRANSLATION = """## Translation

Processor time in microseconds, minimum / median over {repeats} repeated batches. Before each call the document is
edited: a slider is dragged, which is a parameter's value and changes no text, or the graph changes, which has all of
it translated. The floor, timed in turns with the calls, reads each key that the translation reads once and makes the
same result from finished strings, in C; a ratio is the median of those of each round, as the machine's speed differs
from one moment to the next. `parts` has the mode of a surface and parameters. A ratio over {ratio} is marked, and a
speed per kilobyte below {faster:.0f} times MaterialX's, which is compared with the whole translation.

MaterialX {version}, a material of {nodes} nodes (noise, ramps and mixes under a standard surface), warm:
{us:.0f} / {median:.0f} µs for {kilobytes:.0f} kB of GLSL, {rate:.2f} µs a kilobyte.
"""

TEXTS = """## The texts

DXIL instructions after inlining, what fetches the inputs and stores the outputs left out; milliseconds of
DXC's processor time (language version 2021); processor time of Mesa's CPU Vulkan device in milliseconds for
a million points, from {points} random points, reading and storing included. Before: the library when all
example materials first compiled (`bench/baseline.json`).
The instructions compare. The times of before were read on another day, and what such a shared machine
gives to one process differs by up to a factor of two from minute to minute.

### Textures

Each as an emission that shows its first output, every socket an input. Marked: what isn't below its limit,
and what DXC needs over {slowest:.0f} ms for.
"""


def _rows(head, rows):
    align = ["---"] + ["---:"] * (len(head) - 1)
    return ["| " + " | ".join(map(str, row)) + " |" for row in (head, align, *rows)] + [""]


def _flagged(text, missed):
    return f"{text}{MISS if missed else ''}"


def _two(minimum, median):
    return f"{minimum:.1f} / {median:.1f}"


def _translation_row(row, materialx):
    """Of compile."""
    rebuilt = min(row["times"][1])
    faster = materialx["us"] / materialx["kilobytes"] / (rebuilt / row["kilobytes"])
    return (row["name"], row["nodes"], f"{row['kilobytes']:.1f}", *_beside_floor(row["times"][:3]),
            _flagged(f"{faster:.1f}", faster < LEAST_OVER_MATERIALX))


def _beside_floor(readings):
    *edits, floor = readings
    ratios = [statistics.median(map(operator.truediv, edit, floor)) for edit in edits]
    edited = [cell for edit, ratio in zip(edits, ratios)
              for cell in (_two(min(edit), statistics.median(edit)), _flagged(f"{ratio:.2f}", ratio > MOST_OVER_FLOOR))]
    return (*edited, _two(min(floor), statistics.median(floor)))


def translation_part(materialx):
    """The lines on time, allocations, growth and import."""
    edits = ("slider µs", "ratio", "graph µs", "ratio", "floor µs")
    table = translation.table()
    growth = [(size, *(f"{us:.0f}" for us in all_us[:2]), *(f"{us / size:.2f}" for us in all_us))
              for size, *all_us in translation.growth()]
    imports = [(name, _flagged(_two(*readings), readings[0] > LONGEST_IMPORT), f"{size / 1000:.0f}")
               for name, (*readings, size) in translation.imports().items()]
    rate = materialx["us"] / materialx["kilobytes"]
    return [
        *TRANSLATION.format(repeats=translation.REPEATS, ratio=MOST_OVER_FLOOR, faster=LEAST_OVER_MATERIALX,
                            rate=rate, **materialx).split("\n"),
        "### `compile`", "",
        *_rows(("document", "nodes", "kB", *edits, "× MaterialX"), [_translation_row(row, materialx) for row in table]),
        "### `parts`", "",
        *_rows(("document", *edits), [(row["name"], *_beside_floor(row["times"][3:])) for row in table]),
        "### Allocations", "",
        "All calls of malloc, calloc, realloc and aligned_alloc in one call with `PYTHONMALLOC=malloc`, so Python's",
        "objects and C++'s blocks alike.", "",
        *_rows(("document", "`compile`: slider", "graph", "floor", "`parts`: slider", "graph", "floor"),
               [(row["name"], *row["allocations"]) for row in table]),
        "### Growth", "", "A balanced tree of Math nodes, all reached, by `compile`.", "",
        *_rows(("nodes", "slider µs", "graph µs", "slider µs a node", "graph µs a node", "floor µs a node"), growth),
        "### Import", "", "With re, hashlib and math loaded before; `quillgen` after `quillgen_lib`.", "",
        *_rows(("module", "ms, minimum / median", "binary kB"), imports)]


def _change(before, now):
    return f"{(now - before) / before:+.0%}".replace("+0%", "0%").replace("-0%", "0%")


def _texture_row(name, now, before):
    most = text_cost.limit(name)
    return (name, before["instructions"], _flagged(now["instructions"], most and now["instructions"] >= most),
            most or "", _flagged(now["compile_ms"], now["compile_ms"] > text_cost.SLOWEST_TEXTURE),
            before["million_ms"], now["million_ms"])


def _material_row(name, now, before):
    counts = before["instructions"], now["instructions"]
    times = [figures[key] for key in ("compile_ms", "million_ms") for figures in (before, now)]
    return (name, *counts, _change(*counts), *times)


def text_part():
    """The lines on what the texts cost."""
    before = json.loads(BASELINE.read_text(encoding="utf-8"))
    textures = text_cost.measure_all(text_cost.textures())
    materials = text_cost.measure_all(translation.documents.examples())

    def total(figures):
        return {key: round(sum(one[key] for one in figures.values())) for key in next(iter(figures.values()))}

    materials["**all**"] = total(materials)
    earlier = {**before["materials"], "**all**": total(before["materials"])}
    return [
        *TEXTS.format(points=text_cost.POINTS, slowest=text_cost.SLOWEST_TEXTURE).split("\n"),
        *_rows(("texture", "instructions before", "now", "limit", "DXC ms", "ms/million before", "now"),
               [_texture_row(name, now, before["textures"][name]) for name, now in textures.items()]),
        "### Example materials", "",
        *_rows(("material", "instructions before", "now", "change", "DXC ms before", "now",
                "ms/million before", "now"),
               [_material_row(name, now, earlier[name]) for name, now in materials.items()])]


def main(python):
    lines = ["# What it costs", "",
             f"Made by `tools/bench` on {os.cpu_count()} processors ({platform.machine()}), "
             f"{platform.python_implementation()} {platform.python_version()}.", "",
             *translation_part(translation.materialx(python)), *executed.lines(), *text_part()]
    text = "\n".join(lines)
    TARGET.parent.mkdir(exist_ok=True)
    TARGET.write_text(text, encoding="utf-8")
    print(text)


if __name__ == "__main__":
    main(sys.argv[1])
