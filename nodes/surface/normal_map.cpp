// Normal Map: decodes a normal from a colour, as a shading normal in world space.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// The operands of both kinds of space. All but the axes are names of variables.
struct NormalMap {
    Text col;
    Text strength;
    Text Nf;
    Text ox;
    Text oy;
    Text oz;
    Text nm;  // the result, declared by whichever branch is taken
};

void flip_on_the_back(Gen& g, Text nm) {
    const Text ts = g.geo("twosided");
    g.emit("if ($0 < 0.0) $1 = -$1;", ts, nm);
}

// The strength applies to the components, before the transform: it scales x and y without limit, and blends z from 1
// with a factor of at most 1.
void tangent_space(Gen& g, const NormalMap& m) {
    const Text nl = g.var("float3", g.geo("Nl"));
    const Text t = g.var("float3", g.geo("Tl"));
    const Text bl = g.var("float3", g.geo("Bl"));
    // The bitangent is recomputed; only its sign comes from the mesh.
    const Text b = g.var("float3", "cross($0, $1)", nl, t);
    g.emit("if (dot($0, $1) < 0.0) $0 = -$0;", b, bl);
    g.emit("$0.x *= $1; $0.y *= $1; $0.z = lerp(1.0, $0.z, saturate($1));", m.col, m.strength);
    g.emit("float3 $0 = L.n_obj_to_world(L.safe_normalize($1.x * $2 + $1.y * $3 + $1.z * $4), $5, $6, $7);", m.nm,
           m.col, t, b, nl, m.ox, m.oy, m.oz);
    flip_on_the_back(g, m.nm);
}

// The strength blends from the surface normal, after the transform. It is clamped to zero from below, without an upper
// limit.
void other_space(Gen& g, const NormalMap& m, const Value& space) {
    const bool blender_object = space.is("BLENDER_OBJECT");
    if (blender_object || space.is("BLENDER_WORLD")) {
        g.emit("$0.y = -$0.y; $0.z = -$0.z;", m.col);
    }
    if (blender_object || space.is("OBJECT")) {
        g.emit("float3 $0 = L.n_obj_to_world($1, $2, $3, $4);", m.nm, m.col, m.ox, m.oy, m.oz);
    } else {
        g.emit("float3 $0 = L.safe_normalize($1);", m.nm, m.col);
    }
    flip_on_the_back(g, m.nm);
    g.emit("if ($2 != 1.0) $0 = L.safe_normalize($1 + ($0 - $1) * max($2, 0.0));", m.nm, m.Nf, m.strength);
}

void _normal_map(Gen& g, Node& n) {
    const Value p = n.props();
    const Value space = p.get("space"_w);
    NormalMap m;
    m.col = g.var("float3", "2.0 * ($0 - float3(0.5, 0.5, 0.5))", g.inp(n, "Color"_w, RGBA));
    if (p.get("convention"_w).is("DIRECTX")) {
        g.emit("$0.y = -$0.y;", m.col);
    }
    m.strength = g.var("float", g.inp(n, "Strength"_w, VALUE));
    m.Nf = g.var("float3", g.geo("Nf"));
    m.ox = g.geo("ox");
    m.oy = g.geo("oy");
    m.oz = g.geo("oz");
    g.use("n_obj_to_world"_w, "safe_normalize"_w);
    m.nm = g.tmp("nm");
    if (!space.present() || space.is("TANGENT")) {
        tangent_space(g, m);
    } else {
        other_space(g, m, space);
    }
    // A colour may decode to a vector without a direction: zero, infinite or NaN.
    g.emit("if (dot($0, $0) == 0.0 || any(isnan($0)) || any(isinf($0))) $0 = $1;", m.nm, m.Nf);
    g.bind(n, "Normal"_w, VECTOR, m.nm);
}

const node nodes[] = {
    {{"ShaderNodeNormalMap"}, _normal_map},
};

}  // namespace

}  // namespace quillgen
