// Adjustments of a colour.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// A hue of 0.5 is no shift. Blender clamps the saturation but not the value, and the blend with the input only from
// below.
void _huesat(Gen& g, Node& n) {
    g.use("rgb_to_hsv"_w, "hsv_to_rgb"_w);
    const Text fac = g.var("float", g.inp(n, "Fac"_w, VALUE));
    const Text inc = g.var("float3", g.inp(n, "Color"_w, RGBA));
    const Text c = g.var("float3", "L.rgb_to_hsv($0)", inc);
    const Text h = g.inp(n, "Hue"_w, VALUE);
    const Text s = g.inp(n, "Saturation"_w, VALUE);
    const Text v = g.inp(n, "Value"_w, VALUE);
    g.emit("$0.x = frac($0.x + $1 + 0.5); $0.y = saturate($0.y * $2); $0.z *= $3;", c, h, s, v);
    g.emit("$0 = L.hsv_to_rgb($0);", c);
    g.set(n, "Color"_w, RGBA, "max($0 * $1 + (1.0 - $0) * $2, float3(0.0, 0.0, 0.0))", fac, c, inc);
}

void _bright(Gen& g, Node& n) {
    const Text c = g.inp(n, "Color"_w, RGBA);
    const Text br = g.var("float", g.inp(n, "Bright"_w, VALUE));
    const Text co = g.var("float", g.inp(n, "Contrast"_w, VALUE));
    g.set(n, "Color"_w, RGBA, "max((1.0 + $0) * ($1) + ($2 - $0 * 0.5), float3(0.0, 0.0, 0.0))", co, c, br);
}

// A component at or below 0.0 is unchanged, because its power may be undefined. A gamma of 0.0 is white even for black.
void _gamma(Gen& g, Node& n) {
    const Text c = g.var("float3", g.inp(n, "Color"_w, RGBA));
    const Text gm = g.var("float", g.inp(n, "Gamma"_w, VALUE));
    g.emit(
        "if ($1 == 0.0) $0 = float3(1.0, 1.0, 1.0); else { "
        "if ($0.x > 0.0) $0.x = pow($0.x, $1); "
        "if ($0.y > 0.0) $0.y = pow($0.y, $1); "
        "if ($0.z > 0.0) $0.z = pow($0.z, $1); }",
        c, gm);
    g.bind(n, "Color"_w, RGBA, c);
}

void _invert(Gen& g, Node& n) {
    const Text f = g.var("float", g.inp(n, "Fac"_w, VALUE));
    const Text c = g.var("float3", g.inp(n, "Color"_w, RGBA));
    g.set(n, "Color"_w, RGBA, "$0 * (float3(1.0, 1.0, 1.0) - $1) + (1.0 - $0) * $1", f, c);
}

// The luma weights of Rec.709, as in every conversion of a colour to a value.
void _bw(Gen& g, Node& n) {
    const Text c = g.inp(n, "Color"_w, RGBA);
    g.set(n, "Val"_w, VALUE, "dot($0, float3(0.2126, 0.7152, 0.0722))", c);
}

const node nodes[] = {
    {{"ShaderNodeHueSaturation"}, _huesat}, {{"ShaderNodeBrightContrast"}, _bright},
    {{"ShaderNodeGamma"}, _gamma},          {{"ShaderNodeInvert"}, _invert},
    {{"ShaderNodeRGBToBW"}, _bw},
};

}  // namespace

}  // namespace quillgen
