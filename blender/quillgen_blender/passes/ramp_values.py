"""The colours that Blender shows for a colour ramp, in RGB.

Cycles gets 257 values of a ramp from Blender, evenly spaced from 0 to 1, and interpolates linearly.
"""

from collections.abc import Iterator
from typing import Any

Stop = list[Any]  # [position, [red, green, blue, alpha]]
Colour = list[float]

STEPS = 256  # intervals of Cycles' table
TENSION = 0.71  # of cardinal splines


def table(stops: list[Stop], interpolation: str) -> list[tuple[float, ...]]:
    """The 257 colours. `stops` are in list order, whatever their positions."""
    return [tuple(colour) for colour in evaluated(stops, interpolation, [step / STEPS for step in range(STEPS + 1)])]


def evaluated(stops: list[Stop], interpolation: str, factors: list[float]) -> Iterator[Colour]:
    """The colours at ascending factors.

    The stop after a factor is the first one in the list whose position is greater, and the stop before it is its
    predecessor in the list: if stops are out of order, these need not be the nearest ones. Splines continue before the
    first stop and after the last one, where the colours of the ends count once more at 0 and 1; all other
    interpolations are constant there.
    """
    count, place = len(stops), 0
    for factor in factors:
        while place < count and stops[place][0] <= factor:
            place += 1
        start, first = stops[place - 1] if place else (0.0, stops[0][1])
        end, second = stops[place] if place < count else (1.0, stops[-1][1])
        share = (factor - start) / (end - start) if end != start else 0.0
        spline = interpolation in WEIGHTS
        if count == 1 or (factor <= stops[0][0] and not spline):
            yield stops[0][1]
        elif interpolation == "CONSTANT":
            yield first
        elif spline:
            before = stops[place - 2][1] if place > 1 else first
            after = stops[place + 1][1] if place + 1 < count else second
            a, b, c, d = WEIGHTS[interpolation](min(max(share, 0.0), 1.0))
            yield [
                min(max(a * w + b * x + c * y + d * z, 0.0), 1.0)
                for w, x, y, z in zip(before, first, second, after, strict=True)
            ]
        elif place == count:
            yield first
        else:
            if interpolation == "EASE":
                share *= share * (3.0 - 2.0 * share)
            yield [x + (y - x) * share for x, y in zip(first, second, strict=True)]


def b_spline(t: float) -> tuple[float, float, float, float]:
    """The weights of four neighbours, for t from the second to the third."""
    s = 1.0 - t
    return (
        s * s * s / 6.0,
        (t * t * (3.0 * t - 6.0) + 4.0) / 6.0,
        (s * s * (3.0 * s - 6.0) + 4.0) / 6.0,
        t * t * t / 6.0,
    )


def cardinal(t: float) -> tuple[float, float, float, float]:
    """The weights of four neighbours, for t from the second to the third."""
    s = 1.0 - t
    near = (2.0 - TENSION) * t * t * t + (TENSION - 3.0) * t * t + 1.0
    far = (2.0 - TENSION) * s * s * s + (TENSION - 3.0) * s * s + 1.0
    return -TENSION * t * s * s, near, far, -TENSION * s * t * t


WEIGHTS = {"B_SPLINE": b_spline, "CARDINAL": cardinal}
