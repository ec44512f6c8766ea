"""The documents that are measured: trees of any number of nodes, all reachable, and the example materials.

Nodes have all sockets and properties of their type, as a host exports them.
"""

import json
import pathlib
import sys

ROOT = pathlib.Path(__file__).parents[1]
sys.path.insert(0, str(ROOT / "tests"))

from golden.documents import IMAGES, link, material, node

OPERATIONS = ("ADD", "MULTIPLY", "SINE", "MAXIMUM", "WRAP", "SUBTRACT", "POWER", "MULTIPLY_ADD")
BLENDS = ("MIX", "MULTIPLY", "OVERLAY", "SOFT_LIGHT")


def chain(size):
    """A chain of Math nodes from a Value node to the roughness of a Principled BSDF."""
    nodes = [node("Value", id="Value")]
    for i in range(size - 2):
        nodes.append(
            node(
                "Math",
                {"Value": link(nodes[-1])},
                id=f"Math.{i:03}",
                props={"operation": OPERATIONS[i % len(OPERATIONS)]},
            )
        )
    return material(node("BsdfPrincipled", {"Roughness": link(nodes[-1])}, id="Principled BSDF"), *nodes)


def tree(size):
    """A balanced tree of Math nodes: any number of nodes without the depth of a chain."""
    nodes = []
    for i in range(size - 1):
        children = {
            socket: link(f"Math.{child:04}", "Value", "VALUE")
            for socket, child in (("Value", 2 * i + 1), ("Value_001", 2 * i + 2))
            if child < size - 1
        }
        nodes.append(node("Math", children, id=f"Math.{i:04}", props={"operation": OPERATIONS[i % len(OPERATIONS)]}))
    return material(node("BsdfPrincipled", {"Roughness": link("Math.0000", "Value", "VALUE")}), *nodes)


def _layer(number, colour):
    """The eleven nodes of one layer of a material, on top of the colour of the layer below."""

    def named(kind, inputs=None, **more):
        return node(kind, inputs, id=f"{kind}.{number:03}", **more)

    where = named("TexCoord")
    moved = named("Mapping", {"Vector": link(where, "Object")})
    noise = named("TexNoise", {"Vector": link(moved)})
    ramp = named("ValToRGB", {"Fac": link(noise, "Fac")})
    cells = named("TexVoronoi", {"Vector": link(moved), "Scale": 3.0 + number})
    ranged = named("MapRange", {"Value": link(cells, "Distance")})
    factor = named("Math", {"Value": link(ranged, "Result"), "Value_001": link(noise, "Fac")})
    colours = {"Color1": link(ramp, "Color"), **({"Color2": colour} if colour else {})}
    blend = {"blend_type": BLENDS[number % len(BLENDS)]}
    blended = named("MixRGB", {"Fac": link(factor), **colours}, props=blend)
    tinted = named("HueSaturation", {"Color": link(blended)})
    image = named("TexImage", {"Vector": link(moved)})
    sockets = {"Factor_Float": link(image, "Alpha"), "A_Color": link(tinted), "B_Color": link(image, "Color")}
    result = named("Mix", sockets, props={"data_type": "RGBA"})
    layer = [where, moved, noise, ramp, cells, ranged, factor, blended, tinted, image, result]
    return layer, link(result, "Result_Color")


def mixed(size):
    """A material as people make them: layers of textures, ramps and mixes under a bumped Principled BSDF.

    Whole layers of eleven nodes, then Math nodes up to the size, then a bump and the shader.
    """
    nodes, colour = [], None
    while len(nodes) + 11 <= size - 2:
        layer, colour = _layer(len(nodes) // 11, colour)
        nodes += layer
    height = node("TexNoise", id="Height") if not nodes else nodes[2]
    nodes += [height] if not colour else []
    last = link(height, "Fac")
    while len(nodes) < size - 2:
        nodes.append(node("Math", {"Value": last}, id=f"Height.{len(nodes):03}"))
        last = link(nodes[-1])
    bump = node("Bump", {"Height": last})
    sockets = {"Normal": link(bump), "Roughness": last, **({"Base Color": colour} if colour else {})}
    return material(
        node("BsdfPrincipled", sockets, id="Principled BSDF"),
        bump,
        *nodes,
        images=IMAGES,
        settings={"displacement": "BUMP"},
    )


def examples():
    """Name -> document of every example material."""
    files = sorted((ROOT / "examples" / "materials").glob("*.json"))
    return {file.stem: json.loads(file.read_text(encoding="utf-8")) for file in files}
