"""Evaluates random colour ramps with ColorRamp.evaluate. Runs inside Blender. Prints one line of JSON."""

import json
import random
import sys

import bpy

WORDS = {
    "color_mode": ["RGB", "RGB", "RGB", "HSV", "HSL"],
    "interpolation": ["LINEAR", "EASE", "CONSTANT", "B_SPLINE", "CARDINAL"],
    "hue_interpolation": ["NEAR", "FAR", "CW", "CCW"],
}
CORNERS = (0.0, 0.2, 0.4, 0.6, 0.8, 1.0)


def ramp(tree, rng):
    node = tree.nodes.new("ShaderNodeValToRGB")
    band = node.color_ramp
    count = rng.choice([1, 2, 2, 3, 3, 4, 5, 8])
    while len(band.elements) < count:
        band.elements.new(rng.random())
    while len(band.elements) > count:
        band.elements.remove(band.elements[-1])
    for word, choices in WORDS.items():
        setattr(band, word, rng.choice(choices))
    places = [rng.random() for _ in range(count)]
    kind = rng.random()
    if kind < 0.3:  # stops with equal positions
        places = [rng.choice(CORNERS) for _ in range(count)]
    elif kind < 0.6:
        places.sort()
    for element, place in zip(band.elements, places, strict=True):
        element.position = place  # set by a script, so the list is not sorted
        element.color = [rng.random() for _ in range(4)]
    stops = [[element.position, list(element.color)] for element in band.elements]
    factors = [step / 256 for step in range(257)] + [rng.random() for _ in range(20)] + [stop[0] for stop in stops]
    record = {
        "stops": stops,
        "interp": band.interpolation,
        "mode": band.color_mode,
        "hue": band.hue_interpolation,
        "factors": factors,
        "colours": [list(band.evaluate(factor)) for factor in factors],
    }
    tree.nodes.remove(node)
    return record


count, seed = int(sys.argv[1]), int(sys.argv[2])
material = bpy.data.materials.new("Ramps")
material.use_nodes = True
rng = random.Random(seed)
print(json.dumps([ramp(material.node_tree, rng) for _ in range(count)]))
