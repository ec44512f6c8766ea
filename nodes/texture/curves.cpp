// RGB, vector and float curves: tables of evenly spaced samples as constant arrays, with inline lookups.
#include <vector>

#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

// Declares the table as an array, on one line however long it is, and returns its name.
QUILLGEN_OWN_FRAME Text _curve_table(Gen& g, const Value& table) {
    const Text name = g.tmp("ct");
    const auto size = static_cast<int>(table.size());
    g.emit("const float $0[$1] = {$2};", name, size, g.literals(table));
    return name;
}

// The curve at `f`, which is 0 at the first sample and 1 at the last. Outside, the curve is extrapolated linearly from
// the two samples at that end, or is constant. `f` is repeated nine times, so callers pass a variable.
QUILLGEN_OWN_FRAME Text _lookup(Gen& g, Text table, Text f, int size, bool extrapolate) {
    return g.text(
        "((($0) < 0.0 || ($0) > 1.0) && $4 ?"
        " ((($0) < 0.0) ? $1[0] + ($1[0] - $1[1]) * (-($0)) * $2"
        " : $1[$2] + ($1[$2] - $1[$3]) * (($0) - 1.0) * $2)"
        " : lerp($1[clamp(int(saturate($0) * $2), 0, $2)],"
        " $1[clamp(int(saturate($0) * $2) + 1, 0, $2)],"
        " saturate($0) * $2 - float(clamp(int(saturate($0) * $2), 0, $2))))",
        f, table, size - 1, size - 2, extrapolate ? "true" : "false");
}

int first_size(const Value& c) { return static_cast<int>(c.at("tables"_w).item(0).size()); }

bool extrapolates(const Value& c) { return property_is(c, "extend"_w, "EXTRAPOLATED", "EXTRAPOLATED"); }

// The width of the input range. It may be zero; the generated HLSL then divides by zero.
QUILLGEN_OWN_FRAME Text range(Gen& g, const Value& c) {
    const double high = c.at("max"_w).as_float();
    const double low = c.at("min"_w).as_float();
    return g._f(high - low);
}

QUILLGEN_OWN_FRAME std::vector<Text> declare_tables(Gen& g, const Value& tables) {
    std::vector<Text> names;
    tables.for_each([&](const Value& table) { names.push_back(_curve_table(g, table)); });
    return names;
}

void _curves(Gen& g, Node& n) {
    const Value c = n.record.at("curve"_w);
    const int size = first_size(c);
    const std::vector<Text> tabs = declare_tables(g, c.at("tables"_w));
    const Text rng = range(g, c);
    const bool ext = extrapolates(c);
    const bool is_colour = n.type().is("ShaderNodeRGBCurve");
    const Text fac = g.var("float", g.inp(n, "Fac"_w, VALUE));
    const Text v = g.var("float3", is_colour ? g.inp(n, "Color"_w, RGBA) : g.inp(n, "Vector"_w, VECTOR));
    const Text rel = g.var("float3", "($0 - (float3)$1) / $2", v, g._f(c.at("min"_w)), rng);
    Text comps[3];
    for (std::size_t i = 0; i < 3; ++i) {
        if (i >= tabs.size()) {
            raise_index_error("a curve of fewer than three tables");
        }
        comps[i] = g.var("float", _lookup(g, tabs[i], g.text("$0.$1", rel, Text("xyz").substr(i, 1)), size, ext));
    }
    const Text res = g.text("float3($0, $1, $2)", comps[0], comps[1], comps[2]);
    if (is_colour) {
        g.set(n, "Color"_w, RGBA, "(1.0 - $0) * $1 + $0 * $2", fac, v, res);
    } else {
        g.set(n, "Vector"_w, VECTOR, "(1.0 - $0) * $1 + $0 * $2", fac, v, res);
    }
}

void _float_curve(Gen& g, Node& n) {
    const Value c = n.record.at("curve"_w);
    const int size = first_size(c);
    const Text tab = _curve_table(g, c.at("tables"_w).item(0));
    const Text fac = g.var("float", g.inp(n, "Factor"_w, VALUE));
    const Text v = g.var("float", g.inp(n, "Value"_w, VALUE));
    const Text low = g._f(c.at("min"_w));
    const Text rel = g.var("float", "($0 - $1) / $2", v, low, range(g, c));
    const Text r = g.var("float", _lookup(g, tab, rel, size, extrapolates(c)));
    g.set(n, "Value"_w, VALUE, "(1.0 - $0) * $1 + $0 * $2", fac, v, r);
}

const node nodes[] = {
    {{"ShaderNodeRGBCurve", "ShaderNodeVectorCurve"}, _curves},
    {{"ShaderNodeFloatCurve"}, _float_curve},
};

}  // namespace

}  // namespace quillgen
