// Displacement and Vector Displacement: an offset of the surface in world space. The same nodes serve for the bump of
// the shading normal and for the displacement of the vertices.
#include "core/gen/gen.h"
#include "core/gen/properties.h"
#include "nodes/surface/normals.h"

namespace quillgen {

namespace {

void _displacement_node(Gen& g, Node& n) {
    const Text height = g.inp(n, "Height"_w, VALUE);
    const Text mid = g.inp(n, "Midlevel"_w, VALUE);
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    const Text h = g.var("float", "($0 - $1) * $2", height, mid, scale);
    const Text nv = g.var("float3", _normal_or_shading(g, n));
    if (!property_is(n.props(), "space"_w, "OBJECT", "OBJECT")) {
        g.set(n, "Displacement"_w, VECTOR, "($0 * $1)", nv, h);
        return;
    }
    // The normal is normalized in object space, so that the height scales with the object.
    g.use("safe_normalize"_w);
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    const Text d =
        g.var("float3", "L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3))) * $4", nv, ox, oy, oz, h);
    g.set(n, "Displacement"_w, VECTOR, "($0.x * $1 + $0.y * $2 + $0.z * $3)", d, ox, oy, oz);
}

// Converts a vector from tangent to object space. Its y component is along the normal and its z component along the
// bitangent, whose sign comes from the mesh.
Text from_tangent_space(Gen& g, Text d, Text ox, Text oy, Text oz) {
    g.use("safe_normalize"_w);
    const Text nf = g.geo("Nf");
    const Text nl = g.var("float3", "L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3)))", nf, ox, oy, oz);
    const Text t = g.var("float3", g.geo("Tl"));
    const Text b = g.var("float3", "L.safe_normalize(cross($0, $1))", nl, t);
    const Text nlo = g.geo("Nl");
    const Text blo = g.geo("Bl");
    g.emit("if (dot(cross(L.safe_normalize($0), $1), $2) < 0.0) $3 = -$3;", nlo, t, blo, b);
    return g.var("float3", "$1 * $0.x + $2 * $0.y + $3 * $0.z", d, t, nl, b);
}

// The object axes are read in every space, even if the vector is already in world space.
void _vector_displacement(Gen& g, Node& n) {
    const Text mid = g.var("float", g.inp(n, "Midlevel"_w, VALUE));
    const Text v = g.inp(n, "Vector"_w, VECTOR);
    const Text scale = g.inp(n, "Scale"_w, VALUE);
    Text d = g.var("float3", "($0 - float3($1, $1, $1)) * $2", v, mid, scale);
    const Value p = n.props();
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    if (property_is(p, "space"_w, "TANGENT", "TANGENT")) {
        d = from_tangent_space(g, d, ox, oy, oz);
    }
    if (!property_is(p, "space"_w, "TANGENT", "WORLD")) {
        d = g.text("($0.x * $1 + $0.y * $2 + $0.z * $3)", d, ox, oy, oz);
    }
    g.set(n, "Displacement"_w, VECTOR, d);
}

const node nodes[] = {
    {{"ShaderNodeDisplacement"}, _displacement_node},
    {{"ShaderNodeVectorDisplacement"}, _vector_displacement},
};

}  // namespace

}  // namespace quillgen
