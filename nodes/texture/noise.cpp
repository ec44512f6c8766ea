// Noise and white noise. The library has one function for each dimension and type of noise; its name is composed here.
#include "nodes/texture/dimensions.h"

namespace quillgen {

namespace {

void _tex_noise(Gen& g, Node& n) {
    const Value p = n.props();
    const int d = enum_number(p, "noise_dimensions"_w, "3D", _DIMS);
    const Value type = p.get("noise_type"_w);
    const Text fn = g.text("noise_texture$0_$1", d, type.present() ? g.formatted(type) : "FBM");
    g.use(fn);
    const Text scale = g.var("float", g.inp(n, "Scale"_w, VALUE));
    const Text co_type = g.types(d);
    const Text co = g.var(co_type, _coord(g, n, d, scale));
    const Text detail = g.var("float", "clamp($0, 0.0, 15.0)", g.inp(n, "Detail"_w, VALUE));
    // No upper limit, unlike the roughness of Voronoi.
    const Text rough = g.var("float", "max($0, 0.0)", g.inp(n, "Roughness"_w, VALUE));
    // The library writes the colour through its last argument, and only if `want` is 1.0.
    const Text col = g.tmp("c");
    g.emit("float3 $0;", col);
    const Text want = g.is_used(n, "Color"_w) ? "1.0" : "0.0";
    const Text lac = g.inp(n, "Lacunarity"_w, VALUE);
    const Text off = g.inp(n, "Offset"_w, VALUE, "0.0");
    const Text gain = g.inp(n, "Gain"_w, VALUE, "1.0");
    const Text dist = g.inp(n, "Distortion"_w, VALUE);
    const Value normalize = p.get("normalize"_w);
    const Text norm = !normalize.present() || normalize.truthy() ? "1.0" : "0.0";
    const Text val = g.var("float", "L.$0($1, $2, $3, $4, $5, $6, $7, $8, $9, $(10))", fn, co, detail, rough, lac, off,
                           gain, dist, norm, want, col);
    g.bind(n, "Fac"_w, VALUE, val);
    g.bind(n, "Color"_w, RGBA, col);
}

// White noise has no scale. Its W is evaluated in 2D and 3D too, where it is unused.
Text white_coordinate(Gen& g, Node& n, int d) {
    if (d == 1) {
        return g.var("float", g.inp(n, "W"_w, VALUE, "0.0"));
    }
    const Text v = g.vector_or(n, "Vector"_w, "generated");
    const Text w = g.inp(n, "W"_w, VALUE, "0.0");
    const Text type = g.types(d);
    switch (d) {
    case 2:
        return g.var(type, "($0).xy", v);
    case 3:
        return g.var(type, v);
    default:
        return g.var(type, "float4($0, $1)", v, w);
    }
}

void _tex_white(Gen& g, Node& n) {
    constexpr Text kSuffixes[] = {"float", "float2", "float3", "float4"};
    const int d = enum_number(n.props(), "noise_dimensions"_w, "3D", _DIMS);
    const Text x = white_coordinate(g, n, d);
    const Text suffix = kSuffixes[d - 1];
    g.use(g.text("hash_$0_to_float", suffix));
    g.use(g.text("hash_$0_to_float3", suffix));
    g.set(n, "Value"_w, VALUE, "L.hash_$0_to_float($1)", suffix, x);
    g.set(n, "Color"_w, RGBA, "L.hash_$0_to_float3($1)", suffix, x);
}

const node nodes[] = {
    {{"ShaderNodeTexNoise"}, _tex_noise},
    {{"ShaderNodeTexWhiteNoise"}, _tex_white},
};

}  // namespace

}  // namespace quillgen
