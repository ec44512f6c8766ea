"""Measures generated HLSL: DXC's time, the instructions, and the time on the CPU's Vulkan device.

text_cost.py before.json     saves the figures of the imported module, for later comparison
"""

import json
import pathlib
import sys
import time

import numpy as np

import documents
import quillgen
from documents import link, material, node

sys.path.insert(0, str(documents.ROOT / "tests" / "gpu"))

import cost
import custom_expression
import device
from dxc import compile_hlsl

POINTS = 1 << 15
RUNS = 3
SLOWEST_TEXTURE = 300.0  # milliseconds that DXC may take for the HLSL of one texture

NOISE_TYPES = ("FBM", "MULTIFRACTAL", "HYBRID_MULTIFRACTAL", "RIDGED_MULTIFRACTAL", "HETERO_TERRAIN")
FEATURES = ("F1", "F2", "SMOOTH_F1", "DISTANCE_TO_EDGE", "N_SPHERE_RADIUS")
# Exclusive upper limits of the instructions of textures, by the start of their names.
LIMITS = {"Noise 2D": 637, "Noise 3D": 1143, "Noise 4D": 1928, "Voronoi 4D F1": 845, "Wave": 650, "Gabor": 829}


def _emitting(record, *others, output=None):
    source = link(record, output)
    return material(node("Emission", {"Color": source}), record, *others, images=documents.IMAGES)


def textures():
    """Name -> document: an emission that shows the first output of one texture node."""
    found = {}
    for dimension in ("1D", "2D", "3D", "4D"):
        for kind in NOISE_TYPES:
            props = {"noise_dimensions": dimension, "noise_type": kind}
            found[f"Noise {dimension} {kind}"] = _emitting(node("TexNoise", props=props))
        for feature in FEATURES:
            record = node("TexVoronoi", props={"voronoi_dimensions": dimension, "feature": feature})
            output = "Radius" if feature == "N_SPHERE_RADIUS" else "Distance"
            found[f"Voronoi {dimension} {feature}"] = _emitting(record, output=output)
        white = node("TexWhiteNoise", props={"noise_dimensions": dimension})
        found[f"White noise {dimension}"] = _emitting(white)
    for kind in ("2D", "3D"):
        found[f"Gabor {kind}"] = _emitting(node("TexGabor", props={"gabor_type": kind}))
    for name, kind in {
        "Wave": "TexWave",
        "Brick": "TexBrick",
        "Checker": "TexChecker",
        "Magic": "TexMagic",
        "Gradient": "TexGradient",
        "Radial tiling": "RadialTiling",
        "Image": "TexImage",
        "Ramp": "ValToRGB",
        "Curves": "RGBCurve",
    }.items():
        found[name] = _emitting(node(kind))
    return found


def _values(record, count, random):
    """Plausible values of an input, different from point to point."""
    kind, width = record["kind"], custom_expression.width(record)
    if "default" in record:
        return record["default"]
    if kind == "local_bounds_min":
        return (-100.0,) * 3
    if kind == "local_bounds_max":
        return (100.0,) * 3
    values = random.uniform(-1.0, 1.0, (count, width)).astype(np.float32)
    if kind in ("ddx", "ddy"):
        values *= 0.01
    elif "position" in kind:
        values *= 100.0
    elif "normal" in kind or "tangent" in kind or kind == "camera_vector":
        values /= np.linalg.norm(values, axis=1, keepdims=True)
    elif kind in ("texcoord", "pixel_depth", "tan_half_fov"):
        values = np.abs(values)
    return values[:, 0] if width == 1 else values


def _worker_seconds():
    """The processor time that the device's process has used so far, in all threads."""
    tasks = pathlib.Path(f"/proc/{device._worker.process.pid}/task").glob("*/schedstat")
    return sum(int(task.read_text().split()[0]) for task in tasks) / 1e9


def _device_milliseconds(result):
    """Processor time for a million points, the minimum of some runs, including loads and stores."""
    random = np.random.default_rng(1)
    records = custom_expression.inputs_of(result)
    values = {name: _values(r, POINTS, random) for name, r in records if r["kind"] != "texture"}
    images = {name: random.random((64, 64, 4), np.float32) for name, r in records if r["kind"] == "texture"}
    custom_expression.evaluate(result, values, images)  # creates the pipeline
    readings = []
    for _ in range(RUNS):
        before = _worker_seconds()
        custom_expression.evaluate(result, values, images)
        readings.append(_worker_seconds() - before)
    return min(readings) / POINTS * 1e9


def measure(document):
    """The figures of a document's HLSL: instructions, milliseconds of DXC, milliseconds for a million points."""
    result = quillgen.compile(document)
    source = custom_expression.shader(result)
    compiling = []
    for _ in range(2):
        compile_hlsl.cache_clear()
        start = time.process_time()
        compile_hlsl(source)
        compiling.append((time.process_time() - start) * 1e3)
    return {
        "instructions": cost.count(source),
        "compile_ms": round(min(compiling), 1),
        "million_ms": round(_device_milliseconds(result)),
    }


def measure_all(documents_by_name):
    """Name -> figures."""
    return {name: measure(document) for name, document in documents_by_name.items()}


def limit(name):
    """The exclusive upper limit of a texture's instructions, or None."""
    return next((most for start, most in LIMITS.items() if name.startswith(start)), None)


if __name__ == "__main__":
    figures = {"textures": measure_all(textures()), "materials": measure_all(documents.examples())}
    pathlib.Path(sys.argv[1]).write_text(json.dumps(figures, indent=1) + "\n", encoding="utf-8")
