"""Converts colour ramps to tables of 257 entries, as in Cycles. A difference that remains with such a document is not
caused by the tables."""

import copy

import numpy as np

STEPS = 256


def as_cycles(ir):
    """A copy of a document with its ramps as tables. Ramps that blend in HSV or HSL are unchanged."""
    ir = copy.deepcopy(ir)
    for node in ir["nodes"]:
        ramp = node.get("ramp")
        if ramp and ramp["mode"] == "RGB":
            if ramp["interp"] == "CONSTANT":
                ramp["stops"] = [[float(np.ceil(at * STEPS) / STEPS), color] for at, color in ramp["stops"]]
            elif ramp["interp"] in ("LINEAR", "EASE"):
                ramp["stops"], ramp["interp"] = table(ramp), "LINEAR"
    return ir


def table(ramp):
    """Samples a ramp. Returns equidistant stops."""
    places = np.array([at for at, _ in ramp["stops"]])
    colors = np.array([color for _, color in ramp["stops"]])
    at = np.linspace(0, 1, STEPS + 1)
    place = np.interp(at, places, np.arange(len(places)))
    first = np.minimum(np.floor(place).astype(int), max(len(places) - 2, 0))
    share = (place - first)[:, None]
    if ramp["interp"] == "EASE":
        share = share**2 * (3 - 2 * share)
    second = np.minimum(first + 1, len(places) - 1)
    mixed = colors[first] * (1 - share) + colors[second] * share
    return [[float(a), color.tolist()] for a, color in zip(at, mixed)]


def has(ir):
    return any("ramp" in node for node in ir["nodes"])
