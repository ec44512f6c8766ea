"""A text that pastes a material's graph into the material editor, for users without Python in Unreal.

    python -m quillgen_unreal.clipboard "export/Oak Planks" [--unreal 5.4] [--content /Game/Blender]

It holds the same plan that the import builds, in the format of the editor's clipboard. The material's own properties,
its last wire and the pictures have to be done by hand: paste_by_hand.txt beside it lists them.
"""

from __future__ import annotations

import argparse
import hashlib
import re
from collections.abc import Iterator, Mapping, Sequence
from pathlib import Path

from . import build, engine, exchange, layout, naming, texture_names
from .errors import Refused
from .layout import Box
from .plan import Color, Displacement, Enum, Expression, Graph, Inputs, Outputs, Plan, Source, Texture

FILE = "paste.txt"
NEWEST = (5, 7)


def text(plan: Plan, name: str) -> str:
    """The nodes of a plan, with comments around its columns."""
    boxes, comments = layout.place(plan.graph)
    nodes = {key: f"MaterialGraphNode_{n}" for n, key in enumerate(plan.graph.expressions)}
    lines: list[str] = []
    for number, (heading, box) in enumerate(comments):
        lines += _comment(name, number, heading, box)
    for key, expression in plan.graph.expressions.items():
        lines += _node(plan.graph, expression, boxes[key], nodes, name)
    return "\n".join(lines) + "\n"


def _comment(name: str, number: int, heading: str, box: Box) -> list[str]:
    kind = "/Script/Engine.MaterialExpressionComment"
    inner = f"MaterialExpressionComment_{number}"
    return [
        f'Begin Object Class=/Script/UnrealEd.MaterialGraphNode_Comment Name="MaterialGraphNode_Comment_{number}"',
        f'   Begin Object Class={kind} Name="{inner}"',
        "   End Object",
        f'   Begin Object Name="{inner}"',
        f"      SizeX={box.width}",
        f"      SizeY={box.height}",
        f"      Text={quoted(heading)}",
        f"      MaterialExpressionEditorX={box.x}",
        f"      MaterialExpressionEditorY={box.y}",
        f"      MaterialExpressionGuid={_guid(name, heading, number)}",
        "   End Object",
        f"   MaterialExpressionComment=\"{kind}'{inner}'\"",
        f"   NodePosX={box.x}",
        f"   NodePosY={box.y}",
        f"   NodeWidth={box.width}",
        f"   NodeHeight={box.height}",
        f"   NodeComment={quoted(heading)}",
        f"   NodeGuid={_guid(name, 'node', heading, number)}",
        "End Object",
    ]


def _node(graph: Graph, expression: Expression, box: Box, nodes: Mapping[str, str], name: str) -> list[str]:
    kind, inner = f"/Script/Engine.MaterialExpression{expression.kind}", f"MaterialExpression{expression.key}"
    lines = [
        f'Begin Object Class=/Script/UnrealEd.MaterialGraphNode Name="{nodes[expression.key]}"',
        f'   Begin Object Class={kind} Name="{inner}"',
        "   End Object",
        f'   Begin Object Name="{inner}"',
    ]
    lines += [f"      {line}" for line in _properties(graph, expression, nodes)]
    lines += [
        f"      MaterialExpressionEditorX={box.x}",
        f"      MaterialExpressionEditorY={box.y}",
        f"      MaterialExpressionGuid={_guid(name, expression.key)}",
        "   End Object",
        f"   MaterialExpression=\"{kind}'{inner}'\"",
        f"   NodePosX={box.x}",
        f"   NodePosY={box.y}",
        f"   NodeGuid={_guid(name, 'node', expression.key)}",
    ]
    lines += [f"   CustomProperties Pin ({pin})" for pin in _pins(graph, expression, nodes, name)]
    return [*lines, "End Object"]


