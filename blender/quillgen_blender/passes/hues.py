"""Hue interpolation of colour ramps.

Between two stops of a ramp in HSV or HSL, Blender goes around the hue circle the near way, the far way or in a fixed
direction. The document only has linear interpolation from one hue to the other, which never crosses the seam at red
(hue 0 and 1). Where the way crosses it, two stops with the same position are inserted: the hue at one end of the range,
then at the other.
"""

import colorsys

from .ramp_values import Colour, Stop

EDGE = 1e-5  # distance of the new stops from the seam, because hue 1 is the same colour as hue 0


def through_the_seam(stops: list[Stop], mode: str, way: str) -> list[Stop]:
    """The stops, with those that the way requires inserted."""
    found = stops[:1]
    for (start, first), (end, second) in zip(stops, stops[1:]):
        one, two = split(first, mode), split(second, mode)
        turn = turned(one[0], two[0], way)
        if turn and end > start:
            share = ((1 - one[0]) if turn > 0 else one[0]) / abs(two[0] + turn - one[0])
            place = start + (end - start) * share
            between = [a + (b - a) * share for a, b in zip(one, two)]
            for hue in (1 - EDGE, EDGE) if turn > 0 else (EDGE, 1 - EDGE):
                found.append([place, join([hue] + between[1:], mode)])
        found.append([end, second])
    return found


def turned(one: float, two: float, way: str) -> int:
    """The full turns to add to the second hue for the way: -1, 0 or 1."""
    if way == "NEAR":
        return (two - one < -0.5) - (two - one > 0.5)
    if way == "FAR":
        return (-0.5 < two - one < 0) - (0 <= two - one < 0.5)
    return int(way == "CW" and two < one) - int(way == "CCW" and two > one)


def split(colour: Colour, mode: str) -> Colour:
    """[hue, the mode's second and third component, alpha]"""
    red, green, blue, alpha = colour
    if mode == "HSV":
        return [*colorsys.rgb_to_hsv(red, green, blue), alpha]
    hue, lightness, saturation = colorsys.rgb_to_hls(red, green, blue)
    return [hue, saturation, lightness, alpha]


def join(parts: Colour, mode: str) -> Colour:
    hue, second, third, alpha = parts
    return [
        *(colorsys.hsv_to_rgb(hue, second, third) if mode == "HSV" else colorsys.hls_to_rgb(hue, third, second)),
        alpha,
    ]
