"""Channels, colour adjustments, blackbody and wavelength."""

from builder import Case, Draw, words

LINKED = "a linked temperature goes through a matrix that is nearly one since 5.1, a constant one does not"
COLOURS = {"plain": (1 / 16, 0.0), "bright": (0.25, -0.53125), "grey": None}

MATRIX = "the matrix from XYZ to red, green and blue differs from Cycles' in the fourth digit"


def cases():
    for mode in words("SeparateColor", "mode"):
        for name in COLOURS:
            for out in ("Red", "Green", "Blue"):
                yield Case(
                    "Separate Color",
                    f"{mode} {out} {name}",
                    lambda c, mode=mode, name=name, out=out: c.node(
                        "SeparateColor", {0: colour(c, name)}, mode=mode
                    ).outputs[out],
                )
        for name, (scale, offset) in {"plain": (1 / 16, 0.0), "beyond": (0.25, -2.0)}.items():
            yield Case(
                "Combine Color",
                f"{mode} {name}",
                lambda c, mode=mode, s=scale, o=offset: c.node(
                    "CombineColor", {n: c.number(axis, s, o) for n, axis in enumerate("xyz")}, mode=mode
                ).outputs[0],
            )
    yield from adjustments()
    yield from light()


def colour(c, name):
    return c.number("x", 1 / 8, -0.5) if name == "grey" else c.colour(*COLOURS[name])


def adjustments():
    for name in COLOURS:
        for seed in range(6):
            draw = Draw("hue", name, seed)
            inputs = {
                "Hue": draw.number(0, 1),
                "Saturation": draw.number(0, 2),
                "Value": draw.number(0, 2),
                "Fac": draw.number(0, 1),
            }
            inputs |= {
                1: {"Fac": 1.0},
                2: {"Hue": -3.25, "Saturation": 4.0, "Value": -1.0, "Fac": 2.0},
                3: {"Hue": 0.5, "Saturation": 1.0, "Value": 1.0, "Fac": 1.0},
            }.get(seed, {})
            yield simple("Hue/Saturation/Value", "HueSaturation", f"{name} {seed}", name, inputs)
        for seed, (bright, contrast) in enumerate([(0.0, 0.0), (0.5, 0.25), (-0.25, 2.0), (10.0, -1.5)]):
            yield simple(
                "Brightness/Contrast",
                "BrightContrast",
                f"{name} {seed}",
                name,
                {"Bright": bright, "Contrast": contrast},
            )
        for gamma in (0.0, 1.0, 2.2, 0.45, 10.0, 0.001):
            yield simple("Gamma", "Gamma", f"{name} {gamma}", name, {"Gamma": gamma})
        for factor in (0.0, 0.375, 1.0, 2.0, -1.0):
            yield simple("Invert Color", "Invert", f"{name} {factor}", name, {"Fac": factor})
        yield simple("RGB to BW", "RGBToBW", name, name, {})


def simple(label, kind, name, source, inputs, reason=""):
    return Case(label, name, lambda c: c.node(kind, {"Color": colour(c, source)} | inputs).outputs[0], reason)


def light():
    for name, (scale, offset) in {
        "cold": (64.0, 0.0),
        "warm": (256.0, 700.0),
        "hot": (1024.0, 4000.0),
        "hottest": (8192.0, -20000.0),
    }.items():
        yield Case(
            "Blackbody",
            name,
            lambda c, s=scale, o=offset: c.node("Blackbody", {0: c.number("x", s, o)}).outputs[0],
            LINKED,
        )
    for name, (scale, offset) in {
        "visible": (26.0, 380.0),
        "edges": (2.0, 372.0),
        "red": (4.0, 700.0),
        "beyond": (100.0, -400.0),
    }.items():
        yield Case(
            "Wavelength",
            name,
            lambda c, s=scale, o=offset: c.node("Wavelength", {0: c.number("x", s, o)}).outputs[0],
            MATRIX if name in ("visible", "beyond") else "",
        )
