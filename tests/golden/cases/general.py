"""Cases for every node type: each output read, no properties, no optional sockets, every socket linked."""

from golden.cases import Case
from golden.documents import IMAGES, link, material, node
from golden.node_types import OPTIONAL, RGBA, SHADER, TYPES, VALUE

ODD = "Größe %s.001"  # an id with non-ASCII letters, a percent sign and a suffix, as in real files


def document(kind, surface=None, others=(), **settings):
    n = node(kind, **settings)
    top = {"images": IMAGES} if n["props"].get("image") else {}
    return material(n, *others, surface=(n, surface or next(iter(n["outs"]), None)), **top)


def linked(kind, **settings):
    """A case where every socket is linked to an output of another type."""
    number, tint, glow = node("Value", id="Number"), node("RGB", id="Tint"), node("Emission", id="Glow")
    sources = {VALUE: tint, SHADER: glow}
    inputs = {name: link(sources.get(e["t"], number)) for name, e in TYPES[kind][0].items()}
    return document(kind, others=(number, tint, glow), inputs=inputs, **settings)


def cases_of(kind):
    sockets, outputs, props = TYPES[kind]
    mode = "surface" if SHADER in outputs.values() else "emission"
    yield Case("as Blender makes it", document(kind, id=ODD), mode, True)
    # A Mix node has only the output of its data type.
    for output in outputs if len(outputs) > 1 and kind != "ShaderNodeMix" else ():
        yield Case(f"output {output}", document(kind, output), mode)
    if len(outputs) > 1:
        n = node(kind)
        reader = node("Reader", {name: link(n, name) for name in outputs}, outs={"Color": RGBA})
        yield Case("all outputs read", document(kind, others=(reader,)), mode)
    if mode == "surface":
        yield Case("mode emission", document(kind), "emission", True)
    if props:
        yield Case("no properties", document(kind, props=dict.fromkeys(props)), mode)
    if kind in OPTIONAL:
        yield Case("no optional sockets", document(kind, without=OPTIONAL[kind]), mode, True)
    if sockets:
        yield Case("everything linked", linked(kind), mode, True)


def cases():
    return ((kind, cases_of(kind)) for kind in TYPES)
