// Nodes that report facts about the scene, the ray or the object. Where Unreal has no such fact a fixed
// value stands for it, with a warning where the difference shows.
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// Every shading point counts as seen by the camera directly.
void _light_path(Gen& g, const Node& n) {
    const Value outs = n.record.get("outs");
    if (!outs.present()) {
        return;
    }
    outs.for_each([&](const Value& out) { g.bind(n, out, VALUE, out.is("Is Camera Ray") ? "1.0" : "0.0"); });
}

// The random value is a hash of the object's origin, quantised to a hundredth of a metre.
void _object_info(Gen& g, const Node& n) {
    const Text objpos = g.geo("objpos");
    g.set(n, "Location", VECTOR, objpos);
    g.bind(n, "Color", RGBA, "float3(1.0, 1.0, 1.0)");
    g.bind(n, "Alpha", VALUE, "1.0");
    g.bind(n, "Object Index", VALUE, "0.0");
    g.bind(n, "Material Index", VALUE, "0.0");
    if (g.is_used(n, "Random")) {
        g.use("hash_float3_to_float");
        g.warn("$0: Object Info Random is a per-actor random in Unreal, not Blender's per-object value"_fmt,
               g.formatted(n.id));
        g.bind(n, "Random", VALUE, "L.hash_float3_to_float(floor($0 * 100.0))"_fmt, objpos);
    }
}

// Occlusion needs rays: the colour passes through unoccluded.
void _ao(Gen& g, const Node& n) {
    g.set(n, "Color", RGBA, g.inp(n, "Color", RGBA));
    g.bind(n, "AO", VALUE, "1.0");
}

// Rounding needs rays too: the normal passes through. Unlinked, it is the one without the sign of the side.
void _bevel(Gen& g, const Node& n) {
    g.set(n, "Normal", VECTOR, g.linked(n, "Normal") ? g.inp(n, "Normal", VECTOR) : g.geo("N"));
}

void _wireframe(Gen& g, const Node& n) {
    g.warn("$0: Wireframe has no Unreal equivalent - 0"_fmt, g.formatted(n.id));
    g.bind(n, "Fac", VALUE, "0.0");
}

// The direction of the node's own widget, and the cosine between it and the input.
void _normal_node(Gen& g, const Node& n) {
    const Value normal = n.props().get("normal");
    const Text d = normal.present() ? g._v3(normal) : "float3(0.0, 0.0, 1.0)";
    g.bind(n, "Normal", VECTOR, d);
    const Text nv = g.inp(n, "Normal", VECTOR);
    g.set(n, "Dot", VALUE, "dot($0, normalize($1))"_fmt, d, nv);
}

// A sigmoid: the logistic function around the centre, as steep as the width says.
void _squeeze(Gen& g, const Node& n) {
    g.warn("$0: Squeeze Value is EEVEE-only (converted with EEVEE's formula; Cycles ignores the node)"_fmt,
           g.formatted(n.id));
    const Text v = g.inp(n, "Value", VALUE);
    const Text w = g.inp(n, "Width", VALUE);
    const Text c = g.inp(n, "Center", VALUE);
    g.set(n, "Value", VALUE, "1.0 / (1.0 + pow(2.71828182846, -(($0) - ($2)) * ($1)))"_fmt, v, w, c);
}

void _camera_data(Gen& g, const Node& n) {
    const Text v = g.var("float3", g.geo("view"));
    g.set(n, "View Vector", VECTOR, "normalize($0)"_fmt, v);
    g.set(n, "View Z Depth", VALUE, "$0.z"_fmt, v);
    g.set(n, "View Distance", VALUE, "length($0)"_fmt, v);
}

// Colours of light that Rec.709 cannot hold have negative channels; both nodes cut those off.
void _blackbody(Gen& g, const Node& n) {
    g.use("blackbody_rec709");
    const Text t = g.inp(n, "Temperature", VALUE);
    g.set(n, "Color", RGBA, "max(L.blackbody_rec709($0), float3(0.0, 0.0, 0.0))"_fmt, t);
}

// CIE XYZ to linear Rec.709, scaled so that no colour of the spectrum much exceeds one.
void _wavelength(Gen& g, const Node& n) {
    g.use("wavelength_xyz");
    const Text w = g.inp(n, "Wavelength", VALUE);
    const Text xyz = g.var("float3", "L.wavelength_xyz($0)"_fmt, w);
    g.set(n, "Color", RGBA,
          "max(float3(dot($0, float3(3.2404542, -1.5371385, -0.4985314)), "
          "dot($0, float3(-0.969266, 1.8760108, 0.041556)), "
          "dot($0, float3(0.0556434, -0.2040259, 1.0572252))) * (1.0 / 2.52), float3(0.0, 0.0, 0.0))"_fmt,
          xyz);
}

}  // namespace

void register_scene(Registry& registry) {
    registry.node({"ShaderNodeLightPath"}, _light_path);
    registry.node({"ShaderNodeObjectInfo"}, _object_info);
    registry.node({"ShaderNodeAmbientOcclusion"}, _ao);
    registry.node({"ShaderNodeBevel"}, _bevel);
    registry.node({"ShaderNodeWireframe"}, _wireframe);
    registry.node({"ShaderNodeNormal"}, _normal_node);
    registry.node({"ShaderNodeSqueeze"}, _squeeze);
    registry.node({"ShaderNodeCameraData"}, _camera_data);
    registry.node({"ShaderNodeBlackbody"}, _blackbody);
    registry.node({"ShaderNodeWavelength"}, _wavelength);
}

}  // namespace quillgen
