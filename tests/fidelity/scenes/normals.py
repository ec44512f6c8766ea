"""Normal maps, bumps and displacement."""

import math

import bpy

from builder import Case, words
from families.pictures import picture

BACK = "on back faces Cycles moves what is attached to the mesh backwards"
CORNERS = "Cycles moves the coordinate of the normal along with the surface"
RADIAL = "Cycles leaves a radial tangent where it is"
INNER = "in Cycles a bump inside another bump's height has no effect"


FAR = "so far from the origin positions have few digits left for differences, in Cycles too"


def cases(scene):
    yield from normal_maps(scene)
    for case in [*bumps(scene), *displacements(scene)]:
        far = scene.name == "grid far away" and not any(word in case.name for word in FINE_FAR)
        far = far and case.node != "Vector Displacement"
        yield case._replace(reason=case.reason or (FAR if far else ""))


def normal_maps(scene):
    for space in words("NormalMap", "space"):
        for strength in (1.0, 0.4, 0.0, 2.5, -1.0):
            yield Case(
                "Normal Map",
                f"{space} {strength}",
                lambda c, space=space, strength=strength: c.node(
                    "NormalMap", {"Color": directions(c), "Strength": strength}, space=space
                ).outputs[0],
            )
        yield Case(
            "Normal Map",
            f"{space} grey",
            lambda c, space=space: c.node("NormalMap", {"Color": (0.5, 0.5, 0.5, 1.0)}, space=space).outputs[0],
        )
        yield Case(
            "Normal Map",
            f"{space} fixed",
            lambda c, space=space: c.node("NormalMap", {"Color": (0.7, 0.4, 0.9, 1.0)}, space=space).outputs[0],
        )
        for settings in conventions():
            yield Case(
                "Normal Map",
                f"{space} {' '.join(settings.values())}",
                lambda c, space=space, settings=settings: c.node(
                    "NormalMap", {"Color": directions(c)}, space=space, **settings
                ).outputs[0],
            )


def conventions():
    """Settings of the Normal Map node that exist since Blender 5.1."""
    if "convention" not in bpy.types.ShaderNodeNormalMap.bl_rna.properties:
        return []
    bases = words("NormalMap", "base")
    return [{"convention": "DIRECTX"}, *({"base": base} for base in bases)]


def directions(c):
    """Colours that encode vectors well away from zero."""
    noise = c.node("TexNoise", {0: c.node("TexCoord").outputs["UV"], "Scale": 3.0}).outputs["Color"]
    return c.node("VectorMath", {0: noise, 1: (0.9, 0.9, 0.4), 2: (0.1, 0.0, 0.6)}, operation="MULTIPLY_ADD").outputs[0]


def object_noise(c):
    return c.node("TexNoise", {"Vector": c.node("TexCoord").outputs["Object"], "Scale": 3.0}).outputs[0]


def waves_of(out):
    return lambda c: c.node(
        "TexWave", {"Vector": c.node("TexCoord").outputs[out], "Scale": 1.5, "Distortion": 2.0}
    ).outputs[1]


def world_voronoi(c):
    return c.node(
        "TexVoronoi", {0: c.node("NewGeometry").outputs["Position"], "Scale": 2.0}, feature="SMOOTH_F1"
    ).outputs[0]


def colour_layer(c):
    return c.node("SeparateColor", {0: c.node("VertexColor", layer_name="Col").outputs[0]}).outputs[1]


def image(c):
    return c.node(
        "TexImage",
        {0: c.node("TexCoord").outputs["UV"]},
        image=picture("byte", "Non-Color", "STRAIGHT", "tall"),
        interpolation="Cubic",
    ).outputs[0]


def second_map(c):
    return c.node("TexNoise", {0: c.node("UVMap", uv_map="Second").outputs[0], "Scale": 6.0}).outputs[0]


def normal_coordinate(c):
    return c.node("TexNoise", {0: c.node("TexCoord").outputs["Normal"], "Scale": 4.0}).outputs[0]


def radial(c):
    return c.node(
        "TexNoise", {0: c.node("Tangent", direction_type="RADIAL", axis="Z").outputs[0], "Scale": 4.0}
    ).outputs[0]


def bumped(c):
    inner = c.node("Bump", {"Height": object_noise(c)}).outputs[0]
    return c.node("VectorMath", {0: inner, 1: (0.3, 0.5, 0.8)}, operation="DOT_PRODUCT").outputs["Value"]


HEIGHTS = {
    "object noise": object_noise,
    "generated waves": waves_of("Generated"),
    "uv waves": waves_of("UV"),
    "world cells": world_voronoi,
    "colour layer": colour_layer,
    "image": image,
    "second map": second_map,
    "normal coordinate": normal_coordinate,
    "radial tangent": radial,
    "own bump": bumped,
}
FINE_FAR = (
    "waves",
    "colour layer",
    "image",
    "second map",
    "vector",
    "no height",
    "strength 0.0",
    "strength -1.0",
    "distance 0.0",
    "width 1.0",
    "width 4.0",
    "normal coordinate",
)
ATTACHED = ("generated waves", "uv waves", "colour layer", "image", "second map")


