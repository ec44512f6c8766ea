"""Small functions that make documents.

    brick = node("TexBrick", props={"offset": 0.5})
    bsdf = node("BsdfPrincipled", {"Base Color": link(brick, "Color"), "Metallic": 1.0})
    document = material(bsdf, brick)

A node has all sockets of its type with the values of node_types. `inputs` overrides values, `without` omits sockets.
"""

import copy
import json
import pathlib

from golden.node_types import FURTHER, TYPES, entry

EXAMPLES = pathlib.Path(__file__).parents[2] / "examples" / "materials"

IMAGES = {"wood.png": {"name": "wood.png", "colorspace": "sRGB", "alpha": "STRAIGHT", "float": False}}


def node(kind, inputs=None, *, id=None, props=None, without=(), outs=True, **further):
    """A node record. `inputs`: socket -> number, triple, colour, None (a shader's) or a whole entry.

    `props` replaces single properties, and removes those that are None. `outs` may be a dict, or False for a record
    that does not declare its outputs. `further`: other keys of the record.
    """
    kind = kind if kind.startswith("ShaderNode") else "ShaderNode" + kind
    sockets, outputs, properties = copy.deepcopy(TYPES.get(kind, ({}, {}, {})))
    for name, value in (inputs or {}).items():
        typed = sockets.get(name, {}).get("t")
        sockets[name] = dict(value) if isinstance(value, dict) else entry(value, typed)
    for name in without:
        sockets.pop(name, None)
    properties = {k: v for k, v in {**properties, **(props or {})}.items() if v is not None}
    record = {"id": kind.removeprefix("ShaderNode") if id is None else id, "type": kind, "in": sockets}
    if outs:
        record["outs"] = dict(outs) if isinstance(outs, dict) else outputs
    return {**record, "props": properties, **copy.deepcopy(FURTHER.get(kind, {})), **further}


def bare(kind, inputs=None, **further):
    """A node record with only the given entries and properties."""
    return node(
        kind,
        inputs,
        without=set(TYPES["ShaderNode" + kind][0]) - set(inputs or {}),
        **{"props": dict.fromkeys(TYPES["ShaderNode" + kind][2])} | further,
    )


def link(source, output=None, kind=""):
    """An input entry that reads an output (default: the first) of a node, given by its record or id.

    `kind`: the type that the link states. The default is the output's own type, which may be None.
    """
    if isinstance(source, str):
        return {"t": "VALUE", "link": [source, output, kind or None]}
    output = output or next(iter(TYPES[source["type"]][1]))
    own = source.get("outs", {}).get(output)
    kind = own if kind == "" else kind
    return {"t": own or "VALUE", "link": [source["id"], output, kind]}


def material(*nodes, surface=None, displacement=None, **top):
    """A document. The surface is the first output of the first node, or a pair (record or id, output).

    `displacement` is such a pair, or a record whose first output is used. `top`: other keys of the document.
    """

    def source(given):
        record, output = given if isinstance(given, tuple) else (given, None)
        if isinstance(record, str):
            return [record, output]
        return [record["id"], output or next(iter(TYPES[record["type"]][1]))]

    out = {"surface": source(surface or nodes[0])}
    if displacement:
        out["displacement"] = source(displacement)
    return {"nodes": list(nodes), "out": out, **copy.deepcopy(top)}


def example(name):
    """The document of an example material, such as "lava" or "reference/lava.base"."""
    return json.loads((EXAMPLES / f"{name}.json").read_text(encoding="utf-8"))
