"""The part of docs/performance.md on what a GPU executes, from the figures kept in executed.json.

The counts of the GPU are exact. They are stored because the tool that counts is not part of the repository. A row:
name -> [cycles, latency, static DXIL instructions, vector registers], before and now. Under "others": what MaterialX
1.39.5 takes for what is most like a texture, [cycles, latency, vector registers]. Under "fxc": millions of basic blocks
and seconds, before and now. Under "unrolled": the ratios of the cycles and of the latency of the materials, and the
most vector registers, where the driver unrolls. Under "fxc live": blocks of all materials where parameters are inputs,
and the highest ratio.
"""

import json
import math
import pathlib

KEPT = pathlib.Path(__file__).parent / "executed.json"
TEXT = """## What a GPU executes

The RDNA2 code that Mesa's compiler makes, executed instruction by instruction for waves of 64 neighbouring
pixels, sixteen of them spread over each material. Cycles: what a wave takes of the busiest unit, which counts
where enough waves hide their latency; latency: the cycles of a wave alone. The counts are exact and the same on
every machine, but what makes them is not part of the repository, so they are kept in `bench/executed.json`; none
of it was timed on a GPU. Before: the library when its corners and cells were turns of loops, with the fewest static
instructions. Loops are kept as the text says (SPIR-V).
"""

UNROLLED = """Where the driver unrolls loops (DXIL), the materials take {cycles} of the cycles and {latency} of the
latency in the geometric mean, and at most {registers} registers. With up to 80 registers, six waves of 64 pixels share
a SIMD.
"""

OTHERS = """### Executed: beside MaterialX

MaterialX's GLSL functions for fractal noise and for cells, compiled by glslang, on the same points and executed in the
same way. They are other noises: their values differ, and they do less. Noise has neither wrapping of far coordinates
nor fractional octaves, and cells give the distance alone.
"""

FXC = """### Compile time of FXC

What Microsoft's FXC under Wine takes for shader model 5, parameters as constants: millions of basic blocks that it
executes, counted by Valgrind and the same up to one in a hundred, and seconds of processor time, the least of six in
turns with the other library; single ones vary by a third. FXC's time multiplies with each loop around another and with
each branch inside, and grows with each corner side by side. DXC stays below one second for every material.

With parameters as inputs, all materials take {before:.1f} million before and {now:.1f} now; {name} has the highest
ratio, {ratio:.2f}.
"""


def _ratio(now, before):
    return f"{now / before:.2f}"


def _times(before, now):
    return f"{before[0]:.1f} | {now[0]:.1f} | {_ratio(now[0], before[0])} | {before[1]:.1f} | {now[1]:.1f}"


def _mean(rows, place):
    return math.exp(sum(math.log(now[place] / before[place]) for before, now in rows) / len(rows))


def lines():
    """The lines of the part."""
    kept = json.loads(KEPT.read_text(encoding="utf-8"))
    others, fxc, live, unrolled = (kept.pop(part) for part in ("others", "fxc", "fxc live", "unrolled"))
    found = [*TEXT.split("\n"), *UNROLLED.format(**unrolled).split("\n")]
    for title, rows in kept.items():
        found += [f"### Executed: {title}", ""]
        head = ("cycles before", "now", "ratio", "latency before", "now", "ratio", "static DXIL before", "now")
        found += [f"| | {' | '.join(head)} | registers |"]
        found += ["| --- |" + " ---: |" * 9]
        for name, (before, now) in rows.items():
            cells = [f"{before[0]:,.0f}", f"{now[0]:,.0f}", _ratio(now[0], before[0])]
            cells += [f"{before[1]:,.0f}", f"{now[1]:,.0f}", _ratio(now[1], before[1])]
            cells += [f"{before[2]:.0f}", f"{now[2]:.0f}", f"{now[3]:.0f}"]
            found.append(f"| {name} | {' | '.join(cells)} |")
        pairs = list(rows.values())
        means = f"{_mean(pairs, 0):.3f}", f"{_mean(pairs, 1):.3f}"
        found += [f"| **geometric mean** | | | {means[0]} | | | {means[1]} | | | |", ""]
    found += [
        *OTHERS.split("\n"),
        "| | cycles MaterialX | ours | latency MaterialX | ours | registers MaterialX | ours |",
    ]
    found += ["| --- |" + " ---: |" * 6]
    for name, theirs in others.items():
        ours = [kept["textures"][name][1][place] for place in (0, 1, 3)]
        cells = [f"{figure:,}" for pair in zip(theirs, ours, strict=True) for figure in pair]
        found.append(f"| {name} | {' | '.join(cells)} |")
    found += ["", *FXC.format(**live).split("\n"), "| material | blocks before | now | ratio | seconds before | now |"]
    found += ["| --- |" + " ---: |" * 5]
    for name, (before, now) in fxc.items():
        found.append(f"| {name} | {_times(before, now)} |")
    sums = [[sum(row[place][one] for row in fxc.values()) for one in (0, 1)] for place in (0, 1)]
    found.append(f"| **all** | {_times(*sums)} |")
    return [*found, ""]


if __name__ == "__main__":
    print("\n".join(lines()))
