"""Results as Markdown: what to wire, for building a material by hand."""

from __future__ import annotations

from collections.abc import Iterable, Mapping, Sequence
from typing import Any

from .types import Input, Result
from .wiring import expression, main_property


def page(name: str, result: Result, remarks: Sequence[str] = ()) -> str:
    """A page with the settings, inputs, outputs and warnings of one material. `remarks` follow the warnings."""
    lines = [f"# {name}", ""]
    lines += table(["Setting", "Value"], result["material"].items())
    lines += ["## Inputs", "", *input_table(result["inputs"])]
    lines += ["## Outputs", ""]
    lines += table(
        ["Output", "Type", "Material property"],
        [("(the result)", "float3", main_property(result["material"]))]
        + [(one["name"], one["type"], one["property"]) for one in result["outputs"]],
    )
    displacement = result["displacement"]
    if displacement:
        lines += ["## Displacement", ""]
        lines += [f"Magnitude: {displacement['magnitude']} cm, centre 0.5. Inputs of its text:", ""]
        lines += input_table(displacement["inputs"])
    differences = [*result["warnings"], *remarks]
    if differences:
        lines += ["## What differs from Blender", "", *(f"- {one}" for one in differences), ""]
    return "\n".join(lines)


def input_table(inputs: Iterable[Input]) -> list[str]:
    rows = [(f"`{one['name']}`", expression(one), shown(one)) for one in inputs]
    return table(["Input", "Expression in Unreal", "Default"], rows) if rows else ["None.", ""]


def shown(entry: Mapping[str, Any]) -> str:
    """The default of a parameter, or the picture of a texture."""
    if entry["kind"] == "vector":
        return ", ".join(f"{number:g}" for number in entry["default"])
    return str(entry.get("default", entry.get("image", "")))


def table(head: Sequence[str], rows: Iterable[Iterable[object]]) -> list[str]:
    """The lines of a Markdown table, followed by an empty one.

    >>> table(["a"], [["x|y"]])
    ['| a |', '| --- |', '| x\\\\|y |', '']
    """
    row = "| {} |".format
    lines = [row(" | ".join(head)), row(" | ".join("---" for _ in head))]
    return lines + [row(" | ".join(str(cell).replace("|", "\\|") for cell in cells)) for cells in rows] + [""]
