// Texture coordinates and UV maps. Only the outputs that something reads are made, and only those of them that
// have no equal in Unreal give a warning.
#include "core/gen/gen.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

struct CoordinateOutput {
    Word name;
    Signal signal;
};

constexpr CoordinateOutput kOutputs[] = {
    {"Generated", "generated"}, {"UV", "uv0"}, {"Object", "Pobj"}, {"Normal", "Nobj"}};

void reflection(Gen& g, const Node& n) {
    const Text normal = g.geo("N");
    const Text incoming = g.geo("I");
    g.set(n, "Reflection", VECTOR, "reflect(-$0, $1)"_fmt, incoming, normal);
}

void unavailable(Gen& g, const Node& n, Word out) {
    g.warn("$0: Texture Coordinate $1 is not available in Unreal - 0"_fmt, g.formatted(n.id), out.text());
    g.bind(n, out, VECTOR, "float3(0.0, 0.0, 0.0)");
}

void _texcoord(Gen& g, const Node& n) {
    for (const auto& [out, signal] : kOutputs) {
        if (!g.is_used(n, out)) {
            continue;
        }
        if (out == Word("Object") && n.record.get("object_matrix").truthy()) {
            g.warn("$0: Texture Coordinate with a custom object uses this object's own space"_fmt, g.formatted(n.id));
        }
        g.set(n, out, VECTOR, g.geo(signal));
    }
    for (const Word out : {Word("Camera"), Word("Window")}) {
        if (g.is_used(n, out)) {
            unavailable(g, n, out);
        }
    }
    if (g.is_used(n, "Reflection")) {
        reflection(g, n);
    }
}

// Always the first UV set, whichever map the node names.
void _uvmap(Gen& g, const Node& n) { g.set(n, "UV", VECTOR, g.geo("uv0")); }

}  // namespace

void register_coordinates(Registry& registry) {
    registry.node({"ShaderNodeTexCoord"}, _texcoord);
    registry.node({"ShaderNodeUVMap"}, _uvmap);
}

}  // namespace quillgen
