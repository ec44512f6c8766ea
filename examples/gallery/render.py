"""Pictures of the example materials: every output of a text, lit by the shader of `shade` on the device."""

from typing import NamedTuple

import numpy as np

import quillgen

from . import camera as cameras
from . import materials, relief, scenes, shade, surfaces, tone, wiring
from .surroundings import NOTHING

# (value of the shader, output that provides it, default if the text doesn't have the output).
SCALARS = (
    ("metallic", "OutMetallic", 0.0),
    ("roughness", "OutRoughness", 0.5),
    ("specular", "OutSpecular", 0.5),
    ("coat", "OutCoat", 0.0),
    ("coat_roughness", "OutCoatRoughness", 0.03),
    ("opacity", "OutOpacity", 1.0),
)
LIT_BY = (
    "normal",
    "coat_normal",
    "base",
    "metallic",
    "roughness",
    "specular",
    "coat",
    "coat_roughness",
    "seen",
    "open",
)
RAYS_AT_ONCE = 1 << 19  # rays per band of a picture; limits the memory
OVERVIEW = 64  # rays across the picture for the mean colour of the object
FRAMES = 8  # averaged for a masked material, whose dithered coverage differs between frames


def picture(name, subdivision=3, samples=8, pixels=512, ir=None, part=None):
    """Renders a material to bytes [rows, columns, 3]. `ir` replaces its document; `part` selects a rectangle."""
    return tone.srgb(tone.neutral(radiance(name, subdivision, samples, pixels, ir, part)))


