"""Compares functions of the HLSL library with tables of values that Blender's Cycles computes for them.

A table (values/*.json) maps a function's name to rows: its arguments, then the result. Vectors are lists.
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
    """(result type, types of the arguments) of a library function; out arguments begin with "out ".

    `unit` is the name that it is asked for by, where that is not its own.
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
    """The function's result for columns of arguments: lists, arrays, or one value for all."""
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
    """For each row, how far the results lie apart, in units of the largest finite component that is wanted.

    Both infinite or both NaN is no deviation; only one of them is an infinite one.
    """
    got, want = (np.asarray(a, np.float64).reshape(len(got), -1) for a in (got, want))
    same = (got == want) | (np.isnan(got) & np.isnan(want))
    with np.errstate(invalid="ignore"):
        apart = np.where(same, 0.0, np.abs(got - want))
    apart[~np.isfinite(apart)] = np.inf
    size = np.where(np.isfinite(want), np.abs(want), 0.0).max(axis=1)
    return apart.max(axis=1) / np.maximum(size, np.finfo(np.float32).tiny)


def check(function, rows, tolerance):
    """Fails where a row's result is off by more than the tolerance times its largest component."""
    *columns, want = ([row[i] for row in rows] for i in range(len(rows[0])))
    same(evaluate(function, *columns), want, tolerance, rows)


def same(got, want, tolerance, rows=None):
    """Fails where results differ by more than the tolerance times the largest component of their row."""
    apart = deviation(got, want)
    worst = int(np.argmax(apart))
    assert apart[worst] <= tolerance, (
        f"{rows[worst][:-1] if rows is not None else worst}: got {got[worst]}, want {want[worst]}, "
        f"{apart[worst]:.2e} of its size apart"
    )
