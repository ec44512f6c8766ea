// The displacement output as a bump of the shading normal. It shows relief that is too fine for the mesh, displaced or
// not.
#include "nodes/surface/bump_normal.h"

namespace quillgen {

namespace {

// The height is the component of the displacement along the normal.
void displacement_bump(Gen& g, const Value& src, bool object_space) {
    Node disp = g.reader("D"_w, src);
    Bump bump;
    bump.N = g.var("float3", g.geo("Nf"));
    bump.scale = "1.0";
    bump.strength = "1.0";
    bump.fw = "0.1";  // the default of the Bump node
    const BumpOffsets offs = _bump_offsets(g, bump.fw);
    bump.dpdx = offs.dpdx;
    bump.dpdy = offs.dpdy;
    bump.hx = g.var("float", "dot($0, $1)", g.inp_offset(disp, "D"_w, VECTOR, offs.dx), bump.N);
    bump.hy = g.var("float", "dot($0, $1)", g.inp_offset(disp, "D"_w, VECTOR, offs.dy), bump.N);
    bump.hc = g.var("float", "dot($0, $1)", g.inp(disp, "D"_w, VECTOR), bump.N);
    g.n_override = _bump_normal(g, bump, object_space);
}

}  // namespace

void displacement_normal(Gen& g) {
    const Value src = g.ir.at("out"_w).get("displacement"_w);
    const Value settings = g.ir.get("settings"_w);
    const Value method = settings.present() ? settings.get("displacement"_w) : Value();
    const bool bump = !method.present() || method.is("BUMP");
    if (src.truthy() && (bump || method.is("BOTH") || method.is("DISPLACEMENT"))) {
        displacement_bump(g, src, !bump);
    }
}

}  // namespace quillgen
