"""Geometry, normals, bumps and displacement."""

import itertools

from golden.cases import Case
from golden.cases.value import one, words
from golden.documents import IMAGES, link, material, node


def bump(height, output=None, id="Bump", **settings):
    return node("Bump", {"Height": link(height, output), **settings.pop("inputs", {})}, id=id, **settings)


def bumps():
    """Bumps whose heights depend on different signals, with different sockets."""
    signals = {
        "position": (node("NewGeometry"), "Position"),
        "object position": (node("TexCoord"), "Object"),
        "generated": (node("TexCoord"), "Generated"),
        "first UV map": (node("TexCoord"), "UV"),
        "second UV map": (node("Attribute", props={"attribute_name": "Detail"}), "Vector"),
        "vertex colour": (node("VertexColor"), "Color"),
        "normal": (node("NewGeometry"), "Normal"),
        "incoming": (node("NewGeometry"), "Incoming"),
        "camera": (node("CameraData"), "View Distance"),
        "radial tangent": (node("NewGeometry"), "Tangent"),
    }
    for title, (n, output) in signals.items():
        yield Case(f"height of the {title}", material(bump(n, output), n, uv_maps=["UVMap", "Detail"]))
    coordinates, noise = node("TexCoord"), node("TexNoise", {"Vector": link(node("TexCoord"), "Object")})
    yield Case("inverted", material(bump(noise, props={"invert": True}), noise, coordinates), use_params=True)
    widths = {"0": {"t": "VALUE", "v": 0}, "without a value": {"t": "VALUE"}, "linked": link(noise)}
    for title, width in widths.items():
        n = bump(noise, inputs={"Filter Width": width})
        yield Case(f"filter width {title}", material(n, noise, coordinates))
    n = bump(noise, without=("Filter Width",))
    yield Case("without a filter width", material(n, noise, coordinates))
    normal = node("NormalMap")
    n = bump(noise, inputs={"Normal": link(normal)})
    yield Case("normal linked", material(n, noise, coordinates, normal))
    picture = node("TexImage")
    yield Case("height of a picture", material(bump(picture), picture, images=IMAGES))
    wire = node("Wireframe")
    yield Case("height of a Wireframe: its warning three times", material(bump(wire), wire))
    yield from shared_heights(noise, coordinates)
    yield from bumps_on_bumps(noise, coordinates)


def shared_heights(noise, coordinates):
    """The height's subgraph is also read by other nodes, before or after the bump."""
    n = bump(noise)
    for title, inputs in {
        "before": {"Base Color": link(noise, "Color"), "Normal": link(n)},
        "after": {"Normal": link(n), "Coat Weight": 0.5, "Coat Roughness": link(noise)},
    }.items():
        bsdf = node("BsdfPrincipled", inputs)
        yield Case(f"height read {title}", material(bsdf, n, noise, coordinates), "surface")
    parts = node("SeparateXYZ", {"Vector": link(coordinates, "Object")})
    n = bump(parts, "X")
    both = node("Math", {"Value": link(parts, "Y"), "Value_001": link(n)})
    yield Case("a node of two outputs, one of them the height", material(both, n, parts, coordinates))


def bumps_on_bumps(noise, coordinates):
    checker = node("TexChecker", {"Vector": link(coordinates, "UV")})
    first = bump(noise, id="First")
    chained = bump(checker, "Fac", id="Second", inputs={"Normal": link(first)})
    yield Case("chained: the normal of the second is the first", material(chained, first, checker, noise, coordinates))
    facing = node("LayerWeight", {"Normal": link(first)})
    nested = bump(facing, "Facing", id="Second")
    yield Case("nested: a bump in the height of the second", material(nested, first, facing, noise, coordinates))


def displaced(title, displacement, *nodes, surface=None, method="BUMP", mode="surface", **top):
    surface = surface or node("BsdfPrincipled")
    return Case(
        title,
        material(surface, displacement, *nodes, displacement=displacement, settings={"displacement": method}, **top),
        mode,
        False,
    )


