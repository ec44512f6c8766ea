// Gabor noise and radial tiling: the library packs the results into one vector, whose components are the outputs.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

// Both orientations are passed, whichever of them the type uses.
void _tex_gabor(Gen& g, Node& n) {
    g.use("gabor"_w);
    const int dims = property_is(n.props(), "gabor_type"_w, "2D", "3D") ? 3 : 2;
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text freq = g.inp(n, "Frequency"_w, VALUE);
    const Text aniso = g.inp(n, "Anisotropy"_w, VALUE);
    const Text o2 = g.inp(n, "Orientation 2D"_w, VALUE, "0.785398163");
    const Text o3 = g.inp(n, "Orientation 3D"_w, VECTOR, "float3(1.41421356, 1.41421356, 0.0)");
    const Text r = g.var("float3", "L.tex_gabor($0, $1, $2, $3, $4, $5, $6)", co, scale, freq, aniso, o2, o3, dims);
    g.bind(n, "Value"_w, VALUE, "$0.x", r);
    g.bind(n, "Phase"_w, VALUE, "$0.y", r);
    g.bind(n, "Intensity"_w, VALUE, "$0.z", r);
}

void _radial_tiling(Gen& g, Node& n) {
    g.use("radial_tiling"_w);
    const Text v = g.var("float3", g.inp(n, "Vector"_w, VECTOR));
    const Text sides = g.var("float", "max($0, 2.0)", g.inp(n, "Sides"_w, VALUE));
    const Text rnd = g.var("float", "clamp($0, 0.0, 1.0)", g.inp(n, "Roundness"_w, VALUE));
    const Text norm = n.props().get("normalize"_w).truthy() ? "true" : "false";
    const Text o = g.var("float4", "L.calculate_out_variables(true, true, $0, $1, $2, $3.xy)", norm, sides, rnd, v);
    g.set(n, "Segment Coordinates"_w, VECTOR, "float3($0.y, $0.x, 0.0)", o);
    // The only output with a separate call, which is omitted if nothing reads the output.
    g.set(n, "Segment ID"_w, VALUE, "L.calculate_out_segment_id($0, $1.xy)", sides, v);
    g.set(n, "Segment Width"_w, VALUE, "$0.z", o);
    g.set(n, "Segment Rotation"_w, VALUE, "$0.w", o);
}

const node nodes[] = {
    {{"ShaderNodeTexGabor"}, _tex_gabor},
    {{"ShaderNodeRadialTiling"}, _radial_tiling},
};

}  // namespace

}  // namespace quillgen
