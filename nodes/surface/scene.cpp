// Nodes that report facts about the scene, the ray or the object. Where Unreal has no such fact, a constant replaces
// it, with a warning if the difference is visible.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// Every shading point counts as seen by the camera directly.
void _light_path(Gen& g, Node& n) {
    const Value outs = n.record.get("outs"_w);
    if (!outs.present()) {
        return;
    }
    outs.for_each([&](const Value& out) { g.bind(n, out, VALUE, out.is("Is Camera Ray") ? "1.0" : "0.0"); });
}

// The random value is a hash of the object's origin, quantised to a hundredth of a metre.
void _object_info(Gen& g, Node& n) {
    const Text objpos = g.geo("objpos");
    g.set(n, "Location"_w, VECTOR, objpos);
    g.bind(n, "Color"_w, RGBA, "float3(1.0, 1.0, 1.0)");
    g.bind(n, "Alpha"_w, VALUE, "1.0");
    g.bind(n, "Object Index"_w, VALUE, "0.0");
    g.bind(n, "Material Index"_w, VALUE, "0.0");
    if (g.is_used(n, "Random"_w)) {
        g.use("hash_float3_to_float"_w);
        g.warn("$0: Object Info Random is a per-actor random in Unreal, not Blender's per-object value",
               g.formatted(n.id));
        g.bind(n, "Random"_w, VALUE, "L.hash_float3_to_float(floor($0 * 100.0))", objpos);
    }
}

// Occlusion needs rays: the colour passes through unoccluded.
void _ao(Gen& g, Node& n) {
    g.set(n, "Color"_w, RGBA, g.inp(n, "Color"_w, RGBA));
    g.bind(n, "AO"_w, VALUE, "1.0");
}

// Bevel needs rays too: the normal passes through. If it is unlinked, it is the normal without the sign of the side.
void _bevel(Gen& g, Node& n) {
    g.set(n, "Normal"_w, VECTOR, g.linked(n, "Normal"_w) ? g.inp(n, "Normal"_w, VECTOR) : g.geo("N"));
}

void _wireframe(Gen& g, Node& n) {
    g.warn("$0: Wireframe has no Unreal equivalent - 0", g.formatted(n.id));
    g.bind(n, "Fac"_w, VALUE, "0.0");
}

// The direction of the node's own widget, and the cosine between it and the input.
void _normal_node(Gen& g, Node& n) {
    const Value normal = n.props().get("normal"_w);
    const Text d = normal.present() ? g._v3(normal) : "float3(0.0, 0.0, 1.0)";
    g.bind(n, "Normal"_w, VECTOR, d);
    const Text nv = g.inp(n, "Normal"_w, VECTOR);
    g.set(n, "Dot"_w, VALUE, "dot($0, normalize($1))", d, nv);
}

// A sigmoid: the logistic function around the centre. The width sets its steepness.
void _squeeze(Gen& g, Node& n) {
    g.warn("$0: Squeeze Value is EEVEE-only (converted with EEVEE's formula; Cycles ignores the node)",
           g.formatted(n.id));
    const Text v = g.inp(n, "Value"_w, VALUE);
    const Text w = g.inp(n, "Width"_w, VALUE);
    const Text c = g.inp(n, "Center"_w, VALUE);
    g.set(n, "Value"_w, VALUE, "1.0 / (1.0 + pow(2.71828182846, -(($0) - ($2)) * ($1)))", v, w, c);
}

void _camera_data(Gen& g, Node& n) {
    const Text v = g.var("float3", g.geo("view"));
    g.set(n, "View Vector"_w, VECTOR, "normalize($0)", v);
    g.set(n, "View Z Depth"_w, VALUE, "$0.z", v);
    g.set(n, "View Distance"_w, VALUE, "length($0)", v);
}

// Colours outside the Rec.709 gamut have negative channels, which both nodes clamp to zero.
void _blackbody(Gen& g, Node& n) {
    g.use("blackbody_rec709"_w);
    const Text t = g.inp(n, "Temperature"_w, VALUE);
    g.set(n, "Color"_w, RGBA, "max(L.blackbody_rec709($0), float3(0.0, 0.0, 0.0))", t);
}

// Converts CIE XYZ to linear Rec.709, scaled so that no colour of the spectrum much exceeds one.
void _wavelength(Gen& g, Node& n) {
    g.use("wavelength_xyz"_w);
    const Text w = g.inp(n, "Wavelength"_w, VALUE);
    const Text xyz = g.var("float3", "L.wavelength_xyz($0)", w);
    g.set(n, "Color"_w, RGBA,
          "max(float3(dot($0, float3(3.2404542, -1.5371385, -0.4985314)), "
          "dot($0, float3(-0.969266, 1.8760108, 0.041556)), "
          "dot($0, float3(0.0556434, -0.2040259, 1.0572252))) * (1.0 / 2.52), float3(0.0, 0.0, 0.0))",
          xyz);
}

const node nodes[] = {
    {{"ShaderNodeLightPath"}, _light_path}, {{"ShaderNodeObjectInfo"}, _object_info},
    {{"ShaderNodeAmbientOcclusion"}, _ao},  {{"ShaderNodeBevel"}, _bevel},
    {{"ShaderNodeWireframe"}, _wireframe},  {{"ShaderNodeNormal"}, _normal_node},
    {{"ShaderNodeSqueeze"}, _squeeze},      {{"ShaderNodeCameraData"}, _camera_data},
    {{"ShaderNodeBlackbody"}, _blackbody},  {{"ShaderNodeWavelength"}, _wavelength},
};

}  // namespace

}  // namespace quillgen
