"""Emissive shaders, alone, mixed and added. All others are black, because the scene has no lights and no world."""

from builder import Case, Draw

HALF = "a single colour has no opacity: the full material thins its emission by it"


def cases():
    for seed in range(4):
        draw = Draw("glow", seed)
        strength = (1.0, 0.0, 12.5, -0.5)[seed]
        yield Case(
            "Emission",
            f"{strength}",
            lambda c, draw=draw, strength=strength: c.node(
                "Emission", {"Color": draw.colour(), "Strength": strength}
            ).outputs[0],
        )
    yield Case("Emission", "linked", lambda c: glow(c))
    for factor in (0.0, 0.375, 1.0, 2.0, -1.0):
        yield Case(
            "Mix Shader",
            f"{factor}",
            lambda c, factor=factor: c.node("MixShader", {0: factor, 1: glow(c), 2: other(c)}).outputs[0],
        )
    yield Case(
        "Mix Shader",
        "linked",
        lambda c: c.node("MixShader", {0: c.number("z", 1 / 8, -0.5), 1: glow(c), 2: other(c)}).outputs[0],
    )
    yield Case(
        "Mix Shader",
        "half empty",
        lambda c: c.node("MixShader", {0: c.number("x", 1 / 16, 0.0), 2: glow(c)}).outputs[0],
    )
    yield Case("Add Shader", "two", lambda c: c.node("AddShader", {0: glow(c), 1: other(c)}).outputs[0])
    yield Case("Add Shader", "half empty", lambda c: c.node("AddShader", {1: glow(c)}).outputs[0])
    yield Case(
        "Add Shader",
        "of mixed",
        lambda c: c.node(
            "AddShader", {0: c.node("MixShader", {0: 0.25, 1: glow(c), 2: other(c)}).outputs[0], 1: glow(c)}
        ).outputs[0],
    )
    for kind in ("BsdfDiffuse", "BsdfAnisotropic", "BsdfMetallic", "BsdfTransparent", "Holdout"):
        yield Case(
            "Mix Shader",
            f"with {kind}",
            lambda c, kind=kind: c.node(
                "MixShader", {0: c.number("x", 1 / 16, 0.0), 1: glow(c), 2: c.node(kind).outputs[0]}
            ).outputs[0],
        )
    for name, inputs in {
        "plain": {},
        "strong": {"Emission Strength": 7.5},
        "half there": {"Alpha": 0.5},
    }.items():
        yield Case(
            "Principled BSDF",
            f"emission {name}",
            lambda c, inputs=inputs: c.node(
                "BsdfPrincipled", {"Emission Color": c.colour(), "Emission Strength": 1.0} | inputs
            ).outputs[0],
            HALF if "Alpha" in inputs else "",
        )


def glow(c):
    return c.node("Emission", {"Color": c.colour(), "Strength": c.number("y", 0.25, -0.5)}).outputs[0]


def other(c):
    return c.node("Emission", {"Color": c.vector((-0.125, 0.25, 0.0), (1.0, 0.0, 0.75))}).outputs[0]
