"""Arithmetic, mixes, ranges, channels, space conversions."""

import itertools

from golden.cases import Case
from golden.documents import link, material, node

OPERATIONS = """
    ADD SUBTRACT MULTIPLY DIVIDE POWER LOGARITHM SQRT INVERSE_SQRT ABSOLUTE RADIANS DEGREES MINIMUM
    MAXIMUM LESS_THAN GREATER_THAN ROUND FLOOR CEIL FRACT MODULO FLOORED_MODULO TRUNC SNAP WRAP
    PINGPONG SINE COSINE TANGENT SINH COSH TANH ARCSINE ARCCOSINE ARCTANGENT ARCTAN2 SIGN EXPONENT
    COMPARE MULTIPLY_ADD SMOOTH_MIN SMOOTH_MAX
""".split()
VECTOR_OPERATIONS = """
    ADD SUBTRACT MULTIPLY DIVIDE CROSS_PRODUCT PROJECT REFLECT REFRACT FACEFORWARD MULTIPLY_ADD
    DOT_PRODUCT DISTANCE LENGTH SCALE NORMALIZE SNAP ROUND FLOOR CEIL MODULO WRAP FRACTION ABSOLUTE
    POWER SIGN MINIMUM MAXIMUM SINE COSINE TANGENT
""".split()
BLENDS = """
    MIX DARKEN MULTIPLY BURN LIGHTEN SCREEN DODGE ADD OVERLAY SOFT_LIGHT LINEAR_LIGHT DIFFERENCE
    EXCLUSION SUBTRACT DIVIDE HUE SATURATION COLOR VALUE
""".split()
SCALAR_RESULT = ("DOT_PRODUCT", "DISTANCE", "LENGTH")


def one(title, kind, output=None, **props):
    """A case with one node with these properties, whose value is the surface."""
    return Case(title, material(n := node(kind, props=props), surface=(n, output)))


def words(kind, prop, options, output=None, **props):
    return [one(f"{prop} {word}", kind, output, **{prop: word}, **props) for word in options]


def maths():
    yield from words("Math", "operation", [*OPERATIONS, "NO_SUCH_WORD"])
    for word in ("ADD", "LESS_THAN", "SMOOTH_MAX", "NO_SUCH_WORD"):
        yield one(f"operation {word}, clamped", "Math", operation=word, use_clamp=True)


def vector_maths():
    for word in (*VECTOR_OPERATIONS, "FRACT"):
        yield one(f"operation {word}", "VectorMath", "Value" if word in SCALAR_RESULT else "Vector", operation=word)
    yield one("DOT_PRODUCT read as a vector", "VectorMath", "Vector", operation="DOT_PRODUCT")
    yield one("ADD read as a value", "VectorMath", "Value", operation="ADD")


def mixes():
    flags = list(itertools.product((False, True), repeat=2))
    for clamp_factor, clamp_result in flags:
        said = {"clamp_factor": clamp_factor, "clamp_result": clamp_result}
        title = f"clamp_factor {clamp_factor}, clamp_result {clamp_result}"
        yield one(f"FLOAT, {title}", "Mix", "Result_Float", data_type="FLOAT", **said)
        yield one(f"VECTOR, {title}", "Mix", "Result_Vector", data_type="VECTOR", **said)
        yield one(f"RGBA, {title}", "Mix", "Result_Color", data_type="RGBA", **said)
        yield one(
            f"VECTOR, NON_UNIFORM, {title}",
            "Mix",
            "Result_Vector",
            data_type="VECTOR",
            factor_mode="NON_UNIFORM",
            **said,
        )
    yield one("FLOAT, NON_UNIFORM", "Mix", "Result_Float", factor_mode="NON_UNIFORM")
    yield one(
        "VECTOR, without clamps and mode",
        "Mix",
        "Result_Vector",
        data_type="VECTOR",
        factor_mode=None,
        clamp_factor=None,
        clamp_result=None,
    )
    yield one(
        "RGBA, without clamps and blend",
        "Mix",
        "Result_Color",
        data_type="RGBA",
        blend_type=None,
        clamp_factor=None,
        clamp_result=None,
    )
    yield from words("Mix", "blend_type", BLENDS, "Result_Color", data_type="RGBA")
    n = node(
        "Mix",
        {"Factor_Vector": link(v := node("VectorMath"))},
        props={"data_type": "VECTOR", "factor_mode": "NON_UNIFORM"},
    )
    yield Case("VECTOR, NON_UNIFORM, linked factor", material(n, v, surface=(n, "Result_Vector")))


