// The second text of a material whose geometry is displaced: a scalar, centred on 0.5, that a magnitude scales to
// centimetres along the normal.
#include <cmath>

#include "closures/compile.h"
#include "closures/layout.h"

namespace quillgen {

namespace {

// The default value of a socket as a number: 0.0 if it is false in Python's sense, `missing` if it is absent.
double stored_number(Node& n, Word ident, double missing) {
    const Value v = Gen::stored(n, ident);
    if (!v.present()) {
        return missing;
    }
    return v.truthy() ? v.as_float() : 0.0;
}

// The range of the displacement in centimetres, for heights of 0 to 1 and with 25 % of headroom. 0.0 if it is unknown.
double estimated_range(Gen& g, const Value& nid) {
    Node* const n = g.find_node(nid);
    if (n == nullptr || !n->type().is("ShaderNodeDisplacement") || Gen::linked(*n, "Midlevel"_w) ||
        Gen::linked(*n, "Scale"_w)) {
        return 0.0;
    }
    const double mid = stored_number(*n, "Midlevel"_w, 0.5);
    const double scale = stored_number(*n, "Scale"_w, 1.0);
    // The comparisons are written so that NaN propagates.
    double farthest = mid;
    farthest = 1.0 - mid > farthest ? 1.0 - mid : farthest;
    farthest = 0.0 > farthest ? 0.0 : farthest;
    return 2.0 * farthest * std::abs(scale) * 100.0 * 1.25;
}

// 2.0 to the power `exponent`. Unreal's magnitude is rounded up to a power of two.
double power_of_two(long exponent) {
    constexpr long kLeast = -4;
    constexpr long kMost = 1023;
    if (exponent > kMost) {
        raise_overflow_error("displacement magnitude too large");
    }
    return std::ldexp(1.0, static_cast<int>(exponent < kLeast ? kLeast : exponent));
}

}  // namespace

Displacement _displacement(Gen& surface, const Value& params) {
    Gen g(surface.module(), surface.ir, surface.release_reading(), surface.use_params);
    g.disp_stage = true;
    const Value src = g.ir.at("out"_w).at("displacement"_w);
    const auto [e, t] = g.output(src);
    const Text d = g.var("float3", g.convert(e, t, VECTOR));
    g.use("dir_world_to_obj"_w);
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    const Text nl = g.geo("Nl");
    const Text s_cm = g.var("float", "100.0 * dot(L.dir_world_to_obj($0, $1, $2, $3), $4)", d, ox, oy, oz, nl);
    double range = estimated_range(g, src.item(0));
    if (range == 0.0) {
        g.warn(
            "displacement range unknown - Nanite displacement magnitude set to 1 m (offsets beyond +-50 cm are "
            "clipped)");
        range = 100.0;
    }
    const double magnitude = power_of_two(g.runtime().ceil_log2(range));
    g.emit("return 0.5 + $0 / $1;", s_cm, g._f(magnitude));
    const Value code = lay_out(g.runtime(), kDisplacementHeader, g.structs, g.need, g.body());
    add_parameters(g, params);
    g.warnings.for_each([&](const Value& warning) { surface.warnings.append(warning); });
    return {code, input_list(g), magnitude};
}

}  // namespace quillgen
