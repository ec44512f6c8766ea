// Procedural textures that are one call of a library function: gradient, checker, brick, magic and wave.
#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

constexpr Choice kGradients[] = {{"LINEAR", 0},    {"QUADRATIC", 1},        {"EASING", 2}, {"DIAGONAL", 3},
                                 {"SPHERICAL", 4}, {"QUADRATIC_SPHERE", 5}, {"RADIAL", 6}};
constexpr Choice kBands[] = {{"X", 0}, {"Y", 1}, {"Z", 2}, {"DIAGONAL", 3}};
constexpr Choice kRings[] = {{"X", 0}, {"Y", 1}, {"Z", 2}, {"SPHERICAL", 3}};
constexpr Choice kProfiles[] = {{"SIN", 0}, {"SAW", 1}, {"TRI", 2}};

// A property as a float literal, and as an integer one.
Text float_property(Gen& g, const Value& props, Word key, Text fallback) {
    const Value value = props.get(key);
    return value.present() ? g._f(value) : fallback;
}

Text integer_property(Gen& g, const Value& props, Word key, Text fallback) {
    const Value value = props.get(key);
    return value.present() ? g.formatted(value.to_int()) : fallback;
}

// One value for both outputs.
void bind_grey(Gen& g, const Node& n, Text f) {
    g.bind(n, "Fac", VALUE, f);
    g.bind(n, "Color", RGBA, "float3($0, $0, $0)"_fmt, f);
}

void _tex_gradient(Gen& g, const Node& n) {
    g.use("tex_gradient");
    const Text co = g.vector_or(n, "Vector", "generated");
    const int type = code_of(n.props(), "gradient_type", "LINEAR", kGradients);
    bind_grey(g, n, g.var("float", "saturate(L.tex_gradient($0, $1))"_fmt, co, type));
}

void _tex_checker(Gen& g, const Node& n) {
    g.use("tex_checker");
    const Text co = g.vector_or(n, "Vector", "generated");
    const Text scale = g.inp(n, "Scale", VALUE);
    const Text f = g.var("float", "L.tex_checker($0 * $1)"_fmt, co, scale);
    g.bind(n, "Fac", VALUE, f);
    const Text c1 = g.inp(n, "Color1", RGBA);
    const Text c2 = g.inp(n, "Color2", RGBA);
    g.set(n, "Color", RGBA, "(($0 == 1.0) ? $1 : $2)"_fmt, f, c1, c2);
}

// A variable with the tint in x and the share of mortar in y.
Text brick_pattern(Gen& g, const Node& n) {
    const Value p = n.props();
    const Text co = g.vector_or(n, "Vector", "generated");
    const Text scale = g.inp(n, "Scale", VALUE);
    const Text mortar_size = g.inp(n, "Mortar Size", VALUE);
    const Text mortar_smooth = g.inp(n, "Mortar Smooth", VALUE);
    const Text bias = g.inp(n, "Bias", VALUE);
    const Text brick_width = g.inp(n, "Brick Width", VALUE);
    const Text row_height = g.inp(n, "Row Height", VALUE);
    const Text offset = float_property(g, p, "offset", "0.5");
    const Text offset_frequency = integer_property(g, p, "offset_frequency", "2");
    const Text squash = float_property(g, p, "squash", "1.0");
    const Text squash_frequency = integer_property(g, p, "squash_frequency", "2");
    return g.var("float2", "L.tex_brick($0 * $1, $2, $3, $4, $5, $6, $7, $8, $9, $(10))"_fmt, co, scale, mortar_size,
                 mortar_smooth, bias, brick_width, row_height, offset, offset_frequency, squash, squash_frequency);
}

void _tex_brick(Gen& g, const Node& n) {
    g.use("tex_brick");
    const Text r = brick_pattern(g, n);
    const Text c1 = g.var("float3", g.inp(n, "Color1", RGBA));
    const Text c2 = g.inp(n, "Color2", RGBA);
    g.emit("if ($0.y != 1.0) $1 = (1.0 - $0.x) * $1 + $0.x * $2;"_fmt, r, c1, c2);
    const Text mortar = g.inp(n, "Mortar", RGBA);
    g.set(n, "Color", RGBA, "$1 * (1.0 - $0.y) + $2 * $0.y"_fmt, r, c1, mortar);
    g.bind(n, "Fac", VALUE, "$0.y"_fmt, r);
}

// The library scales the coordinate itself.
void _tex_magic(Gen& g, const Node& n) {
    g.use("tex_magic");
    const Text co = g.vector_or(n, "Vector", "generated");
    const Text scale = g.inp(n, "Scale", VALUE);
    const Text depth = integer_property(g, n.props(), "turbulence_depth", "2");
    const Text distortion = g.inp(n, "Distortion", VALUE);
    const Text c = g.var("float3", "L.tex_magic($0, $1, $2, $3)"_fmt, co, scale, depth, distortion);
    g.bind(n, "Color", RGBA, c);
    g.bind(n, "Fac", VALUE, "(($0.x + $0.y + $0.z) * (1.0 / 3.0))"_fmt, c);
}

// Both directions are passed, whichever of them the type reads.
void _tex_wave(Gen& g, const Node& n) {
    g.use("tex_wave");
    const Value p = n.props();
    const int type = property_is(p, "wave_type", "BANDS", "BANDS") ? 0 : 1;
    const int bands = code_of(p, "bands_direction", "X", kBands);
    const int rings = code_of(p, "rings_direction", "X", kRings);
    const int profile = code_of(p, "wave_profile", "SIN", kProfiles);
    const Text co = g.vector_or(n, "Vector", "generated");
    const Text scale = g.inp(n, "Scale", VALUE);
    const Text distortion = g.inp(n, "Distortion", VALUE);
    const Text detail = g.inp(n, "Detail", VALUE);
    const Text detail_scale = g.inp(n, "Detail Scale", VALUE);
    const Text detail_roughness = g.inp(n, "Detail Roughness", VALUE);
    const Text phase = g.inp(n, "Phase Offset", VALUE);
    bind_grey(g, n,
              g.var("float", "L.tex_wave($0, $1, $2, $3, $4 * $5, $6, $7, $8, $9, $(10))"_fmt, type, bands, rings,
                    profile, co, scale, distortion, detail, detail_scale, detail_roughness, phase));
}

}  // namespace

void register_simple_textures(Registry& registry) {
    registry.node({"ShaderNodeTexGradient"}, _tex_gradient);
    registry.node({"ShaderNodeTexChecker"}, _tex_checker);
    registry.node({"ShaderNodeTexBrick"}, _tex_brick);
    registry.node({"ShaderNodeTexMagic"}, _tex_magic);
    registry.node({"ShaderNodeTexWave"}, _tex_wave);
}

}  // namespace quillgen