def radiance(name, subdivision=3, samples=8, pixels=512, ir=None, part=None):
    """Renders a material. A part equals the same region of the whole picture up to the last bits."""
    stage = _set(name, pixels, ir)
    left, top, width, height = part or cameras.whole(stage.scene.camera)
    step = max(RAYS_AT_ONCE // (width * subdivision**2), 1)
    bands = [
        _rendered(stage, cameras.Part(left, row, width, min(step, top + height - row)), subdivision, samples)
        for row in range(top, top + height, step)
    ]
    return np.concatenate(bands)


class Stage(NamedTuple):
    scene: scenes.Scene
    result: dict  # the translated material
    reliefs: tuple  # of each thing; None if it is not displaced


def _set(name, pixels, ir):
    scene = scenes.scene(name)
    scene = scene._replace(camera=scene.camera._replace(pixels=pixels))
    result = quillgen.compile(ir or materials.exported(name))
    moved = scene.relief_rows and result["displacement"]
    reliefs = [
        relief.relief(result["displacement"], thing, scene.camera, scene.relief_rows) if moved else None
        for thing in scene.things
    ]
    stage = Stage(scene, result, tuple(reliefs))
    return stage._replace(scene=scene._replace(around=_reflecting(stage)))


def _rendered(stage, part, subdivision, samples):
    camera, around = stage.scene.camera, stage.scene.around
    grown = part.grown(1, camera)  # by the radius of the filter
    places = cameras.positions(camera, subdivision, grown)
    rays, seeds = cameras.rays(camera, places), cameras.numbers(camera, subdivision, places)
    seen = [_see(stage, index, places, rays, seeds, subdivision) for index in range(len(stage.scene.things))]
    layers = [_layer(hit, around, rays, seeds, samples) for hit in seen]
    layers.append(_backdrop(stage.scene, rays, seeds, samples * 3, places[:, 1] / camera.pixels))
    light = _composed(layers).reshape(grown.height * subdivision, grown.width * subdivision, 3)
    top, left = part.top - grown.top, part.left - grown.left
    return _filtered(light, subdivision)[top : top + part.height, left : left + part.width]


def _see(stage, index, places, rays, seeds, subdivision):
    """Intersects rays with a thing and evaluates its material: distances [n] and values at the hit points."""
    camera, thing, moved = stage.scene.camera, stage.scene.things[index], stage.reliefs[index]
    faces = None
    unshaded = {"seen": (1.0, 1.0, 1.0), "open": 1.0}
    if moved:
        distance = relief.meet(moved, thing, camera.eye, rays)
    else:
        distance = surfaces.meet(thing, camera.eye, rays)
    hit = np.isfinite(distance)
    points = camera.eye + distance[hit, None] * rays[hit]
    if moved:
        faces = relief.faces(moved, thing, camera, points, reach=0.01)
        seen, free = relief.shadows(moved, thing, points, stage.scene.around.lights, seeds[hit])
        unshaded = {"seen": seen, "open": free}
    given = wiring.inputs(thing, camera, places[hit], points, faces=faces)
    given["pixel_position"] = np.floor(places[hit] * subdivision)  # each ray is a pixel of a subdivided picture
    front = given["cycles_normal"] * given["two_sided_sign"] * wiring.FLIP
    where = {"distance": distance, "hit": hit, "at": points, "coat_normal": front}
    return where | unshaded | (_material(stage.result, given) if hit.any() else {})


def _material(result, given):
    """The outputs of the text, with the normal in Blender's frame."""
    found = materials.evaluate(result, given)
    count = max(map(len, given.values()))
    values = {"base": found["result"], "normal": found["OutNormal"] * wiring.FLIP}
    for name, output, default in SCALARS:
        values[name] = np.broadcast_to(found.get(output, np.float32(default)), (count,))
    values["emission"] = np.broadcast_to(found.get("OutEmissive", np.zeros((1, 3))), (count, 3))
    if result["material"]["blend"] == "masked":
        values["opacity"] = np.mean([_coverage(result, given, frame) for frame in range(FRAMES)], axis=0)
    return values


def _coverage(result, given, frame):
    """Whether a masked material is drawn at each point in a frame."""
    frames = given | {"temporal_index": np.float64([[frame]])}
    return materials.evaluate(result, frames)["OutOpacity"] >= result["material"]["clip"]


def _reflecting(stage):
    """The surroundings, with the mean colour and mean emission of the object in them."""
    around, camera = stage.scene.around, stage.scene.camera
    if around.blocker == NOTHING:
        return around
    places = (cameras.positions(camera._replace(pixels=OVERVIEW), 1)) * (camera.pixels / OVERVIEW)
    seeds = cameras.numbers(camera, 1, places)
    seen = _see(stage, 0, places, cameras.rays(camera, places), seeds, 1)
    weights = seen["opacity"][:, None] / max(seen["opacity"].sum(), 1e-9)
    return around._replace(
        blocker_base=tuple((seen["base"] * weights).sum(axis=0)),
        blocker_glow=tuple((seen["emission"] * weights).sum(axis=0)),
    )


def _layer(hit, around, rays, seeds, samples):
    """Returns (distances, light, opacity) for all rays."""
    shown = hit["hit"]
    light, opacity = np.zeros((len(rays), 3)), np.zeros((len(rays), 1))
    if shown.any():
        points = {key: hit[key] for key in LIT_BY}
        points |= {"view": -rays[shown], "at": hit["at"] - 1e-3 * rays[shown]}
        opacity[shown, 0] = hit["opacity"]
        light[shown] = shade.lit(around, points, samples, seeds[shown])
        light[shown] += hit["emission"] * _through_coat(hit, points["view"])
    return hit["distance"], light * opacity, opacity


def _through_coat(hit, view):
    """The fraction of the light from below the clear coat that passes through it."""
    facing = np.abs((hit["coat_normal"] * view).sum(axis=1))
    return (1 - hit["coat"] * (0.04 + 0.96 * (1 - facing) ** 5))[:, None]


def _backdrop(scene, rays, seeds, samples, down):
    """The background: the studio's floor and wall, the panel, or the scene's background colours. `down`: the vertical
    position of each ray in the picture, 0 (top) to 1."""
    around, eye = scene.around, np.float64(scene.camera.eye)
    below, above = np.float64(scene.behind)
    light = above + (below - above) * down[:, None]
    if around.floor is not None:
        at, normal = studio(around, eye, rays)
        light = shade.lit(around, _plain(at, normal, rays, base=around.floor), samples, seeds)
    if scene.panel:
        normal = np.broadcast_to((0.0, -1.0, 0.0), rays.shape).copy()
        at = eye - (eye[1] / rays[:, 1])[:, None] * rays
        light = shade.lit(around, _plain(at, normal, rays, **scene.panel), samples, seeds)
    return np.full(len(rays), 1e9), light, np.ones((len(rays), 1))


def _plain(at, normal, rays, **changes):
    """A surface without displacement, fully rough except for `changes`."""
    where = {"at": at + 1e-3 * normal, "normal": normal, "coat_normal": normal, "view": -rays}
    matt = {"metallic": 0.0, "roughness": 1.0, "specular": 0.0, "coat": 0.0, "coat_roughness": 0.0}
    return where | matt | {"seen": (1.0, 1.0, 1.0), "open": 1.0} | changes


def studio(around, eye, rays, level=-1.0):
    """Intersects rays with the floor that curves up into a wall. Returns points and normals."""
    begin, radius = around.studio
    with np.errstate(divide="ignore"):
        floor = np.where(rays[:, 2] < 0, (level - eye[2]) / rays[:, 2], np.inf)
        wall = (begin + radius - eye[1]) / rays[:, 1]
    middle = np.array([begin, level + radius])
    a, b = (rays[:, 1:] ** 2).sum(axis=1), rays[:, 1:] @ (eye[1:] - middle)
    rise = (-b + np.sqrt(np.maximum(b * b - a * (((eye[1:] - middle) ** 2).sum() - radius**2), 0))) / a
    at = {
        name: eye + distance[:, None] * rays
        for name, distance in (("floor", np.minimum(floor, 1e6)), ("rise", rise), ("wall", wall))
    }
    on_floor = np.isfinite(floor) & (at["floor"][:, 1] < begin)
    on_rise = ~on_floor & (at["rise"][:, 2] < middle[1])
    bent = np.concatenate([np.zeros((len(rays), 1)), (middle - at["rise"][:, 1:]) / radius], axis=1)
    points = np.where(on_floor[:, None], at["floor"], np.where(on_rise[:, None], at["rise"], at["wall"]))
    normals = np.where(on_floor[:, None], (0.0, 0.0, 1.0), np.where(on_rise[:, None], bent, (0.0, -1.0, 0.0)))
    return points, normals


def _composed(layers):
    """Composites the layers, front to back."""
    distance = np.stack([layer[0] for layer in layers])
    order = np.argsort(distance, axis=0)
    light, through = np.zeros_like(layers[0][1]), np.ones((len(layers[0][1]), 1))
    for place in range(len(layers)):
        for number, (_, color, opacity) in enumerate(layers):
            here = order[place] == number
            light[here] += through[here] * color[here]
            through[here] *= 1 - opacity[here]
    return light


def _filtered(light, subdivision):
    """Filters rays to pixels with Blender's pixel filter: a bell-shaped window 1.5 pixels wide."""
    reach = int(np.ceil(0.75 * subdivision))
    offsets = np.arange(-reach, reach + subdivision) + 0.5 - subdivision / 2
    turn = np.clip(offsets / (1.5 * subdivision) + 0.5, 0, 1) * 2 * np.pi
    bell = 0.35875 - 0.48829 * np.cos(turn) + 0.14128 * np.cos(2 * turn) - 0.01168 * np.cos(3 * turn)
    for axis in (0, 1):
        padded = np.pad(light, [(reach, reach) if axis == k else (0, 0) for k in range(3)], mode="edge")
        pixels = light.shape[axis] // subdivision
        light = sum(
            weight * padded.take(np.arange(pixels) * subdivision + n, axis=axis)
            for n, weight in enumerate(bell / bell.sum())
        )
    return light
