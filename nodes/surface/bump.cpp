// Bump: a normal that is perturbed by a height.
#include "core/gen/gen.h"
#include "nodes/surface/bump_normal.h"
#include "nodes/surface/normals.h"

namespace quillgen {

namespace {

// Only the socket's default value counts. A link is not followed, because the offsets need one width for the whole
// surface.
Text filter_width(Gen& g, Node& n) {
    const Value width = Gen::stored(n, "Filter Width"_w);
    return width.is_none() ? "0.1" : g._f(width);
}

QUILLGEN_OWN_FRAME Text normal_by_height(Gen& g, Node& n, Bump& bump) {
    bump.fw = filter_width(g, n);
    const BumpOffsets offs = _bump_offsets(g, bump.fw);
    bump.dpdx = offs.dpdx;
    bump.dpdy = offs.dpdy;
    bump.hx = g.inp_offset(n, "Height"_w, VALUE, offs.dx);
    bump.hy = g.inp_offset(n, "Height"_w, VALUE, offs.dy);
    bump.hc = g.var("float", g.inp(n, "Height"_w, VALUE));
    return _bump_normal(g, bump, false);
}

// A strength above one extrapolates beyond the perturbed normal; a negative one counts as zero.
void _bump(Gen& g, Node& n) {
    Bump bump;
    bump.N = g.var("float3", _normal_or_shading(g, n));
    bump.strength = g.var("float", "max($0, 0.0)", g.inp(n, "Strength"_w, VALUE));
    bump.scale = g.var("float", g.inp(n, "Distance"_w, VALUE));
    if (n.props().get("invert"_w).truthy()) {
        g.emit("$0 = -$0;", bump.scale);
    }
    if (!g.linked(n, "Height"_w)) {
        g.bind(n, "Normal"_w, VECTOR, bump.N);
        return;
    }
    g.bind(n, "Normal"_w, VECTOR, normal_by_height(g, n, bump));
}

const node nodes[] = {
    {{"ShaderNodeBump"}, _bump},
};

}  // namespace

}  // namespace quillgen
