"""Single nodes, and extreme numbers for their sockets. Used by the tests and, inside Blender, by make.py."""

import itertools
from typing import NamedTuple

import numpy as np

from golden.cases.texture import DIMENSIONS, FEATURES, NOISES
from golden.cases.value import BLENDS, OPERATIONS, SCALAR_RESULT, VECTOR_OPERATIONS
from golden.node_types import TYPES

SIDE = 32  # pixels per side of a tile; a case has SIDE * SIDE samples

# Ordinary numbers come first.
NUMBERS = np.float32(
    [
        0.0,
        0.25,
        0.5,
        1.0,
        1.0,
        2.0,
        -0.75,
        3.5,
        0.0,
        0.5,
        1.0,
        -1.0,
        7.0,
        0.125,
        -0.0,
        1e-40,
        -1e-40,
        1.2e-38,
        1e-20,
        1e-7,
        -1e-7,
        0.9999999,
        1.0000001,
        255.0,
        8388607.5,
        -16777216.0,
        2147483648.0,
        1e10,
        -1e10,
        1e20,
        -1e20,
        1e30,
        -1e30,
        np.inf,
        -np.inf,
        np.nan,
    ]
)
ORDINARY = 14  # count of ordinary numbers


class Case(NamedTuple):
    kind: str
    props: tuple
    output: str

    @property
    def title(self):
        return " ".join([self.kind.removeprefix("ShaderNode"), *(str(value) for _, value in self.props), self.output])


def _cases():
    def some(kind, *outputs, **choices):
        for values in itertools.product(*choices.values()):
            for output in outputs:
                yield Case("ShaderNode" + kind, tuple(zip(choices, values)), output)

    for operation in OPERATIONS:
        yield from some("Math", "Value", operation=[operation])
    for operation in sorted(set(VECTOR_OPERATIONS) - {"ROUND"}):  # Blender has ROUND in Geometry Nodes only
        yield from some("VectorMath", "Value" if operation in SCALAR_RESULT else "Vector", operation=[operation])
    yield from some("Mix", "Result_Color", data_type=["RGBA"], blend_type=BLENDS, clamp_factor=[True])
    interpolations = ["LINEAR", "STEPPED", "SMOOTHSTEP", "SMOOTHERSTEP"]
    yield from some("MapRange", "Result", interpolation_type=interpolations, clamp=[False])
    yield from some("MapRange", "Vector", interpolation_type=interpolations, data_type=["FLOAT_VECTOR"], clamp=[False])
    yield from some("SeparateColor", "Red", "Green", "Blue", mode=["HSV", "HSL"])
    yield from some("CombineColor", "Color", mode=["HSV", "HSL"])
    for kind in ("HueSaturation", "Gamma", "BrightContrast", "Invert", "Blackbody", "Wavelength"):
        yield from some(kind, "Color")
    yield from some("Mapping", "Vector", vector_type=["POINT", "TEXTURE", "VECTOR", "NORMAL"])
    yield from some(
        "VectorRotate", "Vector", rotation_type=["AXIS_ANGLE", "X_AXIS", "Z_AXIS", "EULER_XYZ"], invert=[False, True]
    )
    yield from some(
        "TexGradient",
        "Fac",
        gradient_type=["LINEAR", "QUADRATIC", "EASING", "DIAGONAL", "SPHERICAL", "QUADRATIC_SPHERE", "RADIAL"],
    )
    for kind in ("TexChecker", "TexBrick"):
        yield from some(kind, "Color", "Fac")
    yield from some("TexMagic", "Color", turbulence_depth=[2, 10])
    yield from some(
        "TexWave", "Fac", wave_type=["BANDS"], bands_direction=["X", "DIAGONAL"], wave_profile=["SIN", "SAW", "TRI"]
    )
    yield from some(
        "TexWave", "Fac", wave_type=["RINGS"], rings_direction=["Y", "SPHERICAL"], wave_profile=["SIN", "SAW"]
    )
    yield from some("TexNoise", "Fac", "Color", noise_dimensions=DIMENSIONS, noise_type=NOISES, normalize=[False, True])
    yield from some("TexWhiteNoise", "Value", "Color", noise_dimensions=DIMENSIONS)
    yield from some(
        "TexVoronoi",
        "Distance",
        "Color",
        "Position",
        voronoi_dimensions=DIMENSIONS,
        feature=FEATURES[:3],
        distance=["EUCLIDEAN", "MINKOWSKI"],
        normalize=[True],
    )
    yield from some("TexVoronoi", "Distance", voronoi_dimensions=DIMENSIONS, feature=["DISTANCE_TO_EDGE"])
    yield from some("TexVoronoi", "Radius", voronoi_dimensions=DIMENSIONS, feature=["N_SPHERE_RADIUS"])
    yield from some("TexGabor", "Value", "Phase", "Intensity", gabor_type=["2D", "3D"])
    yield from some(
        "RadialTiling",
        "Segment Coordinates",
        "Segment ID",
        "Segment Width",
        "Segment Rotation",
        normalize=[False, True],
    )


CASES = list(_cases())


def samples():
    """[sockets, SIDE * SIDE, 3]: values for the first, second, third ... socket of a node. About a third of the values
    are extreme; the first 64 samples have none."""
    draw = np.random.RandomState(1)
    most = max(len(sockets) for sockets, _, _ in TYPES.values())
    count = SIDE * SIDE
    chosen = draw.randint(0, ORDINARY, (most, count, 3))
    extreme = draw.randint(0, len(NUMBERS), (most, count, 3))
    of_few = draw.rand(most, count, 1) < 0.35
    of_few[:, :64] = False
    return NUMBERS[np.where(of_few, extreme, chosen)]
