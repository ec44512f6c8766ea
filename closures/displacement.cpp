// The second text of a material with real displacement: a scalar centred on 0.5 that a magnitude
// scales to centimetres along the normal.
#include <cmath>

#include "closures/compile.h"
#include "closures/records.h"
#include "closures/text_layout.h"
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// The stored number of a socket, 0.0 where it is false; `missing` where the socket or its value is not there.
double stored(Gen& g, const Node& n, Word ident, double missing) {
    const Value entry = g.entry(n, ident);
    const Value v = entry.present() ? entry.get("v") : entry;
    if (!v.present()) {
        return missing;
    }
    return v.truthy() ? v.as_float() : 0.0;
}

// The span that the displacement can reach, in centimetres, for heights of 0 to 1 and with a quarter of
// headroom; 0.0 where nothing tells it.
double estimated_range(Gen& g, const Value& nid) {
    const Node* n = g.find_node(nid);
    if (n == nullptr || !n->type().is("ShaderNodeDisplacement") || g.linked(*n, "Midlevel") || g.linked(*n, "Scale")) {
        return 0.0;
    }
    const double mid = stored(g, *n, "Midlevel", 0.5);
    const double scale = stored(g, *n, "Scale", 1.0);
    // Written so that a not-a-number stays one.
    double farthest = mid;
    farthest = 1.0 - mid > farthest ? 1.0 - mid : farthest;
    farthest = 0.0 > farthest ? 0.0 : farthest;
    return 2.0 * farthest * std::abs(scale) * 100.0 * 1.25;
}

// 2.0 to the power, which Unreal's magnitude is rounded up to.
double power_of_two(long exponent) {
    constexpr long kLeast = -4;
    constexpr long kMost = 1023;
    if (exponent > kMost) {
        raise_overflow_error("displacement magnitude too large");
    }
    return std::ldexp(1.0, static_cast<int>(exponent < kLeast ? kLeast : exponent));
}

}  // namespace

Displacement _displacement(Gen& g) {
    g.disp_stage = true;
    const Value src = g.ir.at("out").at("displacement");
    const Bound source = g.output(src);
    const Text d = g.var("float3", g.convert(source.text, source.type, VECTOR));
    g.use("dir_world_to_obj");
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    const Text nl = g.geo("Nl");
    const Text s_cm = g.var("float", "100.0 * dot(L.dir_world_to_obj($0, $1, $2, $3), $4)"_fmt, d, ox, oy, oz, nl);
    double range = estimated_range(g, src.at(Py_ssize_t{0}));
    if (range == 0.0) {
        g.warn(
            "displacement range unknown - Nanite displacement magnitude set to 1 m (offsets beyond +-50 cm are "
            "clipped)");
        range = 100.0;
    }
    const double magnitude = power_of_two(g.runtime().ceil_log2(range));
    std::string literal;
    append_literal(literal, magnitude);
    g.emit("return 0.5 + $0 / $1;"_fmt, s_cm, literal);
    return {material_draft(g, "displacement"), magnitude};
}

}  // namespace quillgen
