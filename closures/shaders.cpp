// The shader nodes. A closure is one flat record in the generated text: a node starts it from
// `closure_none` and states what differs.
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// A linked normal goes into the record; an unlinked one leaves it alone.
void write_normal(Gen& g, const Node& n, Text c) {
    if (g.linked(n, "Normal")) {
        g.uses.normal = true;
        const Text normal = g.inp(n, "Normal", VECTOR);
        g.emit("$0.normal = $1; $0.has_normal = 1.0;"_fmt, c, normal);
    }
}

// Whether a weight takes part: its socket is linked, or its value is above 0.
bool has_weight(Gen& g, const Node& n, Word ident) {
    const Value entry = g.entry(n, ident);
    if (!entry.present()) {
        return false;
    }
    if (entry.contains("link")) {
        return true;
    }
    const Value v = entry.get("v");
    return v.truthy() && v.greater_than(0.0);
}

bool emits(Gen& g, const Node& n) {
    if (g.linked(n, "Emission Color") || g.linked(n, "Emission Strength")) {
        return true;
    }
    const Value entry = g.entry(n, "Emission Strength");
    const Value v = entry.present() ? entry.get("v") : entry;
    return v.truthy() && !v.equals(Value::integer(g.runtime(), 0));
}

bool is_see_through(Gen& g, const Node& n) {
    const Value entry = g.entry(n, "Alpha");
    if (!entry.present()) {
        return false;
    }
    if (entry.contains("link")) {
        return true;
    }
    const Value v = entry.get("v");
    return !v.is_none() && v.less_than(1.0);
}

void write_coat(Gen& g, const Node& n, Text c) {
    if (has_weight(g, n, "Coat Weight")) {
        g.uses.coat = true;
        const Text weight = g.inp(n, "Coat Weight", VALUE);
        const Text roughness = g.inp(n, "Coat Roughness", VALUE);
        g.emit("$0.coat = saturate($1); $0.coat_roughness = saturate($2);"_fmt, c, weight, roughness);
    }
}

void warn_of_lost_lobes(Gen& g, const Node& n) {
    const auto warn = [&](Word ident, Text what) {
        if (has_weight(g, n, ident)) {
            g.warn("$0: Principled $1 is not reproduced in Unreal (Default Lit)"_fmt, g.formatted(n.id), what);
        }
    };
    warn("Subsurface Weight", "subsurface");
    warn("Transmission Weight", "transmission");
    warn("Sheen Weight", "sheen");
}

void _principled(Gen& g, const Node& n) {
    const Text c = g.tmp("bsdf");
    g.emit("QWKClosure $0 = L.closure_none();"_fmt, c);
    g.emit("$0.base = $1;"_fmt, c, g.inp(n, "Base Color", RGBA));
    g.emit("$0.metallic = saturate($1);"_fmt, c, g.inp(n, "Metallic", VALUE));
    g.emit("$0.roughness = saturate($1);"_fmt, c, g.inp(n, "Roughness", VALUE));
    const Text i = g.var("float", "max($0, 1.0)"_fmt, g.inp(n, "IOR", VALUE));
    const Text level = g.inp(n, "Specular IOR Level", VALUE, "0.5");
    // The reflectance at normal incidence over that of Unreal's specular 1.0, which is 0.08.
    g.emit("$0.specular = saturate((($1 - 1.0) / ($1 + 1.0)) * (($1 - 1.0) / ($1 + 1.0)) * 2.0 * ($2) / 0.08);"_fmt, c,
           i, level);
    const Text color = g.inp(n, "Emission Color", RGBA);
    const Text strength = g.inp(n, "Emission Strength", VALUE);
    g.emit("$0.emission = $1 * $2;"_fmt, c, color, strength);
    // The test comes first: whether a value fails it must not hang on what other nodes have turned on.
    g.uses.emission = emits(g, n) || g.uses.emission;
    g.uses.alpha = is_see_through(g, n) || g.uses.alpha;
    g.emit("$0.alpha = saturate($1);"_fmt, c, g.inp(n, "Alpha", VALUE));
    write_coat(g, n, c);
    write_normal(g, n, c);
    warn_of_lost_lobes(g, n);
    g.bind(n, "BSDF", SHADER, c);
}

void _diffuse(Gen& g, const Node& n) {
    const Text c = g.tmp("bsdf");
    const Text color = g.inp(n, "Color", RGBA);
    g.emit("QWKClosure $0 = L.closure_none(); $0.base = $1; $0.specular = 0.0; $0.roughness = 1.0;"_fmt, c, color);
    write_normal(g, n, c);
    g.bind(n, "BSDF", SHADER, c);
}

void _glossy(Gen& g, const Node& n) {
    const Text c = g.tmp("bsdf");
    const Text color = n.in.contains("Color") ? g.inp(n, "Color", RGBA) : g.inp(n, "Base Color", RGBA);
    const Text roughness = g.inp(n, "Roughness", VALUE);
    g.emit("QWKClosure $0 = L.closure_none(); $0.base = $1; $0.metallic = 1.0; $0.roughness = saturate($2);"_fmt, c,
           color, roughness);
    write_normal(g, n, c);
    g.bind(n, "BSDF", SHADER, c);
}

void emitter(Gen& g, const Node& n, Word out) {
    g.uses.emission = true;
    const Text color = g.inp(n, "Color", RGBA);
    const Text strength = g.inp(n, "Strength", VALUE);
    g.bind(n, out, SHADER, "L.closure_emission($0 * $1)"_fmt, color, strength);
}

void _emission(Gen& g, const Node& n) { emitter(g, n, "Emission"); }

void _background(Gen& g, const Node& n) { emitter(g, n, "Background"); }

void _transparent(Gen& g, const Node& n) {
    g.uses.alpha = true;
    const Text c = g.tmp("bsdf");
    g.emit("QWKClosure $0 = L.closure_none(); $0.alpha = 0.0; $0.specular = 0.0;"_fmt, c);
    g.bind(n, n.type().is("ShaderNodeBsdfTransparent") ? Word("BSDF") : Word("Holdout"), SHADER, c);
}

void _mix_shader(Gen& g, const Node& n) {
    const Text f = g.var("float", "saturate($0)"_fmt, g.inp(n, "Fac", VALUE));
    const Text a = g.inp(n, "Shader", SHADER);
    const Text b = g.inp(n, "Shader_001", SHADER);
    g.bind(n, "Shader", SHADER, g.var("closure", "L.closure_mix($0, $1, $2)"_fmt, a, b, f));
}

void _add_shader(Gen& g, const Node& n) {
    const Text a = g.inp(n, "Shader", SHADER);
    const Text b = g.inp(n, "Shader_001", SHADER);
    g.bind(n, "Shader", SHADER, g.var("closure", "L.closure_add($0, $1)"_fmt, a, b));
}

}  // namespace

void register_shaders(Registry& registry) {
    registry.node({"ShaderNodeBsdfPrincipled"}, _principled);
    registry.node({"ShaderNodeBsdfDiffuse"}, _diffuse);
    registry.node({"ShaderNodeBsdfAnisotropic", "ShaderNodeBsdfMetallic"}, _glossy);
    registry.node({"ShaderNodeEmission"}, _emission);
    registry.node({"ShaderNodeBackground"}, _background);
    registry.node({"ShaderNodeBsdfTransparent", "ShaderNodeHoldout"}, _transparent);
    registry.node({"ShaderNodeMixShader"}, _mix_shader);
    registry.node({"ShaderNodeAddShader"}, _add_shader);
}

}  // namespace quillgen
