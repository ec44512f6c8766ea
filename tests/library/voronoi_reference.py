"""Reference implementation of Blender's Voronoi textures in numpy, in double precision.

All functions take arrays of points [n, d]; the settings are a dict of scalars. The library must agree up to rounding
for points that are exact in float32, except for points at nearly equal distance to two cells.
"""

import itertools
import math

import numpy as np

from noise_reference import cell_hash, float_hash

LARGEST = float(np.finfo(np.float32).max)


def offsets(d, reach):
    """The offsets of the cells around a cell, with x changing fastest."""
    return [np.array(o[::-1]) for o in itertools.product(range(-reach, reach + 1), repeat=d)]


def hashed(cells):
    """The hashes [n, d] that give the positions of feature points in cells (integral floats [n, d])."""
    if cells.shape[1] == 1:
        return np.float64(float_hash(cells))
    return np.float64(np.float32(cell_hash(cells.astype(np.int64))) * np.float32(2.0**-31))


def color(cells):
    d = cells.shape[1]
    if d == 1:
        f = np.float32(cells[:, 0])
        hashes = [float_hash(f), float_hash(f, np.float32(1)), float_hash(f, np.float32(2))]
        return np.float64(np.stack(hashes, axis=1))
    if d == 2:
        cells = np.concatenate([cells, np.zeros((len(cells), 1))], axis=1)
    return hashed(cells)[:, :3]


def distance(a, b, p):
    v = np.abs(a - b)
    if p["metric"] == 0 or v.shape[1] == 1:
        return np.sqrt((v * v).sum(axis=1))
    if p["metric"] == 1:
        return v.sum(axis=1)
    if p["metric"] == 2:
        return v.max(axis=1)
    return (v ** p["exponent"]).sum(axis=1) ** (1.0 / p["exponent"])


def neighbours(co, p, reach):
    """Yields (cell, feature point, its distance) for each cell around the cells of the points."""
    own = np.floor(co)
    for o in offsets(co.shape[1], reach):
        at = own + o + hashed(own + o) * p["randomness"]
        yield own + o, at, distance(at, co, p)


def octave(co, p):
    """Returns (distance, colour, position) of one octave of feature 0, 1 or 2."""
    if p["feature"] == 2 and p["smoothness"] != 0.0:
        return smooth(co, p)
    found = list(neighbours(co, p, 1))
    rank = np.argsort([t for _, _, t in found], axis=0, kind="stable")[1 if p["feature"] == 1 else 0]
    chosen = [np.stack(each)[rank, np.arange(len(co))] for each in zip(*found)]
    return chosen[2], color(chosen[0]), chosen[1]


def smooth(co, p):
    k, result = p["smoothness"], None
    for cell, at, t in neighbours(co, p, 2):
        here = (t, color(cell), at)
        if result is None:
            result = here
            continue
        y = np.clip(0.5 + 0.5 * (result[0] - t) / k, 0.0, 1.0)
        h = (3.0 - 2.0 * y) * y * y
        z = k * h * (1.0 - h)
        colour_z = z / (1.0 + 3.0 * k)
        result = [old + (h if old.ndim == 1 else h[:, None]) * (new - old) for old, new in zip(result, here)]
        result = [result[0] - z, result[1] - colour_z[:, None], result[2] - colour_z[:, None]]
    return result


def octaves(p):
    """(scale, weight) of each octave. The weight of a fractional last octave is scaled by the fraction."""
    if p["detail"] == 0.0 or p["roughness"] == 0.0:
        return [(1.0, 1.0)]
    weights = [(p["lacunarity"] ** i, p["roughness"] ** i) for i in range(math.ceil(p["detail"]) + 1)]
    rest = p["detail"] - math.floor(p["detail"])
    return weights[:-1] + [(weights[-1][0], weights[-1][1] * rest)] if rest else weights


def fractal(co, p):
    """Returns (distance, colour, position) of features 0 to 2, over all octaves."""
    total, distance, colour, position = 0.0, 0.0, 0.0, np.zeros_like(co)
    for scale, weight in octaves(p):
        t, c, at = octave(co * scale, p)
        total, distance, colour = total + weight, distance + t * weight, colour + c * weight
        position = position + (at / scale - position) * weight
    if p["normalize"]:
        distance, colour = distance / (total * p["max_distance"]), colour / total
    return distance, colour, position / p["scale"] if p["scale"] else position * 0.0


def edge_octave(co, p):
    own = np.floor(co)
    if co.shape[1] == 1:
        at = [own + o + hashed(own + o) * p["randomness"] for o in (-1, 0, 1)]
        borders = [np.abs((at[1] + at[k]) / 2 - co)[:, 0] for k in (0, 2)]
        return np.minimum(*borders)
    points = np.stack([at for _, at, _ in neighbours(co, {**p, "metric": 0}, 1)]) - co
    nearest = points[np.argmin((points**2).sum(axis=2), axis=0), np.arange(len(co))]
    apart = points - nearest
    length = np.sqrt((apart**2).sum(axis=2))
    with np.errstate(invalid="ignore", divide="ignore"):
        border = ((nearest + points) / 2 * apart).sum(axis=2) / length
    return np.where(length**2 > 0.0001, border, LARGEST).min(axis=0)


def edge(co, p):
    limit, result = p["max_distance"], 8.0
    for scale, weight in octaves(p):
        t = edge_octave(co * scale, p) / scale
        limit += (p["max_distance"] / scale - limit) * weight
        result = result + (np.minimum(result, t) - result) * weight
    return result / limit if p["normalize"] else result


def n_sphere_radius(co, p):
    p = {**p, "metric": 0}
    found = list(neighbours(co, p, 1))
    rank = np.argmin([t for _, _, t in found], axis=0)
    cell, at = (np.stack(each)[rank, np.arange(len(co))] for each in list(zip(*found))[:2])
    others = [cell + o for o in offsets(co.shape[1], 1) if o.any()]
    return np.min([distance(at, c + hashed(c) * p["randomness"], p) for c in others], axis=0) / 2
