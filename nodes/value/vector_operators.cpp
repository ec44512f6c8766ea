// Mapping, rotation, and transforms of vectors between spaces.
#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

namespace {

constexpr EnumItem kMappings[] = {{"POINT", 0}, {"TEXTURE", 1}, {"VECTOR", 2}, {"NORMAL", 3}};
constexpr EnumItem kRotations[] = {{"AXIS_ANGLE", 0}, {"X_AXIS", 1}, {"Y_AXIS", 2}, {"Z_AXIS", 3}, {"EULER_XYZ", 4}};

void _mapping(Gen& g, Node& n) {
    g.use("mapping"_w);
    const int m = enum_number(n.props(), "vector_type"_w, "POINT", kMappings);
    // Blender's node has no Location socket for a direction or a normal.
    const Text loc = g.inp(n, "Location"_w, VECTOR, "float3(0.0, 0.0, 0.0)");
    const Text v = g.inp(n, "Vector"_w, VECTOR);
    const Text r = g.inp(n, "Rotation"_w, VECTOR);
    const Text s = g.inp(n, "Scale"_w, VECTOR);
    g.set(n, "Vector"_w, VECTOR, "L.mapping($0, $1, $2, $3, $4)", m, v, loc, r, s);
}

// Every mode passes all the arguments, whichever of them it uses.
void _vrot(Gen& g, Node& n) {
    g.use("vector_rotate"_w);
    const Value p = n.props();
    const int m = enum_number(p, "rotation_type"_w, "AXIS_ANGLE", kRotations);
    const int inv = p.get("invert"_w).truthy() ? 1 : 0;
    const Text v = g.inp(n, "Vector"_w, VECTOR);
    const Text c = g.inp(n, "Center"_w, VECTOR, "float3(0.0, 0.0, 0.0)");
    const Text ax = g.inp(n, "Axis"_w, VECTOR, "float3(0.0, 0.0, 1.0)");
    const Text an = g.inp(n, "Angle"_w, VALUE, "0.0");
    const Text r = g.inp(n, "Rotation"_w, VECTOR, "float3(0.0, 0.0, 0.0)");
    g.set(n, "Vector"_w, VECTOR, "L.vector_rotate($0, $1, $2, $3, $4, $5, $6)", m, inv, v, c, ax, an, r);
}

// ---- Vector Transform -----------------------------------------------------------------------

enum class Space { world, camera, object, unknown };

Space space_of(const Value& props, Word key, Text fallback) {
    if (property_is(props, key, fallback, "WORLD")) {
        return Space::world;
    }
    if (property_is(props, key, fallback, "CAMERA")) {
        return Space::camera;
    }
    return property_is(props, key, fallback, "OBJECT") ? Space::object : Space::unknown;
}

// The kind of vector of a Vector Transform node, and the object's axes.
struct Transform {
    Gen& g;
    bool is_vector;
    bool is_normal;
    bool is_point;  // is POINT; an unknown kind is also treated as a point, except in world_to_cam
    Text ox;
    Text oy;
    Text oz;
};

Text obj_to_world(const Transform& t, Text x) {
    Gen& g = t.g;
    if (t.is_normal) {
        g.use("n_obj_to_world"_w);
        return g.text("L.n_obj_to_world($0, $1, $2, $3)", x, t.ox, t.oy, t.oz);
    }
    const Text d = g.text("($0.x * $1 + $0.y * $2 + $0.z * $3)", x, t.ox, t.oy, t.oz);
    return t.is_vector ? d : g.text("($0 + $1)", d, g.geo("objpos"));
}

Text world_to_obj(const Transform& t, Text x) {
    Gen& g = t.g;
    if (t.is_normal) {
        g.use("safe_normalize"_w);
        return g.text("L.safe_normalize(float3(dot($0, $1), dot($0, $2), dot($0, $3)))", x, t.ox, t.oy, t.oz);
    }
    g.use("dir_world_to_obj"_w);
    const Text y = t.is_vector ? x : g.text("($0 - $1)", x, g.geo("objpos"));
    return g.text("L.dir_world_to_obj($0, $1, $2, $3)", y, t.ox, t.oy, t.oz);
}

Text world_to_cam(const Transform& t, Text x) {
    Gen& g = t.g;
    const Text y = t.is_point ? g.text("($0 - $1)", x, g.geo("campos")) : x;
    const Text vx = g.geo("vx");
    const Text vy = g.geo("vy");
    const Text vz = g.geo("vz");
    const Text d = g.text("float3(dot($0, $1), dot($0, $2), dot($0, $3))", y, vx, vy, vz);
    return t.is_normal ? g.text("normalize($0)", d) : d;
}

Text cam_to_world(const Transform& t, Text x) {
    Gen& g = t.g;
    const Text vx = g.geo("vx");
    const Text vy = g.geo("vy");
    const Text vz = g.geo("vz");
    const Text d = g.text("($0.x * $1 + $0.y * $2 + $0.z * $3)", x, vx, vy, vz);
    if (t.is_normal) {
        return g.text("normalize($0)", d);
    }
    return t.is_vector ? d : g.text("($0 + $1)", d, g.geo("campos"));
}

// The transform goes through world space; the intermediate vector is stored in a variable.
Text transformed(const Transform& t, Space from, Space to, Text v) {
    if (from == to || from == Space::unknown || to == Space::unknown) {
        return v;
    }
    Text w = v;
    if (from != Space::world) {
        w = t.g.var("float3", from == Space::camera ? cam_to_world(t, v) : obj_to_world(t, v));
    }
    return to == Space::camera ? world_to_cam(t, w) : to == Space::object ? world_to_obj(t, w) : w;
}

void _vector_transform(Gen& g, Node& n) {
    const Value p = n.props();
    const bool is_vector = property_is(p, "vector_type"_w, "VECTOR", "VECTOR");
    const bool is_normal = property_is(p, "vector_type"_w, "VECTOR", "NORMAL");
    const bool is_point = property_is(p, "vector_type"_w, "VECTOR", "POINT");
    const Space from = space_of(p, "convert_from"_w, "WORLD");
    const Space to = space_of(p, "convert_to"_w, "OBJECT");
    const Text v = g.var("float3", g.inp(n, "Vector"_w, VECTOR));
    const Text ox = g.geo("ox");
    const Text oy = g.geo("oy");
    const Text oz = g.geo("oz");
    const Transform t{g, is_vector, is_normal, is_point, ox, oy, oz};
    g.set(n, "Vector"_w, VECTOR, transformed(t, from, to, v));
}

const node nodes[] = {
    {{"ShaderNodeMapping"}, _mapping},
    {{"ShaderNodeVectorRotate"}, _vrot},
    {{"ShaderNodeVectorTransform"}, _vector_transform},
};

}  // namespace

}  // namespace quillgen
