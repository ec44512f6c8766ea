"""Evaluates a ramp's stops in Python like the generated text does, to compare them with Blender's values."""

from quillgen_blender.passes import hues


def shown(ramp, factor):
    stops = ramp["stops"]
    colour = stops[0][1]
    if factor >= stops[-1][0]:
        colour = stops[-1][1]
    for (start, first), (end, second) in zip(stops, stops[1:], strict=False):
        if start <= factor < end:
            share = (factor - start) / (end - start)
            if ramp["interp"] == "CONSTANT":
                colour = first
            elif ramp["mode"] == "RGB":
                if ramp["interp"] == "EASE":
                    share *= share * (3 - 2 * share)
                colour = [x + (y - x) * share for x, y in zip(first, second, strict=True)]
            else:
                one, two = hues.split(first, ramp["mode"]), hues.split(second, ramp["mode"])
                parts = [x + (y - x) * share for x, y in zip(one, two, strict=True)]
                colour = hues.join(parts, ramp["mode"])
    return colour


def difference(one, two):
    return max(abs(x - y) for x, y in zip(one, two, strict=True))
