"""The documentation pages that are generated from the sources: nodes, inputs, Python modules, command line, gallery."""

from __future__ import annotations

import contextlib
import inspect
import io
import json
import re
import sys
from collections import defaultdict
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parents[2]
for folder in ("binding/python", "blender", "build/g++"):
    sys.path.insert(0, str(ROOT / folder))

import quillgen
import quillgen_lib
from quillgen_blender.passes import support
from quillgen_tools import tables, translate
from quillgen_tools.wiring import ATTRIBUTES, WIRING

FAMILIES = {
    "shaders": "Shaders and outputs",
    "textures": "Textures",
    "inputs": "Inputs",
    "values": "Values and colours",
    "vectors": "Vectors and normals",
    "groups": "Groups, zones and links",
}


INPUTS_HEAD = """# Input kinds and their wiring

Each item of a result's `inputs` has a `name`, which the text uses, and a `kind`, which says what to wire. The texts
compute in Blender's frame and convert what they read by themselves: wire Unreal's raw values, in world space and
centimetres, with nothing flipped or scaled. The Unreal plugin does all of this by itself; this page is for importers of
other kinds, and is made of `quillgen_tools.wiring.WIRING`.

Every input that is listed must be wired, and must have this width: a Custom expression takes the type of what is
connected.

"""
INPUTS_FOOT = """
The result of the text itself goes to Base Color, or to Emissive Color where the shading is `unlit`. The second text,
for displacement, goes to Displacement, with the result's `magnitude` and a centre of 0.5.
"""


class Node(NamedTuple):
    family: str
    type: str
    name: str


def all_pages() -> dict[str, str]:
    """Path in the documentation -> Markdown."""
    pages = {
        "nodes/index.md": nodes_index(),
        "reference/inputs.md": inputs_page(),
        "reference/python.md": python_page(),
        "reference/command-line.md": command_page(),
        "gallery.md": gallery_page(),
        "changelog.md": (ROOT / "CHANGELOG.md").read_text(encoding="utf-8"),
    }
    for family in FAMILIES:
        pages[f"nodes/{family}.md"] = family_page(family)
    return pages


# Nodes


def nodes() -> list[Node]:
    lines = (ROOT / "tools" / "docs" / "nodes.txt").read_text(encoding="utf-8").splitlines()
    found = [Node(*line.split(maxsplit=2)) for line in lines if line and not line.startswith("#")]
    known = {node.type for node in found}
    missing = (set(quillgen.NODES) | {row.type for row in support.rows()}) - known
    if missing or len(known) != len(found):
        raise ValueError(f"tools/docs/nodes.txt lacks {sorted(missing)}, or names a node twice")
    return found


def fidelity() -> tuple[dict[str, list[str]], dict[str, list[list[str]]]]:
    """The rows of docs/fidelity.md by node name: the measured shares, and the differences by design."""
    measured: dict[str, list[str]] = {}
    reasons: dict[str, list[list[str]]] = defaultdict(list)
    head: list[str] = []
    for line in (ROOT / "docs" / "fidelity.md").read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip("|").split("|")] if line.startswith("|") else []
        if not cells or set(cells[0]) <= set("- :"):
            continue
        if cells[0] == "Node":
            head = cells
        elif "Within 1e-4" in head and "Pixels" in head:
            row = dict(zip(head, cells))
            measured[cells[0]] = [row["Cases"], row["Pixels"], row["Within 1e-4"]]
        elif "Within 1e-4" in head:  # skips the table of other Blender versions
            row = dict(zip(head, cells))
            reasons[cells[0]].append([row["Cases"], row["Within 1e-4"], cells[-1]])
    if len(measured) < 20:
        raise ValueError("the table of docs/fidelity.md could not be read")
    return measured, reasons


def nodes_index() -> str:
    counts: dict[str, dict[str, int]] = {family: defaultdict(int) for family in FAMILIES}
    for node in nodes():
        counts[node.family][loss(node)] += 1
    rows = [
        (f"[{title}]({family}.md)", *(counts[family][word] or "" for word in ("exact", "near", "lost")))
        for family, title in FAMILIES.items()
    ]
    lines = ["# Nodes", "", "What becomes of each shader node of Blender 4.2 to 5.2.", ""]
    lines += [
        "- **Exact**: the text computes what Cycles computes; the pages give the measured share of pixels.",
        "- **Near**: something close stands in, and the export says so beside the node.",
        "- **Lost**: the node or feature has no effect in Unreal, and the export says so beside the node.",
        "",
    ]
    lines += tables.table(["Family", "Exact", "Near", "Lost"], rows)
    lines += [f"The translator has handlers for {len(quillgen.NODES)} node types; the extension resolves or replaces"]
    lines += ["others before the translation."]
    return "\n".join(lines) + "\n"


def loss(node: Node) -> str:
    """The loss of the node as a whole: exact, near or lost."""
    found = [row.loss for row in support.rows() if row.type == node.type and not row.feature]
    return found[0] if found else "lost"


