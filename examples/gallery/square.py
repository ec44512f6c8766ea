"""The flat square of Blender's reference values, and the comparison of the texts with them.

It is in the xy plane, from the origin to 1 m, seen from straight above without perspective.
"""

import numpy as np

import quillgen

from . import materials

# Array of the reference data -> output of the whole text that it is compared with.
OUTPUTS = {
    "emission": "OutEmissive",
    "base": "result",
    "metallic": "OutMetallic",
    "roughness": "OutRoughness",
    "alpha": "OutOpacity",
}


def inputs(uv):
    """Kind -> values at UV coordinates [n, 2], in Unreal's frame: left-handed, in centimetres."""
    u, v = np.float64(uv).reshape(-1, 2).T
    zero, one = np.zeros_like(u), np.ones_like(u)

    def columns(*parts):
        return np.stack(parts, axis=1)

    position = columns(100 * u, -100 * v, zero)
    varying = {
        "texcoord:0": columns(u, 1 - v),
        "texcoord:1": columns(2 * u, 1 - 2 * v),
        "world_position": position,
        "local_position": position,
        "world_position_cr": position - (50, -50, 1000),
        "vertex_color": columns(u, v, 0.5 * one, one),
    }
    up = (0, 0, 1)
    fixed = {
        "cycles_normal": up,
        "vertex_normal": up,
        "camera_vector": up,
        "two_sided_sign": (1,),
        "tangent_world": (1, 0, 0),
        "bitangent_world": (0, 1, 0),
        "object_origin": (0, 0, 0),
        "camera_position": (50, -50, 1000),
        "pixel_depth": (1000,),
        "view_size": (64, 64),
        "tan_half_fov": (0.05, 0.05),
        "view_axis:x": (1, 0, 0),
        "view_axis:y": (0, -1, 0),
        "view_axis:z": (0, 0, -1),
        "object_axis:x": (1, 0, 0),
        "object_axis:y": (0, 1, 0),
        "object_axis:z": up,
        "local_bounds_min": (0, -100, -50),
        "local_bounds_max": (100, 0, 50),
        "pixel_position": (0, 0),
        "temporal_index": (0,),
    }
    return varying | {kind: np.float64([value]) for kind, value in fixed.items()} | _derivatives()


def _derivatives():
    """Differences between adjacent pixels, with 64 pixels per metre; screen y points down."""
    step = 1 / 64
    return {
        kind: np.float64([value])
        for kind, value in {
            "ddx:texcoord:0": (step, 0),
            "ddy:texcoord:0": (0, step),
            "ddx:texcoord:1": (2 * step, 0),
            "ddy:texcoord:1": (0, 2 * step),
            "ddx:vertex_color": (step, 0, 0, 0),
            "ddy:vertex_color": (0, -step, 0, 0),
            "ddx:world_position_cr": (100 * step, 0, 0),
            "ddy:world_position_cr": (0, 100 * step, 0),
        }.items()
    }


def compare(name, size=64, base_ir=None, whole=True):
    """Returns {array: (Blender's values, ours)}, both [size, size, ...], row 0 at the bottom.

    `size` selects that many evenly spaced rows and columns out of the 64. `base_ir` replaces the document of the base
    colour. Without `whole` the outputs of the whole text are omitted.
    """
    arrays = materials.reference(name)
    take = np.linspace(0, 63, size).round().astype(int)
    arrays = {key: value[np.ix_(take, take)] for key, value in arrays.items()}
    given = inputs(arrays.pop("uv"))
    result = quillgen.compile(base_ir or materials.base_document(name), "emission")
    pairs = {"value": (arrays["value"], _grid(materials.evaluate(result, given)["result"], arrays["value"]))}
    if whole and set(arrays) & set(OUTPUTS):
        found = materials.evaluate(quillgen.compile(materials.undithered(materials.document(name))), given)
        for key in [key for key in OUTPUTS if key in arrays]:
            default = np.full(arrays[key].shape[2:], key == "alpha", np.float32)
            pairs[key] = (arrays[key], _grid(found.get(OUTPUTS[key], default), arrays[key]))
    return pairs


def _grid(values, like):
    return np.broadcast_to(values, (like.shape[0] * like.shape[1], *like.shape[2:])).reshape(like.shape)


def numbers(wanted, found):
    """(largest difference, share of points within 1e-4, within 1e-3), relative where Blender's value is above 1."""
    with np.errstate(invalid="ignore"):
        off = np.abs(found - wanted) / np.maximum(1, np.abs(wanted))
    off = np.where(np.isfinite(off), off, np.inf).reshape(wanted.shape[0] * wanted.shape[1], -1).max(axis=1)
    return float(off.max()), float((off <= 1e-4).mean()), float((off <= 1e-3).mean())