def _properties(graph: Graph, expression: Expression, nodes: Mapping[str, str]) -> list[str]:
    """Lines such as ParameterName="Noise Texture / Scale", and the inputs with their sources."""
    lines = []
    for key, content in expression.settings:
        if isinstance(content, Inputs):
            wired = {wire.pin: wire.source for wire in expression.wires}
            for number, pin in enumerate(content.names):
                lines.append(f'Inputs({number})=(InputName="{pin}",Input=({_origin(graph, wired[pin], nodes)}))')
        elif isinstance(content, Outputs):
            for number, (pin, kind) in enumerate(content.pairs):
                lines.append(f'AdditionalOutputs({number})=(OutputName="{pin}",OutputType={kind.text})')
        else:
            lines.append(f"{_spelled(key)}={_written(content)}")
    if expression.comment and not any(key == "desc" for key, _ in expression.settings):
        lines.append(f"Desc={quoted(expression.comment)}")
    if expression.kind != "Custom":
        for wire in expression.wires:
            lines.append(f"{wire.pin or INPUT}=({_origin(graph, wire.source, nodes)})")
    return lines


INPUT = "Input"  # the property of the only input of expressions such as Transform


def _origin(graph: Graph, source: Source, nodes: Mapping[str, str]) -> str:
    """The record of a wire: the expression and the index of its output."""
    kind = f"/Script/Engine.MaterialExpression{graph.expressions[source.expression].kind}"
    path = f"{nodes[source.expression]}.MaterialExpression{source.expression}"
    found = [f"Expression=\"{kind}'{path}'\""]
    index = output_names(graph, source.expression).index(source.pin) if source.pin else 0
    found += [f"OutputIndex={index}"] if index else []
    mask = MASKS.get((graph.expressions[source.expression].kind, source.pin))
    return ",".join(found + ([mask] if mask else []))


# OUTPUTS: the outputs of expressions that have more than one, in order. MASKS: those that are components of a value.
OUTPUTS = {
    "VectorParameter": ("", "R", "G", "B", "A", "RGBA"),
    "VertexColor": ("", "R", "G", "B", "A"),
    "ObjectLocalBounds": ("Half Extents", "Extents", "Min", "Max"),
    "ScreenPosition": ("ViewportUV", "PixelPosition"),
    "ViewProperty": ("Property", "InvProperty"),
}
MASKS = {
    ("VectorParameter", "RGBA"): "Mask=1,MaskR=1,MaskG=1,MaskB=1,MaskA=1",
    ("VertexColor", "A"): "Mask=1,MaskA=1",
    ("VertexColor", ""): "Mask=1,MaskR=1,MaskG=1,MaskB=1",
}


def output_names(graph: Graph, key: str) -> tuple[str, ...]:
    expression = graph.expressions[key]
    further = next((c.pairs for _, c in expression.settings if isinstance(c, Outputs)), ())
    if expression.kind == "Custom":
        return ("return" if further else "", *(name for name, _ in further))
    return OUTPUTS.get(expression.kind, ("",))


def _pins(graph: Graph, expression: Expression, nodes: Mapping[str, str], name: str) -> Iterator[str]:
    """The pins with their wires, from both ends: the editor rebuilds the graph's wires from these."""
    for wire in expression.wires:
        source = wire.source
        other = f"{nodes[source.expression]} {_pin_id(name, source.expression, 'out', _pin_name(graph, source))}"
        own = _pin_id(name, expression.key, "in", wire.pin)
        yield f'PinId={own},PinName="{wire.pin or INPUT}",PinType.PinCategory="required",LinkedTo=({other},)'
    for pin in output_names(graph, expression.key):
        users = [
            f"{nodes[user.key]} {_pin_id(name, user.key, 'in', wire.pin)},"
            for user in graph.expressions.values()
            for wire in user.wires
            if wire.source.expression == expression.key and _pin_name(graph, wire.source) == pin
        ]
        linked = f",LinkedTo=({''.join(users)})" if users else ""
        own = _pin_id(name, expression.key, "out", pin)
        yield f'PinId={own},PinName="{pin or "Output"}",Direction="EGPD_Output",PinType.PinCategory=""{linked}'