def legacy_mixes():
    yield from words("MixRGB", "blend_type", BLENDS)
    yield one("SOFT_LIGHT, clamped", "MixRGB", blend_type="SOFT_LIGHT", use_clamp=True)


def ranges():
    for word, clamp in itertools.product(
        ("LINEAR", "STEPPED", "SMOOTHSTEP", "SMOOTHERSTEP", "NO_SUCH_WORD"), (False, True)
    ):
        said = {"interpolation_type": word, "clamp": clamp}
        yield one(f"FLOAT, {word}, clamp {clamp}", "MapRange", "Result", data_type="FLOAT", **said)
        yield one(f"FLOAT_VECTOR, {word}, clamp {clamp}", "MapRange", "Vector", data_type="FLOAT_VECTOR", **said)
    yield one("FLOAT read as a vector", "MapRange", "Vector", data_type="FLOAT")
    yield one("FLOAT_VECTOR read as a value", "MapRange", "Result", data_type="FLOAT_VECTOR")


def transforms():
    spaces = ("WORLD", "CAMERA", "OBJECT")
    kinds = ("VECTOR", "NORMAL", "POINT", "NO_SUCH_WORD")
    for kind, (source, target) in itertools.product(kinds, itertools.permutations(spaces, 2)):
        yield one(
            f"{kind} from {source} to {target}",
            "VectorTransform",
            vector_type=kind,
            convert_from=source,
            convert_to=target,
        )
    for pair in [(s, s) for s in spaces] + [("NO_SUCH_WORD", "OBJECT"), ("CAMERA", "NO_SUCH_WORD")]:
        yield one(f"VECTOR from {pair[0]} to {pair[1]}", "VectorTransform", convert_from=pair[0], convert_to=pair[1])


def rotations():
    for word, invert in itertools.product(("AXIS_ANGLE", "X_AXIS", "Y_AXIS", "Z_AXIS", "EULER_XYZ"), (False, True)):
        yield one(f"{word}, invert {invert}", "VectorRotate", rotation_type=word, invert=invert)


def numbers():
    for value in (
        1,
        True,
        -0.0,
        0.1,
        1e16,
        1e-5,
        123456789.125,
        float("nan"),
        float("inf"),
        float("-inf"),
        0.800000011920929,
        [0.25, 9],
        "0.5",
    ):
        yield one(f"value {value!r}", "Value", value=value)
    yield Case("value nan, as a parameter", one("", "Value", value=float("nan")).document, use_params=True)


def colours():
    for value in ([1, 0.5, 0.25], [0.1, 0.2, 0.3, 0.4, 0.5], [0.5], [], (0.1, 0.2, 0.3, 0.4), 2.0, 0):
        yield Case(f"color {value!r}", one("", "RGB", color=value).document, use_params=True)
        yield one(f"color {value!r}, as a literal", "RGB", color=value)


def cases():
    modes = ("RGB", "HSV", "HSL", "NO_SUCH_WORD")
    yield "ShaderNodeMath", maths()
    yield "ShaderNodeVectorMath", vector_maths()
    yield "ShaderNodeMix", mixes()
    yield "ShaderNodeMixRGB", legacy_mixes()
    yield "ShaderNodeMapRange", ranges()
    yield "ShaderNodeClamp", words("Clamp", "clamp_type", ("MINMAX", "RANGE"))
    yield "ShaderNodeValue", numbers()
    yield "ShaderNodeRGB", colours()
    yield "ShaderNodeSeparateColor", words("SeparateColor", "mode", modes, "Blue")
    yield "ShaderNodeCombineColor", words("CombineColor", "mode", modes)
    yield "ShaderNodeMapping", words("Mapping", "vector_type", ("POINT", "TEXTURE", "VECTOR", "NORMAL"))
    yield "ShaderNodeVectorRotate", rotations()
    yield "ShaderNodeVectorTransform", transforms()
