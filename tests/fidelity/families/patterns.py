"""Gradient, checker, brick, magic and wave textures, radial tiling and Gabor noise."""

from builder import Case, Draw, words

TWO_SIDES = "between two sides there is no corner to round: Blender shows the rounding error of a tangent"
WILD = "every turn multiplies the rounding error of sine and cosine"
PLACES = {"near": (3 / 16, -1.5), "far": (12.5, -100.0)}


def cases():
    for name, place in PLACES.items():
        for kind in words("TexGradient", "gradient_type"):
            yield pattern("Gradient Texture", "TexGradient", f"{kind} {name}", "Fac", place, {}, gradient_type=kind)
        for seed in range(4):
            draw = Draw("checker", name, seed)
            inputs = {"Scale": draw.number(-4, 6), "Color1": draw.colour(-1, 2), "Color2": draw.colour()}
            for out in ("Color", "Fac"):
                yield pattern("Checker Texture", "TexChecker", f"{out} {name} {seed}", out, place, inputs)
        yield from bricks(name, place)
        for depth in range(11):
            for seed, distortion in enumerate((1.0, 0.25, -3.5)):
                inputs = {"Scale": Draw("magic", depth, seed).number(-3, 5), "Distortion": distortion}
                for out in ("Color", "Fac") if seed == 0 else ("Color",):
                    wild = (
                        seed == 2
                        and (depth > 6 or name == "far" and depth)
                        or seed == 0
                        and name == "far"
                        and 4 < depth < 9
                    )
                    yield pattern(
                        "Magic Texture",
                        "TexMagic",
                        f"{out} {depth} {name} {seed}",
                        out,
                        place,
                        inputs,
                        WILD if wild else "",
                        turbulence_depth=depth,
                    )
    yield from waves()
    yield from gabor()
    yield from tiling()


def pattern(label, kind, name, out, place, inputs, reason="", **settings):
    return Case(
        label,
        name,
        lambda c: c.node(kind, {"Vector": c.vector(*place)} | inputs, **settings).outputs[out],
        reason,
    )


def bricks(name, place):
    for seed in range(10):
        draw = Draw("brick", name, seed)
        inputs = {
            "Scale": draw.number(0.5, 4),
            "Mortar Size": draw.number(0, 0.125, 1 / 128),
            "Bias": draw.number(-1, 1),
            "Mortar Smooth": draw.number(0, 1),
            "Brick Width": draw.number(0.25, 2),
            "Row Height": draw.number(0.25, 1),
            "Color1": draw.colour(),
            "Color2": draw.colour(),
            "Mortar": draw.colour(),
        }
        if seed == 1:
            inputs |= {"Mortar Smooth": 0.0, "Mortar Size": 0.0625}
        settings = {
            "offset": draw.number(0, 1),
            "offset_frequency": 1 + seed % 4,
            "squash": draw.number(0.25, 3),
            "squash_frequency": 1 + seed // 3,
        }
        for out in ("Color", "Fac"):
            yield pattern("Brick Texture", "TexBrick", f"{out} {name} {seed}", out, place, inputs, **settings)


def waves():
    for kind, directions in (("BANDS", "bands_direction"), ("RINGS", "rings_direction")):
        for direction in words("TexWave", directions):
            for profile in words("TexWave", "wave_profile"):
                for seed in range(3):
                    draw = Draw("wave", kind, direction, profile, seed)
                    inputs = {
                        "Scale": draw.number(0.25, 3),
                        "Distortion": draw.number(-4, 8) if seed else 0.0,
                        "Detail": draw.number(0, 5, 0.25),
                        "Detail Scale": draw.number(0.5, 4),
                        "Detail Roughness": draw.number(0, 1),
                        "Phase Offset": draw.number(-7, 7, 1 / 8),
                    }
                    settings = {"wave_type": kind, directions: direction, "wave_profile": profile}
                    for out in ("Color", "Fac") if seed == 0 else ("Fac",):
                        yield pattern(
                            "Wave Texture",
                            "TexWave",
                            f"{kind} {direction} {profile} {out} {seed}",
                            out,
                            PLACES["near"],
                            inputs,
                            **settings,
                        )


def gabor():
    for kind in words("TexGabor", "gabor_type"):
        for seed in range(4):
            draw = Draw("gabor", kind, seed)
            inputs = {
                "Scale": draw.number(0.5, 4),
                "Frequency": draw.number(0.5, 6),
                "Anisotropy": draw.number(-0.5, 1.5),
            }
            if seed == 0:
                inputs["Anisotropy"] = 1.0
            inputs["Orientation " + kind] = draw.number(-4, 4) if kind == "2D" else draw.triple(-1, 1)
            for out in ("Value", "Phase", "Intensity"):
                yield pattern(
                    "Gabor Texture",
                    "TexGabor",
                    f"{kind} {out} {seed}",
                    out,
                    PLACES["near"],
                    inputs,
                    gabor_type=kind,
                )


SHAPES = (
    (3.0, 0.0),
    (5.0, 0.25),
    (6.0, 1.0),
    (2.0, 0.5),
    (4.5, 0.375),
    (7.25, 0.0),
    (12.0, 2.0),
    (-3.0, -1.0),
)


def tiling():
    for normalize in (False, True):
        for sides, roundness in SHAPES:
            for out in ("Segment Coordinates", "Segment ID", "Segment Width", "Segment Rotation"):
                # offset from the cells' coordinates, so that no point is on a segment border
                yield Case(
                    "Radial Tiling",
                    f"{out} {sides:g} {roundness:g}{' normalized' if normalize else ''}",
                    lambda c, out=out, sides=sides, roundness=roundness, normalize=normalize: c.node(
                        "RadialTiling",
                        {
                            "Vector": c.vector(3 / 16, (-1.5 + 1 / 64, -1.5 + 3 / 128, 0.0)),
                            "Sides": sides,
                            "Roundness": roundness,
                        },
                        normalize=normalize,
                    ).outputs[out],
                    TWO_SIDES if sides == 2 and out in ("Segment Coordinates", "Segment Width") else "",
                )
