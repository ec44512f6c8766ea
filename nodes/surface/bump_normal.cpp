#include "nodes/surface/bump_normal.h"

namespace quillgen {

namespace {

// The screen's axes on the surface: the true screen-space derivatives of the position, their metric tensor and its
// determinant.
struct ScreenAxes {
    Text e1;
    Text e2;
    Text g11;
    Text g12;
    Text g22;
    Text gd;
};

ScreenAxes screen_axes(Gen& g) {
    ScreenAxes s;
    s.e1 = g.var("float3", g.deriv("Pcr", 'x'));
    s.e2 = g.var("float3", g.deriv("Pcr", 'y'));
    s.g11 = g.var("float", "dot($0, $0)", s.e1);
    s.g12 = g.var("float", "dot($0, $1)", s.e1, s.e2);
    s.g22 = g.var("float", "dot($0, $0)", s.e2);
    s.gd = g.var("float", "$0 * $1 - $2 * $2", s.g11, s.g22, s.g12);
    return s;
}

// The offset of the signals for the step `d`. It is added to a position directly. A signal that is known only by its
// screen-space derivatives needs it in screen steps: a and b with a * e1 + b * e2 = w, by Cramer's rule on the dot
// products with e1 and e2. If the derivatives span no plane, a and b are 0, and such a signal is not moved.
Offset offset_along(Gen& g, const ScreenAxes& s, Text d, Text fw) {
    const Text w = g.var("float3", "$0 * $1", d, fw);
    const Text r1 = g.var("float", "dot($0, $1)", s.e1, w);
    const Text r2 = g.var("float", "dot($0, $1)", s.e2, w);
    const Text wa = g.var("float", "($0 != 0.0) ? ($1 * $2 - $3 * $4) / $0 : 0.0", s.gd, s.g22, r1, s.g12, r2);
    const Text wb = g.var("float", "($0 != 0.0) ? ($1 * $2 - $3 * $4) / $0 : 0.0", s.gd, s.g11, r2, s.g12, r1);
    return {w, wa, wb};
}

}  // namespace

BumpOffsets _bump_offsets(Gen& g, Text fw) {
    g.use("make_orthonormals_a"_w, "bump_dp"_w, "safe_normalize"_w);
    const Text ng = g.var("float3", g.geo("Ng"));
    const Text view = g.geo("view");
    const Text tanfov = g.geo("tanfov");
    const Text vsize = g.geo("vsize");
    const Text dp = g.var("float", "L.bump_dp($0, $1, $2)", view, tanfov, vsize);
    const Text ax = g.var("float3", "L.make_orthonormals_a($0)", ng);
    BumpOffsets offs;
    offs.dpdx = g.var("float3", "$0 * $1", dp, ax);
    offs.dpdy = g.var("float3", "$0 * cross($1, $2)", dp, ng, ax);
    const ScreenAxes s = screen_axes(g);
    offs.dx = offset_along(g, s, offs.dpdx, fw);
    offs.dy = offset_along(g, s, offs.dpdy, fw);
    return offs;
}

// The height differences are not divided by the filter width; instead the width scales the normal that they
// are subtracted from. The sign of the determinant keeps the bump's direction in a left-handed frame.
Text _bump_normal(Gen& g, Bump b, bool object_space) {
    Text ox;
    Text oy;
    Text oz;
    if (object_space) {
        g.use("dir_world_to_obj"_w, "n_obj_to_world"_w, "safe_normalize"_w);
        ox = g.geo("ox");
        oy = g.geo("oy");
        oz = g.geo("oz");
        b.N = g.var("float3", "L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3)))", b.N, ox, oy, oz);
        b.dpdx = g.var("float3", "L.dir_world_to_obj($0, $1, $2, $3)", b.dpdx, ox, oy, oz);
        b.dpdy = g.var("float3", "L.dir_world_to_obj($0, $1, $2, $3)", b.dpdy, ox, oy, oz);
    }
    const Text rx = g.var("float3", "cross($0, $1)", b.dpdy, b.N);
    const Text ry = g.var("float3", "cross($0, $1)", b.N, b.dpdx);
    const Text det = g.var("float", "dot($0, $1)", b.dpdx, rx);
    // The surface gradient of the height.
    const Text sg = g.var("float3", "($0 - $1) * $2 + ($3 - $1) * $4", b.hx, b.hc, rx, b.hy, ry);
    const Text out = g.var("float3", "L.safe_normalize($0 * abs($1) * $2 - $3 * (($1 < 0.0) ? -1.0 : 1.0) * $4)", b.fw,
                           det, b.N, b.scale, sg);
    g.emit("if (dot($0, $0) == 0.0) $0 = $1; else $0 = normalize($2 * $0 + (1.0 - $2) * $1);", out, b.N, b.strength);
    if (object_space) {
        return g.var("float3", "L.n_obj_to_world($0, $1, $2, $3)", out, ox, oy, oz);
    }
    return out;
}

}  // namespace quillgen
