"""Runs HLSL on a software Vulkan device (Mesa's llvmpipe), elementwise over numpy arrays.

    evaluate("y = sin(x) * k;", {"x": np.linspace(0, 1, 9), "k": 2.0}, {"y": 1})["y"]

The device flushes denormals to zero, and its asin and acos are accurate to 4e-4 only.
"""

import atexit
import glob
import multiprocessing
import os
import pathlib
import subprocess
import sys
import tempfile

import numpy as np

from dxc import compile_hlsl

THREADS = 64
MOST_POINTS = 65535 * THREADS
SHADERS_PER_WORKER = 200
TIMEOUT = 300

COUNTS = {
    "float": 1,
    "int": 1,
    "uint": 1,
    "bool": 1,
    **{f"{base}{n}": n for base in ("float", "int", "uint", "bool") for n in (2, 3, 4)},
}
RESULT_DTYPES = {"float": np.float32, "int": np.int32, "uint": np.uint32, "bool": np.uint32}


class DeviceError(Exception):
    """The device refused a shader, crashed or took too long."""


# ----------------------------------------------------------------------------------------------------
# The worker process


def _environment():
    env = dict(os.environ)
    drivers = sorted(glob.glob("/usr/share/vulkan/icd.d/lvp_icd.*json"))
    if "VK_ICD_FILENAMES" not in env:
        if not drivers:
            raise DeviceError("Mesa's llvmpipe driver is missing: run tools/setup")
        env["VK_ICD_FILENAMES"] = env["VK_DRIVER_FILES"] = drivers[0]
    if not os.path.isdir(env.get("XDG_RUNTIME_DIR", "")):
        env["XDG_RUNTIME_DIR"] = tempfile.gettempdir()
    return env


class Worker:
    """The process that runs the shaders. It is restarted after many shaders, or when it hangs or dies."""

    process = pipe = name = None
    seen = frozenset()

    def start(self):
        self.stop()
        self.pipe, theirs = multiprocessing.Pipe()
        script = pathlib.Path(__file__).with_name("device_worker.py")
        self.process = subprocess.Popen(
            [sys.executable, str(script), str(theirs.fileno())],
            stdin=subprocess.DEVNULL,
            stdout=sys.__stderr__.fileno(),
            pass_fds=[theirs.fileno()],
            env=_environment(),
        )
        theirs.close()
        self.name = self.answer("starting the device")
        self.seen = set()

    def stop(self):
        if self.process:
            self.pipe.close()
            self.process.kill()
            self.process.wait()
        self.process = self.pipe = None

    def answer(self, doing):
        try:
            if self.pipe.poll(TIMEOUT):
                return self.pipe.recv()
            trouble = f"no answer for {TIMEOUT} s"
        except (EOFError, ConnectionError):
            trouble = f"the process ended with {self.process.wait()}"
        self.stop()
        raise DeviceError(f"{trouble} while {doing}")

    def run(self, spirv, *work):
        if not self.process or len(self.seen) >= SHADERS_PER_WORKER:
            self.start()
        self.seen.add(spirv)
        try:
            self.pipe.send((spirv, *work))
        except OSError:
            self.stop()
            raise DeviceError("the process ended by itself between two shaders") from None
        verdict, answer = self.answer("running a shader")
        if verdict != "ok":
            raise DeviceError(answer)
        return answer


_worker = Worker()
atexit.register(_worker.stop)


def device_name():
    """The name that the Vulkan device reports."""
    if not _worker.process:
        _worker.start()
    return _worker.name


# ----------------------------------------------------------------------------------------------------
# Packing. All inputs are passed in one buffer of floats: a header (the number of points, then the uniform values),
# followed by one row per point. An integer takes two floats, its upper and its lower 16 bits, which are exact.


def _base(dtype):
    kind = np.dtype(dtype).kind
    if kind not in "fiub":
        raise TypeError(f"no HLSL type for {dtype}")
    return {"f": "float", "i": "int", "u": "uint", "b": "bool"}[kind]


def _classify(name, value):
    """Returns (HLSL type, whether uniform, columns [n, width]) of an input."""
    uniform = not isinstance(value, np.ndarray) or value.ndim == 0
    array = np.asarray(value)
    if isinstance(value, (tuple, list)) and array.dtype.kind != "b":
        array = array.astype(np.float32)
    array = array.reshape(1, -1) if uniform else array.reshape(len(array), -1)
    width = array.shape[1]
    if not 1 <= width <= 4 or (not uniform and value.ndim > 2):
        raise ValueError(f"input {name}: shape {np.shape(value)}, wanted [n] or [n, 1..4]")
    return _base(array.dtype) + (str(width) if width > 1 else ""), uniform, array


def _floats(array):
    """The columns as floats of the buffer."""
    if array.dtype.kind == "f":
        return array.astype(np.float32)
    bits = array.astype(np.int64)
    both = np.stack([bits >> 16, bits & 0xFFFF], axis=-1)
    return both.reshape(len(array), -1).astype(np.float32)


def _slots(kind):
    return COUNTS[kind] * (1 if kind.startswith("float") else 2)


def _read(kind, at):
    """The HLSL expression that reads a value of this type from the buffer."""

    def cell(offset):
        return f"qh_in[{at} + {offset}]"

    if kind.startswith("float"):
        parts = [cell(k) for k in range(COUNTS[kind])]
    else:
        parts = [f"((int({cell(2 * k)}) << 16) | int({cell(2 * k + 1)}))" for k in range(COUNTS[kind])]
    return f"{kind}({', '.join(parts)})"


