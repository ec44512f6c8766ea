// Fresnel and Layer Weight: how far the surface turns away from the viewer.
#include "core/gen/gen.h"
#include "nodes/surface/normals.h"

namespace quillgen {

namespace {

// On the back side the light leaves the medium, so the ratio of the indices is inverted.
void _fresnel(Gen& g, Node& n) {
    g.use("fresnel_dielectric_cos"_w);
    const Text ior = g.inp(n, "IOR"_w, VALUE);
    const Text eta = g.var("float", "max($0, 1e-5)", ior);
    const Text ts = g.geo("twosided");
    g.emit("if ($0 < 0.0) $1 = 1.0 / $1;", ts, eta);
    const Text i = g.geo("I");
    const Text nor = _normal_or_shading(g, n);
    g.set(n, "Fac"_w, VALUE, "L.fresnel_dielectric_cos(dot($0, $1), $2)", i, nor, eta);
}

// Here eta decreases as the blend increases, so it is inverted on the front side.
void _layer_weight(Gen& g, Node& n) {
    g.use("fresnel_dielectric_cos"_w);
    const Text blend = g.var("float", g.inp(n, "Blend"_w, VALUE));
    const Text nor = g.var("float3", _normal_or_shading(g, n));
    const Text i = g.geo("I");
    const Text eta = g.var("float", "max(1.0 - $0, 1e-5)", blend);
    const Text ts = g.geo("twosided");
    g.emit("$1 = ($0 < 0.0) ? $1 : 1.0 / $1;", ts, eta);
    g.set(n, "Fresnel"_w, VALUE, "L.fresnel_dielectric_cos(dot($0, $1), $2)", i, nor, eta);
    const Text f = g.var("float", "abs(dot($0, $1))", i, nor);
    // The blend as an exponent: 0.5 leaves f as it is, and the clamp keeps the division finite.
    const Text b = g.var("float", blend);
    g.emit(
        "if ($0 != 0.5) { $0 = clamp($0, 0.0, 1.0 - 1e-5); "
        "$0 = ($0 < 0.5) ? 2.0 * $0 : 0.5 / (1.0 - $0); $1 = pow($1, $0); }",
        b, f);
    g.set(n, "Facing"_w, VALUE, "1.0 - $0", f);
}

const node nodes[] = {
    {{"ShaderNodeFresnel"}, _fresnel},
    {{"ShaderNodeLayerWeight"}, _layer_weight},
};

}  // namespace

}  // namespace quillgen
