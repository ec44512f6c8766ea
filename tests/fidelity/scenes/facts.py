"""Nodes that read the scene: positions, coordinates, attributes, directions, facing, and spaces."""

from builder import Case, words

FIXED = "Unreal has nothing like it: a fixed value"
SECOND_MAP_FACTOR = "the factor of a UV map is the mean of its components, in Cycles the first one"


def cases(scene):
    for out in (
        "Position",
        "Normal",
        "True Normal",
        "Incoming",
        "Tangent",
        "Backfacing",
        "Parametric",
        "Pointiness",
        "Random Per Island",
    ):
        reason = FIXED if out in ("Parametric", "Random Per Island") or out == "Pointiness" and scene.smooth else ""
        yield single("Geometry", "NewGeometry", out, reason)
    for out in ("Generated", "Normal", "UV", "Object", "Reflection", "Camera", "Window"):
        yield single("Texture Coordinate", "TexCoord", out, FIXED if out in ("Camera", "Window") else "")
    for name in ("", "UVMap", "Second"):
        yield single("UV Map", "UVMap", "UV", uv_map=name)
    yield from attributes()
    for out in ("View Vector", "View Z Depth", "View Distance"):
        yield single("Camera Data", "CameraData", out)
    for out in ("Location", "Color", "Alpha", "Object Index", "Material Index", "Random"):
        yield single("Object Info", "ObjectInfo", out, FIXED if out == "Random" else "")
    for out in (
        "Is Camera Ray",
        "Is Shadow Ray",
        "Is Diffuse Ray",
        "Is Glossy Ray",
        "Is Singular Ray",
        "Is Reflection Ray",
        "Is Transmission Ray",
        "Ray Length",
        "Ray Depth",
        "Diffuse Depth",
        "Glossy Depth",
        "Transparent Depth",
        "Transmission Depth",
    ):
        yield single("Light Path", "LightPath", out, FIXED if out == "Ray Length" else "")
    for axis in "XYZ" if scene.smooth else "Z":  # the grid's radial tangents for X and Y are parallel to its normal
        yield single("Tangent", "Tangent", "Tangent", direction_type="RADIAL", axis=axis)
    yield single("Tangent", "Tangent", "Tangent", direction_type="UV_MAP")
    yield from facing()
    yield from spaces()
    yield from traced(scene)


def single(label, kind, out, reason="", **settings):
    name = " ".join([out, *(str(value) for value in settings.values())]).strip()
    return Case(label, name, lambda c: c.node(kind, **settings).outputs[out], reason)


def attributes():
    for out in ("Color", "Vector", "Fac", "Alpha"):
        yield single("Attribute", "Attribute", out, attribute_name="Col")
        yield single("Attribute", "Attribute", out, SECOND_MAP_FACTOR if out == "Fac" else "", attribute_name="Second")
    for out in ("Color", "Alpha"):
        yield single("Color Attribute", "VertexColor", out, layer_name="Col")


def facing():
    for ior in (1.45, 1.0, 0.6, 0.0, 4.0):
        yield Case("Fresnel", f"{ior}", lambda c, ior=ior: c.node("Fresnel", {"IOR": ior}).outputs[0])
    yield Case("Fresnel", "normal linked", lambda c: c.node("Fresnel", {"Normal": tilted(c), "IOR": 1.3}).outputs[0])
    for out in ("Fresnel", "Facing"):
        for blend in (0.5, 0.0, 0.2, 0.75, 1.0, -0.5):
            yield Case(
                "Layer Weight",
                f"{out} {blend}",
                lambda c, out=out, blend=blend: c.node("LayerWeight", {"Blend": blend}).outputs[out],
            )
        yield Case(
            "Layer Weight",
            f"{out} normal linked",
            lambda c, out=out: c.node("LayerWeight", {"Normal": tilted(c), "Blend": 0.375}).outputs[out],
        )


def tilted(c):
    """The shading normal, tilted and normalized."""
    leaned = c.node("VectorMath", {0: c.node("NewGeometry").outputs["Normal"], 1: (0.2, -0.1, 0.3)}).outputs[0]
    return c.node("VectorMath", {0: leaned}, operation="NORMALIZE").outputs[0]


def spaces():
    for kind in words("VectorTransform", "vector_type"):
        for source in words("VectorTransform", "convert_from"):
            for target in words("VectorTransform", "convert_to"):
                settings = {"vector_type": kind, "convert_from": source, "convert_to": target}
                yield Case(
                    "Vector Transform",
                    f"{kind} {source} {target}",
                    lambda c, settings=settings: c.node(
                        "VectorTransform", {0: c.node("TexCoord").outputs["Object"]}, **settings
                    ).outputs[0],
                )
                yield Case(
                    "Vector Transform",
                    f"{kind} {source} {target} fixed",
                    lambda c, settings=settings: c.node("VectorTransform", {0: (0.3, -1.2, 0.5)}, **settings).outputs[
                        0
                    ],
                )


def traced(scene):
    """Nodes that trace rays into the surroundings. A flat grid has none."""
    for inside in (False, True):
        for local in (False, True):
            yield Case(
                "Ambient Occlusion",
                f"Color {inside} {local}",
                lambda c, inside=inside, local=local: c.node(
                    "AmbientOcclusion",
                    {"Color": c.node("TexCoord").outputs["UV"]},
                    inside=inside,
                    only_local=local,
                ).outputs["Color"],
                FIXED if scene.smooth else "",
            )
    yield Case(
        "Ambient Occlusion",
        "AO",
        lambda c: c.node("AmbientOcclusion").outputs["AO"],
        FIXED if scene.smooth else "",
    )
    yield Case(
        "Bevel",
        "Normal",
        lambda c: c.node("Bevel", {"Radius": 0.1}).outputs[0],
        FIXED if scene.smooth or scene.behind else "",
    )
    yield Case("Bevel", "normal linked", lambda c: c.node("Bevel", {"Radius": 0.0, "Normal": tilted(c)}).outputs[0])
    for pixels in (False, True):
        yield Case(
            "Wireframe",
            f"Fac{' in pixels' if pixels else ''}",
            lambda c, pixels=pixels: c.node("Wireframe", {0: 1.0 if pixels else 0.05}, use_pixel_size=pixels).outputs[
                0
            ],
            FIXED,
        )
    yield Case(
        "Squeeze Value",
        "Value",
        lambda c: c.node(
            "Squeeze",
            {0: c.node("SeparateXYZ", {0: c.node("TexCoord").outputs["UV"]}).outputs[0], 1: 4.0, 2: 0.5},
        ).outputs[0],
        "Cycles leaves this node out",
    )
