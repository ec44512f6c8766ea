"""The Mix node with all its types and blends, and the older MixRGB node."""

from builder import Case, Draw, words

FACTORS = {"half": 0.5, "beyond": 1.75, "below": -0.5}
COLOURS = {"plain": ((1 / 16, 0.0), (-1 / 16, 1.0)), "bright": ((0.25, -0.5), (0.5, -2.0))}


def cases():
    for blend in words("Mix", "blend_type"):
        for clamp_factor in (False, True):
            for clamp_result in (False, True):
                switches = f"{'f' if clamp_factor else ''}{'r' if clamp_result else ''}"
                for name, ranges in COLOURS.items():
                    yield Case(
                        "Mix",
                        f"RGBA {blend} {name} {switches}".strip(),
                        colours(blend, ranges, clamp_factor, clamp_result),
                    )
        yield Case("Mix", f"RGBA {blend} equal", equal(blend))
        for clamp in (False, True):
            for name, ranges in COLOURS.items():
                yield Case(
                    "Mix Color (legacy)",
                    f"{blend} {name}{' clamped' if clamp else ''}",
                    legacy(blend, ranges, clamp),
                )
    for clamp in (False, True):
        for name, factor in FACTORS.items():
            label = f"{name}{' f' if clamp else ''}"
            yield Case("Mix", f"FLOAT {label}", floats(factor, clamp))
            yield Case("Mix", f"VECTOR uniform {label}", vectors("UNIFORM", factor, clamp))
            yield Case("Mix", f"VECTOR apart {label}", vectors("NON_UNIFORM", factor, clamp))


def sockets(node):
    return {socket.identifier: socket for socket in node.inputs}


def fill(c, node, **inputs):
    ends = sockets(node)
    for name, value in inputs.items():
        if hasattr(value, "links"):
            c.tree.links.new(value, ends[name])
        else:
            ends[name].default_value = value


def colours(blend, ranges, clamp_factor, clamp_result):
    def build(c):
        node = c.node("Mix", data_type="RGBA", blend_type=blend, clamp_factor=clamp_factor, clamp_result=clamp_result)
        fill(
            c,
            node,
            Factor_Float=c.number("z", 1 / 8, -0.5),
            A_Color=c.colour(*ranges[0]),
            B_Color=c.vector((ranges[1][0], -ranges[1][0], ranges[1][0]), (ranges[1][1], 0.75, 0.125)),
        )
        return c.out(node, "Result_Color")

    return build


def equal(blend):
    """Blends black, white and grey with a fixed colour."""

    def build(c):
        node = c.node("Mix", data_type="RGBA", blend_type=blend)
        fill(
            c,
            node,
            Factor_Float=c.number("y", 1 / 15, 0.0),
            A_Color=c.number("x", 1 / 8, -0.5),
            B_Color=Draw("equal", blend).colour(),
        )
        return c.out(node, "Result_Color")

    return build


def legacy(blend, ranges, clamp):
    return lambda c: c.node(
        "MixRGB",
        {
            "Fac": c.number("z", 1 / 8, -0.5),
            "Color1": c.colour(*ranges[0]),
            "Color2": c.vector(ranges[1][0], (ranges[1][1], 0.25, 0.5)),
        },
        blend_type=blend,
        use_clamp=clamp,
    ).outputs[0]


def floats(factor, clamp):
    def build(c):
        node = c.node("Mix", data_type="FLOAT", clamp_factor=clamp)
        fill(c, node, Factor_Float=factor, A_Float=c.number("x"), B_Float=c.number("y", 1.0, 0.5))
        return c.out(node, "Result_Float")

    return build


def vectors(mode, factor, clamp):
    def build(c):
        node = c.node("Mix", data_type="VECTOR", factor_mode=mode, clamp_factor=clamp)
        if mode == "UNIFORM":
            fill(c, node, Factor_Float=factor)
        else:
            fill(c, node, Factor_Vector=c.vector(0.125, (-0.5, 0.0, factor)))
        fill(c, node, A_Vector=c.vector(), B_Vector=c.vector(-1.0, (3.0, 0.5, 8.0)))
        return c.out(node, "Result_Vector")

    return build
