"""The example materials against Cycles, at 64 x 64 points of a flat unit square seen from straight above.

The text runs on the Vulkan device with the inputs that the square has in Unreal's frame. make_references.py makes
Cycles' arrays.
"""

import functools

import numpy as np
import pytest
from PIL import Image

import custom_expression
import quillgen
from golden.documents import EXAMPLES, example

TOLERANCE = 1e-3  # relative above 1
PIXELS = 64 * 64

RAMP = "Cycles looks ramps up in a table of 256 entries, which cuts the corners where they bend"
TIES = "points on the diagonal, where two segments are equally near"
FIXED = "ambient occlusion and pointiness have fixed values"
LAST_BIT = "one chip's colour is white noise of a position that differs in its last bit"
RIM = "the base document doesn't read the picture's alpha: its colour is associated there"
FAR_HUES = "hue directions other than near are not told by the document, B-splines are taken as linear"

# (material, array) -> maximum number of the 4096 points beyond the tolerance, maximum difference, reason.
BEYOND = {
    ("chequered_floor", "base"): (170, 7.8e-3, RAMP),
    ("copper_patina", "base"): (3, 1.5e-3, RAMP),
    ("oak_planks", "base"): (2, 1.3e-3, RAMP),
    ("ramp_banner", "base"): (1700, 1.0, FAR_HUES),
    ("rosette_tiles", "base"): (25, 1.0, TIES),
    ("terrazzo", "base"): (60, 1.0, LAST_BIT),
    ("rusted_paint", "base"): (300, 0.3, FIXED),
    ("rusted_paint", "roughness"): (200, 0.6, FIXED),
    ("maple_leaf", "result"): (110, 0.8, RIM),
}

# Array -> the output that holds it, and its value if the text doesn't write it.
OUTPUTS = {
    "emission": ("OutEmissive", 0.0),
    "metallic": ("OutMetallic", 0.0),
    "roughness": ("OutRoughness", 0.5),
    "alpha": ("OutOpacity", 1.0),
}

NAMES = sorted(path.stem for path in EXAMPLES.glob("*.json"))
EMISSIVE = {"hologram"}  # the base document shows the emission


@functools.cache
def reference(name):
    with np.load(EXAMPLES / "reference" / f"{name}.npz") as arrays:
        return {key: arrays[key].reshape(PIXELS, -1) for key in arrays}


def table(*columns):
    return np.stack([np.broadcast_to(np.float32(c), PIXELS) for c in columns], axis=1)


def scene(uv):
    """Kind of an input -> its value on the square: one for all points, or a table."""
    u, v = uv.T
    position = table(100 * u, -100 * v, 0)
    up, step = (0.0, 0.0, 1.0), 1 / 64
    return {
        "texcoord 0": table(u, 1 - v),
        "texcoord 1": table(2 * u, 1 - 2 * v),
        "world_position": position,
        "local_position": position,
        "world_position_cr": table(100 * u - 50, 50 - 100 * v, -1000),
        "cycles_normal": up,
        "vertex_normal": up,
        "camera_vector": up,
        "object_origin": (0.0, 0.0, 0.0),
        "vertex_color": table(u, v, 0.5, 1.0),
        "two_sided_sign": 1.0,
        "tangent_world": (1.0, 0.0, 0.0),
        "bitangent_world": (0.0, 1.0, 0.0),
        "camera_position": (50.0, -50.0, 1000.0),
        "pixel_depth": 1000.0,
        "view_size": (64.0, 64.0),
        "tan_half_fov": (0.05, 0.05),
        "view_axis x": (1.0, 0.0, 0.0),
        "view_axis y": (0.0, -1.0, 0.0),
        "view_axis z": (0.0, 0.0, -1.0),
        "object_axis x": (1.0, 0.0, 0.0),
        "object_axis y": (0.0, 1.0, 0.0),
        "object_axis z": up,
        "local_bounds_min": (0.0, -100.0, -50.0),
        "local_bounds_max": (100.0, 0.0, 50.0),
        "ddx texcoord": (step, 0.0),
        "ddy texcoord": (0.0, step),
        "ddx world_position_cr": (100 * step, 0.0, 0.0),
        "ddy world_position_cr": (0.0, 100 * step, 0.0),
    }


def run(name, result):
    facts = scene(reference(name)["uv"])
    values, textures = {}, {}
    for record in result["inputs"]:
        kind = record["kind"]
        if kind == "texture":
            picture = Image.open(EXAMPLES / "textures" / record["image"])
            textures[record["name"]] = np.asarray(picture.convert("RGBA"))
        elif "default" not in record:
            further = record.get("index", record.get("axis", record.get("of", {}).get("kind")))
            values[record["name"]] = facts[kind if further is None else f"{kind} {further}"]
    return custom_expression.evaluate(result, values, textures)


def agree(name, key, got, wanted):
    wanted = wanted.reshape(PIXELS, -1)
    got = np.broadcast_to(np.asarray(got, np.float32).reshape(-1, wanted.shape[1]), wanted.shape)
    difference = (np.abs(got - wanted) / np.maximum(np.abs(wanted), 1)).max(axis=1)
    beyond = int(np.sum(~(difference <= TOLERANCE)))
    most, worst, _ = BEYOND.get((name, key), (0, TOLERANCE, ""))
    assert beyond <= most and difference.max() <= worst, f"{beyond} beyond, worst {difference.max():.2e}"


@pytest.mark.parametrize("name", NAMES)
def test_base_colour(name):
    result = quillgen.compile(example(f"reference/{name}.base"), "emission")
    agree(name, "base", run(name, result)["result"], reference(name)["value"])


@pytest.mark.parametrize("name", NAMES)
def test_surface(name):
    """The whole material: base colour or emission, and the outputs except OutNormal, because the square is flat."""
    document = example(name)
    document.setdefault("settings", {})["blend"] = "BLENDED"  # so that alpha is not dithered
    result = quillgen.compile(document)
    result["outputs"] = [output for output in result["outputs"] if output["name"] != "OutNormal"]
    result["code"] = result["code"].replace("  OutNormal =", "  float3 OutNormal =")
    got, wanted = run(name, result), reference(name)
    arrays = {key: wanted[key] for key in OUTPUTS if key in wanted}
    for key, array in arrays.items():
        output, unwritten = OUTPUTS[key]
        agree(name, key, got.get(output, unwritten), array)
    if name in EMISSIVE:
        agree(name, "emission", got["OutEmissive"], wanted["value"])
    else:
        agree(name, "result" if (name, "result") in BEYOND else "base", got["result"], wanted["value"])


def test_every_array_has_an_output():
    for name in NAMES:
        assert set(reference(name)) - {"uv", "value"} <= set(OUTPUTS)
