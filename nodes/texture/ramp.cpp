// Colour ramps: one `if` per segment instead of a lookup table, so that the stops can be parameters.
#include <vector>

#include "core/gen/gen.h"

namespace quillgen {

namespace {

// The expressions of a ramp: the factor's variable, and for each stop a float position and a float4 colour.
struct Ramp {
    Text fac;
    std::vector<Text> pos;
    std::vector<Text> col;
    Value r;
};

// How the two colours of a segment are blended.
struct Blending {
    bool is_constant;
    bool eases;
    Text to;  // the library's functions into the colour model and back; empty for plain channels
    Text from;
};

Text literal_colour(Gen& g, const Value& colour) {
    std::vector<Text> c;
    colour.for_each([&](const Value& component) { c.push_back(g._f(component)); });
    if (c.size() != 4) {
        raise_type_error(c.size() < 4 ? "a colour of fewer than four components in a color ramp"
                                      : "a colour of more than four components in a color ramp");
    }
    return g.text("float4($0, $1, $2, $3)", c[0], c[1], c[2], c[3]);
}

QUILLGEN_OWN_FRAME Text stop_colour(Gen& g, Node& n, int j, const Value& colour) {
    if (!g.use_params) {
        return literal_colour(g, colour);
    }
    const Text name = g.param_name(n, g.text("stop$0_col", j));
    g.declare_parameter(name, "vector"_w, colour.copied_list());
    return name;
}

Ramp _ramp_hlsl(Gen& g, Node& n) {
    Ramp ramp;
    ramp.r = n.record.at("ramp"_w);
    const Value stops = ramp.r.at("stops"_w);
    ramp.fac = g.var("float", g.inp(n, "Fac"_w, VALUE));
    stops.for_each([&](const Value& stop) {
        const Text socket = g.text("stop$0_pos", static_cast<int>(ramp.pos.size()));
        ramp.pos.push_back(g.param(n, socket, VALUE, stop.item(0)));
    });
    stops.for_each([&](const Value& stop) {
        ramp.col.push_back(stop_colour(g, n, static_cast<int>(ramp.col.size()), stop.item(1)));
    });
    return ramp;
}

Blending blending(const Value& interp, const Value& mode) {
    Blending b{.is_constant = interp.is("CONSTANT"), .eases = interp.is("EASE"), .to = {}, .from = {}};
    if (mode.is("HSV")) {
        b.to = "rgb_to_hsv";
        b.from = "hsv_to_rgb";
    } else if (mode.is("HSL")) {
        b.to = "rgb_to_hsl";
        b.from = "hsl_to_rgb";
    }
    return b;
}

// The colour between stop j and the next. Alpha does not go through the colour model.
Text segment_colour(Gen& g, const Ramp& ramp, std::size_t j, const Blending& blending) {
    const Text ca = ramp.col[j];
    const Text cb = ramp.col[j + 1];
    if (blending.is_constant) {
        return ca;
    }
    // The lower limit keeps the division finite where two stops share a position.
    Text t = g.text("saturate(($0 - $1) / max($2 - $1, 1e-10))", ramp.fac, ramp.pos[j], ramp.pos[j + 1]);
    if (blending.eases) {
        t = g.text("(3.0 - 2.0 * ($0)) * ($0) * ($0)", t);
    }
    if (blending.to.empty()) {
        return g.text("lerp($0, $1, $2)", ca, cb, t);
    }
    g.use(blending.to);
    g.use(blending.from);
    return g.text("float4(L.$0(lerp(L.$1($2.rgb), L.$1($3.rgb), $4)), lerp($2.a, $3.a, $4))", blending.from,
                  blending.to, ca, cb, t);
}

QUILLGEN_OWN_FRAME void emit_segments(Gen& g, const Ramp& ramp, Text out, const Blending& blending) {
    // The tests of the segments are half-open, so the last stop has a test of its own.
    g.emit("if ($0 >= $1) $2 = $3;", ramp.fac, ramp.pos.back(), out, ramp.col.back());
    for (std::size_t j = 0; j + 1 < ramp.col.size(); ++j) {
        const Text blend = segment_colour(g, ramp, j, blending);
        g.emit("if ($0 >= $1 && $0 < $2) $3 = $4;", ramp.fac, ramp.pos[j], ramp.pos[j + 1], out, blend);
    }
}

void _ramp(Gen& g, Node& n) {
    const Ramp ramp = _ramp_hlsl(g, n);
    const Value interp = ramp.r.at("interp"_w);
    const Value mode = ramp.r.at("mode"_w);
    const Text out = g.tmp("rc");
    if (ramp.col.empty()) {
        raise_index_error("a color ramp without stops");
    }
    g.emit("float4 $0 = $1;", out, ramp.col.front());
    if (ramp.col.size() > 1) {
        emit_segments(g, ramp, out, blending(interp, mode));
        if (interp.is("B_SPLINE") || interp.is("CARDINAL")) {
            g.warn("$0: Color Ramp $1 interpolation is evaluated as linear", g.formatted(n.id), g.formatted(interp));
        }
    }
    g.bind(n, "Color"_w, RGBA, "$0.rgb", out);
    g.bind(n, "Alpha"_w, VALUE, "$0.a", out);
}

const node nodes[] = {
    {{"ShaderNodeValToRGB"}, _ramp},
};

}  // namespace

}  // namespace quillgen
