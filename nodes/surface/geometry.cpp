// The geometry of the shaded point, and tangents.
#include "core/gen/choices.h"
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

enum Axis { X, Y, Z };

// The direction around the axis through the middle of the generated box, 0.5. The row of Y has the
// opposite sense to the other two, as Blender has it.
Text around_axis(Gen& g, Axis axis, Text gen) {
    switch (axis) {
    case X:
        return g.text("float3(0.0, -($0.z - 0.5), ($0.y - 0.5))"_fmt, gen);
    case Y:
        return g.text("float3(-($0.z - 0.5), 0.0, ($0.x - 0.5))"_fmt, gen);
    default:
        return g.text("float3(-($0.y - 0.5), ($0.x - 0.5), 0.0)"_fmt, gen);
    }
}

// The tangent `t` of object space as a variable in world space.
Text tangent_to_world(Gen& g, Text t) {
    g.use("n_obj_to_world");
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    return g.var("float3", "L.n_obj_to_world($0, $1, $2, $3)"_fmt, t, ox, oy, oz);
}

// A world-space tangent, turned into the plane of the shading normal.
void set_tangent(Gen& g, const Node& n, Text t, Text nf) {
    g.set(n, "Tangent", VECTOR, "cross($1, normalize(cross($0, $1)))"_fmt, t, nf);
}

void _radial_tangent(Gen& g, const Node& n, Axis axis) {
    const Text gen = g.var("float3", g.geo("generated"));
    const Text to = tangent_to_world(g, around_axis(g, axis, gen));
    set_tangent(g, n, to, g.geo("Nf"));
}

// What Unreal cannot tell: a fixed text, and a warning if something reads it.
void set_unavailable(Gen& g, const Node& n, Word out, Text why, SocketType type, Text fixed) {
    if (g.is_used(n, out)) {
        g.warn("$0: Geometry $1 is not available in Unreal"_fmt, g.formatted(n.id), why);
    }
    g.bind(n, out, type, fixed);
}

// A signal declares its inputs when it is read, so one that nothing reads must not be: the material would
// pay for it. Only the sign of the side is read in any case.
void _geometry(Gen& g, const Node& n) {
    if (g.is_used(n, "Position")) {
        g.set(n, "Position", VECTOR, g.geo("P"));
    }
    if (g.is_used(n, "Normal")) {
        g.set(n, "Normal", VECTOR, g.geo("Nf"));
    }
    if (g.is_used(n, "True Normal")) {
        g.set(n, "True Normal", VECTOR, g.geo("Ng"));
    }
    if (g.is_used(n, "Incoming")) {
        g.set(n, "Incoming", VECTOR, g.geo("I"));
    }
    if (g.is_used(n, "Tangent")) {
        _radial_tangent(g, n, Z);
    }
    g.bind(n, "Backfacing", VALUE, "(($0 < 0.0) ? 1.0 : 0.0)"_fmt, g.geo("twosided"));
    set_unavailable(g, n, "Parametric", "Parametric", VECTOR, "float3(0.0, 0.0, 0.0)");
    set_unavailable(g, n, "Pointiness", "Pointiness (Cycles only)", VALUE, "0.5");
    set_unavailable(g, n, "Random Per Island", "Random Per Island", VALUE, "0.0");
}

// Unreal has one tangent per vertex, so the UV map that the node names plays no part.
void _tangent(Gen& g, const Node& n) {
    const Value p = n.props();
    if (p.get("direction_type").is("UV_MAP")) {
        const Text nf = g.geo("Nf");
        set_tangent(g, n, tangent_to_world(g, g.geo("Tl")), nf);
    } else {
        _radial_tangent(g, n, static_cast<Axis>(code_of(p, "axis", "Z", {{"X", X}, {"Y", Y}, {"Z", Z}})));
    }
}

}  // namespace

void register_geometry(Registry& registry) {
    registry.node({"ShaderNodeNewGeometry"}, _geometry);
    registry.node({"ShaderNodeTangent"}, _tangent);
}

}  // namespace quillgen
