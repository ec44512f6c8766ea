"""Procedural textures, ramps, curves and images."""

import itertools

from golden.cases import Case
from golden.cases.value import one, words
from golden.documents import link, material, node

DIMENSIONS = ("1D", "2D", "3D", "4D")
NOISES = ("FBM", "MULTIFRACTAL", "HYBRID_MULTIFRACTAL", "RIDGED_MULTIFRACTAL", "HETERO_TERRAIN")
FEATURES = ("F1", "F2", "SMOOTH_F1", "DISTANCE_TO_EDGE", "N_SPHERE_RADIUS")
INTERPOLATIONS = ("CONSTANT", "LINEAR", "EASE", "B_SPLINE", "CARDINAL")


def waves():
    yield from words("TexWave", "wave_type", ("BANDS", "RINGS", "NO_SUCH_WORD"))
    yield from words("TexWave", "bands_direction", ("Y", "Z", "DIAGONAL"))
    yield from words("TexWave", "rings_direction", ("Y", "Z", "SPHERICAL"), wave_type="RINGS")
    yield from words("TexWave", "wave_profile", ("SAW", "TRI"))


def noises():
    for d, kind in itertools.product(DIMENSIONS, NOISES):
        yield one(f"{d} {kind}", "TexNoise", noise_dimensions=d, noise_type=kind)
    yield one("not normalized, Color", "TexNoise", "Color", normalize=False)
    number = node("Value")
    for d in DIMENSIONS:
        n = node("TexNoise", {"W": link(number), "Vector": link(number)}, props={"noise_dimensions": d})
        yield Case(f"{d}, W and Vector linked", material(n, number))


def white_noises():
    number = node("Value")
    for d in DIMENSIONS:
        yield one(f"{d}, Value", "TexWhiteNoise", "Value", noise_dimensions=d)
        n = node("TexWhiteNoise", {"W": link(node("Math")), "Vector": link(number)}, props={"noise_dimensions": d})
        yield Case(f"{d}, W and Vector linked, Color", material(n, number, node("Math"), surface=(n, "Color")))


def voronois():
    outputs = {"DISTANCE_TO_EDGE": "Distance", "N_SPHERE_RADIUS": "Radius"}
    for d, feature in itertools.product(DIMENSIONS, FEATURES):
        yield one(f"{d} {feature}", "TexVoronoi", outputs.get(feature, "Color"), voronoi_dimensions=d, feature=feature)
    for d, metric in itertools.product(("1D", "3D"), ("MANHATTAN", "CHEBYCHEV", "MINKOWSKI")):
        yield one(f"{d}, distance {metric}", "TexVoronoi", voronoi_dimensions=d, distance=metric)
    for output in ("Position", "W"):
        yield one(f"4D, output {output}", "TexVoronoi", output, voronoi_dimensions="4D")
    yield one("normalized", "TexVoronoi", normalize=True)


def ramp(stops, interp="LINEAR", mode="RGB"):
    return {"stops": stops, "interp": interp, "mode": mode}


def ramps():
    stops = node("ValToRGB")["ramp"]["stops"]
    for interp, mode in itertools.product(INTERPOLATIONS, ("RGB", "HSV", "HSL")):
        yield Case(f"{interp} {mode}", material(node("ValToRGB", ramp=ramp(stops, interp, mode))))
    for interp in ("LINEAR", "CARDINAL"):
        yield Case(f"one stop, {interp}", material(node("ValToRGB", ramp=ramp(stops[:1], interp))), use_params=True)
    yield Case("HSV, as parameters", material(node("ValToRGB", ramp=ramp(stops, mode="HSV"))), use_params=True)
    same = [[0.5, [0, 0, 0, 1]], [0.5, [1, 1, 1, 1]]]
    yield Case("two stops at one place, EASE", material(node("ValToRGB", ramp=ramp(same, "EASE"))))
    yield Case(
        "colours of three and five numbers, as parameters",
        material(node("ValToRGB", ramp=ramp([[0, (0.1, 0.2, 0.3)], [1, [0.1, 0.2, 0.3, 0.4, 0.5]]]))),
        use_params=True,
    )
    many = [[i / 31, [(i * 37 % 32) / 31, (i % 7) / 6, 1.0 - i / 31, (i % 3) / 2]] for i in range(32)]
    for mode in ("RGB", "HSL"):
        yield Case(
            f"32 stops, {mode}",
            material(n := node("ValToRGB", ramp=ramp(many, "EASE", mode)), surface=(n, "Color")),
            use_params=mode == "HSL",
        )


def curve(tables, low=0.0, high=1.0, **further):
    return {"tables": tables, "min": low, "max": high, **further}


def curves(kind):
    fine = [[(i * i * (c + 1) % 509) / 508 for i in range(257)] for c in range(3)]
    small = [[0.0, 0.25, 1.0], [0.5, 0.5, 0.0], [1.0, 0.75, 0.25]]
    tables = {
        "three channels of 257 samples": curve(fine, -1.0, 1.0),
        "extend HORIZONTAL": curve(small, extend="HORIZONTAL"),
        "extend EXTRAPOLATED": curve(small, extend="EXTRAPOLATED"),
        "whole numbers as limits": curve(small, -2, 3),
        "two samples": curve([t[:2] for t in small]),
        "min equal to max": curve(small, 0.5, 0.5),
        "max below min": curve(small, 1.0, -1.0),
        "four tables": curve([*small, [9.0, 9.0, 9.0]]),
    }
    for title, record in tables.items():
        yield Case(title, material(node(kind, curve=record)))


