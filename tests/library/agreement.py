"""Compares functions of the HLSL library with tables of values computed by Blender's Cycles.

A table (values/*.json) maps a function name to rows of its arguments followed by the result. Vectors are lists.
"""

import functools
import json
import pathlib
import re

import numpy as np

import library

DEFINITION = re.compile(r"^(\w+)\s+(\w+)\(([^)]*)\)")
DTYPES = {"int": np.int32, "int2": np.int32, "uint": np.uint32, "bool": np.bool_}


@functools.cache
def signature(function, unit=None):
    """Returns (result type, argument types) of a library function; out arguments begin with "out ".

    `unit` is the library name that includes the function, if it differs from the function's own.
    """
    for text in library.library().resolve({unit or function}):
        result, name, arguments = DEFINITION.match(text).groups()
        if name == function:
            return result, [" ".join(argument.split()[:-1]) for argument in arguments.split(",")]
    raise KeyError(function)


def table(name):
    path = pathlib.Path(__file__).parent / "values" / f"{name}.json"
    return json.loads(path.read_text(encoding="utf-8"))


def evaluate(function, *columns):
    """The function's results for columns of arguments, which are lists, arrays, or one value for all rows."""
    result, kinds = signature(function)
    n = max(len(c) for c in columns if np.ndim(c))
    arrays = []
    for kind, column in zip(kinds, columns, strict=True):
        width = int(kind[-1]) if kind[-1] in "234" else 1
        array = np.asarray(column, DTYPES.get(kind, np.float32))
        shape = (n, width) if width > 1 else (n,)
        arrays.append(np.ascontiguousarray(np.broadcast_to(array, shape)))
    return library.call(function, *arrays, result=result)


def deviation(got, want):
    """The deviation of each row, relative to the largest finite component of the expected result.

    It is 0 if both values are equal infinities or both are NaN, and infinite if only one of them is.
    """
    got, want = (np.asarray(a, np.float64).reshape(len(got), -1) for a in (got, want))
    same = (got == want) | (np.isnan(got) & np.isnan(want))
    with np.errstate(invalid="ignore"):
        apart = np.where(same, 0.0, np.abs(got - want))
    apart[~np.isfinite(apart)] = np.inf
    size = np.where(np.isfinite(want), np.abs(want), 0.0).max(axis=1)
    return apart.max(axis=1) / np.maximum(size, np.finfo(np.float32).tiny)


def check(function, rows, tolerance):
    """Fails if a row's result deviates by more than the tolerance times its largest component."""
    *columns, want = ([row[i] for row in rows] for i in range(len(rows[0])))
    same(evaluate(function, *columns), want, tolerance, rows)


def same(got, want, tolerance, rows=None):
    """Fails if results differ by more than the tolerance times the largest component of their row."""
    apart = deviation(got, want)
    worst = int(np.argmax(apart))
    assert apart[worst] <= tolerance, (
        f"{rows[worst][:-1] if rows is not None else worst}: got {got[worst]}, want {want[worst]}, "
        f"{apart[worst]:.2e} of its size apart"
    )
