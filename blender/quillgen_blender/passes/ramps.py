"""Colour ramps as the translator takes them, from their raw facts.

In HSV and HSL Blender interpolates linearly, whatever is set, and goes round the circle of hues in the way that
`hue` names; the translator knows only the straight way.
"""

from . import hues


def run(document, options=None):
    return document | {"nodes": [prepared(record) for record in document["nodes"]]}, []


def prepared(record):
    ramp = record.get("ramp")
    if ramp is None or "hue" not in ramp:
        return record
    plain = {key: value for key, value in ramp.items() if key != "hue"}
    if ramp["mode"] != "RGB":
        plain |= {"stops": hues.through_the_seam(ramp["stops"], ramp["mode"], ramp["hue"]), "interp": "LINEAR"}
    return record | {"ramp": plain}