IMAGE_FORMS = [
    ("no record keys", {}),
    ("PREMUL", {"colorspace": "sRGB", "alpha": "PREMUL"}),
    ("CHANNEL_PACKED", {"colorspace": "sRGB", "alpha": "CHANNEL_PACKED"}),
    ("NONE", {"colorspace": "sRGB", "alpha": "NONE"}),
    ("float", {"colorspace": "sRGB", "float": True}),
    ("float PREMUL", {"colorspace": "Linear Rec.709", "float": True, "alpha": "PREMUL"}),
    ("float, other space", {"name": "wood", "colorspace": "ACES2065-1", "float": True}),
    *(
        (f"space {space}", {"name": "wood", "colorspace": space})
        for space in (
            "Non-Color",
            "Raw",
            "Generic Data",
            "Data",
            "Linear",
            "Linear Rec.709",
            "Linear CIE-XYZ D65",
            "Filmic sRGB",
        )
    ),
    ("Raw PREMUL", {"colorspace": "Raw", "alpha": "PREMUL"}),
]


def picture(title, record, output="Color", kind="TexImage", **props):
    n = node(kind, props={"image": "wood.png", **props})
    return Case(title, material(n, surface=(n, output), images={"wood.png": record}))


def images():
    plain = {"name": "wood.png", "colorspace": "sRGB", "alpha": "STRAIGHT", "float": False}
    for form, record in IMAGE_FORMS:
        yield picture(f"{form}, Color alone", record)
        yield picture(f"{form}, with Alpha", record, "Alpha")
    for word in ("Linear", "Closest", "Cubic", "Smart", "NO_SUCH_WORD"):
        yield picture(f"interpolation {word}", plain, interpolation=word)
    for word in ("REPEAT", "EXTEND", "CLIP", "MIRROR", "NO_SUCH_WORD"):
        yield picture(f"extension {word}", plain, interpolation="Closest", extension=word)
    for word in ("FLAT", "BOX", "SPHERE", "TUBE", "NO_SUCH_WORD"):
        yield picture(f"projection {word}", plain, projection=word)
    yield picture("projection BOX, with Alpha, Cubic", plain, "Alpha", projection="BOX", interpolation="Cubic")
    yield from shared_images(plain)
    names = {"image not in the document": "lost.png", "no image": None, "empty image name": ""}
    for title, name in names.items():
        yield picture(title, plain, image=name)
        yield picture(f"{title}, Alpha", plain, "Alpha", image=name)
    n = node("TexImage", props={"image": "Décor/Holz 01.exr"})
    yield Case("name with letters that no identifier has", material(n, images={"Décor/Holz 01.exr": {"float": True}}))


def shared_images(plain):
    """Two nodes use one image: the first declaration wins."""
    first = node("TexImage", id="First")
    for title, props in (
        ("as the first", {}),
        ("other extension", {"extension": "CLIP"}),
        ("other interpolation", {"interpolation": "Closest"}),
    ):
        second = node("TexImage", id="Second", props=props)
        mix = node("MixRGB", {"Color1": link(first), "Color2": link(second)})
        yield Case(f"second node on the image, {title}", material(mix, first, second, images={"wood.png": plain}))


def environments():
    plain = {"name": "wood.png", "colorspace": "sRGB", "alpha": "STRAIGHT", "float": False}
    for word in ("EQUIRECTANGULAR", "MIRROR_BALL", "NO_SUCH_WORD"):
        yield picture(f"projection {word}", plain, kind="TexEnvironment", projection=word)
    for word in ("Closest", "Cubic"):
        yield picture(f"interpolation {word}", plain, kind="TexEnvironment", interpolation=word)
    yield picture("PREMUL stays associated", {"alpha": "PREMUL"}, kind="TexEnvironment")
    yield picture("image not in the document", plain, kind="TexEnvironment", image="lost.png")


def coordinates():
    for output in ("Object", "Generated", "Camera"):
        n = node("TexCoord", object_matrix=True)
        yield Case(f"custom object, {output}", material(n, surface=(n, output)))


def cases():
    kinds = ("LINEAR", "QUADRATIC", "EASING", "DIAGONAL", "SPHERICAL", "QUADRATIC_SPHERE", "RADIAL")
    yield "ShaderNodeTexCoord", coordinates()
    yield "ShaderNodeTexGradient", words("TexGradient", "gradient_type", kinds)
    yield (
        "ShaderNodeTexBrick",
        [
            one(
                "whole numbers given as 3.0 and 4.5",
                "TexBrick",
                offset_frequency=3.0,
                squash_frequency=4.5,
                offset=1,
                squash=2,
            )
        ],
    )
    yield "ShaderNodeTexMagic", words("TexMagic", "turbulence_depth", (0, 1, 10, 2.0))
    yield "ShaderNodeTexWave", waves()
    yield "ShaderNodeTexNoise", noises()
    yield "ShaderNodeTexWhiteNoise", white_noises()
    yield "ShaderNodeTexVoronoi", voronois()
    yield "ShaderNodeTexGabor", words("TexGabor", "gabor_type", ("2D", "3D", "NO_SUCH_WORD"))
    yield "ShaderNodeRadialTiling", words("RadialTiling", "normalize", (True, False))
    yield "ShaderNodeValToRGB", ramps()
    for kind in ("RGBCurve", "VectorCurve", "FloatCurve"):
        yield f"ShaderNode{kind}", curves(kind)
    yield "ShaderNodeTexImage", images()
    yield "ShaderNodeTexEnvironment", environments()
