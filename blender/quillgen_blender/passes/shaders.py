"""Replaces shaders that the translator lacks by the nearest ones that it has.

Base colour, roughness, opacity and emission are what an artist would set by hand in Unreal, where light neither passes
through a surface nor scatters below it unless another shading model is chosen.
"""

from typing import Any

from ..notes import Note
from . import made
from .luma import weights
from .made import Operand, acts, is_linked, number
from .options import Options
from .support import note

# Transparency of white glass: a fifth stays opaque, because Unreal scales reflections by the opacity as well.
CLEAREST = 0.8
# Sheen at a viewing angle: SHEEN * exp(-FALL * cos / roughness ** 1.75), fitted to the share of light that Cycles'
# Sheen BSDF reflects under a uniform sky, within 0.12 for a roughness of 0.3, within 0.06 from 0.5 on.
SHEEN, FALL, STEEPNESS = 0.8, 0.95, -1.75


def run(document: dict[str, Any], options: Options) -> tuple[dict[str, Any], list[Note]]:
    if not options.nearest_shaders or not any(node["type"] in NEAREST for node in document["nodes"]):
        return document, []
    nearest = Nearest(document)
    nodes = [nearest.changed(node) for node in document["nodes"]]
    if not nearest.notes:
        return document, []
    changed = document | {"nodes": [renamed(node, nearest.outputs) for node in nodes] + nearest.nodes}
    changed["out"] = {name: source_renamed(source, nearest.outputs) for name, source in document["out"].items()}
    settings = document.get("settings", {})
    if nearest.clear and not any(stays_opaque(node, nearest.clear) for node in document["nodes"]):
        changed["settings"] = {"blend": "BLENDED"} | settings
    return changed, nearest.notes


class Nearest(made.Builder):
    """Replaces records one by one. `clear`: the ids of shaders that let light through. `outputs`: the ids of shaders
    whose output is now named BSDF."""

    def __init__(self, document: dict[str, Any]) -> None:
        super().__init__(document)
        self.weights = weights(document.get("host", {}).get("blender", (5,)))
        self.notes: list[Note] = []
        self.clear: set[str] = set()
        self.outputs: set[str] = set()

    def changed(self, node: dict[str, Any]) -> dict[str, Any]:
        change = NEAREST.get(node["type"])
        found: dict[str, Any] = change(self, node) if change else node
        return found

    def tell(self, node: dict[str, Any], feature: str = "") -> None:
        self.notes.append(note(node["id"], node["type"], feature))

    def brightness(self, entry: dict[str, Any]) -> Operand:
        """The luminance of a colour input, as a number. A linked vector counts as a colour, as in the socket."""
        if "link" in entry:
            source, output, kind = entry["link"]
            return {"t": "VALUE", "link": [source, output, "RGBA" if kind == "VECTOR" else kind]}
        held = entry.get("v") or [0.0, 0.0, 0.0]
        return sum(part * weight for part, weight in zip(held, self.weights, strict=False))

    def clearness(self, entry: dict[str, Any]) -> Operand:
        """The (negative) change of the opacity by a body of glass of this colour: light enters and leaves, and is
        coloured twice."""
        bright = self.brightness(entry)
        return self.product("Clearness", bright, bright, -CLEAREST)


def replaced(node: dict[str, Any], kind: str, inputs: dict[str, Any]) -> dict[str, Any]:
    """The record as another shader, with the same id and the same normal."""
    if "Normal" in node["in"]:
        inputs = inputs | {"Normal": node["in"]["Normal"]}
    return {"id": node["id"], "type": kind, "in": inputs, "outs": {"BSDF": "SHADER"}, "props": {}}


def renamed(node: dict[str, Any], outputs: set[str]) -> dict[str, Any]:
    """The record with its links to outputs that are now named BSDF."""
    entries = {
        socket: entry | {"link": [entry["link"][0], "BSDF", entry["link"][2]]}
        for socket, entry in node["in"].items()
        if "link" in entry and entry["link"][0] in outputs
    }
    return node | {"in": node["in"] | entries} if entries else node


def source_renamed(source: list[str], outputs: set[str]) -> list[str]:
    return [source[0], "BSDF", *source[2:]] if source and source[0] in outputs else source


