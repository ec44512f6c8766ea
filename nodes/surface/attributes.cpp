// Attributes of the mesh: UV maps by name, and the one vertex colour.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// The colour is not stored in a variable: each reader of an output repeats the signal's expression.
void _vertex_color(Gen& g, Node& n) {
    const Text v = g.geo("vcol");
    g.bind(n, "Color"_w, RGBA, "$0.rgb", v);
    g.bind(n, "Alpha"_w, VALUE, "$0.a", v);
}

void uv_attribute(Gen& g, Node& n, int uvi) {
    const Text v = g.var("float3", g.geo(Signal::uv_set(uvi)));
    g.bind(n, "Color"_w, RGBA, v);
    g.bind(n, "Vector"_w, VECTOR, v);
    g.bind(n, "Fac"_w, VALUE, "(($0.x + $0.y + $0.z) * (1.0 / 3.0))", v);
    g.bind(n, "Alpha"_w, VALUE, "1.0");
}

// Any name that is not a UV map stands for the vertex colour.
void colour_attribute(Gen& g, Node& n) {
    const Text v = g.geo("vcol");
    g.bind(n, "Color"_w, RGBA, "$0.rgb", v);
    g.bind(n, "Vector"_w, VECTOR, "$0.rgb", v);
    g.bind(n, "Fac"_w, VALUE, "(($0.r + $0.g + $0.b) * (1.0 / 3.0))", v);
    g.bind(n, "Alpha"_w, VALUE, "$0.a", v);
}

void _attribute(Gen& g, Node& n) {
    const Value property = n.props().get("attribute_name"_w);
    const Value name = property.present() ? property : Value::text(g.runtime(), "");
    const Value uv_maps = g.ir.get("uv_maps"_w);
    if (uv_maps.present() && uv_maps.contains(name)) {
        uv_attribute(g, n, static_cast<int>(uv_maps.index_of(name)));
    } else {
        colour_attribute(g, n);
    }
}

const node nodes[] = {
    {{"ShaderNodeVertexColor"}, _vertex_color},
    {{"ShaderNodeAttribute"}, _attribute},
};

}  // namespace

}  // namespace quillgen
