"""Textures without a linked coordinate, and projections that need an object."""

from builder import Case
from families.pictures import picture

COORDINATES = (
    ("TexGradient", "Gradient Texture"),
    ("TexChecker", "Checker Texture"),
    ("TexBrick", "Brick Texture"),
    ("TexMagic", "Magic Texture"),
    ("TexWave", "Wave Texture"),
    ("TexNoise", "Noise Texture"),
    ("TexVoronoi", "Voronoi Texture"),
    ("TexGabor", "Gabor Texture"),
)
EDGE = "Cycles rounds coordinates otherwise, which shows at the mortar's edge"
FAR = "so far from the origin positions have few digits left for the mortar's edge"
KEY = ("byte", "sRGB", "STRAIGHT", "wide")


def cases(scene):
    for kind, label in COORDINATES:
        reason = FAR if kind == "TexBrick" and scene.name == "grid far away" else ""
        reason = EDGE if kind == "TexBrick" and scene.name == "shell turned" else reason
        yield Case(label, "own coordinate", lambda c, kind=kind: c.node(kind).outputs[0], reason)
    yield Case("White Noise Texture", "own coordinate", lambda c: c.node("TexWhiteNoise").outputs["Value"])
    yield Case("Image Texture", "own coordinate", lambda c: c.node("TexImage", image=picture(*KEY)).outputs[0])
    yield Case(
        "Environment Texture",
        "own coordinate",
        lambda c: c.node("TexEnvironment", image=picture(*KEY)).outputs[0],
    )
    for blend in (0.0, 0.3, 1.0):
        for source in ("Generated", "Object"):
            yield Case("Image Texture", f"BOX {source} {blend}", projected("BOX", source, blend))
    yield Case("Image Texture", "BOX beside Alpha", lambda c: beside_alpha(c))
    for projection in ("SPHERE", "TUBE"):
        for source in ("Generated", "Object", "Normal"):
            yield Case("Image Texture", f"{projection} {source}", projected(projection, source, 0.0))
    for source in ("Normal", "Reflection") if scene.smooth else ("Reflection",):  # the grid's normal points to a pole
        for projection in ("EQUIRECTANGULAR", "MIRROR_BALL"):
            yield Case(
                "Environment Texture",
                f"{projection} {source}",
                lambda c, s=source, p=projection: c.node(
                    "TexEnvironment", {0: c.node("TexCoord").outputs[s]}, image=picture(*KEY), projection=p
                ).outputs[0],
            )


def projected(projection, source, blend):
    return lambda c: c.node(
        "TexImage",
        {0: c.node("TexCoord").outputs[source]},
        image=picture(*KEY),
        projection=projection,
        projection_blend=blend,
    ).outputs[0]


def beside_alpha(c):
    node = c.node(
        "TexImage",
        {0: c.node("TexCoord").outputs["Generated"]},
        image=picture(*KEY),
        projection="BOX",
        projection_blend=0.25,
    )
    return c.node("VectorMath", {0: node.outputs["Color"], 1: node.outputs["Alpha"]}).outputs[0]
