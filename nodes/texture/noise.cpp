// Noise and white noise. The library has one function for each dimension and type of noise, whose name is
// composed here.
#include "nodes/register.h"
#include "nodes/texture/dimensions.h"

namespace quillgen {

namespace {

void _tex_noise(Gen& g, const Node& n) {
    const Value p = n.props();
    const int d = code_of(p, "noise_dimensions", "3D", _DIMS);
    const Value type = p.get("noise_type");
    const Text fn = g.text("noise_texture$0_$1"_fmt, d, type.present() ? g.formatted(type) : "FBM");
    g.use_composed(fn);
    const Text scale = g.var("float", g.inp(n, "Scale", VALUE));
    const Text co_type = g.types(d);
    const Text co = g.var(co_type, _coord(g, n, d, scale));
    const Text detail = g.var("float", "clamp($0, 0.0, 15.0)"_fmt, g.inp(n, "Detail", VALUE));
    // Open above, unlike the roughness of the cells.
    const Text rough = g.var("float", "max($0, 0.0)"_fmt, g.inp(n, "Roughness", VALUE));
    // The library writes the colour through its last argument, and only where it is asked to.
    const Text col = g.tmp("c");
    g.emit("float3 $0;"_fmt, col);
    const Text want = g.is_used(n, "Color") ? "1.0" : "0.0";
    const Text lac = g.inp(n, "Lacunarity", VALUE);
    const Text off = g.inp(n, "Offset", VALUE, "0.0");
    const Text gain = g.inp(n, "Gain", VALUE, "1.0");
    const Text dist = g.inp(n, "Distortion", VALUE);
    const Value normalize = p.get("normalize");
    const Text norm = !normalize.present() || normalize.truthy() ? "1.0" : "0.0";
    const Text val = g.var("float", "L.$0($1, $2, $3, $4, $5, $6, $7, $8, $9, $(10))"_fmt, fn, co, detail, rough, lac,
                           off, gain, dist, norm, want, col);
    g.bind(n, "Fac", VALUE, val);
    g.bind(n, "Color", RGBA, col);
}

// White noise has no scale. Its W is evaluated in 2D and 3D too, where nothing reads it.
Text white_coordinate(Gen& g, const Node& n, int d) {
    if (d == 1) {
        return g.var("float", g.inp(n, "W", VALUE, "0.0"));
    }
    const Text v = g.vector_or(n, "Vector", "generated");
    const Text w = g.inp(n, "W", VALUE, "0.0");
    const Text type = g.types(d);
    switch (d) {
    case 2:
        return g.var(type, "($0).xy"_fmt, v);
    case 3:
        return g.var(type, v);
    default:
        return g.var(type, "float4($0, $1)"_fmt, v, w);
    }
}

void _tex_white(Gen& g, const Node& n) {
    constexpr Text kSuffixes[] = {"float", "float2", "float3", "float4"};
    const int d = code_of(n.props(), "noise_dimensions", "3D", _DIMS);
    const Text x = white_coordinate(g, n, d);
    const Text suffix = kSuffixes[d - 1];
    g.use_composed(g.text("hash_$0_to_float"_fmt, suffix));
    g.use_composed(g.text("hash_$0_to_float3"_fmt, suffix));
    g.set(n, "Value", VALUE, "L.hash_$0_to_float($1)"_fmt, suffix, x);
    g.set(n, "Color", RGBA, "L.hash_$0_to_float3($1)"_fmt, suffix, x);
}

}  // namespace

void register_noise(Registry& registry) {
    registry.node({"ShaderNodeTexNoise"}, _tex_noise);
    registry.node({"ShaderNodeTexWhiteNoise"}, _tex_white);
}

}  // namespace quillgen
