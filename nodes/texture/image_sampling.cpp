// The code that samples a texture. It reads single texels without a sampler, so that filtering, wrapping, alpha and the
// decoding of sRGB match Blender's.
#include "nodes/texture/image.h"

namespace quillgen {

namespace {

// The operands of a filter.
struct Tap {
    Text s;    // the sample's float4, which the filter declares
    Text t;    // the texture
    Text suv;  // where to sample, with v downwards, in the order of the texels
    Text sz;   // the size as a float2
    int e;     // the extension beyond the edges: see extension_code
    int assoc;
};

int extension_code(const Value& extension) {
    constexpr Text kExtensions[] = {"REPEAT", "EXTEND", "CLIP", "MIRROR"};
    extension.check_hashable();
    for (int code = 0; code < 4; ++code) {
        if (extension.is(kExtensions[code])) {
            return code;
        }
    }
    return 0;
}

// B-spline over 4 by 4 texels.
void emit_cubic(Gen& g, const Tap& tap) {
    g.emit("float4 $0 = float4(0.0, 0.0, 0.0, 0.0);", tap.s);
    g.emit("{ float2 st = $0 * $1 - 0.5; float2 i0 = floor(st); float2 f = st - i0;", tap.suv, tap.sz);
    for (const Text axis : {"x", "y"}) {
        g.emit(
            "  float4 w$0 = float4((1.0 - f.$0) * (1.0 - f.$0) * (1.0 - f.$0),"
            " 3.0 * f.$0 * f.$0 * f.$0 - 6.0 * f.$0 * f.$0 + 4.0,"
            " -3.0 * f.$0 * f.$0 * f.$0 + 3.0 * f.$0 * f.$0 + 3.0 * f.$0 + 1.0,"
            " f.$0 * f.$0 * f.$0) / 6.0;",
            axis);
    }
    g.emit("  [unroll] for (int j = 0; j < 4; j++) { [unroll] for (int i = 0; i < 4; i++) {");
    g.emit("    float4 tx = L.texel_fetch_a($0, int2(i0) + int2(i - 1, j - 1), int2($1), $2, $3);", tap.t, tap.sz,
           tap.e, tap.assoc);
    g.emit("    $0 += wx[i] * wy[j] * tx; } } }", tap.s);
}

void emit_closest(Gen& g, const Tap& tap) {
    g.emit("float4 $0 = L.texel_fetch_a($1, int2(floor($2 * $3)), int2($3), $4, $5);", tap.s, tap.t, tap.suv, tap.sz,
           tap.e, tap.assoc);
}

void emit_linear(Gen& g, const Tap& tap) {
    const auto fetch = [&](Text off) {
        return g.text("L.texel_fetch_a($0, i0$1, int2($2), $3, $4)", tap.t, off, tap.sz, tap.e, tap.assoc);
    };
    g.emit("float4 $0;", tap.s);
    g.emit("{ float2 st = $0 * $1 - 0.5; int2 i0 = int2(floor(st)); float2 f = st - floor(st);", tap.suv, tap.sz);
    g.emit("  $0 = lerp(lerp($1, $2, f.x), lerp($3, $4, f.x), f.y); }", tap.s, fetch(""), fetch(" + int2(1, 0)"),
           fetch(" + int2(0, 1)"), fetch(" + int2(1, 1)"));
}

void emit_filter(Gen& g, const Tap& tap, const Value& interpolation) {
    if (interpolation.is("Cubic") || interpolation.is("Smart")) {
        emit_cubic(g, tap);
    } else if (interpolation.is("Closest")) {
        emit_closest(g, tap);
    } else {
        emit_linear(g, tap);
    }
    g.use("texel_fetch_a"_w);
}

bool is_srgb(const Value& colorspace) { return !colorspace.present() || colorspace.is("sRGB"); }

void warn_of_unknown_space(Gen& g, const Value& info, const Value& colorspace) {
    const bool known = is_srgb(colorspace) || is_data_space(colorspace) || colorspace.is("Linear Rec.709") ||
                       colorspace.is("Linear") || colorspace.is("Linear CIE-XYZ D65");
    if (known || info.get("float"_w).truthy()) {
        return;
    }
    const Value name = info.get("name"_w);
    g.warn("image $0: colour space $1 is read as linear", name.present() ? g.formatted(name) : "?",
           g.formatted(colorspace));
}

}  // namespace

Text _image_lookup(Gen& g, const DeclaredImage& image, Text tuv, bool unassociate) {
    const auto& [t, spec, info] = image;
    const Text s = g.tmp("img");
    const AlphaUse alpha = _image_alpha(info);
    const Value colorspace = info.get("colorspace"_w);
    warn_of_unknown_space(g, info, colorspace);
    const Text suv = g.var("float2", "float2($0.x, 1.0 - $0.y)", tuv);
    const Text sz = g.tmp("sz");
    g.emit("uint $0_w, $0_h; $1.GetDimensions($0_w, $0_h); float2 $0 = float2($0_w, $0_h);", sz, t);
    emit_filter(g, {s, t, suv, sz, extension_code(spec.at("extension"_w)), alpha.assoc}, spec.at("interpolation"_w));
    if (unassociate && alpha.can_unassoc) {
        g.emit("if ($0.a != 1.0 && $0.a != 0.0) $0.rgb /= $0.a;", s);
    }
    // Decoded after the filter, which works on the stored values.
    if (is_srgb(colorspace) && !info.get("float"_w).truthy()) {
        g.use("srgb_to_linear3"_w);
        g.emit("$0.rgb = L.srgb_to_linear3($0.rgb);", s);
    }
    if (info.get("alpha"_w).is("NONE")) {
        g.emit("$0.a = 1.0;", s);
    }
    return s;
}

}  // namespace quillgen
