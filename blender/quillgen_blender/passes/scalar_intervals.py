"""Interval arithmetic on numbers: the operations of the Math node.

An interval is a pair of inclusive ends; None is an unknown one. If both ends are equal it is a constant, and the result
is that of the operation on constants.
"""

import math
from collections.abc import Callable

Interval = tuple[float, float]
Maybe = Interval | None


def hull(one: Maybe, two: Maybe) -> Maybe:
    return None if one is None or two is None else (min(one[0], two[0]), max(one[1], two[1]))


def add(one: Maybe, two: Maybe) -> Maybe:
    return None if one is None or two is None else (one[0] + two[0], one[1] + two[1])


def subtract(one: Maybe, two: Maybe) -> Maybe:
    return None if one is None or two is None else (one[0] - two[1], one[1] - two[0])


def multiply(one: Maybe, two: Maybe) -> Maybe:
    """A factor of 0 yields 0, even if the other one is unknown."""
    if (0.0, 0.0) in (one, two):
        return 0.0, 0.0
    if one is None or two is None:
        return None
    ends = [x * y for x in one for y in two]
    return min(ends), max(ends)


def product_sum(one: list[Maybe], two: list[Maybe]) -> Maybe:
    """The interval of a dot product."""
    found: Maybe = (0.0, 0.0)
    for x, y in zip(one, two, strict=True):
        found = add(found, multiply(x, y))
    return found


def limited(interval: Interval, limits: Interval) -> Interval:
    low, high = limits
    return min(max(interval[0], low), high), min(max(interval[1], low), high)


def mathematics(operation: str, operands: list[Maybe]) -> Maybe:
    """The interval of an operation by Blender's name. An operation whose constants are outside of its domain yields 0,
    as in Blender."""
    a, b, c = (operands + [(0.0, 0.0)] * 3)[:3]
    if operation in _LINEAR:
        return _LINEAR[operation](a, b, c)
    if operation in _RANGES and a is None:
        return _RANGES[operation]
    if a is None or b is None or c is None:
        return _SIGN.get(operation)
    if a[0] == a[1] and b[0] == b[1] and c[0] == c[1]:
        try:
            number = _CONSTANTS[operation](a[0], b[0], c[0])
        except (KeyError, ValueError, OverflowError, ZeroDivisionError):
            return None
        return number, number
    if operation in _RISING:
        return _RISING[operation](a[0]), _RISING[operation](a[1])
    if operation == "DIVIDE":
        return None if b[0] <= 0.0 <= b[1] else multiply(a, (1.0 / b[1], 1.0 / b[0]))
    if operation == "ABSOLUTE":
        return (0.0 if a[0] <= 0.0 <= a[1] else min(abs(a[0]), abs(a[1]))), max(abs(a[0]), abs(a[1]))
    if operation == "POWER" and a[0] >= 0.0 and b[0] == b[1] and b[0] >= 0.0:
        return a[0] ** b[0], a[1] ** b[0]
    if operation == "PINGPONG":
        return 0.0, max(abs(b[0]), abs(b[1]))
    if operation in ("MODULO", "FLOORED_MODULO"):
        most = max(abs(b[0]), abs(b[1]))
        return (0.0 if a[0] >= 0.0 and b[0] >= 0.0 else -most), most
    if operation == "WRAP":
        return hull(b, c)
    return _RANGES.get(operation, _SIGN.get(operation))


def _minimum(a: Maybe, b: Maybe, c: Maybe) -> Maybe:
    return None if a is None or b is None else (min(a[0], b[0]), min(a[1], b[1]))


def _maximum(a: Maybe, b: Maybe, c: Maybe) -> Maybe:
    return None if a is None or b is None else (max(a[0], b[0]), max(a[1], b[1]))


