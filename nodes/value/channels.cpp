// Constants, and vectors and colours taken apart and built from their components.
#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

void _value(Gen& g, const Node& n) {
    const Value props = n.props();
    const Word key = "value";
    g.bind(n, "Value", VALUE, g.param(n, key, VALUE, props.get(key), {props.object(), key}));
}

// What an RGB node shows in Blender before anyone touches it.
Value mid_grey(const Runtime& runtime) {
    Value colour = Value::list(runtime);
    for (const double component : {0.5, 0.5, 0.5, 1.0}) {
        colour.append(Value::number(runtime, component));
    }
    return colour;
}

void _rgb(Gen& g, const Node& n) {
    const Value props = n.props();
    const Word key = "color";
    const Value color = props.get(key);
    const Value shown = color.present() ? color : mid_grey(g.runtime());
    g.bind(n, "Color", RGBA, g.param(n, key, RGBA, shown, {props.object(), key}));
}

void _sepxyz(Gen& g, const Node& n) {
    const Text v = g.var("float3", g.inp(n, "Vector", VECTOR));
    g.bind(n, "X", VALUE, "$0.x"_fmt, v);
    g.bind(n, "Y", VALUE, "$0.y"_fmt, v);
    g.bind(n, "Z", VALUE, "$0.z"_fmt, v);
}

void _combxyz(Gen& g, const Node& n) {
    const Text x = g.inp(n, "X", VALUE);
    const Text y = g.inp(n, "Y", VALUE);
    const Text z = g.inp(n, "Z", VALUE);
    g.set(n, "Vector", VECTOR, "float3($0, $1, $2)"_fmt, x, y, z);
}

// The outputs keep their names in every mode: in HSV they carry hue, saturation and value.
void _sepcol(Gen& g, const Node& n) {
    const Value p = n.props();
    const bool hsv = property_is(p, "mode", "RGB", "HSV");
    const bool hsl = property_is(p, "mode", "RGB", "HSL");
    Text c = g.inp(n, "Color", RGBA);
    if (hsv) {
        g.use("rgb_to_hsv");
        c = g.text("L.rgb_to_hsv($0)"_fmt, c);
    } else if (hsl) {
        g.use("rgb_to_hsl");
        c = g.text("L.rgb_to_hsl($0)"_fmt, c);
    }
    const Text v = g.var("float3", c);
    g.bind(n, "Red", VALUE, "$0.x"_fmt, v);
    g.bind(n, "Green", VALUE, "$0.y"_fmt, v);
    g.bind(n, "Blue", VALUE, "$0.z"_fmt, v);
}

void _combcol(Gen& g, const Node& n) {
    const Value p = n.props();
    const bool hsv = property_is(p, "mode", "RGB", "HSV");
    const bool hsl = property_is(p, "mode", "RGB", "HSL");
    const Text red = g.inp(n, "Red", VALUE);
    const Text green = g.inp(n, "Green", VALUE);
    const Text blue = g.inp(n, "Blue", VALUE);
    if (hsv) {
        g.use("hsv_to_rgb");
        g.set(n, "Color", RGBA, "L.hsv_to_rgb(float3($0, $1, $2))"_fmt, red, green, blue);
    } else if (hsl) {
        g.use("hsl_to_rgb");
        g.set(n, "Color", RGBA, "L.hsl_to_rgb(float3($0, $1, $2))"_fmt, red, green, blue);
    } else {
        g.set(n, "Color", RGBA, "float3($0, $1, $2)"_fmt, red, green, blue);
    }
}

}  // namespace

void register_channels(Registry& registry) {
    registry.node({"ShaderNodeValue"}, _value);
    registry.node({"ShaderNodeRGB"}, _rgb);
    registry.node({"ShaderNodeSeparateXYZ"}, _sepxyz);
    registry.node({"ShaderNodeCombineXYZ"}, _combxyz);
    registry.node({"ShaderNodeSeparateColor"}, _sepcol);
    registry.node({"ShaderNodeCombineColor"}, _combcol);
}

}  // namespace quillgen
