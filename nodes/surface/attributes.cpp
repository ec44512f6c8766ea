// Attributes of the mesh: UV maps by name, and the one vertex colour.
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

// The colour is not put into a variable: each reader of an output pastes the signal.
void _vertex_color(Gen& g, const Node& n) {
    const Text v = g.geo("vcol");
    g.bind(n, "Color", RGBA, "$0.rgb"_fmt, v);
    g.bind(n, "Alpha", VALUE, "$0.a"_fmt, v);
}

void uv_attribute(Gen& g, const Node& n, int uvi) {
    const Text v = g.var("float3", g.geo(Signal::uv_set(uvi)));
    g.bind(n, "Color", RGBA, v);
    g.bind(n, "Vector", VECTOR, v);
    g.bind(n, "Fac", VALUE, "(($0.x + $0.y + $0.z) * (1.0 / 3.0))"_fmt, v);
    g.bind(n, "Alpha", VALUE, "1.0");
}

// Any name that is no UV map's stands for the vertex colour.
void colour_attribute(Gen& g, const Node& n) {
    const Text v = g.geo("vcol");
    g.bind(n, "Color", RGBA, "$0.rgb"_fmt, v);
    g.bind(n, "Vector", VECTOR, "$0.rgb"_fmt, v);
    g.bind(n, "Fac", VALUE, "(($0.r + $0.g + $0.b) * (1.0 / 3.0))"_fmt, v);
    g.bind(n, "Alpha", VALUE, "$0.a"_fmt, v);
}

void _attribute(Gen& g, const Node& n) {
    const Value property = n.props().get("attribute_name");
    const Value name = property.present() ? property : Value::text(g.runtime(), "");
    const Value uv_maps = g.ir.get("uv_maps");
    if (uv_maps.present() && uv_maps.contains(name)) {
        uv_attribute(g, n, static_cast<int>(uv_maps.index_of(name)));
    } else {
        colour_attribute(g, n);
    }
}

}  // namespace

void register_attributes(Registry& registry) {
    registry.node({"ShaderNodeVertexColor"}, _vertex_color);
    registry.node({"ShaderNodeAttribute"}, _attribute);
}

}  // namespace quillgen
