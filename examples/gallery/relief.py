"""Real displacement: a material's displacement text moves the surface of a shape along its normals.

The heights are evaluated once, on a grid over the UV square. Rays are marched until they are below the surface.
"""

from typing import NamedTuple

import numpy as np

from . import camera as cameras
from . import materials, surfaces, wiring

STEPS = 96
HALVINGS = 8
RAYS = 4  # per light, for its shadow
SHADOW_STEPS, SHADOW_REACH = 14, 0.35  # metres


class Relief(NamedTuple):
    heights: np.ndarray  # metres along the normal, [rows, columns] over v (from the bottom) and u
    round: bool  # True: a sphere of radius 1, where u wraps around; False: a square


def relief(record, thing, camera, rows):
    """Evaluates a displacement text on a thing, which is a sphere of radius 1 or a square."""
    is_round = thing.shape.name == "sphere"
    columns = 2 * rows if is_round else rows
    v, u = np.meshgrid((np.arange(rows) + 0.5) / rows, (np.arange(columns) + 0.5) / columns, indexing="ij")
    local = _unrolled(thing, u.ravel(), v.ravel(), is_round)
    points = thing.scale * local @ thing.turn.T + thing.place
    given = wiring.inputs(thing, camera, np.zeros((len(points), 2)), points)
    given["two_sided_sign"] = np.ones((1, 1))
    shares = np.clip(materials.evaluate(record, given)["result"], 0, 1)
    return Relief((shares.reshape(rows, columns) - 0.5) * record["magnitude"] / 100, is_round)


def _unrolled(thing, u, v, is_round):
    """Points of the shape at UV coordinates."""
    if not is_round:
        half = thing.shape.high[0]
        return np.stack([(2 * u - 1) * half, (2 * v - 1) * half, 0 * u], axis=1)
    turn, tilt = (u - 0.5) * 2 * np.pi, (1 - v) * np.pi
    return np.stack([np.sin(tilt) * np.sin(turn), -np.sin(tilt) * np.cos(turn), np.cos(tilt)], axis=1)


def height(relief, uv):
    """Heights at UV coordinates, linearly interpolated between the grid points."""
    rows, columns = relief.heights.shape
    x, y = uv[:, 0] * columns - 0.5, np.clip(uv[:, 1] * rows - 0.5, 0, rows - 1.001)
    x = x if relief.round else np.clip(x, 0, columns - 1.001)
    i, j = np.floor(x).astype(int), np.floor(y).astype(int)
    left, right = i % columns, (i + 1) % columns
    grid = relief.heights
    a, b = (grid[j + k, left] * (1 - x + i) + grid[j + k, right] * (x - i) for k in (0, 1))
    return a * (1 - y + j) + b * (y - j)


def above(relief, thing, points):
    """The height of world space points above the surface, along the shape's normal, in object space units."""
    local = surfaces.to_local(thing, points)
    base = np.linalg.norm(local, axis=1) - 1 if relief.round else local[:, 2]
    normals, _ = thing.shape.frame(local)
    return base - height(relief, thing.shape.uv(local, normals))


def meet(relief, thing, eye, rays):
    """Distances along rays from the eye to the displaced surface; NEVER for rays that miss it."""
    begin, end = _span(relief, thing, eye, rays)
    found = np.full(len(rays), surfaces.NEVER)
    open_ = np.flatnonzero(np.isfinite(begin))
    step = np.where(np.isfinite(begin), end - np.where(np.isfinite(begin), begin, 0), 0) / STEPS
    for n in range(1, STEPS + 1):
        at = begin[open_] + n * step[open_]
        below = above(relief, thing, eye + at[:, None] * rays[open_]) < 0
        found[open_[below]] = at[below]
        open_ = open_[~below]
    hit = np.isfinite(found)
    low, high = found[hit] - step[hit], found[hit]
    for _ in range(HALVINGS):
        middle = (low + high) / 2
        below = above(relief, thing, eye + middle[:, None] * rays[hit]) < 0
        low, high = np.where(below, low, middle), np.where(below, middle, high)
    found[hit] = high
    return found


def _span(relief, thing, eye, rays):
    """Returns (begin, end) of each ray's interval that can contain the surface."""
    top, bottom = float(relief.heights.max()), float(relief.heights.min())
    if relief.round:
        outer = thing._replace(shape=surfaces.sphere(1 + top))
        begin, end = (surfaces.meet(outer._replace(far=far), eye, rays) for far in (False, True))
        inner = surfaces.meet(thing._replace(shape=surfaces.sphere(1 + bottom)), eye, rays)
        return begin, np.minimum(end, inner)
    up = thing.turn[:, 2]
    levels = (
        thing._replace(place=np.add(thing.place, level * thing.scale * up)) for level in (top + 1e-6, bottom - 1e-6)
    )
    begin, end = (surfaces.meet(level, eye, rays) for level in levels)
    return np.where(np.isfinite(begin) & np.isfinite(end), begin, surfaces.NEVER), end


def faces(relief, thing, camera, points, reach):
    """The normals of the displaced surface, from its slopes over `reach` metres."""
    found = surfaces.describe(thing, points)
    raised = found["normal"]
    for way in (found["tangent"], found["bitangent"]):
        ahead, back = (above(relief, thing, points + step * way) for step in (reach, -reach))
        raised = raised + ((ahead - back) * thing.scale / (2 * reach))[:, None] * way
    return cameras.unit(raised)


def shadows(relief, thing, points, lights, seeds):
    """The fractions of each light (at most three) and of the surroundings that the surface doesn't shadow at its
    points: [n, 3] and [n]. `seeds`: an integer for each point that determines its samples."""
    normals = surfaces.describe(thing, points)["normal"]
    begin = points + 0.004 * normals
    seen = np.ones((len(points), 3))
    for number, light in enumerate(lights):
        places = light.at + light.size * (0.8 * _random(seeds, number, (RAYS, 3)) - 0.4)
        seen[:, number] = _share(relief, thing, begin, cameras.unit(places - begin))
    numbers = _random(seeds, len(lights), (2 * RAYS, 2))
    up, turn = 2 * numbers[..., 0] - 1, 2 * np.pi * numbers[..., 1]
    flat = np.sqrt(1 - up**2)
    ball = np.stack([flat * np.cos(turn), flat * np.sin(turn), up], axis=-1)
    directions = cameras.unit(normals + 0.98 * ball)
    return seen, _share(relief, thing, begin, directions)


def _random(seeds, salt, shape):
    """Uniform random numbers in 0..1 that depend only on the seeds and `salt`: [shape[0], n, shape[1]]."""
    first, last = np.indices(shape, dtype=np.uint32)[:, :, None]
    drawn = salt * 64 + first * shape[1] + last
    x = np.uint32(seeds)[:, None] * np.uint32(0x9E3779B1) + drawn * np.uint32(0x85EBCA77)
    for shift, factor in ((16, 0x7FEB352D), (15, 0x846CA68B)):
        x = (x ^ (x >> np.uint32(shift))) * np.uint32(factor)
    return (x ^ (x >> np.uint32(16))) / 2.0**32


def _share(relief, thing, points, directions):
    """The fraction of directions [m, n, 3] in which a ray escapes."""
    return np.mean([_free(relief, thing, points, some) for some in directions], axis=0)


def _free(relief, thing, points, directions):
    """Whether rays escape from the surface. The steps are smaller near the origin of a ray."""
    free = np.ones(len(points), dtype=bool)
    for share in np.linspace(0, 1, SHADOW_STEPS + 1)[1:]:
        free[free] = above(relief, thing, (points + SHADOW_REACH * share**2 * directions)[free]) > 0
    return free