def _store(name, kind, at):
    lines = []
    for k in range(COUNTS[kind]):
        part = name if COUNTS[kind] == 1 else f"{name}.{'xyzw'[k]}"
        bits = f"({part} ? 1u : 0u)" if kind.startswith("bool") else f"asuint({part})"
        lines.append(f"  qh_out[qh_i * {at[1]} + {at[0] + k}] = {bits};")
    return lines


def result_type(wanted):
    """The HLSL type of an output that is specified by its width or its type."""
    kind = ("float" if wanted == 1 else f"float{wanted}") if isinstance(wanted, int) else wanted
    if kind not in COUNTS:
        raise ValueError(f"output type {wanted}")
    return kind


def shader(body, inputs, outputs, textures=(), helpers=""):
    """The text of the compute shader. `inputs`: name -> (type, whether uniform); `outputs`: name -> type."""
    head = 1 + sum(_slots(kind) for kind, uniform in inputs.values() if uniform)
    row = sum(_slots(kind) for kind, uniform in inputs.values() if not uniform)
    stride = sum(COUNTS[kind] for kind in outputs.values())
    lines = [
        "Buffer<float> qh_in : register(t0);",
        "RWStructuredBuffer<uint> qh_out : register(u0);",
        "SamplerState qh_sampler : register(s0);",
    ]
    lines += [f"Texture2D<float4> {name} : register(t{i + 1});" for i, name in enumerate(textures)]
    lines += [
        helpers,
        f"[numthreads({THREADS}, 1, 1)]",
        "void main(uint3 qh_thread : SV_DispatchThreadID) {",
        "  int qh_i = int(qh_thread.x);",
        "  if (qh_i >= int(qh_in[0])) return;",
    ]
    uniform_at, row_at = 1, 0
    for name, (kind, uniform) in inputs.items():
        at = uniform_at if uniform else f"{head + row_at} + qh_i * {row}"
        lines.append(f"  {kind} {name} = {_read(kind, at)};")
        if uniform:
            uniform_at += _slots(kind)
        else:
            row_at += _slots(kind)
    lines += [f"  {kind} {name} = ({kind})0;" for name, kind in outputs.items()]
    lines.append(body)
    at = 0
    for name, kind in outputs.items():
        lines += _store(name, kind, (at, stride))
        at += COUNTS[kind]
    return "\n".join(lines + ["}", ""])


def _pack(classified):
    """Returns (number of points, contents of the buffer)."""
    lengths = {len(array) for _, uniform, array in classified.values() if not uniform}
    n = max(lengths, default=1)
    if lengths - {1, n}:
        raise ValueError(f"inputs of different lengths: {sorted(lengths)}")
    head = [_floats(array).ravel() for _, uniform, array in classified.values() if uniform]
    rows = [
        _floats(np.broadcast_to(array, (n, array.shape[1]))) for _, uniform, array in classified.values() if not uniform
    ]
    body = np.concatenate(rows, axis=1).ravel() if rows else np.zeros(0, np.float32)
    return n, np.concatenate([np.float32([n]), *head, body]).astype(np.float32)


def _texels(array):
    array = np.asarray(array)
    if array.ndim != 3 or array.shape[2] != 4:
        raise ValueError(f"a texture of shape {array.shape}, wanted [height, width, 4]")
    scaled = array / np.float32(255) if array.dtype == np.uint8 else array
    return np.ascontiguousarray(scaled, dtype=np.float32)


def evaluate(body, inputs, outputs, textures=None, helpers="", hv="2021"):
    """Runs the statements `body` once per point and returns {output name: array}.

    `inputs`: name -> array [n] or [n, 1..4], with one value per point, or a number, bool or tuple of numbers, which is
    the same for all points. Each is a local variable of the statements; its type (float, int, uint or bool) follows the
    array's. `outputs`: name -> width, or an HLSL type such as "int2"; the statements assign to them. `textures`: name
    -> array [height, width, 4] (row 0 on top; bytes are scaled to 0..1), each a Texture2D. `helpers`: text before the
    entry function. The statements can use `qh_sampler`, a point sampler. Raises DxcError or DeviceError.
    """
    textures = {name: _texels(t) for name, t in (textures or {}).items()}
    classified = {name: _classify(name, value) for name, value in inputs.items()}
    kinds = {name: result_type(wanted) for name, wanted in outputs.items()}
    source = shader(body, {name: c[:2] for name, c in classified.items()}, kinds, textures, helpers)
    n, data = _pack(classified)
    if n > MOST_POINTS:
        raise ValueError(f"{n} points, the device takes {MOST_POINTS}")
    stride = sum(COUNTS[kind] for kind in kinds.values())
    spirv = compile_hlsl(source, spirv=True, hv=hv)
    answer = _worker.run(spirv, data.tobytes(), n * stride * 4, list(textures.values()), -(-n // THREADS))
    table = np.frombuffer(answer, np.uint32)[: n * stride].reshape(n, stride)
    results, at = {}, 0
    for name, kind in kinds.items():
        width = COUNTS[kind]
        columns = np.ascontiguousarray(table[:, at : at + width]).view(RESULT_DTYPES[kind.rstrip("234")])
        columns = columns != 0 if kind.startswith("bool") else columns
        results[name] = columns[:, 0] if width == 1 else columns
        at += width
    return results
