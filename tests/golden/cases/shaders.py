"""Shader nodes: the flags and warnings that depend on sockets, and combined shaders."""

from golden.cases import Case
from golden.documents import link, material, node


def shaded(title, *nodes, use_params=False, **top):
    return Case(title, material(*nodes, **top), "surface", use_params)


def principled():
    number = node("Value")
    for socket, values in {
        "Alpha": (0.999, 1, None, 0.0),
        "Emission Strength": (1.0, -1.0, None),
        "Coat Weight": (0.5, 1),
        "Subsurface Weight": (0.5,),
        "Transmission Weight": (1,),
        "Sheen Weight": (0.25,),
        "IOR": (0.5,),
        "Specular IOR Level": (0.0,),
    }.items():
        for value in values:
            yield shaded(f"{socket} {value!r}", node("BsdfPrincipled", {socket: {"t": "VALUE", "v": value}}))
        yield shaded(f"{socket} linked", node("BsdfPrincipled", {socket: link(number)}), number)
    yield shaded("Alpha without a value", node("BsdfPrincipled", {"Alpha": {"t": "VALUE"}}))
    weights = {"Subsurface Weight": 0.1, "Transmission Weight": 0.2, "Sheen Weight": 0.3}
    yield shaded("three weights", node("BsdfPrincipled", weights))
    tint = node("RGB")
    yield shaded("Emission Color linked", node("BsdfPrincipled", {"Emission Color": link(tint)}), tint)
    normal = node("NewGeometry")
    yield shaded("Normal linked", node("BsdfPrincipled", {"Normal": link(normal, "Normal")}), normal)
    yield shaded(
        "everything at once",
        node(
            "BsdfPrincipled",
            {"Alpha": 0.5, "Emission Strength": 2.0, "Coat Weight": 0.7, "Normal": link(normal, "Normal"), **weights},
        ),
        normal,
        use_params=True,
        settings={"blend": "BLENDED", "backface_culling": True},
    )


def mixed():
    paint, glass = node("BsdfPrincipled", id="Paint"), node("BsdfTransparent", id="Glass")
    inner = node("MixShader", {"Shader": link(paint), "Shader_001": link(glass), "Fac": 1.5}, id="Inner")
    outer = node("MixShader", {"Shader": link(inner), "Shader_001": link(glass)}, id="Outer")
    yield shaded("two mixes that share a shader", outer, inner, paint, glass, use_params=True)
    yield shaded("no shader linked", node("MixShader"))
    first = node("MixShader", {"Shader": link(paint)})
    yield shaded("one shader linked", first, paint)
    fac = node("TexChecker")
    yield shaded(
        "factor of a texture", node("MixShader", {"Fac": link(fac, "Color"), "Shader": link(paint)}), fac, paint
    )


def added():
    paint, glow = node("BsdfDiffuse"), node("Emission")
    for title, one, two in (("diffuse and emission", paint, glow), ("emission and diffuse", glow, paint)):
        yield shaded(title, node("AddShader", {"Shader": link(one), "Shader_001": link(two)}), one, two)


def cases():
    normal = node("NewGeometry")
    yield "ShaderNodeBsdfPrincipled", principled()
    yield "ShaderNodeMixShader", mixed()
    yield "ShaderNodeAddShader", added()
    for kind in ("BsdfDiffuse", "BsdfAnisotropic", "BsdfMetallic"):
        yield f"ShaderNode{kind}", [shaded("Normal linked", node(kind, {"Normal": link(normal, "Normal")}), normal)]
    yield (
        "ShaderNodeBsdfMetallic",
        [shaded("Color wins over Base Color", node("BsdfMetallic", {"Color": (0.1, 0.2, 0.3, 1.0)}))],
    )