def displacements():
    noise, uv = node("TexNoise"), node("UVMap")
    for method in ("BUMP", "DISPLACEMENT", "BOTH", "NO_SUCH_WORD"):
        yield displaced(f"setting {method}", node("Displacement", {"Height": link(noise)}), noise, method=method)
    for space in ("OBJECT", "WORLD"):
        n = node("Displacement", {"Height": link(noise)}, props={"space": space})
        yield displaced(f"space {space}, mode emission", n, noise, mode="emission", surface=node("NewGeometry"))
    geometry = node("NewGeometry")
    glossy = node("BsdfPrincipled", {"Base Color": link(geometry, "Normal"), "Metallic": link(geometry, "Backfacing")})
    n = node("Displacement", {"Height": link(noise)})
    yield displaced("the surface reads the bumped normal", n, noise, geometry, surface=glossy)
    weight = node("LayerWeight")
    n = node("Displacement", {"Height": link(weight, "Facing")})
    coat = node("BsdfPrincipled", {"Roughness": link(weight, "Facing")})
    yield displaced("a node that both read keeps the normal of the mesh", n, weight, surface=coat, method="BOTH")
    for title, kind in (("a bumped normal", bump(noise)), ("a mapped normal", node("NormalMap"))):
        n = node("Displacement", {"Normal": link(kind)})
        yield displaced(f"along {title}", n, kind, noise, method="BOTH")
    layer = node("BsdfPrincipled", {"Normal": link(inner := bump(uv, "UV"))})
    yield displaced(
        "a bump on the displaced surface",
        n := node("Displacement", {"Height": link(noise)}),
        noise,
        inner,
        uv,
        surface=layer,
        method="BOTH",
    )
    yield from ranges()


def ranges():
    """The ranges from which the magnitude is estimated."""
    number = node("Value")
    yield displaced("known range", node("Displacement", {"Midlevel": -3, "Scale": 0.064}), method="DISPLACEMENT")
    yield displaced("range unknown", node("Displacement", {"Scale": link(number)}), number, method="DISPLACEMENT")
    n = node("Displacement", {"Midlevel": {"t": "VALUE"}, "Scale": {"t": "VALUE"}})
    yield displaced("range of sockets without a value", n, method="DISPLACEMENT")


def vector_displacements():
    picture = node("TexImage")
    for space in ("TANGENT", "OBJECT", "WORLD", "NO_SUCH_WORD"):
        n = node("VectorDisplacement", {"Vector": link(picture)}, props={"space": space})
        yield displaced(f"space {space}", n, picture, method="BOTH", images=IMAGES)
    n = node("VectorMath", {"Vector": link(g := node("NewGeometry"), "Normal")})
    yield displaced("any other node", n, g, method="DISPLACEMENT")
    n = node("Math")
    yield displaced("a value as displacement", n, method="BOTH")


def normal_maps():
    picture = node("TexImage")
    for space, convention in itertools.product(
        ("TANGENT", "OBJECT", "WORLD", "BLENDER_OBJECT", "BLENDER_WORLD", "NO_SUCH_WORD"), ("OPENGL", "DIRECTX")
    ):
        yield one(f"{space} {convention}", "NormalMap", space=space, convention=convention)
    n = node("NormalMap", {"Color": link(picture)})
    yield Case("of a picture", material(n, picture, images=IMAGES))


def attributes():
    for name in ("UVMap", "Detail", "", "Col"):
        for output in ("Color", "Fac"):
            n = node("Attribute", props={"attribute_name": name})
            yield Case(f"{name!r}, {output}", material(n, surface=(n, output), uv_maps=["UVMap", "Detail"]))


def cases():
    yield "ShaderNodeNormalMap", normal_maps()
    yield "ShaderNodeBump", bumps()
    yield "ShaderNodeDisplacement", displacements()
    yield "ShaderNodeVectorDisplacement", vector_displacements()
    yield "ShaderNodeAttribute", attributes()
    yield (
        "ShaderNodeTangent",
        [*words("Tangent", "axis", "XYZ"), *words("Tangent", "direction_type", ("UV_MAP", "NO_SUCH_WORD"))],
    )
    yield "ShaderNodeNormal", words("Normal", "normal", ([1, 2], [0.1, 0.2, 0.3, 0.4]), "Normal")
    yield (
        "ShaderNodeBevel",
        [Case("Normal linked", material(node("Bevel", {"Normal": link(g := node("NewGeometry"), "Normal")}), g))],
    )
    yield (
        "ShaderNodeLightPath",
        [
            Case(
                "an output that Blender has not",
                material(n := node("LightPath", outs={"Anything": "VALUE"}), surface=(n, "Anything")),
            )
        ],
    )
