// Procedural textures that are one call of a library function: gradient, checker, brick, magic and wave.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

constexpr EnumItem kGradients[] = {{"LINEAR", 0},    {"QUADRATIC", 1},        {"EASING", 2}, {"DIAGONAL", 3},
                                   {"SPHERICAL", 4}, {"QUADRATIC_SPHERE", 5}, {"RADIAL", 6}};
constexpr EnumItem kBands[] = {{"X", 0}, {"Y", 1}, {"Z", 2}, {"DIAGONAL", 3}};
constexpr EnumItem kRings[] = {{"X", 0}, {"Y", 1}, {"Z", 2}, {"SPHERICAL", 3}};
constexpr EnumItem kProfiles[] = {{"SIN", 0}, {"SAW", 1}, {"TRI", 2}};

// A property as a float literal, and as an integer literal.
Text float_property(Gen& g, const Value& props, Word key, Text fallback) {
    const Value value = props.get(key);
    return value.present() ? g._f(value) : fallback;
}

Text integer_property(Gen& g, const Value& props, Word key, Text fallback) {
    const Value value = props.get(key);
    return value.present() ? g.formatted(value.to_int()) : fallback;
}

// One value for both outputs.
void bind_grey(Gen& g, Node& n, Text f) {
    g.bind(n, "Fac"_w, VALUE, f);
    g.bind(n, "Color"_w, RGBA, "float3($0, $0, $0)", f);
}

void _tex_gradient(Gen& g, Node& n) {
    g.use("tex_gradient"_w);
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const int type = enum_number(n.props(), "gradient_type"_w, "LINEAR", kGradients);
    bind_grey(g, n, g.var("float", "saturate(L.tex_gradient($0, $1))", co, type));
}

void _tex_checker(Gen& g, Node& n) {
    g.use("tex_checker"_w);
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text f = g.var("float", "L.tex_checker($0 * $1)", co, scale);
    g.bind(n, "Fac"_w, VALUE, f);
    const Text c1 = g.inp(n, "Color1"_w, RGBA);
    const Text c2 = g.inp(n, "Color2"_w, RGBA);
    g.set(n, "Color"_w, RGBA, "(($0 == 1.0) ? $1 : $2)", f, c1, c2);
}

// A variable with the tint in x and the share of mortar in y.
Text brick_pattern(Gen& g, Node& n) {
    const Value p = n.props();
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text mortar_size = g.inp(n, "Mortar Size"_w, VALUE);
    const Text mortar_smooth = g.inp(n, "Mortar Smooth"_w, VALUE);
    const Text bias = g.inp(n, "Bias"_w, VALUE);
    const Text brick_width = g.inp(n, "Brick Width"_w, VALUE);
    const Text row_height = g.inp(n, "Row Height"_w, VALUE);
    const Text offset = float_property(g, p, "offset"_w, "0.5");
    const Text offset_frequency = integer_property(g, p, "offset_frequency"_w, "2");
    const Text squash = float_property(g, p, "squash"_w, "1.0");
    const Text squash_frequency = integer_property(g, p, "squash_frequency"_w, "2");
    return g.var("float2", "L.tex_brick($0 * $1, $2, $3, $4, $5, $6, $7, $8, $9, $(10))", co, scale, mortar_size,
                 mortar_smooth, bias, brick_width, row_height, offset, offset_frequency, squash, squash_frequency);
}

void _tex_brick(Gen& g, Node& n) {
    g.use("tex_brick"_w);
    const Text r = brick_pattern(g, n);
    const Text c1 = g.var("float3", g.inp(n, "Color1"_w, RGBA));
    const Text c2 = g.inp(n, "Color2"_w, RGBA);
    g.emit("if ($0.y != 1.0) $1 = (1.0 - $0.x) * $1 + $0.x * $2;", r, c1, c2);
    const Text mortar = g.inp(n, "Mortar"_w, RGBA);
    g.set(n, "Color"_w, RGBA, "$1 * (1.0 - $0.y) + $2 * $0.y", r, c1, mortar);
    g.bind(n, "Fac"_w, VALUE, "$0.y", r);
}

// The library scales the coordinate itself.
void _tex_magic(Gen& g, Node& n) {
    g.use("tex_magic"_w);
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text depth = integer_property(g, n.props(), "turbulence_depth"_w, "2");
    const Text distortion = g.inp(n, "Distortion"_w, VALUE);
    const Text c = g.var("float3", "L.tex_magic($0, $1, $2, $3)", co, scale, depth, distortion);
    g.bind(n, "Color"_w, RGBA, c);
    g.bind(n, "Fac"_w, VALUE, "(($0.x + $0.y + $0.z) * (1.0 / 3.0))", c);
}

// Both directions are passed, whichever of them the type uses.
void _tex_wave(Gen& g, Node& n) {
    g.use("tex_wave"_w);
    const Value p = n.props();
    const int type = property_is(p, "wave_type"_w, "BANDS", "BANDS") ? 0 : 1;
    const int bands = enum_number(p, "bands_direction"_w, "X", kBands);
    const int rings = enum_number(p, "rings_direction"_w, "X", kRings);
    const int profile = enum_number(p, "wave_profile"_w, "SIN", kProfiles);
    const Text co = g.vector_or(n, "Vector"_w, "generated");
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text distortion = g.inp(n, "Distortion"_w, VALUE);
    const Text detail = g.inp(n, "Detail"_w, VALUE);
    const Text detail_scale = g.inp(n, "Detail Scale"_w, VALUE);
    const Text detail_roughness = g.inp(n, "Detail Roughness"_w, VALUE);
    const Text phase = g.inp(n, "Phase Offset"_w, VALUE);
    bind_grey(g, n,
              g.var("float", "L.tex_wave($0, $1, $2, $3, $4 * $5, $6, $7, $8, $9, $(10))", type, bands, rings, profile,
                    co, scale, distortion, detail, detail_scale, detail_roughness, phase));
}

const node nodes[] = {
    {{"ShaderNodeTexGradient"}, _tex_gradient}, {{"ShaderNodeTexChecker"}, _tex_checker},
    {{"ShaderNodeTexBrick"}, _tex_brick},       {{"ShaderNodeTexMagic"}, _tex_magic},
    {{"ShaderNodeTexWave"}, _tex_wave},
};

}  // namespace

}  // namespace quillgen