def principled(node: dict[str, Any], **inputs: dict[str, Any]) -> dict[str, Any]:
    """The record as a Principled BSDF without metal or emission; `Base_Color` stands for "Base Color"."""
    sockets = {
        "Base Color": made.value([0.0, 0.0, 0.0, 1.0], "RGBA"),
        "Metallic": made.value(0.0),
        "Roughness": made.value(1.0),
        "IOR": made.value(1.5),
        "Specular IOR Level": made.value(0.5),
        "Emission Color": made.value([0.0, 0.0, 0.0, 1.0], "RGBA"),
        "Emission Strength": made.value(0.0),
        "Alpha": made.value(1.0),
    }
    sockets |= {name.replace("_", " "): entry for name, entry in inputs.items()}
    return replaced(node, "ShaderNodeBsdfPrincipled", sockets)


def diffuse(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """Translucent, subsurface, toon and hair: a diffuse surface of the same colour."""
    nearest.tell(node)
    nearest.outputs.add(node["id"])
    return replaced(node, "ShaderNodeBsdfDiffuse", {"Color": node["in"]["Color"]})


def hair(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """A Principled Hair BSDF with a direct colour; melanin and absorption are not supported."""
    if node["props"].get("parametrization", "COLOR") != "COLOR" or "Color" not in node["in"]:
        return node
    nearest.tell(node)
    sockets = node["in"]
    return principled(node, Base_Color=sockets["Color"], Roughness=sockets["Roughness"], IOR=sockets["IOR"])


def glass(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """Glass and refraction: the brighter the colour, the more transparent the surface; refraction alone reflects
    nothing."""
    nearest.tell(node)
    nearest.clear.add(node["id"])
    sockets = node["in"]
    alpha = nearest.math(node["id"], "ADD", nearest.clearness(sockets["Color"]), 1.0)
    inputs = {"Base_Color": sockets["Color"], "Roughness": sockets["Roughness"], "IOR": sockets["IOR"]}
    if node["type"] == "ShaderNodeBsdfRefraction":
        inputs["Specular_IOR_Level"] = made.value(0.0)
    return principled(node, **inputs, Alpha=nearest.entry(alpha))


def transparent(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """A coloured filter: the darker its colour, the more opaque. Its base colour is what each channel has above the
    luminance."""
    color = node["in"].get("Color", {})
    if not is_linked(color) and min((color.get("v") or [1.0])[:3]) >= 0.999:
        return node
    nearest.tell(node, "Color")
    nearest.clear.add(node["id"])
    bright = nearest.brightness(color)
    alpha = nearest.math(node["id"], "MULTIPLY_ADD", bright, -1.0, 1.0)
    if isinstance(bright, dict):
        grey = nearest.add(
            f"{node['id']} Brightness", "ShaderNodeRGBToBW", {"Color": nearest.entry(color, "RGBA")}, "Val", "VALUE"
        )
        less = {"Vector": nearest.entry(color, "VECTOR"), "Vector_001": nearest.entry(grey, "VECTOR")}
        stands_out = nearest.add(
            f"{node['id']} Tint", "ShaderNodeVectorMath", less, "Vector", "VECTOR", operation="SUBTRACT"
        )
        limits = {"Vector": stands_out, "Vector_001": made.value([0.0, 0.0, 0.0], "VECTOR")}
        base = nearest.add(
            f"{node['id']} Tint Limit", "ShaderNodeVectorMath", limits, "Vector", "VECTOR", operation="MAXIMUM"
        )
        base = nearest.entry(base, "RGBA")
    else:
        base = made.value([max(part - bright, 0.0) for part in color["v"][:3]] + [1.0], "RGBA")
    return principled(node, Base_Color=base, Specular_IOR_Level=made.value(0.0), Alpha=nearest.entry(alpha))


def sheen(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """A diffuse surface whose colour grows towards the edges."""
    nearest.tell(node)
    share = sheen_share(nearest, node, node["in"].get("Roughness"), 1.0)
    inputs = {"Vector": node["in"]["Color"] | {"t": "VECTOR"}, "Scale": nearest.entry(share)}
    color = nearest.add(f"{node['id']} Color", "ShaderNodeVectorMath", inputs, "Vector", "VECTOR", operation="SCALE")
    return replaced(node, "ShaderNodeBsdfDiffuse", {"Color": nearest.entry(color, "RGBA")})


def sheen_share(nearest: Nearest, node: dict[str, Any], roughness: dict[str, Any] | None, weight: Operand) -> Operand:
    """The share of light that a sheen reflects towards the viewer."""
    name = f"{node['id']} Sheen"
    facing = {"Blend": made.value(0.5)} | ({"Normal": node["in"]["Normal"]} if "Normal" in node["in"] else {})
    seen = nearest.add(f"{name} Facing", "ShaderNodeLayerWeight", facing, "Facing", "VALUE")
    rough = number(roughness, 0.5)
    rough = max(rough, 0.1) if isinstance(rough, float) else rough
    fall = nearest.math(name, "MULTIPLY", nearest.math(name, "POWER", rough, STEEPNESS), FALL)
    rise = nearest.math(name, "MULTIPLY_ADD", fall, -1.0, 0.0)
    power = nearest.math(name, "MULTIPLY_ADD", fall, seen, rise)  # fall * (facing - 1)
    return nearest.product(name, nearest.math(name, "EXPONENT", power), SHEEN, weight)


def change_principled(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """Transmission, subsurface and sheen of a Principled BSDF. Their weights are set to 0; notes say what replaces
    them."""
    sockets = node["in"]
    inputs: dict[str, Any] = {}
    if acts(sockets.get("Subsurface Weight")):
        nearest.tell(node, "Subsurface")
        inputs["Subsurface Weight"] = made.value(0.0)
    if acts(sockets.get("Sheen Weight")):
        nearest.tell(node, "Sheen")
        share = sheen_share(nearest, node, sockets.get("Sheen Roughness"), number(sockets["Sheen Weight"]))
        tint = sockets.get("Sheen Tint") or made.value([1.0, 1.0, 1.0, 1.0], "RGBA")
        mix = {"Factor_Float": nearest.entry(share), "A_Color": sockets["Base Color"], "B_Color": tint}
        color = nearest.add(
            f"{node['id']} Sheen Color",
            "ShaderNodeMix",
            mix,
            "Result_Color",
            "RGBA",
            data_type="RGBA",
            blend_type="MIX",
            clamp_factor=True,
        )
        inputs |= {"Sheen Weight": made.value(0.0), "Base Color": color}
    if acts(sockets.get("Transmission Weight")):
        nearest.tell(node, "Transmission")
        weight = number(sockets["Transmission Weight"])
        if isinstance(weight, float) and weight > 0.99:
            nearest.clear.add(node["id"])
        metal = number(sockets.get("Metallic"))
        through = nearest.product(
            node["id"],
            nearest.clearness(sockets["Base Color"]),
            weight,
            nearest.math(f"{node['id']} Dielectric", "MULTIPLY_ADD", metal, -1.0, 1.0),
        )
        alpha = nearest.product(
            f"{node['id']} Alpha", number(sockets.get("Alpha"), 1.0), nearest.math(node["id"], "ADD", through, 1.0)
        )
        inputs |= {"Transmission Weight": made.value(0.0), "Alpha": nearest.entry(alpha)}
    return node | {"in": sockets | inputs} if inputs else node


def metallic(nearest: Nearest, node: dict[str, Any]) -> dict[str, Any]:
    """A conductor with refractive index and extinction: the base colour is its reflectance at normal incidence."""
    index, extinction = (node["in"].get(name, {}) for name in ("IOR", "Extinction"))
    if node["props"].get("fresnel_type") != "PHYSICAL_CONDUCTOR" or is_linked(index) or is_linked(extinction):
        return node
    nearest.tell(node, "Conductor")
    color = [
        ((n - 1.0) ** 2 + k * k) / ((n + 1.0) ** 2 + k * k)
        for n, k in zip(index["v"][:3], extinction["v"][:3], strict=True)
    ]
    return node | {"in": node["in"] | {"Base Color": made.value([*color, 1.0], "RGBA")}}


def stays_opaque(node: dict[str, Any], clear: set[str]) -> bool:
    return node["id"] not in clear and node["type"] in SURFACES


SURFACES = {
    "ShaderNodeBsdfPrincipled",
    "ShaderNodeBsdfDiffuse",
    "ShaderNodeBsdfAnisotropic",
    "ShaderNodeBsdfMetallic",
    "ShaderNodeBsdfTranslucent",
    "ShaderNodeSubsurfaceScattering",
    "ShaderNodeBsdfSheen",
    "ShaderNodeBsdfToon",
    "ShaderNodeBsdfHair",
    "ShaderNodeBsdfHairPrincipled",
}
NEAREST: dict[str, Any] = {
    "ShaderNodeBsdfTranslucent": diffuse,
    "ShaderNodeSubsurfaceScattering": diffuse,
    "ShaderNodeBsdfToon": diffuse,
    "ShaderNodeBsdfHair": diffuse,
    "ShaderNodeBsdfHairPrincipled": hair,
    "ShaderNodeBsdfGlass": glass,
    "ShaderNodeBsdfRefraction": glass,
    "ShaderNodeBsdfTransparent": transparent,
    "ShaderNodeBsdfSheen": sheen,
    "ShaderNodeBsdfPrincipled": change_principled,
    "ShaderNodeBsdfMetallic": metallic,
}
