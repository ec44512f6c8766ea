// Constants, and vectors and colours split into and combined from their components.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

void _value(Gen& g, Node& n) { g.bind(n, "Value"_w, VALUE, g.param(n, "value", VALUE, n.props().get("value"_w))); }

// The default colour of Blender's RGB node.
Value mid_grey(const Runtime& runtime) {
    const Value half = Value::number(runtime, 0.5);
    return Value::list(runtime, {half, half, half, Value::number(runtime, 1.0)});
}

void _rgb(Gen& g, Node& n) {
    const Value color = n.props().get("color"_w);
    g.bind(n, "Color"_w, RGBA, g.param(n, "color", RGBA, color.present() ? color : mid_grey(g.runtime())));
}

void _sepxyz(Gen& g, Node& n) {
    const Text v = g.var("float3", g.inp(n, "Vector"_w, VECTOR));
    g.bind(n, "X"_w, VALUE, "$0.x", v);
    g.bind(n, "Y"_w, VALUE, "$0.y", v);
    g.bind(n, "Z"_w, VALUE, "$0.z", v);
}

void _combxyz(Gen& g, Node& n) {
    const Text x = g.inp(n, "X"_w, VALUE);
    const Text y = g.inp(n, "Y"_w, VALUE);
    const Text z = g.inp(n, "Z"_w, VALUE);
    g.set(n, "Vector"_w, VECTOR, "float3($0, $1, $2)", x, y, z);
}

// The outputs have the same names in every mode: in HSV they are hue, saturation and value.
void _sepcol(Gen& g, Node& n) {
    const Value p = n.props();
    const bool hsv = property_is(p, "mode"_w, "RGB", "HSV");
    const bool hsl = property_is(p, "mode"_w, "RGB", "HSL");
    Text c = g.inp(n, "Color"_w, RGBA);
    if (hsv) {
        g.use("rgb_to_hsv"_w);
        c = g.text("L.rgb_to_hsv($0)", c);
    } else if (hsl) {
        g.use("rgb_to_hsl"_w);
        c = g.text("L.rgb_to_hsl($0)", c);
    }
    const Text v = g.var("float3", c);
    g.bind(n, "Red"_w, VALUE, "$0.x", v);
    g.bind(n, "Green"_w, VALUE, "$0.y", v);
    g.bind(n, "Blue"_w, VALUE, "$0.z", v);
}

void _combcol(Gen& g, Node& n) {
    const Value p = n.props();
    const bool hsv = property_is(p, "mode"_w, "RGB", "HSV");
    const bool hsl = property_is(p, "mode"_w, "RGB", "HSL");
    const Text red = g.inp(n, "Red"_w, VALUE);
    const Text green = g.inp(n, "Green"_w, VALUE);
    const Text blue = g.inp(n, "Blue"_w, VALUE);
    if (hsv) {
        g.use("hsv_to_rgb"_w);
        g.set(n, "Color"_w, RGBA, "L.hsv_to_rgb(float3($0, $1, $2))", red, green, blue);
    } else if (hsl) {
        g.use("hsl_to_rgb"_w);
        g.set(n, "Color"_w, RGBA, "L.hsl_to_rgb(float3($0, $1, $2))", red, green, blue);
    } else {
        g.set(n, "Color"_w, RGBA, "float3($0, $1, $2)", red, green, blue);
    }
}

const node nodes[] = {
    {{"ShaderNodeValue"}, _value},          {{"ShaderNodeRGB"}, _rgb},
    {{"ShaderNodeSeparateXYZ"}, _sepxyz},   {{"ShaderNodeCombineXYZ"}, _combxyz},
    {{"ShaderNodeSeparateColor"}, _sepcol}, {{"ShaderNodeCombineColor"}, _combcol},
};

}  // namespace

}  // namespace quillgen
