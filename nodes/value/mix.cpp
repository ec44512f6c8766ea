// Mix and the older MixRGB: two values blended by a factor.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

// The name of the library's function for the blend type. The library raises the error for an unknown one.
Text blend_function(Gen& g, const Value& props) {
    const Value word = props.get("blend_type"_w);
    const Text name = g.text("mix_$0", word.present() ? g.formatted(word.lower()) : "mix");
    g.use(name);
    return name;
}

void mix_vectors(Gen& g, Node& n, Text t) {
    const Text a = g.inp(n, "A_Vector"_w, VECTOR);
    const Text b = g.inp(n, "B_Vector"_w, VECTOR);
    g.set(n, "Result_Vector"_w, VECTOR, "($0) * (float3(1.0, 1.0, 1.0) - $2) + ($1) * $2", a, b, t);
}

void mix_non_uniform(Gen& g, Node& n, bool clamp_factor) {
    const Text factor = g.inp(n, "Factor_Vector"_w, VECTOR);
    const Text t = clamp_factor ? g.text("saturate($0)", factor) : factor;
    const Text a = g.inp(n, "A_Vector"_w, VECTOR);
    const Text b = g.inp(n, "B_Vector"_w, VECTOR);
    const Text tv = g.var("float3", t);
    g.set(n, "Result_Vector"_w, VECTOR, "($0) * (float3(1.0, 1.0, 1.0) - $2) + ($1) * $2", a, b, tv);
}

void mix_colours(Gen& g, Node& n, const Value& p, Text t) {
    const Text blend = blend_function(g, p);
    const Text a = g.inp(n, "A_Color"_w, RGBA);
    const Text b = g.inp(n, "B_Color"_w, RGBA);
    const Text e = g.text("L.$0($1, $2, $3)", blend, t, a, b);
    g.set(n, "Result_Color"_w, RGBA, p.get("clamp_result"_w).truthy() ? g.text("saturate($0)", e) : e);
}

void _mix(Gen& g, Node& n) {
    const Value p = n.props();
    const Value data_type = p.get("data_type"_w);
    const bool is_vector = data_type.is("VECTOR");
    if (is_vector && p.get("factor_mode"_w).is("NON_UNIFORM")) {
        mix_non_uniform(g, n, p.get("clamp_factor"_w).truthy());
        return;
    }
    const Text factor = g.inp(n, "Factor_Float"_w, VALUE);
    const Text t = p.get("clamp_factor"_w).truthy() ? g.var("float", "saturate($0)", factor) : g.var("float", factor);
    if (!data_type.present() || data_type.is("FLOAT")) {
        const Text a = g.inp(n, "A_Float"_w, VALUE);
        const Text b = g.inp(n, "B_Float"_w, VALUE);
        g.set(n, "Result_Float"_w, VALUE, "($0) * (1.0 - $2) + ($1) * $2", a, b, t);
    } else if (is_vector) {
        mix_vectors(g, n, t);
    } else if (data_type.is("RGBA")) {
        mix_colours(g, n, p, t);
    } else {
        g.unsupported(g.text("Mix node in $0 mode", g.formatted(data_type)));
    }
}

void _mixrgb(Gen& g, Node& n) {
    const Value p = n.props();
    const Text blend = blend_function(g, p);
    const Text t = g.var("float", "saturate($0)", g.inp(n, "Fac"_w, VALUE));
    const Text a = g.inp(n, "Color1"_w, RGBA);
    const Text b = g.inp(n, "Color2"_w, RGBA);
    const Text e = g.text("L.$0($1, $2, $3)", blend, t, a, b);
    g.set(n, "Color"_w, RGBA, p.get("use_clamp"_w).truthy() ? g.text("saturate($0)", e) : e);
}

const node nodes[] = {
    {{"ShaderNodeMix"}, _mix},
    {{"ShaderNodeMixRGB"}, _mixrgb},
};

}  // namespace

}  // namespace quillgen
