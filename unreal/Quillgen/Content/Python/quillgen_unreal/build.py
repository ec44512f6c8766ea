"""Makes the plan of a material from an export."""

from __future__ import annotations

import hashlib
import json
from collections.abc import Mapping

from . import engine, exchange, naming, wiring
from .plan import Color, Displacement, Graph, Inputs, Outputs, Plan, Properties, Source, Texture

# The material attribute for each output of the HLSL. Python has no material properties for clear coat and displacement,
# so all outputs go through MakeMaterialAttributes.
ATTRIBUTES = {
    "metallic": "Metallic",
    "roughness": "Roughness",
    "specular": "Specular",
    "emissive": "EmissiveColor",
    "normal": "Normal",
    "clear_coat": "ClearCoat",
    "clear_coat_roughness": "ClearCoatRoughness",
}
RESULT = {"surface": "BaseColor", "emission": "EmissiveColor"}
OPACITY = {"opaque": "Opacity", "masked": "OpacityMask", "translucent": "Opacity"}

SHADING = {
    "default_lit": engine.SHADING["MSM_DEFAULT_LIT"],
    "clear_coat": engine.SHADING["MSM_CLEAR_COAT"],
    "unlit": engine.SHADING["MSM_UNLIT"],
}
BLEND = {
    "opaque": engine.BLEND["BLEND_OPAQUE"],
    "masked": engine.BLEND["BLEND_MASKED"],
    "translucent": engine.BLEND["BLEND_TRANSLUCENT"],
}
DEFAULT_CLIP = 0.3333

TOO_OLD = (
    "displacement with Nanite needs Unreal 5.4 or newer: the surface stays flat, bumps included in its normal stay"
)
TEXTURES = "Textures"  # the group of texture parameters


def plan(
    export: exchange.Export, textures: Mapping[str, str], features: engine.Features, instanced: bool = False
) -> Plan:
    """Returns the Plan of a material. `textures`: input name -> path of the texture asset."""
    masked = export.settings["blend"] == "masked"
    setting = wiring.Setting(features, masked, instanced)
    graph, named = Graph(), naming.parameters(export.parameters)
    records = {p.name: p for p in export.parameters}

    def custom(text: exchange.Text, returned: str, title: str) -> Source:
        wires = [(entry["name"], _source(graph, entry, setting, records, named, textures)) for entry in text.inputs]
        outputs = tuple((output["name"], engine.FLOATS[output["type"]]) for output in text.outputs)
        settings = (
            ("code", text.code),
            ("output_type", engine.FLOATS[returned]),
            ("description", title),
            ("inputs", Inputs(tuple(entry["name"] for entry in text.inputs))),
            ("additional_outputs", Outputs(outputs)),
        )
        return graph.add("Custom", settings, wires, f"{title}, from Blender. Edit it there")

    surface = custom(export.surface, "float3", export.name)
    wires = [(RESULT[export.mode], surface)]
    for output in export.surface.outputs:
        where = output["property"]
        pin = OPACITY[export.settings["blend"]] if where == "opacity" else ATTRIBUTES[where]
        wires.append((pin, surface._replace(pin=output["name"])))
    displaced = bool(export.displacement and features.tessellation)
    if export.displacement and displaced:
        wires.append(("Displacement", custom(export.displacement, "float", f"{export.name}: displacement")))
    remarks = (TOO_OLD,) if export.displacement and not displaced else ()
    root = graph.add("MakeMaterialAttributes", (), wires)
    return Plan(graph, root, _settings(export, features, displaced), remarks)


def _source(
    graph: Graph,
    entry: exchange.Record,
    setting: wiring.Setting,
    records: Mapping[str, exchange.Parameter],
    named: Mapping[str, str],
    textures: Mapping[str, str],
) -> Source:
    kind, name = entry["kind"], entry["name"]
    if kind == "texture":
        settings = (
            ("parameter_name", name),
            ("texture", Texture(textures[name])),
            ("sampler_type", engine.SAMPLER_TYPE["SAMPLERTYPE_LINEAR_COLOR"]),
            ("group", TEXTURES),
        )
        return graph.add("TextureObjectParameter", settings, (), entry.get("image", ""))
    if kind in wiring.PARAMETERS:
        return wiring.parameter(graph, kind, named[name], _parameter_settings(records[name]))
    return wiring.source(graph, entry, setting)


def _parameter_settings(record: exchange.Parameter) -> list[tuple[str, object]]:
    value = Color(*record.default) if isinstance(record.default, tuple) else record.default
    settings: list[tuple[str, object]] = [
        ("default_value", value),
        ("group", record.group or "Material"),
        ("sort_priority", record.order),
    ]
    if record.kind == "scalar" and record.least is not None:
        settings += [("slider_min", record.least), ("slider_max", record.most)]
    if record.description:
        settings.append(("desc", record.description))
    return settings


def _settings(export: exchange.Export, features: engine.Features, displaced: bool) -> Properties:
    """All the properties of the material, so that those of an earlier import are reset."""
    settings = export.settings
    found: list[tuple[str, object]] = [
        ("use_material_attributes", True),
        ("shading_model", SHADING[settings["shading"]]),
        ("blend_mode", BLEND[settings["blend"]]),
        ("opacity_mask_clip_value", float(settings.get("clip", DEFAULT_CLIP))),
        ("two_sided", settings["two_sided"]),
        ("tangent_space_normal", settings["tangent_space_normal"]),
        # The default lighting mode ignores the normal of translucent surfaces.
        ("translucency_lighting_mode", engine.LIGHTING["TLM_SURFACE_PER_PIXEL_LIGHTING"]),
        # On mobile devices, positions and UVs in 16 bits would be too coarse for textures computed from them.
        ("float_precision_mode", engine.PRECISION["MFPM_FULL_MATERIAL_EXPRESSION_ONLY"]),
    ]
    if features.tessellation:
        found.append(("enable_tessellation", displaced))
    if displaced:
        found += [("used_with_nanite", True), ("displacement_scaling", Displacement(export.magnitude, 0.5))]
    return tuple(found)


def fingerprint(made: Plan) -> str:
    """A hash of a plan. It ignores the defaults of parameters."""
    content = [
        [e.kind, [s for s in e.settings if s[0] != "default_value"], e.wires, e.comment]
        for e in made.graph.expressions.values()
    ]
    return hashlib.sha256(json.dumps([content, made.root, made.settings]).encode("utf-8")).hexdigest()
