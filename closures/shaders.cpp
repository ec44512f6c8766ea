// The shader nodes. A closure is one flat struct in the generated HLSL: a node initializes it with `closure_none` and
// assigns the fields that differ.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// Writes a linked normal to the closure. An unlinked one leaves the closure unchanged.
void write_normal(Gen& g, Node& n, Text c) {
    if (g.linked(n, "Normal"_w)) {
        g.uses.normal = true;
        const Text normal = g.inp(n, "Normal"_w, VECTOR);
        g.emit("$0.normal = $1; $0.has_normal = 1.0;", c, normal);
    }
}

// Whether a weight has an effect: its socket is linked, or its value is above 0.
bool has_weight(Node& n, Word ident) {
    const Value v = Gen::stored(n, ident);
    return Gen::linked(n, ident) || (v.truthy() && v.greater_than(0.0));
}

bool emits(Gen& g, Node& n) {
    if (g.linked(n, "Emission Color"_w) || g.linked(n, "Emission Strength"_w)) {
        return true;
    }
    const Value v = Gen::stored(n, "Emission Strength"_w);
    return v.truthy() && !v.equals(Value::integer(g.runtime(), 0));
}

bool is_see_through(Node& n) {
    const Value v = Gen::stored(n, "Alpha"_w);
    return Gen::linked(n, "Alpha"_w) || (!v.is_none() && v.less_than(1.0));
}

void write_coat(Gen& g, Node& n, Text c) {
    if (has_weight(n, "Coat Weight"_w)) {
        g.uses.coat = true;
        const Text weight = g.inp(n, "Coat Weight"_w, VALUE);
        const Text roughness = g.inp(n, "Coat Roughness"_w, VALUE);
        g.emit("$0.coat = saturate($1); $0.coat_roughness = saturate($2);", c, weight, roughness);
    }
}

void warn_of_lost_lobes(Gen& g, Node& n) {
    const auto warn = [&](Word ident, Text what) {
        if (has_weight(n, ident)) {
            g.warn("$0: Principled $1 is not reproduced in Unreal (Default Lit)", g.formatted(n.id), what);
        }
    };
    warn("Subsurface Weight"_w, "subsurface");
    warn("Transmission Weight"_w, "transmission");
    warn("Sheen Weight"_w, "sheen");
}

void _principled(Gen& g, Node& n) {
    const Text c = g.tmp("bsdf");
    g.emit("QWKClosure $0 = L.closure_none();", c);
    g.emit("$0.base = $1;", c, g.inp(n, "Base Color"_w, RGBA));
    g.emit("$0.metallic = saturate($1);", c, g.inp(n, "Metallic"_w, VALUE));
    g.emit("$0.roughness = saturate($1);", c, g.inp(n, "Roughness"_w, VALUE));
    const Text i = g.var("float", "max($0, 1.0)", g.inp(n, "IOR"_w, VALUE));
    const Text level = g.inp(n, "Specular IOR Level"_w, VALUE, "0.5");
    // The reflectance at normal incidence over that of Unreal's specular 1.0, which is 0.08.
    g.emit("$0.specular = saturate((($1 - 1.0) / ($1 + 1.0)) * (($1 - 1.0) / ($1 + 1.0)) * 2.0 * ($2) / 0.08);", c, i,
           level);
    const Text color = g.inp(n, "Emission Color"_w, RGBA);
    const Text strength = g.inp(n, "Emission Strength"_w, VALUE);
    g.emit("$0.emission = $1 * $2;", c, color, strength);
    // The test comes first, so that an invalid value raises its error whichever flags other nodes have set.
    g.uses.emission = emits(g, n) || g.uses.emission;
    g.uses.alpha = is_see_through(n) || g.uses.alpha;
    g.emit("$0.alpha = saturate($1);", c, g.inp(n, "Alpha"_w, VALUE));
    write_coat(g, n, c);
    write_normal(g, n, c);
    warn_of_lost_lobes(g, n);
    g.bind(n, "BSDF"_w, SHADER, c);
}

void _diffuse(Gen& g, Node& n) {
    const Text c = g.tmp("bsdf");
    const Text color = g.inp(n, "Color"_w, RGBA);
    g.emit("QWKClosure $0 = L.closure_none(); $0.base = $1; $0.specular = 0.0; $0.roughness = 1.0;", c, color);
    write_normal(g, n, c);
    g.bind(n, "BSDF"_w, SHADER, c);
}

void _glossy(Gen& g, Node& n) {
    const Text c = g.tmp("bsdf");
    const Text color = g.has_input(n, "Color"_w) ? g.inp(n, "Color"_w, RGBA) : g.inp(n, "Base Color"_w, RGBA);
    const Text roughness = g.inp(n, "Roughness"_w, VALUE);
    g.emit("QWKClosure $0 = L.closure_none(); $0.base = $1; $0.metallic = 1.0; $0.roughness = saturate($2);", c, color,
           roughness);
    write_normal(g, n, c);
    g.bind(n, "BSDF"_w, SHADER, c);
}

void emitter(Gen& g, Node& n, Word out) {
    g.uses.emission = true;
    const Text color = g.inp(n, "Color"_w, RGBA);
    const Text strength = g.inp(n, "Strength"_w, VALUE);
    g.bind(n, out, SHADER, "L.closure_emission($0 * $1)", color, strength);
}

void _emission(Gen& g, Node& n) { emitter(g, n, "Emission"_w); }

void _background(Gen& g, Node& n) { emitter(g, n, "Background"_w); }

void _transparent(Gen& g, Node& n) {
    g.uses.alpha = true;
    const Text c = g.tmp("bsdf");
    g.emit("QWKClosure $0 = L.closure_none(); $0.alpha = 0.0; $0.specular = 0.0;", c);
    g.bind(n, n.type().is("ShaderNodeBsdfTransparent") ? "BSDF"_w : "Holdout"_w, SHADER, c);
}

void _mix_shader(Gen& g, Node& n) {
    const Text f = g.var("float", "saturate($0)", g.inp(n, "Fac"_w, VALUE));
    const Text a = g.inp(n, "Shader"_w, SHADER);
    const Text b = g.inp(n, "Shader_001"_w, SHADER);
    g.bind(n, "Shader"_w, SHADER, g.var("closure", "L.closure_mix($0, $1, $2)", a, b, f));
}

void _add_shader(Gen& g, Node& n) {
    const Text a = g.inp(n, "Shader"_w, SHADER);
    const Text b = g.inp(n, "Shader_001"_w, SHADER);
    g.bind(n, "Shader"_w, SHADER, g.var("closure", "L.closure_add($0, $1)", a, b));
}

const node nodes[] = {
    {{"ShaderNodeBsdfPrincipled"}, _principled},
    {{"ShaderNodeBsdfDiffuse"}, _diffuse},
    {{"ShaderNodeBsdfAnisotropic", "ShaderNodeBsdfMetallic"}, _glossy},
    {{"ShaderNodeEmission"}, _emission},
    {{"ShaderNodeBackground"}, _background},
    {{"ShaderNodeBsdfTransparent", "ShaderNodeHoldout"}, _transparent},
    {{"ShaderNodeMixShader"}, _mix_shader},
    {{"ShaderNodeAddShader"}, _add_shader},
};

}  // namespace

}  // namespace quillgen
