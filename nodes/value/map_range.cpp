// Map Range, which maps a value from one range to another, and Clamp.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

// The variables of a Map Range node's sockets.
struct Ranges {
    Text v;
    Text fmin;
    Text fmax;
    Text tmin;
    Text tmax;
};

constexpr const char* kComponents[] = {"x", "y", "z"};

bool interpolation_is(const Value& p, Text word) { return property_is(p, "interpolation_type"_w, "LINEAR", word); }

// The smooth interpolations need no clamp, because their factor is never outside 0 to 1.
bool clamps(const Value& p) {
    return p.get("clamp"_w).truthy() && (interpolation_is(p, "LINEAR") || interpolation_is(p, "STEPPED"));
}

// ---- vectors --------------------------------------------------------------------------------

Ranges vector_ranges(Gen& g, Node& n) {
    const Text v = g.var("float3", g.inp(n, "Vector"_w, VECTOR));
    const Text fmin = g.var("float3", g.inp(n, "From_Min_FLOAT3"_w, VECTOR));
    const Text fmax = g.var("float3", g.inp(n, "From_Max_FLOAT3"_w, VECTOR));
    const Text tmin = g.var("float3", g.inp(n, "To_Min_FLOAT3"_w, VECTOR));
    const Text tmax = g.var("float3", g.inp(n, "To_Max_FLOAT3"_w, VECTOR));
    return {v, fmin, fmax, tmin, tmax};
}

void step_vector(Gen& g, Text f, Text st) {
    Text stepped[3];
    for (int i = 0; i < 3; ++i) {
        stepped[i] = g.text("($0.$2 > 0.0) ? floor($1.$2 * ($0.$2 + 1.0)) / $0.$2 : 0.0", st, f, kComponents[i]);
    }
    g.emit("$0 = float3($1, $2, $3);", f, stepped[0], stepped[1], stepped[2]);
}

void map_vector(Gen& g, Node& n, const Value& p) {
    const Ranges in = vector_ranges(g, n);
    g.use("safe_divide3"_w);
    const Text f = g.var("float3", "L.safe_divide3($0 - $1, $2 - $1)", in.v, in.fmin, in.fmax);
    if (interpolation_is(p, "STEPPED")) {
        step_vector(g, f, g.var("float3", g.inp(n, "Steps_FLOAT3"_w, VECTOR)));
    } else if (interpolation_is(p, "SMOOTHSTEP")) {
        g.emit("$0 = saturate($0); $0 = (float3(3.0, 3.0, 3.0) - 2.0 * $0) * ($0 * $0);", f);
    } else if (interpolation_is(p, "SMOOTHERSTEP")) {
        g.emit("$0 = saturate($0); $0 = $0 * $0 * $0 * ($0 * ($0 * 6.0 - 15.0) + 10.0);", f);
    }
    const Text r = g.var("float3", "$0 + $1 * ($2 - $0)", in.tmin, f, in.tmax);
    if (clamps(p)) {
        for (const char* comp : kComponents) {
            g.emit("$0.$3 = ($1.$3 > $2.$3) ? clamp($0.$3, $2.$3, $1.$3) : clamp($0.$3, $1.$3, $2.$3);", r, in.tmin,
                   in.tmax, comp);
        }
    }
    g.bind(n, "Vector"_w, VECTOR, r);
    g.bind(n, "Result"_w, VALUE, "0.0");
}

// ---- scalars --------------------------------------------------------------------------------

Ranges scalar_ranges(Gen& g, Node& n) {
    const Text v = g.var("float", g.inp(n, "Value"_w, VALUE));
    const Text fmin = g.var("float", g.inp(n, "From Min"_w, VALUE));
    const Text fmax = g.var("float", g.inp(n, "From Max"_w, VALUE));
    const Text tmin = g.var("float", g.inp(n, "To Min"_w, VALUE));
    const Text tmax = g.var("float", g.inp(n, "To Max"_w, VALUE));
    return {v, fmin, fmax, tmin, tmax};
}

// An empty source range divides by zero here; map_scalar replaces the result with 0.0.
void assign_factor(Gen& g, Node& n, const Value& p, const Ranges& in, Text f) {
    if (interpolation_is(p, "LINEAR")) {
        g.emit("$0 = ($1 - $2) / ($3 - $2);", f, in.v, in.fmin, in.fmax);
    } else if (interpolation_is(p, "STEPPED")) {
        const Text st = g.var("float", g.inp(n, "Steps"_w, VALUE));
        g.emit("$0 = ($1 - $2) / ($3 - $2); $0 = ($4 > 0.0) ? floor($0 * ($4 + 1.0)) / $4 : 0.0;", f, in.v, in.fmin,
               in.fmax, st);
    } else if (interpolation_is(p, "SMOOTHSTEP")) {
        g.use("smoothstepc"_w);
        g.emit("$0 = ($1 > $2) ? 1.0 - L.smoothstepc($2, $1, $3) : L.smoothstepc($1, $2, $3);", f, in.fmin, in.fmax,
               in.v);
    } else {
        g.use("smootherstep"_w);
        g.emit("$0 = ($1 > $2) ? 1.0 - L.smootherstep($2, $1, $3) : L.smootherstep($1, $2, $3);", f, in.fmin, in.fmax,
               in.v);
    }
}

void map_scalar(Gen& g, Node& n, const Value& p) {
    const Ranges in = scalar_ranges(g, n);
    const Text f = g.var("float", "0.0");
    assign_factor(g, n, p, in, f);
    const Text r = g.var("float", "($0 != $1) ? $2 + $3 * ($4 - $2) : 0.0", in.fmax, in.fmin, in.tmin, f, in.tmax);
    if (clamps(p)) {
        g.emit("$0 = ($1 > $2) ? clamp($0, $2, $1) : clamp($0, $1, $2);", r, in.tmin, in.tmax);
    }
    g.bind(n, "Result"_w, VALUE, r);
    g.bind(n, "Vector"_w, VECTOR, "float3(0.0, 0.0, 0.0)");
}

void _map_range(Gen& g, Node& n) {
    const Value p = n.props();
    if (p.get("data_type"_w).is("FLOAT_VECTOR")) {
        map_vector(g, n, p);
    } else {
        map_scalar(g, n, p);
    }
}

void _clamp(Gen& g, Node& n) {
    const Text v = g.inp(n, "Value"_w, VALUE);
    const Text lo = g.var("float", g.inp(n, "Min"_w, VALUE));
    const Text hi = g.var("float", g.inp(n, "Max"_w, VALUE));
    if (n.props().get("clamp_type"_w).is("RANGE")) {
        g.set(n, "Result"_w, VALUE, "(($1 > $2) ? clamp($0, $2, $1) : clamp($0, $1, $2))", v, lo, hi);
    } else {
        g.set(n, "Result"_w, VALUE, "clamp($0, $1, $2)", v, lo, hi);
    }
}

const node nodes[] = {
    {{"ShaderNodeMapRange"}, _map_range},
    {{"ShaderNodeClamp"}, _clamp},
};

}  // namespace

}  // namespace quillgen
