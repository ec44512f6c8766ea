"""Converts light to the bytes of a picture."""

import io

import numpy as np
from PIL import Image


def srgb(linear):
    """Converts linear values 0..1 to sRGB bytes."""
    x = np.clip(linear, 0, 1)
    return np.uint8(np.round(255 * np.where(x <= 0.0031308, 12.92 * x, 1.055 * x ** (1 / 2.4) - 0.055)))


def neutral(linear):
    """The view transform "Khronos PBR Neutral", which Blender's previews use: colours up to 0.8 are kept, less the
    reflection of a dielectric; brighter colours are compressed and desaturated."""
    x = np.maximum(np.float64(linear), 0)
    least = x.min(axis=-1, keepdims=True)
    x = x - np.where(least < 0.08, least - 6.25 * least**2, 0.04)
    peak = x.max(axis=-1, keepdims=True)
    start = 0.8 - 0.04
    room = 1 - start
    bright = 1 - room**2 / np.maximum(peak + room - start, 1e-9)
    kept = 1 / (0.15 * (peak - bright) + 1)
    compressed = x * bright / np.maximum(peak, 1e-9) * kept + bright * (1 - kept)
    return np.where(peak < start, x, compressed)


def save(pixels, path):
    path.write_bytes(encoded(pixels, path.suffix))


def encoded(pixels, suffix):
    """Encodes bytes [height, width, 3] as a PNG, or a JPEG without chroma subsampling."""
    held = io.BytesIO()
    if suffix == ".jpg":
        Image.fromarray(pixels).save(held, "JPEG", quality=92, subsampling=0, optimize=True)
    else:
        Image.fromarray(pixels).save(held, "PNG", optimize=True)
    return held.getvalue()


def load(file):
    """Loads a picture as bytes [height, width, 3]."""
    return np.asarray(Image.open(file).convert("RGB"))
