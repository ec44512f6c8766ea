"""Vector Math, Mapping, Vector Rotate, and nodes that separate vectors."""

import math

from builder import Case, Draw, words

RANGES = {
    "around zero": (
        (0.25, -2.0),
        ((0.1875, 0.25, -0.125), (-1.0, -2.0, 0.75)),
        ((0.125, -0.25, 0.5), (0.25, 1.0, -3.0)),
    ),
    "hundreds": ((124.6875, -1000.25), ((16.25, -15.5, 8.0), (-128.0, 100.0, -64.5)), (4.0, -32.5)),
    "tiny": ((1 / 1024, -8 / 1024), ((1 / 512, -1 / 256, 1 / 512), (-8 / 512, 1 / 64, 0.0)), (1 / 2048, 0.0)),
    "nothing": ((0.25, -2.0), None, None),
}
SCALES = {"around zero": 0.75, "hundreds": 1.45, "tiny": -2.0, "nothing": 0.0}
NUMBERS = ("DOT_PRODUCT", "DISTANCE", "LENGTH")


def cases():
    for operation in words("VectorMath", "operation"):
        for name, ranges in RANGES.items():
            if operation == "POWER" and name == "hundreds":
                ranges = (16.0, -128.0), (0.5, -4.0), None
            yield Case("Vector Math", f"{operation} {name}", vector_math(operation, ranges, SCALES[name]))
    yield from mapping()
    yield from rotate()
    yield from parts()


def vector_math(operation, ranges, scale):
    def build(c):
        inputs = {place: c.vector(*part) if part else (0.0, 0.0, 0.0) for place, part in enumerate(ranges)}
        inputs["Scale"] = scale
        node = c.node("VectorMath", inputs, operation=operation)
        return node.outputs["Value" if operation in NUMBERS else "Vector"]

    return build


def mapping():
    for kind in words("Mapping", "vector_type"):
        for seed in range(6):
            draw = Draw("mapping", kind, seed)
            inputs = {
                "Location": draw.triple(-4, 4),
                "Rotation": draw.triple(-4, 4),
                "Scale": (draw.number(-3, 3), 0.0 if seed == 1 else 1.5, draw.number(-100, 100)),
            }
            if seed == 0:
                inputs["Rotation"] = (0.0, 0.0, 0.0)
            scale, offset = (0.25, -2.0) if seed < 4 else (100.0, -800.0)
            yield Case(
                "Mapping",
                f"{kind} {seed}",
                lambda c, inputs=inputs, kind=kind, scale=scale, offset=offset: c.node(
                    "Mapping", {"Vector": c.vector(scale, offset)} | usable(c, inputs, kind), vector_type=kind
                ).outputs[0],
            )
        yield Case(
            "Mapping",
            f"{kind} linked",
            lambda c, kind=kind: c.node(
                "Mapping",
                {"Vector": c.vector(), "Rotation": c.vector(0.5, -4.0), "Scale": c.vector(0.25, -1.0)},
                vector_type=kind,
            ).outputs[0],
        )


def usable(c, inputs, kind):
    """The inputs that exist for a mapping type: normals and directions have no location."""
    return {key: value for key, value in inputs.items() if key != "Location" or kind in ("POINT", "TEXTURE")}


def rotate():
    for kind in words("VectorRotate", "rotation_type"):
        for invert in (False, True):
            for seed in range(4):
                draw = Draw("rotate", kind, invert, seed)
                inputs = {
                    "Center": draw.triple(-2, 2),
                    "Axis": (0.0, 0.0, 0.0) if seed == 1 else draw.triple(-1, 1),
                    "Angle": draw.number(-8, 8),
                    "Rotation": draw.triple(-4, 4),
                }
                if seed == 2:
                    inputs["Angle"] = math.pi
                yield Case(
                    "Vector Rotate",
                    f"{kind}{' inverted' if invert else ''} {seed}",
                    vector_rotate(kind, invert, inputs, seed),
                )


def vector_rotate(kind, invert, inputs, seed):
    def build(c):
        given = {"Vector": c.vector()} | inputs
        if seed == 3:
            given |= {"Angle": c.number("x", 0.5, -4.0), "Axis": c.vector(0.25, (-1.0, -2.0, 0.5))}
        return c.node("VectorRotate", given, rotation_type=kind, invert=invert).outputs[0]

    return build


def parts():
    for name, (scale, offset) in {"around zero": (0.25, -2.0), "hundreds": (125.0, -1000.0)}.items():
        for axis in "XYZ":
            yield Case(
                "Separate XYZ",
                f"{axis} {name}",
                lambda c, axis=axis, s=scale, o=offset: c.node("SeparateXYZ", {0: c.vector(s, o)}).outputs[axis],
            )
        yield Case(
            "Combine XYZ",
            name,
            lambda c, s=scale, o=offset: c.node(
                "CombineXYZ", {0: c.number("z", s, o), 1: 0.375, 2: c.number("x", s, o)}
            ).outputs[0],
        )
    yield Case("Vector to number", "mean", lambda c: c.node("Math", {0: c.vector(), 1: 0.0}).outputs[0])
    yield Case("Number to vector", "spread", lambda c: c.node("VectorMath", {0: c.number("x")}).outputs[0])
    yield Case("Number to colour", "spread", lambda c: c.number("x"))
    yield Case("Vector to colour", "as it is", lambda c: c.vector())
    yield Case("Colour to number", "luminance", lambda c: c.node("Math", {0: c.colour(), 1: 0.0}).outputs[0])
    for seed in range(4):
        for out in ("Normal", "Dot"):
            yield Case("Normal", f"{out} {seed}", normal(Draw("normal", seed).triple(-1, 1), out))


def normal(direction, out):
    def build(c):
        node = c.node("Normal", {"Normal": c.vector(0.25, (-2.0, -1.75, 0.5))})
        node.outputs["Normal"].default_value = direction
        return node.outputs[out]

    return build
