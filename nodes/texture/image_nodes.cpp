// Image and environment textures: the projection of the coordinate, and the sample there.
#include "nodes/texture/image.h"

namespace quillgen {

namespace {

constexpr Text kMagenta = "float3(1.0, 0.0, 1.0)";  // the colour of a missing image

bool is_missing(const Gen& g, const Value& img) {
    if (!img.truthy()) {
        return true;
    }
    const Value images = g.ir.get("images"_w);
    return !(images.present() ? images : Value::map(g.runtime())).contains(img);
}

void bind_sample(Gen& g, Node& n, Text sample) {
    g.bind(n, "Color"_w, RGBA, "$0.rgb", sample);
    g.bind(n, "Alpha"_w, VALUE, "$0.a", sample);
}

// Three samples, one along each axis, weighted by the normal.
Text box_projection(Gen& g, Node& n, const Value& p, const DeclaredImage& image, Text co) {
    g.use("box_weights"_w);
    const Text nb = g.var("float3", g.geo("Nobj"));
    const Value blend = p.get("projection_blend"_w);
    const Text w = g.var("float3", "L.box_weights($0, $1)", nb, blend.present() ? g._f(blend) : "0.0");
    // Mirrored on one side of each axis: on the negative side of x, but on the positive sides of y and z.
    const Text coordinates[] = {
        g.text("float2(($0.x < 0.0) ? 1.0 - $1.y : $1.y, $1.z)", nb, co),
        g.text("float2(($0.y > 0.0) ? 1.0 - $1.x : $1.x, $1.z)", nb, co),
        g.text("float2(($0.z > 0.0) ? 1.0 - $1.y : $1.y, $1.x)", nb, co),
    };
    const Text acc = g.var("float4", "float4(0.0, 0.0, 0.0, 0.0)");
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const Text tuv = g.var("float2", coordinates[axis]);
        const Text smp = _image_lookup(g, image, tuv, g.is_used(n, "Alpha"_w));
        g.emit("if ($0.$1 > 0.0) $2 += $0.$1 * $3;", w, Text("xyz").substr(axis, 1), acc, smp);
    }
    return acc;
}

Text projected(Gen& g, const Value& projection, Text co) {
    if (projection.is("SPHERE")) {
        g.use("map_to_sphere"_w);
        return g.var("float2", "L.map_to_sphere(($0 - 0.5) * 2.0)", co);
    }
    if (projection.is("TUBE")) {
        g.use("map_to_tube"_w);
        return g.var("float2", "L.map_to_tube(($0 - 0.5) * 2.0)", co);
    }
    return g.var("float2", "$0.xy", co);
}

void _tex_image(Gen& g, Node& n) {
    const Value p = n.props();
    const Value img = p.get("image"_w);
    if (is_missing(g, img)) {
        g.bind(n, "Color"_w, RGBA, kMagenta);
        g.bind(n, "Alpha"_w, VALUE, "1.0");
        return;
    }
    const DeclaredImage image = _image_spec(g, n, img);
    const Text co = g.var("float3", g.vector_or(n, "Vector"_w, "uv0"));
    const Value projection = p.get("projection"_w);
    if (projection.is("BOX")) {
        bind_sample(g, n, box_projection(g, n, p, image, co));
        return;
    }
    const Text tuv = projected(g, projection, co);
    // The colour is divided by alpha only if something reads the alpha too.
    bind_sample(g, n, _image_lookup(g, image, tuv, g.is_used(n, "Alpha"_w)));
}

void _tex_environment(Gen& g, Node& n) {
    const Value p = n.props();
    const Value img = p.get("image"_w);
    if (is_missing(g, img)) {
        g.bind(n, "Color"_w, RGBA, kMagenta);
        return;
    }
    const DeclaredImage image = _image_spec(g, n, img);
    g.use("safe_normalize"_w);
    const Text d = g.var("float3", "L.safe_normalize($0)", g.vector_or(n, "Vector"_w, "P"));
    const bool is_mirror_ball = p.get("projection"_w).is("MIRROR_BALL");
    g.use(is_mirror_ball ? "mirrorball_uv"_w : "equirect_uv"_w);
    const Text tuv =
        is_mirror_ball ? g.var("float2", "L.mirrorball_uv($0)", d) : g.var("float2", "L.equirect_uv($0)", d);
    g.bind(n, "Color"_w, RGBA, "$0.rgb", _image_lookup(g, image, tuv));
}

const node nodes[] = {
    {{"ShaderNodeTexImage"}, _tex_image},
    {{"ShaderNodeTexEnvironment"}, _tex_environment},
};

}  // namespace

}  // namespace quillgen
