// Mix and the older MixRGB: two values blended by a factor.
#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// The library's blend of a lower-cased blend word; a word that the library lacks is found out there.
Text blend_function(Gen& g, const Value& props) {
    const Value word = props.get("blend_type");
    const Text name = g.text("mix_$0"_fmt, word.present() ? g.formatted(word.lower()) : "mix");
    g.use_composed(name);
    return name;
}

void mix_vectors(Gen& g, const Node& n, Text t) {
    const Text a = g.inp(n, "A_Vector", VECTOR);
    const Text b = g.inp(n, "B_Vector", VECTOR);
    g.set(n, "Result_Vector", VECTOR, "($0) * (float3(1.0, 1.0, 1.0) - $2) + ($1) * $2"_fmt, a, b, t);
}

void mix_non_uniform(Gen& g, const Node& n, bool clamp_factor) {
    const Text factor = g.inp(n, "Factor_Vector", VECTOR);
    const Text t = clamp_factor ? g.text("saturate($0)"_fmt, factor) : factor;
    const Text a = g.inp(n, "A_Vector", VECTOR);
    const Text b = g.inp(n, "B_Vector", VECTOR);
    const Text tv = g.var("float3", t);
    g.set(n, "Result_Vector", VECTOR, "($0) * (float3(1.0, 1.0, 1.0) - $2) + ($1) * $2"_fmt, a, b, tv);
}

void mix_colours(Gen& g, const Node& n, const Value& p, Text t) {
    const Text blend = blend_function(g, p);
    const Text a = g.inp(n, "A_Color", RGBA);
    const Text b = g.inp(n, "B_Color", RGBA);
    const Text e = g.text("L.$0($1, $2, $3)"_fmt, blend, t, a, b);
    g.set(n, "Result_Color", RGBA, p.get("clamp_result").truthy() ? g.text("saturate($0)"_fmt, e) : e);
}

void _mix(Gen& g, const Node& n) {
    const Value p = n.props();
    const Value data_type = p.get("data_type");
    const bool is_vector = data_type.is("VECTOR");
    if (is_vector && p.get("factor_mode").is("NON_UNIFORM")) {
        mix_non_uniform(g, n, p.get("clamp_factor").truthy());
        return;
    }
    const Text factor = g.inp(n, "Factor_Float", VALUE);
    const Text t = p.get("clamp_factor").truthy() ? g.var("float", "saturate($0)"_fmt, factor) : g.var("float", factor);
    if (!data_type.present() || data_type.is("FLOAT")) {
        const Text a = g.inp(n, "A_Float", VALUE);
        const Text b = g.inp(n, "B_Float", VALUE);
        g.set(n, "Result_Float", VALUE, "($0) * (1.0 - $2) + ($1) * $2"_fmt, a, b, t);
    } else if (is_vector) {
        mix_vectors(g, n, t);
    } else if (data_type.is("RGBA")) {
        mix_colours(g, n, p, t);
    } else {
        g.unsupported(g.text("Mix node in $0 mode"_fmt, g.formatted(data_type)));
    }
}

void _mixrgb(Gen& g, const Node& n) {
    const Value p = n.props();
    const Text blend = blend_function(g, p);
    const Text t = g.var("float", "saturate($0)"_fmt, g.inp(n, "Fac", VALUE));
    const Text a = g.inp(n, "Color1", RGBA);
    const Text b = g.inp(n, "Color2", RGBA);
    const Text e = g.text("L.$0($1, $2, $3)"_fmt, blend, t, a, b);
    g.set(n, "Color", RGBA, p.get("use_clamp").truthy() ? g.text("saturate($0)"_fmt, e) : e);
}

}  // namespace

void register_mix(Registry& registry) {
    registry.node({"ShaderNodeMix"}, _mix);
    registry.node({"ShaderNodeMixRGB"}, _mixrgb);
}

}  // namespace quillgen
