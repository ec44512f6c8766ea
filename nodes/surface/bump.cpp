// Bump: a height as a perturbed normal.
#include "core/gen/gen.h"
#include "nodes/register.h"
#include "nodes/surface/bump_normal.h"
#include "nodes/surface/normals.h"

namespace quillgen {

namespace {

// Only the stored value counts: the offsets need one width for the whole surface, so a link is not followed.
Text filter_width(Gen& g, const Node& n) {
    const Value entry = g.entry(n, "Filter Width");
    const Value width = entry.truthy() ? entry.get("v") : Value();
    return width.is_none() ? "0.1" : g._f(width);
}

// A strength above one goes on past the perturbed normal; a negative one counts as zero.
void _bump(Gen& g, const Node& n) {
    Bump bump;
    bump.N = g.var("float3", _normal_or_shading(g, n));
    bump.strength = g.var("float", "max($0, 0.0)"_fmt, g.inp(n, "Strength", VALUE));
    bump.scale = g.var("float", g.inp(n, "Distance", VALUE));
    if (n.props().get("invert").truthy()) {
        g.emit("$0 = -$0;"_fmt, bump.scale);
    }
    if (!g.linked(n, "Height")) {
        g.bind(n, "Normal", VECTOR, bump.N);
        return;
    }
    bump.fw = filter_width(g, n);
    const BumpOffsets offs = _bump_offsets(g, bump.fw);
    bump.dpdx = offs.dpdx;
    bump.dpdy = offs.dpdy;
    bump.hx = g.inp_offset(n, "Height", VALUE, offs.dx);
    bump.hy = g.inp_offset(n, "Height", VALUE, offs.dy);
    bump.hc = g.var("float", g.inp(n, "Height", VALUE));
    g.bind(n, "Normal", VECTOR, _bump_normal(g, bump, false));
}

}  // namespace

void register_bump(Registry& registry) { registry.node({"ShaderNodeBump"}, _bump); }

}  // namespace quillgen
