"""Documents whose graph is one chain of nodes, each reading the next."""
from golden.node_types import TYPES
from golden.documents import node

# What each node of the chain is, and the socket by which it reads.
LINKS = {
    "ShaderNodeMath": "Value", "ShaderNodeVectorMath": "Vector", "ShaderNodeMix": "A_Float",
    "ShaderNodeValToRGB": "Fac", "ShaderNodeMixShader": "Shader", "ShaderNodeBsdfPrincipled": "Normal",
    "ShaderNodeTexNoise": "Vector", "ShaderNodeTexImage": "Vector", "ShaderNodeTexBrick": "Vector",
    "ShaderNodeTexVoronoi": "Vector", "ShaderNodeMapRange": "Value", "ShaderNodeRGBCurve": "Color",
    "ShaderNodeVectorTransform": "Vector", "ShaderNodeNormalMap": "Color", "ShaderNodeBump": "Normal",
    "ShaderNodeVectorDisplacement": "Vector",
}


def chain(kind, length, socket=None):
    """The first node is the surface; the last reads its sockets' own values."""
    socket = socket or LINKS[kind]
    output = {"ShaderNodeMix": "Result_Float"}.get(kind) or next(iter(TYPES[kind][1]))
    record = node(kind, outs=False)
    if kind == "ShaderNodeTexImage":
        record["props"]["image"] = "a"
    nodes = []
    for place in range(length):
        own_type = record["in"][socket]["t"]
        entry = {"t": own_type, "link": [place + 1, output, own_type]}
        inputs = record["in"] if place == length - 1 else {**record["in"], socket: entry}
        nodes.append({**record, "id": place, "in": inputs})
    return {"nodes": nodes, "out": {"surface": [0, output]}, "images": {"a": {}}}