def reason_of(scene, height):
    if scene.behind and height in ATTACHED:
        return BACK
    if scene.smooth and height == "normal coordinate":
        return CORNERS
    return {"radial tangent": RADIAL, "own bump": INNER}.get(height, "")


def bumps(scene):
    for name, height in HEIGHTS.items():
        yield Case("Bump", name, bump(height, Distance=0.2), reason_of(scene, name))
    for strength in (0.0, 0.35, 1.8, -1.0):
        yield Case("Bump", f"strength {strength}", bump(object_noise, Strength=strength, Distance=0.3))
    for distance in (0.0, -0.5, 2.0):
        for invert in (False, True):
            yield Case(
                "Bump",
                f"distance {distance}{' inverted' if invert else ''}",
                bump(object_noise, invert, Distance=distance),
            )
    for width in (0.05, 1.0, 4.0):
        yield Case("Bump", f"filter width {width}", bump(object_noise, **{"Filter Width": width, "Distance": 0.2}))
    yield Case("Bump", "no height", bump(lambda c: 0.5))
    yield Case(
        "Bump",
        "chained",
        lambda c: c.node(
            "Bump",
            {"Height": world_voronoi(c), "Distance": 0.1, "Normal": bump(object_noise, Distance=0.3)(c)},
        ).outputs[0],
    )
    yield Case(
        "Bump",
        "on a normal map",
        lambda c: c.node(
            "Bump",
            {
                "Height": object_noise(c),
                "Distance": 0.1,
                "Normal": c.node("NormalMap", {"Color": directions(c)}, space="WORLD").outputs[0],
            },
        ).outputs[0],
    )
    yield Case(
        "Bump",
        "seen by a layer weight",
        lambda c: c.node("LayerWeight", {"Normal": bump(object_noise, Distance=0.3)(c)}).outputs["Facing"],
    )


def bump(height, invert=False, **inputs):
    return lambda c: c.node("Bump", {"Height": height(c)} | inputs, invert=invert).outputs[0]


def displacements(scene):
    for space in words("Displacement", "space"):
        yield Case("Displacement", f"{space} vector", lambda c, space=space: moved(c, space, object_noise))
        for name, height in HEIGHTS.items():
            if name != "own bump":
                yield Case(
                    "Displacement",
                    f"{space} as bump, {name}",
                    shown_normal(lambda c, space=space, height=height: moved(c, space, height)),
                    reason_of(scene, name),
                )
    for space in words("VectorDisplacement", "space"):
        yield Case("Vector Displacement", f"{space} vector", lambda c, space=space: vector_moved(c, space))
        yield Case(
            "Vector Displacement",
            f"{space} as bump",
            shown_normal(lambda c, space=space: vector_moved(c, space)),
        )
    if not scene.smooth:
        yield Case("Displacement", "as bump and displacement", both, BACK if scene.behind else "")


def moved(c, space, height, scale=0.3):
    return c.node("Displacement", {"Height": height(c), "Midlevel": 0.4, "Scale": scale}, space=space).outputs[0]


def vector_moved(c, space):
    turned = c.node("VectorMath", {0: c.node("TexCoord").outputs["Object"], 1: (4.0, -3.0, 5.0)}, operation="MULTIPLY")
    colour = c.node("VectorMath", {0: turned.outputs[0]}, operation="SINE").outputs[0]
    return c.node("VectorDisplacement", {"Vector": colour, "Midlevel": 0.5, "Scale": 0.3}, space=space).outputs[0]


def shown_normal(displacement):
    def build(c):
        c.displace(displacement(c))
        return c.node("NewGeometry").outputs["Normal"]

    return build


def both(c):
    """Displacement and bump: the displacement moves the vertices, and the bump acts between them. This height is zero
    at every vertex of the grid, so that only the bump remains."""
    c.displace(moved(c, "OBJECT", ripples, 0.05), "BOTH")
    return c.node("NewGeometry").outputs["Normal"]


def ripples(c):
    place = c.node("SeparateXYZ", {0: c.node("TexCoord").outputs["Object"]}).outputs
    waves = [
        c.node(
            "Math",
            {0: c.node("Math", {0: place[n], 1: 2 * math.pi / step}, operation="MULTIPLY").outputs[0]},
            operation="SINE",
        ).outputs[0]
        for n, step in enumerate((0.3, 1 / 3))
    ]
    product = c.node("Math", {0: waves[0], 1: waves[1]}, operation="MULTIPLY").outputs[0]
    return c.node("Math", {0: product, 1: 0.4}).outputs[0]  # the displacement node subtracts its midlevel
