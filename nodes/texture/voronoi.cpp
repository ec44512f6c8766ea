// Voronoi: the settings go to the library in a struct, which the text fills field by field.
#include "nodes/register.h"
#include "nodes/texture/dimensions.h"

namespace quillgen {

namespace {

enum Feature { kF1, kF2, kSmoothF1, kDistanceToEdge, kNSphereRadius };

constexpr Choice kFeatures[] = {{"F1", kF1},
                                {"F2", kF2},
                                {"SMOOTH_F1", kSmoothF1},
                                {"DISTANCE_TO_EDGE", kDistanceToEdge},
                                {"N_SPHERE_RADIUS", kNSphereRadius}};
constexpr Choice kMetrics[] = {{"EUCLIDEAN", 0}, {"MANHATTAN", 1}, {"CHEBYCHEV", 2}, {"MINKOWSKI", 3}};

// What a feature has no value for is zero.
struct CellOutputs {
    Text distance = "0.0";
    Text color = "float3(0.0, 0.0, 0.0)";
    Text position = "float3(0.0, 0.0, 0.0)";
    Text w = "0.0";
    Text radius = "0.0";
};

// Declares the struct of parameters, fills all of it but the bound of the distance, and gives its name.
Text declare_parameters(Gen& g, const Node& n, const Value& p, int feature, int metric) {
    const Text vp = g.tmp("vp");
    g.emit("QWKVoronoiParams $0;"_fmt, vp);
    const Text scale = g.inp(n, "Scale", VALUE);
    g.emit("$0.feature = $1; $0.metric = $2; $0.scale = $3;"_fmt, vp, feature, metric, scale);
    const Text detail = g.inp(n, "Detail", VALUE, "0.0");
    const Text rough = g.inp(n, "Roughness", VALUE, "0.5");
    const Text lac = g.inp(n, "Lacunarity", VALUE, "2.0");
    g.emit("$0.detail = clamp($1, 0.0, 15.0); $0.roughness = clamp($2, 0.0, 1.0); $0.lacunarity = $3;"_fmt, vp, detail,
           rough, lac);
    const Text smooth = g.inp(n, "Smoothness", VALUE, "1.0");
    const Text exponent = g.inp(n, "Exponent", VALUE, "0.5");
    const Text randomness = g.inp(n, "Randomness", VALUE, "1.0");
    g.emit("$0.smoothness = clamp($1 / 2.0, 0.0, 0.5); $0.exponent = $2; $0.randomness = clamp($3, 0.0, 1.0);"_fmt, vp,
           smooth, exponent, randomness);
    const Text norm = p.get("normalize").truthy() ? "1.0" : "0.0";
    g.emit("$0.max_distance = 0.0; $0.normalize = $1;"_fmt, vp, norm);
    return vp;
}

// How far along an axis a cell's point can lie from the middle of the cell, at most.
Text reach(Gen& g, Text vp) { return g.text("(0.5 + 0.5 * $0.randomness)"_fmt, vp); }

CellOutputs distance_to_edge(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("fractal_voronoi_distance_to_edge$0"_fmt, d);
    g.use_composed(fn);
    g.emit("$0.max_distance = $1;"_fmt, vp, reach(g, vp));
    return {.distance = g.var("float", "L.$0($1, $2)"_fmt, fn, vp, co)};
}

CellOutputs n_sphere_radius(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("voronoi_n_sphere_radius$0"_fmt, d);
    g.use_composed(fn);
    return {.radius = g.var("float", "L.$0($1, $2)"_fmt, fn, vp, co)};
}

// The bound is the distance from the cell's middle to the farthest corner of that reach, in the struct's own
// metric; F2 may lie twice as far.
void bound_distance(Gen& g, int d, Text vp) {
    const Text rr = reach(g, vp);
    if (d == 1) {
        g.emit("$0.max_distance = $1 * (($0.feature == 1) ? 2.0 : 1.0);"_fmt, vp, rr);
        return;
    }
    g.use_composed(g.text("voronoi_distance$0"_fmt, d));
    g.emit("$0.max_distance = L.voronoi_distance$1(($2)0.0, ($2)$3, $0) * (($0.feature == 1) ? 2.0 : 1.0);"_fmt, vp, d,
           g.types(d), rr);
}

CellOutputs nearest_points(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("fractal_voronoi_x_fx$0"_fmt, d);
    g.use_composed(fn);
    bound_distance(g, d, vp);
    const Text o = g.var("QWKVoronoiOutput", "L.$0($1, $2)"_fmt, fn, vp, co);
    return {.distance = g.text("$0.distance"_fmt, o),
            .color = g.text("$0.color"_fmt, o),
            .position = g.text("$0.position.xyz"_fmt, o),
            .w = g.text("$0.position.w"_fmt, o)};
}

void _tex_voronoi(Gen& g, const Node& n) {
    const Value p = n.props();
    const int d = code_of(p, "voronoi_dimensions", "3D", _DIMS);
    const int feature = code_of(p, "feature", "F1", kFeatures);
    const int metric = code_of(p, "distance", "EUCLIDEAN", kMetrics);
    g.use_struct("QWKVoronoiParams");
    g.use_struct("QWKVoronoiOutput");
    // On a line all metrics are one.
    const Text vp = declare_parameters(g, n, p, feature, d == 1 ? 0 : metric);
    const Text type = g.types(d);
    const Text co = g.var(type, _coord(g, n, d, g.text("$0.scale"_fmt, vp)));
    const CellOutputs outs = feature == kDistanceToEdge  ? distance_to_edge(g, d, vp, co)
                             : feature == kNSphereRadius ? n_sphere_radius(g, d, vp, co)
                                                         : nearest_points(g, d, vp, co);
    g.bind(n, "Distance", VALUE, outs.distance);
    g.bind(n, "Color", RGBA, outs.color);
    g.bind(n, "Position", VECTOR, outs.position);
    g.bind(n, "W", VALUE, outs.w);
    g.bind(n, "Radius", VALUE, outs.radius);
}

}  // namespace

void register_voronoi(Registry& registry) { registry.node({"ShaderNodeTexVoronoi"}, _tex_voronoi); }

}  // namespace quillgen
