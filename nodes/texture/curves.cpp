// RGB, vector and float curves: tables of even samples as constant arrays, looked up in place.
#include <vector>

#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// Declares the table as an array, on one line however long it is, and gives its name.
Text _curve_table(Gen& g, const Value& table) {
    const Text name = g.tmp("ct");
    const auto size = static_cast<int>(table.size());
    g.emit("const float $0[$1] = {$2};"_fmt, name, size, g.literals(table.floats()));
    return name;
}

// The curve at f, which is 0 at the first sample and 1 at the last. Beyond them it goes on in a straight line
// through the two samples at that end, or holds the end. `f` stands here nine times, so it is a variable.
Text _lookup(Gen& g, Text table, Text f, int size, bool extrapolate) {
    return g.text(
        "((($0) < 0.0 || ($0) > 1.0) && $4 ?"
        " ((($0) < 0.0) ? $1[0] + ($1[0] - $1[1]) * (-($0)) * $2"
        " : $1[$2] + ($1[$2] - $1[$3]) * (($0) - 1.0) * $2)"
        " : lerp($1[clamp(int(saturate($0) * $2), 0, $2)],"
        " $1[clamp(int(saturate($0) * $2) + 1, 0, $2)],"
        " saturate($0) * $2 - float(clamp(int(saturate($0) * $2), 0, $2))))"_fmt,
        f, table, size - 1, size - 2, extrapolate ? "true" : "false");
}

int first_size(const Value& c) { return static_cast<int>(c.at("tables").at(Py_ssize_t{0}).size()); }

bool extrapolates(const Value& c) { return property_is(c, "extend", "EXTRAPOLATED", "EXTRAPOLATED"); }

// The width of the input range. It may be zero, and then the text divides by it.
Text range(Gen& g, const Value& c) {
    const double high = c.at("max").as_float();
    const double low = c.at("min").as_float();
    return g._f(Value::number(g.runtime(), high - low));
}

std::vector<Text> declare_tables(Gen& g, const Value& tables) {
    std::vector<Text> names;
    tables.for_each([&](const Value& table) { names.push_back(_curve_table(g, table)); });
    return names;
}

void _curves(Gen& g, const Node& n) {
    const Value c = n.record.at("curve");
    const int size = first_size(c);
    const std::vector<Text> tabs = declare_tables(g, c.at("tables"));
    const Text rng = range(g, c);
    const bool ext = extrapolates(c);
    const bool is_colour = n.type().is("ShaderNodeRGBCurve");
    const Text fac = g.var("float", g.inp(n, "Fac", VALUE));
    const Text v = g.var("float3", is_colour ? g.inp(n, "Color", RGBA) : g.inp(n, "Vector", VECTOR));
    const Text rel = g.var("float3", "($0 - (float3)$1) / $2"_fmt, v, g._f(c.at("min")), rng);
    Text comps[3];
    for (std::size_t i = 0; i < 3; ++i) {
        if (i >= tabs.size()) {
            raise_index_error("a curve of fewer than three tables");
        }
        comps[i] = g.var("float", _lookup(g, tabs[i], g.text("$0.$1"_fmt, rel, Text("xyz").substr(i, 1)), size, ext));
    }
    const Text res = g.text("float3($0, $1, $2)"_fmt, comps[0], comps[1], comps[2]);
    if (is_colour) {
        g.set(n, "Color", RGBA, "(1.0 - $0) * $1 + $0 * $2"_fmt, fac, v, res);
    } else {
        g.set(n, "Vector", VECTOR, "(1.0 - $0) * $1 + $0 * $2"_fmt, fac, v, res);
    }
}

void _float_curve(Gen& g, const Node& n) {
    const Value c = n.record.at("curve");
    const int size = first_size(c);
    const Text tab = _curve_table(g, c.at("tables").at(Py_ssize_t{0}));
    const Text fac = g.var("float", g.inp(n, "Factor", VALUE));
    const Text v = g.var("float", g.inp(n, "Value", VALUE));
    const Text low = g._f(c.at("min"));
    const Text rel = g.var("float", "($0 - $1) / $2"_fmt, v, low, range(g, c));
    const Text r = g.var("float", _lookup(g, tab, rel, size, extrapolates(c)));
    g.set(n, "Value", VALUE, "(1.0 - $0) * $1 + $0 * $2"_fmt, fac, v, r);
}

}  // namespace

void register_curves(Registry& registry) {
    registry.node({"ShaderNodeRGBCurve", "ShaderNodeVectorCurve"}, _curves);
    registry.node({"ShaderNodeFloatCurve"}, _float_curve);
}

}  // namespace quillgen
