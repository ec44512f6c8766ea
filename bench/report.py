"""All measurements, as the tables of docs/performance.md. tools/bench runs it."""

import json
import operator
import os
import pathlib
import platform
import statistics

import executed
import quillgen
import text_cost
import translation

BASELINE = pathlib.Path(__file__).with_name("baseline.json")
TARGET = translation.documents.ROOT / "docs" / "performance.md"
MOST_OVER_FLOOR = {"compile": 2.5, "parts": 3.0}
MOST_GROWTH = 1.3  # from 30 nodes to 3,000, per node
LONGEST_IMPORT = 5.0  # milliseconds
MISS = " **!**"

TRANSLATION = """## Translation

Processor time in microseconds, minimum and median of {repeats} rounds. Each call gets a document that has not been
translated before: made of new objects, as an add-on makes it, or by `json.loads`. The floor, timed in turns with the
calls, is what a call cannot do without: it reads each key that the translation reads once, and makes the result anew
from finished texts, in C++; only the digits of curves are found anew. A ratio is the median of the ratios of the
rounds. It is to be at most {compile} for `compile`, and {parts} for `parts`, which is measured in the mode of a surface
and with parameters.
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


def _beside_floor(readings):
    """Minimum and median, and the ratio to the floor."""
    times, floor_times = readings
    return _two(min(times), statistics.median(times)), statistics.median(map(operator.truediv, times, floor_times))


def _call_rows(name):
    rows = []
    for title, document in translation.cases().items():
        result = quillgen.compile(document)
        texts = result["code"] + (result["displacement"] or {"code": ""})["code"]
        row = [title, len(document["nodes"]), f"{len(texts.encode()) / 1000:.1f}"]
        for readings in translation.beside_floor(name, document).values():
            times, ratio = _beside_floor(readings)
            row += [times, _flagged(f"{ratio:.2f}", ratio > MOST_OVER_FLOOR[name])]
        rows.append(row)
    return rows


def translation_part():
    """The lines on time, growth and import."""
    head = ("document", "nodes", "kB", "add-on µs", "ratio", "JSON µs", "ratio")
    growth = translation.growth()
    a_node = {size: us / size for size, us, _ in growth}
    grown = a_node[3000] / a_node[30]
    imports = [
        (name, _flagged(_two(*readings), readings[0] > LONGEST_IMPORT), f"{size / 1000:.0f}")
        for name, (*readings, size) in translation.imports().items()
    ]
    return [
        *TRANSLATION.format(repeats=translation.REPEATS, **MOST_OVER_FLOOR).split("\n"),
        *(line for name in translation.CALLS for line in (f"### `{name}`", "", *_rows(head, _call_rows(name)))),
        "### Growth",
        "",
        "A balanced tree of Math nodes, all reached, by `compile`. Of 3,000 nodes, one takes "
        + _flagged(f"{grown:.2f}", grown > MOST_GROWTH)
        + " times as long as one of 30.",
        "",
        *_rows(
            ("nodes", "µs", "µs a node", "floor µs a node"),
            [(size, f"{us:.0f}", f"{us / size:.2f}", f"{floor_us / size:.2f}") for size, us, floor_us in growth],
        ),
        "### Import",
        "",
        "With re, hashlib and math loaded before; `quillgen` after `quillgen_lib`.",
        "",
        *_rows(("module", "ms, minimum / median", "binary kB"), imports),
    ]


def _change(before, now):
    return f"{(now - before) / before:+.0%}".replace("+0%", "0%").replace("-0%", "0%")


def _texture_row(name, now, before):
    most = text_cost.limit(name)
    return (
        name,
        before["instructions"],
        _flagged(now["instructions"], most and now["instructions"] >= most),
        most or "",
        _flagged(now["compile_ms"], now["compile_ms"] > text_cost.SLOWEST_TEXTURE),
        before["million_ms"],
        now["million_ms"],
    )


def _material_row(name, now, before):
    counts = before["instructions"], now["instructions"]
    times = [figures[key] for key in ("compile_ms", "million_ms") for figures in (before, now)]
    return (name, *counts, _change(*counts), *times)


def text_part():
    """The lines on the cost of the HLSL."""
    before = json.loads(BASELINE.read_text(encoding="utf-8"))
    textures = text_cost.measure_all(text_cost.textures())
    materials = text_cost.measure_all(translation.documents.examples())

    def total(figures):
        return {key: round(sum(one[key] for one in figures.values())) for key in next(iter(figures.values()))}

    materials["**all**"] = total(materials)
    earlier = {**before["materials"], "**all**": total(before["materials"])}
    return [
        *TEXTS.format(points=text_cost.POINTS, slowest=text_cost.SLOWEST_TEXTURE).split("\n"),
        *_rows(
            ("texture", "instructions before", "now", "limit", "DXC ms", "ms/million before", "now"),
            [_texture_row(name, now, before["textures"][name]) for name, now in textures.items()],
        ),
        "### Example materials",
        "",
        *_rows(
            ("material", "instructions before", "now", "change", "DXC ms before", "now", "ms/million before", "now"),
            [_material_row(name, now, earlier[name]) for name, now in materials.items()],
        ),
    ]


def main():
    lines = [
        "# Performance",
        "",
        f"Made by `tools/bench` on {os.cpu_count()} processors ({platform.machine()}), "
        f"{platform.python_implementation()} {platform.python_version()}.",
        "",
        *translation_part(),
        *executed.lines(),
        *text_part(),
    ]
    text = "\n".join(lines)
    TARGET.parent.mkdir(exist_ok=True)
    TARGET.write_text(text, encoding="utf-8")
    print(text)


if __name__ == "__main__":
    main()
