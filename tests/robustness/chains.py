"""Documents whose graph is a chain of nodes, where each node reads the next."""

import random

from golden.documents import node
from golden.node_types import TYPES

# Node type of a chain -> the socket that reads the next node.
LINKS = {
    "ShaderNodeMath": "Value",
    "ShaderNodeVectorMath": "Vector",
    "ShaderNodeMix": "A_Float",
    "ShaderNodeValToRGB": "Fac",
    "ShaderNodeMixShader": "Shader",
    "ShaderNodeBsdfPrincipled": "Normal",
    "ShaderNodeTexNoise": "Vector",
    "ShaderNodeTexImage": "Vector",
    "ShaderNodeTexBrick": "Vector",
    "ShaderNodeTexVoronoi": "Vector",
    "ShaderNodeMapRange": "Value",
    "ShaderNodeRGBCurve": "Color",
    "ShaderNodeVectorTransform": "Vector",
    "ShaderNodeNormalMap": "Color",
    "ShaderNodeBump": "Normal",
    "ShaderNodeVectorDisplacement": "Vector",
}


FURTHER_LINKS = {
    "ShaderNodeGamma": "Color",
    "ShaderNodeMapping": "Vector",
    "ShaderNodeSeparateXYZ": "Vector",
    "ShaderNodeCombineXYZ": "X",
    "ShaderNodeHueSaturation": "Color",
    "ShaderNodeVectorRotate": "Vector",
    "ShaderNodeTexWave": "Vector",
    "ShaderNodeTexMagic": "Scale",
    "ShaderNodeTexGabor": "Frequency",
    "ShaderNodeRadialTiling": "Vector",
    "ShaderNodeFresnel": "Normal",
    "ShaderNodeLayerWeight": "Normal",
    "ShaderNodeNormal": "Normal",
    "ShaderNodeClamp": "Value",
    "ShaderNodeInvert": "Color",
    "ShaderNodeVectorCurve": "Vector",
    "ShaderNodeFloatCurve": "Value",
    "ShaderNodeTexEnvironment": "Vector",
    "ShaderNodeDisplacement": "Height",
    "ShaderNodeTexWhiteNoise": "Vector",
    "ShaderNodeSqueeze": "Value",
    "ShaderNodeBlackbody": "Temperature",
    "ShaderNodeMixRGB": "Color1",
}


def output_of(kind):
    return {"ShaderNodeMix": "Result_Float"}.get(kind) or next(iter(TYPES[kind][1]))


def mixed_chain(length, seed):
    """A chain of all types except shaders, in random order. The records are in another random order."""
    chance = random.Random(seed)
    links = {
        kind: socket
        for kind, socket in {**LINKS, **FURTHER_LINKS}.items()
        if TYPES[kind][1][output_of(kind)] != "SHADER"
    }
    kinds = [chance.choice(list(links)) for _ in range(length)]
    nodes = [node(kind, id=place) for place, kind in enumerate(kinds)]
    for place, (record, source) in enumerate(zip(nodes, kinds[1:])):
        entry = record["in"][links[record["type"]]]
        entry["link"] = [place + 1, output_of(source), TYPES[source][1][output_of(source)]]
    chance.shuffle(nodes)
    end = [0, output_of(kinds[0])]
    ends = {"surface": end, "displacement": end}
    return {"nodes": nodes, "out": ends, "images": {"wood.png": {}}, "settings": {"displacement": "BOTH"}}


def chain(kind, length, socket=None):
    """A chain of one node type. The first node is the surface; the last has no links."""
    socket = socket or LINKS[kind]
    output = output_of(kind)
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
