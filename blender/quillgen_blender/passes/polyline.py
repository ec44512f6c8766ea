"""Approximates a sampled curve of several components by a polyline with few corners.

A corner need not lie on the curve: it may deviate by the tolerance, as may the line in between. Where the curve bends
evenly, the longest lines that fit have their corners on one side of the curve and their middles on the other.
"""

from collections.abc import Sequence
from itertools import accumulate

Column = tuple[float, ...]  # the samples of one component
Corner = tuple[int, list[float]]  # the sample's index, the values there


def polyline(samples: Sequence[Sequence[float]], tolerance: float) -> list[Corner]:
    """Returns corners at samples such that the line stays within the tolerance of every sample. The line is constant
    before the first corner and after the last."""
    all_columns = list(zip(*samples, strict=True))
    columns = list(dict.fromkeys(all_columns))  # red, green and blue are often identical
    found = min((swung(columns, tolerance, lean) for lean in (1.0, 0.0)), key=len)
    order = [columns.index(column) for column in all_columns]
    return [(corner, [values[number] for number in order]) for corner, values in found]


def swung(columns: list[Column], tolerance: float, lean: float) -> list[Corner]:
    """A greedy fit: each line extends from its corner as far as it stays within the tolerance of all samples, and the
    next corner is at the last of these. `lean`: how much of the tolerance corners move to the outside of the bend, 0 to
    1."""
    last = len(columns[0]) - 1
    corner = min(flat_from_the_start(column, tolerance) for column in columns)
    if corner:
        values = [0.5 * (min(column[: corner + 1]) + max(column[: corner + 1])) for column in columns]
    else:
        values = [column[0] + lean * tolerance * bend(column, 0) for column in columns]
    found = [(corner, values)]
    tails = [tail(column) for column in columns]
    while corner < last and not all(
        high - tolerance <= value <= low + tolerance
        for (low, high), value in zip([ends[corner + 1] for ends in tails], values, strict=True)
    ):
        corner, values = swing(columns, corner, values, tolerance, lean)
        found.append((corner, values))
    return found


def swing(columns: list[Column], corner: int, values: list[float], tolerance: float, lean: float) -> Corner:
    """The corner after one at which the curve is not constant."""
    slopes: list[list[tuple[float, float]]] = []
    for column, value in zip(columns, values, strict=True):
        limit = corner + 1 + len(slopes[-1]) if slopes else len(column)
        slopes.append(feasible(column[corner + 1 : limit], value, tolerance))
    run = len(slopes[-1])
    ends = []
    for column, value, found in zip(columns, values, slopes, strict=True):
        low, high = found[run - 1]
        wish = column[corner + run] + lean * tolerance * bend(column, corner + run)
        ends.append(min(max(wish, value + low * run), value + high * run))
    return corner + run, ends


def feasible(samples: Column, value: float, tolerance: float) -> list[tuple[float, float]]:
    """For each sample, the smallest and the largest slope of the lines from a value that stay within the tolerance of
    all samples so far. Ends where there is no such line."""
    low, high = float("-inf"), float("inf")
    found = []
    for run, sample in enumerate(samples, 1):
        away = sample - value
        low, high = max(low, (away - tolerance) / run), min(high, (away + tolerance) / run)
        if low > high:
            break
        found.append((low, high))
    return found


def flat_from_the_start(column: Column, tolerance: float) -> int:
    """The index of the last sample up to which all samples fit into a band of twice the tolerance."""
    low = high = column[0]
    for place, sample in enumerate(column):
        low, high = min(low, sample), max(high, sample)
        if high - low > 2.0 * tolerance:
            return place - 1
    return len(column) - 1


def tail(column: Column) -> list[tuple[float, float]]:
    """The minimum and the maximum of the samples from each index on."""
    back = column[::-1]
    return list(zip(accumulate(back, min), accumulate(back, max), strict=True))[::-1]


def bend(column: Column, place: int) -> float:
    """The sign of the outer side of a bend: -1 (below) if the curve bends upwards, 1 (above) if downwards, else 0."""
    place = min(max(place, 1), len(column) - 2)
    turn = column[place - 1] - 2.0 * column[place] + column[place + 1]
    return -1.0 if turn > 1e-9 else 1.0 if turn < -1e-9 else 0.0
