"""Short helpers that make records of a document."""

from typing import Any

LINKED = {"Value": "VALUE", "Color": "RGBA", "Vector": "VECTOR", "BSDF": "SHADER", "Shader": "SHADER"}


def value(number: Any, kind: str = "VALUE") -> dict[str, Any]:
    return {"t": kind, "v": number}


def link(node: str, output: str, kind: str, wanted: str | None = None) -> dict[str, Any]:
    """An input of type `wanted` (default: the source's type) that reads an output."""
    return {"t": wanted or kind, "link": [node, output, kind]}


def node(identity: str, kind: str, inputs: dict[str, Any] | None = None, **props: Any) -> dict[str, Any]:
    return {"id": identity, "type": f"ShaderNode{kind}", "in": inputs or {}, "outs": {}, "props": props}


def document(*nodes: dict[str, Any], **out: list[str]) -> dict[str, Any]:
    return {"nodes": list(nodes), "out": out, "settings": {}}


def principled(identity: str = "Principled BSDF", **inputs: Any) -> dict[str, Any]:
    """A Principled BSDF with Blender's defaults; `Base_Color` stands for the socket "Base Color"."""
    sockets: dict[str, Any] = {
        "Base Color": value([0.8, 0.8, 0.8, 1.0], "RGBA"),
        "Metallic": value(0.0),
        "Roughness": value(0.5),
        "IOR": value(1.5),
        "Alpha": value(1.0),
        "Normal": value([0.0, 0.0, 0.0], "VECTOR"),
        "Subsurface Weight": value(0.0),
        "Specular IOR Level": value(0.5),
        "Anisotropic": value(0.0),
        "Transmission Weight": value(0.0),
        "Coat Weight": value(0.0),
        "Coat Roughness": value(0.03),
        "Sheen Weight": value(0.0),
        "Sheen Roughness": value(0.5),
        "Sheen Tint": value([1.0, 1.0, 1.0, 1.0], "RGBA"),
        "Emission Color": value([1.0, 1.0, 1.0, 1.0], "RGBA"),
        "Emission Strength": value(0.0),
    }
    sockets |= {name.replace("_", " "): entry for name, entry in inputs.items()}
    return node(identity, "BsdfPrincipled", sockets)