def family_page(family: str) -> str:
    measured, reasons = fidelity()
    lines = [f"# {FAMILIES[family]}", ""]
    chosen = [node for node in nodes() if node.family == family]
    rows = [(f"[{node.name}](#{anchor(node.name)})", loss(node), share(measured.get(node.name))) for node in chosen]
    lines += tables.table(["Node", "", "Pixels within 1e-4 of Cycles"], rows)
    for node in chosen:
        lines += node_section(node, measured.get(node.name), reasons.get(node.name, []))
    return "\n".join(lines)


def share(row: list[str] | None) -> str:
    return f"{row[2]} of {int(row[1]):,} in {counted(row[0])}" if row else ""


def counted(trees: str) -> str:
    return "1 tree" if trees == "1" else f"{trees} trees"


def anchor(name: str) -> str:
    return re.sub(r"[\s]+", "-", re.sub(r"[^\w\s-]", "", name.lower()).strip())


def node_section(node: Node, measured: list[str] | None, reasons: list[list[str]]) -> list[str]:
    rows = [row for row in support.rows() if row.type == node.type]
    handled = "has a handler" if node.type in quillgen.NODES else "has no handler"
    lines = [f"## {node.name}", "", f"`{node.type}`, {handled} in the translator.", ""]
    if rows:
        lines += tables.table(
            ["What", "", "In Unreal"], [(row.feature or "the node", row.loss, row.text) for row in rows]
        )
    if measured:
        lines += [f"Measured against Cycles: {share(measured)}.", ""]
    if reasons:
        lines += ["Differs by design:", ""]
        lines += [f"- {why} ({counted(cases)}, {within} within 1e-4)" for cases, within, why in reasons]
        lines += [""]
    return lines


# Reference


def inputs_page() -> str:
    lines = INPUTS_HEAD.splitlines()
    rows = []
    for kind, row in WIRING.items():
        pin = f", pin `{row.pin}`" if row.pin else ""
        width = f"{row.width} wide" if row.width else "a texture" if kind == "texture" else "as wide as `of`"
        keys = ", ".join(f"`{key}`" for key in row.keys)
        rows.append((f"`{kind}`", keys, row.expression, f"`MaterialExpression{row.node}`{pin}", width, row.remark))
    lines += tables.table(["Kind", "Further keys", "What to wire", "Class", "Width", "Remark"], rows)
    lines += ["## Outputs", ""]
    lines += tables.table(
        ["`property`", "Input of Make Material Attributes"], [(f"`{k}`", v) for k, v in ATTRIBUTES.items()]
    )
    lines += INPUTS_FOOT.splitlines()
    return "\n".join(lines) + "\n"


def python_page() -> str:
    lines = ["# Python modules", "", "Made of the docstrings: `help(quillgen)` says the same.", ""]
    for module in (quillgen, quillgen_lib):
        lines += [f"## {module.__name__}", "", *text(inspect.getdoc(module))]
        for name, value in vars(module).items():
            if callable(value) and not name.startswith("_") and not isinstance(value, type):
                lines += [f"### {module.__name__}.{name}", "", "```python", f"{name}{signature(value)}", "```", ""]
                lines += text(inspect.getdoc(value))
    return "\n".join(lines)


def signature(function: object) -> str:
    return str(inspect.signature(function))  # type: ignore[arg-type]


def text(doc: str | None) -> list[str]:
    """A docstring as a verbatim block, because its columns are aligned."""
    return ["```text", *(doc or "").splitlines(), "```", ""]


def command_page() -> str:
    shown = io.StringIO()
    with contextlib.redirect_stdout(shown), contextlib.suppress(SystemExit):
        translate.parse(["--help"])
    lines = ["# Command line", "", "`pip install` brings the command `quillgen-translate`:", "", "```text"]
    return "\n".join([*lines, *shown.getvalue().splitlines(), "```", ""])


# Gallery


def gallery_page() -> str:
    """docs/gallery.md with the two pictures of each material combined in one slider."""
    page = (ROOT / "docs" / "gallery.md").read_text(encoding="utf-8")
    known = json.loads((ROOT / "docs" / "gallery" / "numbers.json").read_text(encoding="utf-8"))
    pair = (
        r"\| Cycles \| The text \|\n\| --- \| --- \|\n"
        r"\| !\[(\w+) in Cycles\]\((gallery/\w+\.jpg)\) \| !\[\1: the text\]\((gallery/\w+\.jpg)\) \|"
    )
    if sorted(match[1] for match in re.finditer(pair, page)) != sorted(known):
        raise ValueError("docs/gallery.md does not show every material once")
    return re.sub(pair, slider, page)


def slider(match: re.Match[str]) -> str:
    name, cycles, text = match.groups()
    return (
        f'<div class="slider" style="--at: 50%">\n'
        f'<img src="../{cycles}" alt="{name} in Blender" class="blender" width="512" height="512">\n'
        f'<img src="../{text}" alt="{name}: the generated text" class="text" width="512" height="512">\n'
        f'<input type="range" min="0" max="100" value="50" aria-label="Blender or the generated text"\n'
        f" oninput=\"this.parentNode.style.setProperty('--at', this.value + '%')\">\n"
        f'<span class="left">Blender</span><span class="right">Generated text</span>\n'
        f"</div>"
    )
