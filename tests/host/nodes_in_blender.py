"""Reads every node type that a material can contain. Prints one JSON object: {node type: {"properties", "sockets":
those in Blender; "kept": those in the document; "ignored": those with a reason; "unknown": those missing in the
reader's table; "notes"; "error"}}. Runs inside Blender.
"""

import json
import sys
from pathlib import Path

import bpy

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

from quillgen_blender import read
from quillgen_blender.read import known, node_types, versions

SOURCES = ("VALUE", "INT", "BOOLEAN", "VECTOR", "RGBA", "ROTATION", "SHADER")


def main():
    bpy.ops.wm.read_factory_settings(use_empty=True)
    found = {name: examined(name) for name in names()}
    table = known._table()
    known._table = lambda: table | {"Math": table["Math"] - {"use_clamp", "Value_002"}}
    known.names.cache_clear()
    node_types.KEPT.clear()
    found["ShaderNodeMath"]["forgotten"] = examined("ShaderNodeMath")["notes"]
    print(json.dumps(found))


def names():
    """All node types that can be added to a material."""
    tree = bpy.data.materials.new("Trial")
    tree.use_nodes = True
    for name in sorted(dir(bpy.types)):
        if name.startswith(("ShaderNode", "Node", "GeometryNode", "FunctionNode")):
            try:
                node = tree.node_tree.nodes.new(name)
            except (RuntimeError, TypeError):
                continue
            tree.node_tree.nodes.remove(node)
            yield name


def examined(name):
    material = bpy.data.materials.new(name)
    material.use_nodes = True
    tree = material.node_tree
    node = tree.nodes.new(name)
    if hasattr(node, "attribute_name"):
        node.attribute_name = "Any"  # a node without a name has no record
    common = node_types.COMMON
    properties = [prop.identifier for prop in node.bl_rna.properties if prop.identifier not in common]
    sockets = [socket.identifier for socket in node.inputs]
    found = {"properties": properties, "sockets": sockets, "known": known.names(name) is not None}
    kind = name.removeprefix("ShaderNode")
    found["ignored_here"] = [what for of, what in known.IGNORED if of == kind]
    found["ignored"] = found["ignored_here"] + [what for of, what in known.IGNORED if of == "*"]
    found["renamed"] = list(versions.SUCCESSORS.get(name, (0, 0, {}))[2])
    found["unknown"] = known.unknown(name, properties + sockets)
    out = next((socket for socket in node.outputs if socket.type in SOURCES and socket.enabled), None)
    if out is None:
        return found
    end = tree.get_output_node("CYCLES") or tree.nodes.new("ShaderNodeOutputMaterial")
    glow = tree.nodes.new("ShaderNodeEmission")
    tree.links.new(out, end.inputs["Surface"] if out.type == "SHADER" else glow.inputs["Color"])
    if out.type != "SHADER":
        tree.links.new(glow.outputs[0], end.inputs["Surface"])
    try:
        reading = read.flatten(material)
    except Exception as trouble:
        return found | {"error": f"{type(trouble).__name__}: {trouble}"}
    json.dumps(reading.document, allow_nan=False)
    found["notes"] = [note.text for note in reading.notes]
    found["document"] = reading.document
    found["kept"] = [key for record in reading.document["nodes"] if record["id"] == node.name for key in kept(record)]
    return found


def kept(record):
    own = {"curve": "mapping", "ramp": "color_ramp", "object_matrix": "object"}
    return [*record["in"], *record["props"], *(name for key, name in own.items() if key in record)]


if __name__ == "__main__":
    main()
