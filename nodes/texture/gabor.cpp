// Gabor noise and radial tiling: the library packs the results into one vector, whose components are the outputs.
#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// Both orientations are passed, whichever of them the type reads.
void _tex_gabor(Gen& g, const Node& n) {
    g.use("gabor");
    const int dims = property_is(n.props(), "gabor_type", "2D", "3D") ? 3 : 2;
    const Text co = g.vector_or(n, "Vector", "generated");
    const Text scale = g.inp(n, "Scale", VALUE);
    const Text freq = g.inp(n, "Frequency", VALUE);
    const Text aniso = g.inp(n, "Anisotropy", VALUE);
    const Text o2 = g.inp(n, "Orientation 2D", VALUE, "0.785398163");
    const Text o3 = g.inp(n, "Orientation 3D", VECTOR, "float3(1.41421356, 1.41421356, 0.0)");
    const Text r = g.var("float3", "L.tex_gabor($0, $1, $2, $3, $4, $5, $6)"_fmt, co, scale, freq, aniso, o2, o3, dims);
    g.bind(n, "Value", VALUE, "$0.x"_fmt, r);
    g.bind(n, "Phase", VALUE, "$0.y"_fmt, r);
    g.bind(n, "Intensity", VALUE, "$0.z"_fmt, r);
}

void _radial_tiling(Gen& g, const Node& n) {
    g.use("radial_tiling");
    const Text v = g.var("float3", g.inp(n, "Vector", VECTOR));
    const Text sides = g.var("float", "max($0, 2.0)"_fmt, g.inp(n, "Sides", VALUE));
    const Text rnd = g.var("float", "clamp($0, 0.0, 1.0)"_fmt, g.inp(n, "Roundness", VALUE));
    const Text norm = n.props().get("normalize").truthy() ? "true" : "false";
    const Text o = g.var("float4", "L.calculate_out_variables(true, true, $0, $1, $2, $3.xy)"_fmt, norm, sides, rnd, v);
    g.set(n, "Segment Coordinates", VECTOR, "float3($0.y, $0.x, 0.0)"_fmt, o);
    // The one output that takes a call of its own, which is not written where nothing reads it.
    g.set(n, "Segment ID", VALUE, "L.calculate_out_segment_id($0, $1.xy)"_fmt, sides, v);
    g.set(n, "Segment Width", VALUE, "$0.z"_fmt, o);
    g.set(n, "Segment Rotation", VALUE, "$0.w"_fmt, o);
}

}  // namespace

void register_gabor(Registry& registry) {
    registry.node({"ShaderNodeTexGabor"}, _tex_gabor);
    registry.node({"ShaderNodeRadialTiling"}, _radial_tiling);
}

}  // namespace quillgen
