// Texture coordinates and UV maps. Only outputs that something reads are generated. Of these, the ones without an
// equivalent in Unreal warn.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

struct CoordinateOutput {
    Word name;
    Signal signal;
};

constexpr CoordinateOutput kOutputs[] = {
    {"Generated"_w, "generated"}, {"UV"_w, "uv0"}, {"Object"_w, "Pobj"}, {"Normal"_w, "Nobj"}};

void reflection(Gen& g, Node& n) {
    const Text normal = g.geo("N");
    const Text incoming = g.geo("I");
    g.set(n, "Reflection"_w, VECTOR, "reflect(-$0, $1)", incoming, normal);
}

void unavailable(Gen& g, Node& n, Word out) {
    g.warn("$0: Texture Coordinate $1 is not available in Unreal - 0", g.formatted(n.id), out.text());
    g.bind(n, out, VECTOR, "float3(0.0, 0.0, 0.0)");
}

void _texcoord(Gen& g, Node& n) {
    for (const auto& [out, signal] : kOutputs) {
        if (!g.is_used(n, out)) {
            continue;
        }
        if (out == "Object"_w && n.record.get("object_matrix"_w).truthy()) {
            g.warn("$0: Texture Coordinate with a custom object uses this object's own space", g.formatted(n.id));
        }
        g.set(n, out, VECTOR, g.geo(signal));
    }
    for (const Word out : {"Camera"_w, "Window"_w}) {
        if (g.is_used(n, out)) {
            unavailable(g, n, out);
        }
    }
    if (g.is_used(n, "Reflection"_w)) {
        reflection(g, n);
    }
}

// Always the first UV set, whichever map the node names.
void _uvmap(Gen& g, Node& n) { g.set(n, "UV"_w, VECTOR, g.geo("uv0")); }

const node nodes[] = {
    {{"ShaderNodeTexCoord"}, _texcoord},
    {{"ShaderNodeUVMap"}, _uvmap},
};

}  // namespace

}  // namespace quillgen
