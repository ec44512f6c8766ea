#include "closures/run.h"

#include "nodes/surface/bump_normal.h"

namespace quillgen {

Text run(Gen& g, bool emission_mode) {
    const Value src = g.ir.at("out"_w).get("surface"_w);
    if (src.is_none()) {
        g.unsupported("no surface output");
    }
    // Must run before the surface is evaluated, because the surface's whole graph reads the bumped normal.
    displacement_normal(g);
    const auto [e, t] = g.output(src);
    if (emission_mode) {
        return is_closure(t) ? g.text("($0).emission", e) : g.convert(e, t, RGBA);
    }
    const Text c = is_closure(t) ? e : g.text("L.closure_emission($0)", g.convert(e, t, RGBA));
    return g.var_with_prefix("surf", "closure", c);
}

}  // namespace quillgen
