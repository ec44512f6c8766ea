// The geometry of the shaded point, and tangents.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

enum Axis { X, Y, Z };
constexpr EnumItem kAxes[] = {{"X", X}, {"Y", Y}, {"Z", Z}};

// The direction around the axis through the centre of the generated box, 0.5. Around Y it has the opposite sense to the
// other two, as in Blender.
Text around_axis(Gen& g, Axis axis, Text gen) {
    switch (axis) {
    case X:
        return g.text("float3(0.0, -($0.z - 0.5), ($0.y - 0.5))", gen);
    case Y:
        return g.text("float3(-($0.z - 0.5), 0.0, ($0.x - 0.5))", gen);
    default:
        return g.text("float3(-($0.y - 0.5), ($0.x - 0.5), 0.0)", gen);
    }
}

// Converts the object-space tangent `t` to a variable in world space.
Text tangent_to_world(Gen& g, Text t) {
    g.use("n_obj_to_world"_w);
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    return g.var("float3", "L.n_obj_to_world($0, $1, $2, $3)", t, ox, oy, oz);
}

// Sets the output to a world-space tangent, projected onto the plane perpendicular to the shading normal.
void set_tangent(Gen& g, Node& n, Text t, Text nf) {
    g.set(n, "Tangent"_w, VECTOR, "cross($1, normalize(cross($0, $1)))", t, nf);
}

void _radial_tangent(Gen& g, Node& n, Axis axis) {
    const Text gen = g.var("float3", g.geo("generated"));
    const Text to = tangent_to_world(g, around_axis(g, axis, gen));
    set_tangent(g, n, to, g.geo("Nf"));
}

// Binds an output that Unreal cannot provide to a constant, and warns if something reads it.
void set_unavailable(Gen& g, Node& n, Word out, Text why, SocketType type, Text fixed) {
    if (g.is_used(n, out)) {
        g.warn("$0: Geometry $1 is not available in Unreal", g.formatted(n.id), why);
    }
    g.bind(n, out, type, fixed);
}

// Reading a signal declares its inputs, which cost the material something, so a signal is read only for a used output.
// Only the sign of the side is always read.
void _geometry(Gen& g, Node& n) {
    if (g.is_used(n, "Position"_w)) {
        g.set(n, "Position"_w, VECTOR, g.geo("P"));
    }
    if (g.is_used(n, "Normal"_w)) {
        g.set(n, "Normal"_w, VECTOR, g.geo("Nf"));
    }
    if (g.is_used(n, "True Normal"_w)) {
        g.set(n, "True Normal"_w, VECTOR, g.geo("Ng"));
    }
    if (g.is_used(n, "Incoming"_w)) {
        g.set(n, "Incoming"_w, VECTOR, g.geo("I"));
    }
    if (g.is_used(n, "Tangent"_w)) {
        _radial_tangent(g, n, Z);
    }
    g.bind(n, "Backfacing"_w, VALUE, "(($0 < 0.0) ? 1.0 : 0.0)", g.geo("twosided"));
    set_unavailable(g, n, "Parametric"_w, "Parametric", VECTOR, "float3(0.0, 0.0, 0.0)");
    set_unavailable(g, n, "Pointiness"_w, "Pointiness (Cycles only)", VALUE, "0.5");
    set_unavailable(g, n, "Random Per Island"_w, "Random Per Island", VALUE, "0.0");
}

// Unreal has one tangent per vertex, so the UV map that the node names is ignored.
void _tangent(Gen& g, Node& n) {
    const Value p = n.props();
    if (p.get("direction_type"_w).is("UV_MAP")) {
        const Text nf = g.geo("Nf");
        set_tangent(g, n, tangent_to_world(g, g.geo("Tl")), nf);
    } else {
        _radial_tangent(g, n, static_cast<Axis>(enum_number(p, "axis"_w, "Z", kAxes)));
    }
}

const node nodes[] = {
    {{"ShaderNodeNewGeometry"}, _geometry},
    {{"ShaderNodeTangent"}, _tangent},
};

}  // namespace

}  // namespace quillgen
