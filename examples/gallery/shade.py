"""Lights points of surfaces on the Vulkan device, with the shader in shade.hlsl."""

from pathlib import Path

import numpy as np

import device

HLSL = Path(__file__).with_name("shade.hlsl").read_text(encoding="utf-8")
POINTS_AT_ONCE = 1 << 16


def lit(around, points, samples, seeds):
    """Radiance towards the viewer [n, 3], emission not included.

    `points`: "at", "normal", "coat_normal", "view", "base" [n, 3] and "metallic", "roughness", "specular", "coat",
    "coat_roughness" [n], in Blender's frame and in metres; "seen" [n, 3] and "open" [n]: the fractions of three lights
    and of the surroundings that the surface itself doesn't shadow. A tuple or a number is the same for all points.
    `seeds`: an integer for each point that determines its samples.
    """
    count = len(points["at"])
    values = {f"in_{name}": np.float32(v) if isinstance(v, np.ndarray) else v for name, v in points.items()}
    helpers, body = constants(around) + HLSL, _body(samples)
    pieces = []
    for begin in range(0, count, POINTS_AT_ONCE):
        some = slice(begin, min(begin + POINTS_AT_ONCE, count))
        part = {name: v[some] if isinstance(v, np.ndarray) else v for name, v in values.items()}
        part["in_seed"] = seeds[some].astype(np.uint32)
        pieces.append(device.evaluate(body, part, {"radiance": 3}, helpers=helpers)["radiance"])
    return np.concatenate(pieces)


def _body(samples):
    return f"""
  Surface s;
  s.view = in_view; s.normal = normalize(in_normal); s.at = in_at;
  // A bumped normal that looks away from the viewer is turned to the rim, as renderers do.
  float looks = dot(s.normal, s.view);
  if (looks < 0.02) s.normal = normalize(s.normal + (0.02 - looks) * s.view);
  s.coat_normal = in_coat_normal;
  s.base = in_base; s.metallic = in_metallic; s.f0 = 0.08 * in_specular;
  s.alpha = max(in_roughness * in_roughness, 0.002);
  s.coat = in_coat; s.coat_alpha = max(in_coat_roughness * in_coat_roughness, 0.002);
  s.seen = in_seen; s.open = in_open;
  radiance = lit(s, {samples}, hashed(in_seed));"""


def constants(around):
    """Declarations with the scene's values, which precede the shader's text."""
    sides = [_sides(light) for light in around.lights]
    lines = [
        f"static const int LIGHTS = {len(around.lights)}, BLOCKER = {around.blocker};",
        f"static const float BLOCKER_SIZE = {around.blocker_size!r};",
        f"static const float2 STUDIO = float2({around.studio[0]!r}, {around.studio[1]!r});",
    ]
    lines += [
        f"static const float3 {name}[{len(values)}] = {{{', '.join(map(_vector, values))}}};"
        for name, values in {
            "LIGHT_AT": [light.at for light in around.lights],
            "LIGHT_A": [a for a, _ in sides],
            "LIGHT_B": [b for _, b in sides],
            "LIGHT_GLOW": [light.glow for light in around.lights],
        }.items()
    ]
    vectors = {
        "SKY": around.sky,
        "GROUND": around.ground,
        "FLOOR": around.floor or (-1.0, -1.0, -1.0),
        "BLOCKER_X": around.blocker_turn[:, 0],
        "BLOCKER_Y": around.blocker_turn[:, 1],
        "BLOCKER_BASE": around.blocker_base,
        "BLOCKER_GLOW": around.blocker_glow,
    }
    lines += [f"static const float3 {name} = {_vector(value)};" for name, value in vectors.items()]
    return "\n".join(lines) + "\n"


def _sides(light):
    """Half of each side vector. Their cross product points in the direction of the light."""
    ahead = np.subtract(light.towards, light.at).astype(float)
    ahead /= np.linalg.norm(ahead)
    a = np.cross(ahead, (0.0, 0.0, 1.0))
    a = a / np.linalg.norm(a) if np.linalg.norm(a) > 1e-6 else np.array([1.0, 0.0, 0.0])
    b = np.cross(ahead, a)
    return a * light.size / 2, b * light.size / 2


def _vector(value):
    return "float3({!r}, {!r}, {!r})".format(*map(float, value))
