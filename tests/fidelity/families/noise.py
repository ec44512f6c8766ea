"""Noise, white noise and Voronoi."""

from builder import Case, Draw, words


def cases():
    for kind in words("TexNoise", "noise_type"):
        for dimensions in words("TexNoise", "noise_dimensions"):
            for normalize in (False, True) if kind == "FBM" else (True,):
                for out in ("Factor", "Color"):
                    for seed in range(4):
                        yield Case(
                            "Noise Texture",
                            f"{kind} {dimensions} {out} {seed}{'' if normalize else ' raw'}",
                            noise(kind, dimensions, normalize, out, seed),
                        )
    for dimensions in words("TexWhiteNoise", "noise_dimensions"):
        for out in ("Value", "Color"):
            for seed, (scale, offset) in enumerate(((1.0, -8.0), (1 / 16, 0.0), (0.625, 1000.0))):
                yield Case("White Noise Texture", f"{dimensions} {out} {seed}", white(dimensions, out, scale, offset))
    yield from voronoi()


def coordinates(c, node, scale, offset):
    """Links the coordinate sockets that are enabled for the node's dimensions."""
    ends = {socket.identifier: socket for socket in node.inputs}
    if ends["Vector"].enabled:
        c.tree.links.new(c.vector(scale, offset), ends["Vector"])
    if ends["W"].enabled:
        c.tree.links.new(c.number("z", scale, offset / 2), ends["W"])
    return ends


def noise(kind, dimensions, normalize, out, seed):
    draw = Draw("noise", kind, dimensions, seed)
    inputs = {
        "Scale": draw.number(0.25, 4),
        "Detail": draw.number(0, 5, 0.25),
        "Roughness": draw.number(0, 1),
        "Lacunarity": 2.0,
        "Offset": draw.number(-0.5, 1.5),
        "Gain": draw.number(0, 2),
        "Distortion": 0.0,
    }
    inputs |= {
        1: {"Lacunarity": draw.number(0.5, 3), "Detail": 3.0},
        2: {"Distortion": draw.number(-2, 2), "Detail": 2.5},
        3: {"Detail": 15.0, "Roughness": 0.25},
    }.get(seed, {})

    def build(c):
        node = c.node("TexNoise", noise_type=kind, noise_dimensions=dimensions, normalize=normalize)
        ends = coordinates(c, node, 3 / 16, -1.5)
        for name, value in inputs.items():
            ends[name].default_value = value
        return node.outputs[0 if out == "Factor" else 1]

    return build


def white(dimensions, out, scale, offset):
    def build(c):
        node = c.node("TexWhiteNoise", noise_dimensions=dimensions)
        coordinates(c, node, scale, offset)
        return node.outputs[out]

    return build


def voronoi():
    for dimensions in words("TexVoronoi", "voronoi_dimensions"):
        for feature in words("TexVoronoi", "feature"):
            whole = feature in ("F1", "F2", "SMOOTH_F1")
            for metric in words("TexVoronoi", "distance") if whole and dimensions != "1D" else ("EUCLIDEAN",):
                for normalize in (False, True) if feature != "N_SPHERE_RADIUS" else (False,):
                    for out in shown(dimensions, feature):
                        for seed in range(2):
                            yield Case(
                                "Voronoi Texture",
                                " ".join((dimensions, feature, metric, out, str(seed)))
                                + (" normalized" if normalize else ""),
                                cell(dimensions, feature, metric, normalize, out, seed),
                            )


def shown(dimensions, feature):
    if feature == "N_SPHERE_RADIUS":
        return ("Radius",)
    if feature == "DISTANCE_TO_EDGE":
        return ("Distance",)
    return (
        ("Distance", "Color")
        + (("Position",) if dimensions != "1D" else ())
        + (("W",) if dimensions in ("1D", "4D") else ())
    )


def cell(dimensions, feature, metric, normalize, out, seed):
    draw = Draw("voronoi", dimensions, feature, metric, seed)
    inputs = {
        "Scale": draw.number(0.5, 3),
        "Randomness": draw.number(0.25, 1) if seed else 1.0,
        "Detail": draw.number(0.25, 3) if seed else 0.0,
        "Roughness": draw.number(0, 1),
        "Lacunarity": draw.number(1, 3),
        "Smoothness": draw.number(0.0625, 1),
        "Exponent": draw.number(0.25, 4),
    }

    def build(c):
        node = c.node(
            "TexVoronoi", voronoi_dimensions=dimensions, feature=feature, distance=metric, normalize=normalize
        )
        ends = coordinates(c, node, 3 / 16, -1.5)
        for name, value in inputs.items():
            ends[name].default_value = value
        return node.outputs[out]

    return build