def _pin_name(graph: Graph, source: Source) -> str:
    return source.pin or output_names(graph, source.expression)[0]


def _pin_id(name: str, key: str, side: str, pin: str) -> str:
    return _guid(name, key, side, pin)


def _guid(*parts: object) -> str:
    """Deterministic, so that writing the text of an unchanged material again yields the same text."""
    return hashlib.sha256("\0".join(map(str, parts)).encode("utf-8")).hexdigest()[:32].upper()


def _spelled(key: str) -> str:
    return "".join(part[:1].upper() + part[1:] for part in key.split("_"))


def _written(content: object) -> str:
    if isinstance(content, Enum):
        return content.text
    if isinstance(content, Color):
        return "(R={:f},G={:f},B={:f},A={:f})".format(*content)
    if isinstance(content, Texture):
        return f"\"/Script/Engine.Texture2D'{content.path}.{content.path.rsplit('/', 1)[1]}'\""
    if isinstance(content, Displacement):
        return f"(Magnitude={content.magnitude:f},Center={content.center:f})"
    if isinstance(content, bool):
        return str(content)
    return (
        quoted(content) if isinstance(content, str) else f"{content:f}" if isinstance(content, float) else str(content)
    )


def quoted(content: str) -> str:
    """A quoted text on one line."""
    for plain, escaped in (("\\", "\\\\"), ('"', '\\"'), ("\r", ""), ("\n", "\\r\\n"), ("\t", "\\t")):
        content = content.replace(plain, escaped)
    return f'"{content}"'


def by_hand(export: exchange.Export, plan: Plan, paths: Mapping[str, str]) -> list[str]:
    """The remaining manual steps, one line each, in order."""
    lines = []
    if export.pictures:
        lines.append("Import these pictures, each with sRGB off, no mipmaps, Never Stream on,")
        lines.append("compression VectorDisplacementmap (pictures in bytes) or HDR F32 (pictures in floats):")
    for picture in export.pictures:
        lines.append(f"  {picture.path or picture.image} as {paths[picture.name]}")
    lines.append(f"Make a new material, open it, copy all of {FILE}, and paste it into the graph.")
    lines.append("In the material's own details:")
    for key, content in plan.settings:
        lines.append(f"  {_spelled(key)} = {_written(content)}")
    lines.append("Then the output of MakeMaterialAttributes is wired to the material.")
    return lines + [f"Not in this version: {remark}" for remark in plan.remarks]


def write(folder: str | Path, version: tuple[int, ...] = NEWEST, content_path: str = "/Game/Blender") -> Path:
    """Writes the text into the folder of its material, and the remaining manual steps beside it. Returns its path."""
    export = exchange.read(folder)
    # There is no instance to hold the values, so the graph itself gets the current ones.
    parameters = tuple(p._replace(default=export.values[p.name]) for p in export.parameters)
    export = export._replace(parameters=parameters)
    paths = {p.name: texture_names.path(p, naming.content_path(content_path)) for p in export.pictures}
    plan = build.plan(export, paths, engine.Features.of_version(*version[:2]))
    target = Path(folder) / FILE
    target.write_text(text(plan, export.name), encoding="utf-8")
    notes = "\n".join(by_hand(export, plan, paths)) + "\n"
    target.with_name("paste_by_hand.txt").write_text(notes, encoding="utf-8")
    return target


def main(arguments: Sequence[str] | None = None) -> None:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", help="the folder of one material")
    parser.add_argument("--unreal", default="5.7", help="the version of Unreal, such as 5.4")
    parser.add_argument("--content", default="/Game/Blender", help="where the textures are in the content browser")
    options = parser.parse_args(arguments)
    version = re.fullmatch(r"(\d+)\.(\d+)(\.\d+)*", options.unreal)
    if not version:
        parser.error(f"a version of Unreal is written 5.4, not {options.unreal}")
    try:
        print(write(options.folder, (int(version[1]), int(version[2])), options.content))
    except (Refused, OSError) as error:
        parser.exit(2, f"{parser.prog}: {error}\n")


if __name__ == "__main__":
    main()
