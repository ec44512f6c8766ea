"""Formats the outcome of a comparison as text."""

from collections import defaultdict
from pathlib import Path

import store
import versions

ROOT = Path(__file__).resolve().parents[2]
SHARE = 0.98  # of a case's pixels must agree, unless it has a reason

HEAD = """# Fidelity

How far the generated text shows what Blender shows. `tests/fidelity` holds node trees for every setting of
every node that can be evaluated, each rendered once by Cycles in Blender {blender}. Every tree is flattened,
translated, compiled with DXC and run on a Vulkan device; a pixel agrees where no channel is off by more
than 1e-4, relative to values above 1. This page is written by `tests/fidelity/compare.py --write`.

"""

OTHERS = """
## Other versions of Blender

What the same cases show in another Blender, pixel against pixel of {blender}, wherever a case differs by more than
1e-4. The reader makes up for what it can by what it writes into the document: alpha modes, and a remainder ahead of
the Magic Texture. `tests/fidelity/versions.py` writes this table.

"""


def share(agreeing, pixels):
    """A percentage that is 100 only if all pixels agree."""
    return "100" if agreeing == pixels else f"{min(100 * agreeing / pixels, 99.99):.2f}"


def count(outcomes):
    return sum(one.agreeing for one in outcomes), sum(one.pixels for one in outcomes)


def by_node(outcomes):
    groups = defaultdict(list)
    for outcome in outcomes:
        groups[outcome.node].append(outcome)
    return groups


def table(outcomes):
    lines = [
        "| Node | Cases | Pixels | Within 1e-4 | Worst case | Its pixels | Largest difference |",
        "| --- | --- | --- | --- | --- | --- | --- |",
    ]
    for node, group in by_node(outcomes).items():
        plain = [one for one in group if not one.reason]
        if plain:
            agreeing, pixels = count(plain)
            worst = min(plain, key=lambda one: (one.agreeing / one.pixels, -one.worst))
            where = worst.name if worst.agreeing < worst.pixels else ""
            its = f"{share(worst.agreeing, worst.pixels)} %" if where else ""
            lines.append(
                f"| {node} | {len(plain)} | {pixels} | {share(agreeing, pixels)} % | {where} | {its} | "
                f"{max(one.worst for one in plain):.1e} |"
            )
    plain = [one for one in outcomes if not one.reason]
    lines.append(f"| all | {len(plain)} | {count(plain)[1]} | {share(*count(plain))} % | | | |")
    return "\n".join(lines)


def reasons(outcomes):
    groups = defaultdict(list)
    for one in outcomes:
        if one.reason:
            groups[one.node, one.reason].append(one)
    lines = ["| Node | Cases | Within 1e-4 | Why it can't agree |", "| --- | --- | --- | --- |"]
    lines += [
        f"| {node} | {len(group)} | {share(*count(group))} % | {reason} |" for (node, reason), group in groups.items()
    ]
    return "\n".join(lines)


def disagreeing(outcomes):
    """The cases without a reason where fewer than SHARE of the pixels agree."""
    return [one for one in outcomes if not one.reason and one.agreeing < SHARE * one.pixels]


def troubles(outcomes):
    lines = [
        f"{one.node} | {one.name}: {share(one.agreeing, one.pixels)} %, off by {one.worst:.2e} {one.error}"
        for one in outcomes
        if not one.reason and one.agreeing < one.pixels
    ]
    needless = [
        f"{one.node} | {one.name} agrees, but has the reason: {one.reason}"
        for one in outcomes
        if one.reason and one.agreeing == one.pixels
    ]
    return "\n".join(lines + needless)


def write(outcomes):
    below = disagreeing(outcomes)
    agreeing, pixels = count([one for one in outcomes if not one.reason])
    text = HEAD.format(blender=store.blender()) + (
        f"{len(outcomes)} cases, {count(outcomes)[1]} pixels.\n"
        f"Of the {pixels} pixels of cases that can agree, "
        f"{share(agreeing, pixels)} % do. Cases with less than {SHARE:.0%} of their pixels: {len(below)}.\n\n"
    )
    text += table(outcomes) + "\n\n## What differs by design\n\n" + reasons(outcomes) + "\n"
    text += OTHERS.format(blender=store.blender()) + versions.table() + "\n"
    (ROOT / "docs" / "fidelity.md").write_text(text, encoding="utf-8")
