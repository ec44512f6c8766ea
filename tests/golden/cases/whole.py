"""Whole documents: settings, unknown node types, several graphs in one text."""

import quillgen
from golden.cases import Case
from golden.documents import IMAGES, link, material, node


def settings():
    glass = node("BsdfPrincipled", {"Alpha": 0.5})
    for said in (
        {},
        {"blend": "BLENDED"},
        {"blend": "HASHED"},
        {"backface_culling": True},
        {"backface_culling": False, "blend": None},
    ):
        for mode in ("surface", "emission"):
            yield Case(f"{said}, mode {mode}", material(glass, settings=said), mode)
    value = node("Value")
    for mode in ("surface", "emission", "NO_SUCH_WORD"):
        yield Case(f"a value as surface, mode {mode}", material(value), mode, True)
    noise = node("TexNoise", {"Scale": 3})
    bsdf = node("BsdfPrincipled", {"Roughness": link(noise)})
    top = {"displacement": node("Displacement", {"Scale": link(noise)}), "settings": {"displacement": "BOTH"}}
    yield Case(
        "parameters of the surface and of the displacement",
        material(bsdf, noise, top["displacement"], **top),
        "surface",
        True,
    )


def unknown_types():
    outs = {
        "Color": "RGBA",
        "Fac": "VALUE",
        "Vector": "VECTOR",
        "BSDF": "SHADER",
        "Rotation": "ROTATION",
        "Text": "STRING",
    }
    n = node("NoSuchType", id="Odd one", outs=outs)
    for output, kind in outs.items():
        yield Case(f"output of type {kind}", material(n, surface=(n, output)), "surface")
    bsdf = node(
        "BsdfPrincipled", {"Base Color": link(n, "Fac"), "Metallic": link(n, "Color"), "Roughness": link(n, "Vector")}
    )
    yield Case("converted", material(bsdf, n), "surface")


def several_in_one(*documents, **settings):
    """A case that assembles several graphs into one text."""

    def make():
        parts = [quillgen.parts(d) for d in documents]
        code = quillgen.assemble(
            [(p["body"], p["ret"]) for p in parts],
            set().union(*(p["structs"] for p in parts)),
            set().union(*(p["need"] for p in parts)),
            **settings,
        )
        inputs = {name: record for p in parts for name, record in p["inputs"].items()}
        return {"code": code, "inputs": inputs, "warnings": [w for p in parts for w in p["warnings"]]}

    return make


def parts():
    noise = node("TexVoronoi", {"Vector": link(node("UVMap"))})
    glow = node("BsdfPrincipled", {"Emission Strength": 1.0, "Emission Color": link(noise, "Color")})
    document = material(glow, noise, node("UVMap"))
    pictured = material(node("TexImage"), images=IMAGES)
    for title, d, given in (
        ("by default", document, {}),
        ("mode surface", document, {"mode": "surface"}),
        ("as parameters", document, {"use_params": True}),
        ("UVs moved", pictured, {"uv_bias": (0.5, 0.25)}),
        ("UVs moved by nothing", pictured, {"uv_bias": []}),
    ):
        yield Case(f"parts, {title}", make=lambda d=d, given=given: quillgen.parts(d, **given))
    three = document, pictured, material(node("RGB"))
    sel = {"selector": "sel"}
    for title, documents, given in (
        ("one", three[:1], {}),
        ("the first of three", three, {}),
        ("chosen among three", three, sel),
        ("wrapped", three[1:], {**sel, "wrap": "pow(%s, 2.0)"}),
        ("none", (), sel),
        ("further functions", three[2:], {"extra_lib": "\nfloat twice(float x) { return 2.0 * x; }"}),
    ):
        yield Case(f"assemble, {title}", make=several_in_one(*documents, **given))


def cases():
    yield "settings", settings()
    yield "unknown types", unknown_types()
    yield "several graphs", parts()
