// Voronoi: the settings are passed to the library in a struct, which the generated HLSL fills field by field.
#include "nodes/texture/dimensions.h"

namespace quillgen {

namespace {

enum Feature { kF1, kF2, kSmoothF1, kDistanceToEdge, kNSphereRadius };

constexpr EnumItem kFeatures[] = {{"F1", kF1},
                                  {"F2", kF2},
                                  {"SMOOTH_F1", kSmoothF1},
                                  {"DISTANCE_TO_EDGE", kDistanceToEdge},
                                  {"N_SPHERE_RADIUS", kNSphereRadius}};
constexpr EnumItem kMetrics[] = {{"EUCLIDEAN", 0}, {"MANHATTAN", 1}, {"CHEBYCHEV", 2}, {"MINKOWSKI", 3}};

// An output that the feature does not compute is zero.
struct CellOutputs {
    Text distance = "0.0";
    Text color = "float3(0.0, 0.0, 0.0)";
    Text position = "float3(0.0, 0.0, 0.0)";
    Text w = "0.0";
    Text radius = "0.0";
};

// Declares the struct of parameters, fills it except for the bound of the distance, and returns its name.
QUILLGEN_OWN_FRAME Text declare_parameters(Gen& g, Node& n, const Value& p, int feature, int metric) {
    const Text vp = g.tmp("vp");
    g.emit("QWKVoronoiParams $0;", vp);
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    g.emit("$0.feature = $1; $0.metric = $2; $0.scale = $3;", vp, feature, metric, scale);
    const Text detail = g.inp(n, "Detail"_w, VALUE, "0.0");
    const Text rough = g.inp(n, "Roughness"_w, VALUE, "0.5");
    const Text lac = g.inp(n, "Lacunarity"_w, VALUE, "2.0");
    g.emit("$0.detail = clamp($1, 0.0, 15.0); $0.roughness = clamp($2, 0.0, 1.0); $0.lacunarity = $3;", vp, detail,
           rough, lac);
    const Text smooth = g.inp(n, "Smoothness"_w, VALUE, "1.0");
    const Text exponent = g.inp(n, "Exponent"_w, VALUE, "0.5");
    const Text randomness = g.inp(n, "Randomness"_w, VALUE, "1.0");
    g.emit("$0.smoothness = clamp($1 / 2.0, 0.0, 0.5); $0.exponent = $2; $0.randomness = clamp($3, 0.0, 1.0);", vp,
           smooth, exponent, randomness);
    const Text norm = p.get("normalize"_w).truthy() ? "1.0" : "0.0";
    g.emit("$0.max_distance = 0.0; $0.normalize = $1;", vp, norm);
    return vp;
}

// Half of the largest possible distance, along an axis, between the points of two adjacent cells.
Text reach(Gen& g, Text vp) { return g.text("(0.5 + 0.5 * $0.randomness)", vp); }

CellOutputs distance_to_edge(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("fractal_voronoi_distance_to_edge$0", d);
    g.use(fn);
    g.emit("$0.max_distance = $1;", vp, reach(g, vp));
    return {.distance = g.var("float", "L.$0($1, $2)", fn, vp, co)};
}

CellOutputs n_sphere_radius(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("voronoi_n_sphere_radius$0", d);
    g.use(fn);
    return {.radius = g.var("float", "L.$0($1, $2)", fn, vp, co)};
}

// The bound is the length of a vector with that reach along every axis, in the struct's own metric. F2 may lie twice as
// far.
void bound_distance(Gen& g, int d, Text vp) {
    const Text rr = reach(g, vp);
    if (d == 1) {
        g.emit("$0.max_distance = $1 * (($0.feature == 1) ? 2.0 : 1.0);", vp, rr);
        return;
    }
    g.use(g.text("voronoi_distance$0", d));
    g.emit("$0.max_distance = L.voronoi_distance$1(($2)0.0, ($2)$3, $0) * (($0.feature == 1) ? 2.0 : 1.0);", vp, d,
           g.types(d), rr);
}

QUILLGEN_OWN_FRAME CellOutputs nearest_points(Gen& g, int d, Text vp, Text co) {
    const Text fn = g.text("fractal_voronoi_x_fx$0", d);
    g.use(fn);
    bound_distance(g, d, vp);
    const Text o = g.var("QWKVoronoiOutput", "L.$0($1, $2)", fn, vp, co);
    return {.distance = g.text("$0.distance", o),
            .color = g.text("$0.color", o),
            .position = g.text("$0.position.xyz", o),
            .w = g.text("$0.position.w", o)};
}

void _tex_voronoi(Gen& g, Node& n) {
    const Value p = n.props();
    const int d = enum_number(p, "voronoi_dimensions"_w, "3D", _DIMS);
    const int feature = enum_number(p, "feature"_w, "F1", kFeatures);
    const int metric = enum_number(p, "distance"_w, "EUCLIDEAN", kMetrics);
    g.use_struct("QWKVoronoiParams"_w);
    g.use_struct("QWKVoronoiOutput"_w);
    // In one dimension all metrics are equal.
    const Text vp = declare_parameters(g, n, p, feature, d == 1 ? 0 : metric);
    const Text type = g.types(d);
    const Text co = g.var(type, _coord(g, n, d, g.text("$0.scale", vp)));
    const CellOutputs outs = feature == kDistanceToEdge  ? distance_to_edge(g, d, vp, co)
                             : feature == kNSphereRadius ? n_sphere_radius(g, d, vp, co)
                                                         : nearest_points(g, d, vp, co);
    g.bind(n, "Distance"_w, VALUE, outs.distance);
    g.bind(n, "Color"_w, RGBA, outs.color);
    g.bind(n, "Position"_w, VECTOR, outs.position);
    g.bind(n, "W"_w, VALUE, outs.w);
    g.bind(n, "Radius"_w, VALUE, outs.radius);
}

const node nodes[] = {
    {{"ShaderNodeTexVoronoi"}, _tex_voronoi},
};

}  // namespace

}  // namespace quillgen