_LINEAR: dict[str, Callable[[Maybe, Maybe, Maybe], Maybe]] = {
    "ADD": lambda a, b, c: add(a, b),
    "SUBTRACT": lambda a, b, c: subtract(a, b),
    "MULTIPLY": lambda a, b, c: multiply(a, b),
    "MULTIPLY_ADD": lambda a, b, c: add(multiply(a, b), c),
    "MINIMUM": _minimum,
    "MAXIMUM": _maximum,
}
_RISING: dict[str, Callable[[float], float]] = {
    "SQRT": lambda a: math.sqrt(max(a, 0.0)),
    "FLOOR": math.floor,
    "CEIL": math.ceil,
    "ROUND": lambda a: math.floor(a + 0.5),
    "TRUNC": math.trunc,
    "RADIANS": math.radians,
    "DEGREES": math.degrees,
    "ARCTANGENT": math.atan,
    "TANH": math.tanh,
    "ARCSINE": lambda a: math.asin(min(max(a, -1.0), 1.0)),
}
_RANGES: dict[str, Interval] = {
    "SINE": (-1.0, 1.0),
    "COSINE": (-1.0, 1.0),
    "TANH": (-1.0, 1.0),
    "FRACT": (0.0, 1.0),
    "SIGN": (-1.0, 1.0),
    "ARCTANGENT": (-0.5 * math.pi, 0.5 * math.pi),
    "ARCTAN2": (-math.pi, math.pi),
    "ARCSINE": (-0.5 * math.pi, 0.5 * math.pi),
    "ARCCOSINE": (0.0, math.pi),
}
_SIGN: dict[str, Interval] = dict.fromkeys(("LESS_THAN", "GREATER_THAN", "COMPARE"), (0.0, 1.0))


def _of_one(rising: Callable[[float], float]) -> Callable[[float, float, float], float]:
    return lambda a, b, c: float(rising(a))


def _power(a: float, b: float) -> float:
    if a < 0.0 and b != math.floor(b):
        return 0.0
    return float(a**b)


def _remainder(a: float, b: float) -> float:
    return math.fmod(a, b) if b else 0.0


def _floored(a: float, b: float) -> float:
    return a - math.floor(a / b) * b if b else 0.0


def _pingpong(a: float, b: float) -> float:
    share = (a - b) / (2.0 * b) if b else 0.0
    return abs((share - math.floor(share)) * b * 2.0 - b) if b else 0.0


def _smooth(a: float, b: float, c: float) -> float:
    if c == 0.0:
        return min(a, b)
    near = max(c - abs(a - b), 0.0) / c
    return min(a, b) - near * near * near * c / 6.0


_CONSTANTS: dict[str, Callable[[float, float, float], float]] = {
    **{name: _of_one(rising) for name, rising in _RISING.items()},
    "DIVIDE": lambda a, b, c: a / b if b else 0.0,
    "POWER": lambda a, b, c: _power(a, b),
    "LOGARITHM": lambda a, b, c: math.log(a) / math.log(b) if a > 0.0 and b > 0.0 and b != 1.0 else 0.0,
    "INVERSE_SQRT": lambda a, b, c: 1.0 / math.sqrt(a) if a > 0.0 else 0.0,
    "ABSOLUTE": lambda a, b, c: abs(a),
    "EXPONENT": lambda a, b, c: math.exp(a),
    "LESS_THAN": lambda a, b, c: float(a < b),
    "GREATER_THAN": lambda a, b, c: float(a > b),
    "COMPARE": lambda a, b, c: float(abs(a - b) <= max(c, 1.192092896e-07)),
    "SIGN": lambda a, b, c: float((a > 0.0) - (a < 0.0)),
    "FRACT": lambda a, b, c: a - math.floor(a),
    "MODULO": lambda a, b, c: _remainder(a, b),
    "FLOORED_MODULO": lambda a, b, c: _floored(a, b),
    "WRAP": lambda a, b, c: a - (b - c) * math.floor((a - c) / (b - c)) if b != c else c,
    "SNAP": lambda a, b, c: math.floor(a / b) * b if b else 0.0,
    "PINGPONG": lambda a, b, c: _pingpong(a, b),
    "SINE": lambda a, b, c: math.sin(a),
    "COSINE": lambda a, b, c: math.cos(a),
    "TANGENT": lambda a, b, c: math.tan(a),
    "SINH": lambda a, b, c: math.sinh(a),
    "COSH": lambda a, b, c: math.cosh(a),
    "ARCCOSINE": lambda a, b, c: math.acos(min(max(a, -1.0), 1.0)),
    "ARCTAN2": lambda a, b, c: math.atan2(a, b),
    "SMOOTH_MIN": lambda a, b, c: _smooth(a, b, c),
    "SMOOTH_MAX": lambda a, b, c: -_smooth(-a, -b, c),
}
