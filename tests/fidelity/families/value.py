"""Math, Map Range, Clamp, Value and RGB."""

from builder import Case, words

# Operands (a, b, c): each a (scale, offset) over the cells, or a constant
RANGES = {
    "around zero": ((0.25, -2.0), (0.25, -2.0), (0.125, -1.0)),
    "positive": ((0.5, 0.25), (0.25, 0.5), (0.0625, 0.125)),
    "hundreds": ((124.6875, -1000.25), (16.25, -128.0), (4.0, -32.5)),
    "tiny": ((1 / 1024, -8 / 1024), (1 / 512, -7 / 512), (1 / 2048, 0.0)),
    "nothing": ((0.25, -2.0), 0.0, 0.0),
}
STEEP = {"hundreds": ((5.0, -40.0), (0.25, -2.0), (4.0, -32.0))}  # makes the operations below overflow
STEEP_OPERATIONS = ("EXPONENT", "SINH", "COSH", "POWER")


def cases():
    for operation in words("Math", "operation"):
        for name, ranges in RANGES.items():
            if operation in STEEP_OPERATIONS:
                ranges = STEEP.get(name, ranges)
            for clamp in (False, True) if name in ("around zero", "hundreds") else (False,):
                yield Case("Math", f"{operation} {name}{' clamped' if clamp else ''}", math(operation, ranges, clamp))
    yield from map_range()
    yield from clamp_node()
    yield Case("Value", "fixed", lambda c: c.node("Math", {0: value(c, 0.3125), 1: c.number("x")}).outputs[0])
    yield Case("Value", "large", lambda c: c.node("Math", {0: value(c, -1e9), 1: c.number("x")}).outputs[0])
    yield Case(
        "RGB",
        "fixed",
        lambda c: c.node("VectorMath", {0: rgb(c, (0.1, 2.0, -0.5, 0.3)), 1: c.vector()}).outputs[0],
    )


def math(operation, ranges, clamp):
    def build(c):
        inputs = {}
        for place, (axis, part) in enumerate(zip("xyz", ranges)):
            inputs[place] = c.number(axis, *part) if isinstance(part, tuple) else part
        return c.node("Math", inputs, operation=operation, use_clamp=clamp).outputs[0]

    return build


def value(c, number):
    node = c.node("Value")
    node.outputs[0].default_value = number
    return node.outputs[0]


def rgb(c, colour):
    node = c.node("RGB")
    node.outputs[0].default_value = colour
    return node.outputs[0]


HIDDEN_CLAMP = "Clamp counts in Cycles in the smooth modes too, where Blender doesn't show it"
LIMITS = ("From Min", "From Max", "To Min", "To Max")
RANGE_SETS = {
    "plain": (-1.0, 1.0, 0.0, 4.0),
    "reversed": (1.0, -1.5, 2.0, -2.0),
    "empty": (0.5, 0.5, 1.0, 2.0),
    "narrow": (0.0, 1 / 1024, -8.0, 8.0),
}


def map_range():
    for interpolation in words("MapRange", "interpolation_type"):
        for name, limits in RANGE_SETS.items():
            for clamp in (False, True):
                for steps in (4.0, 0.0) if interpolation == "STEPPED" else (4.0,):
                    label = f"{interpolation} {name} steps {steps:g}{' clamped' if clamp else ''}"
                    hidden = clamp and name == "empty" and interpolation.startswith("SMOOTH")
                    yield Case(
                        "Map Range",
                        label,
                        float_range(interpolation, limits, clamp, steps),
                        HIDDEN_CLAMP if hidden else "",
                    )
                    yield Case("Map Range", label + " vector", vector_range(interpolation, limits, clamp, steps))
        yield Case("Map Range", f"{interpolation} all linked", linked_range(interpolation))


def float_range(interpolation, limits, clamp, steps):
    return lambda c: c.node(
        "MapRange",
        {"Value": c.number("x"), "Steps": steps} | dict(zip(LIMITS, limits)),
        interpolation_type=interpolation,
        clamp=clamp,
    ).outputs["Result"]


def linked_range(interpolation):
    def build(c):
        inputs = {
            "Value": c.number("x", 0.125, -1.0),
            "From Min": c.number("y", 0.25, -2.0),
            "From Max": c.number("z", 0.25, 0.5),
            "To Min": c.number("z", -0.5, 0.25),
            "To Max": c.number("y", 1.0, 0.0),
        }
        return c.node("MapRange", inputs, interpolation_type=interpolation, clamp=True).outputs["Result"]

    return build


def vector_range(interpolation, limits, clamp, steps):
    names = [name.replace(" ", "_") + "_FLOAT3" for name in LIMITS]
    turned = [(limit, limit * 0.5, -limit) for limit in limits]

    def build(c):
        node = c.node("MapRange", interpolation_type=interpolation, clamp=clamp, data_type="FLOAT_VECTOR")
        ends = {socket.identifier: socket for socket in node.inputs}
        c.tree.links.new(c.vector(), ends["Vector"])
        for name, limit in zip(names, turned):
            ends[name].default_value = limit
        ends["Steps_FLOAT3"].default_value = (steps, steps * 2, 3.0)
        return node.outputs["Vector"]

    return build


def clamp_node():
    for kind in words("Clamp", "clamp_type"):
        for name, (low, high) in {
            "plain": (-0.5, 1.0),
            "reversed": (1.0, -0.5),
            "equal": (0.25, 0.25),
        }.items():
            yield Case(
                "Clamp",
                f"{kind} {name}",
                lambda c, kind=kind, low=low, high=high: c.node(
                    "Clamp", {"Value": c.number("x"), "Min": low, "Max": high}, clamp_type=kind
                ).outputs[0],
            )
        yield Case(
            "Clamp",
            f"{kind} linked",
            lambda c, kind=kind: c.node(
                "Clamp", {"Value": c.number("x"), "Min": c.number("y"), "Max": c.number("z")}, clamp_type=kind
            ).outputs[0],
        )
