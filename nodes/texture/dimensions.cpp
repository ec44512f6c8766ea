#include "nodes/texture/dimensions.h"

namespace quillgen {

Text _coord(Gen& g, Node& n, int d, Text scale) {
    if (d == 1) {
        return g.text("($0 * $1)", g.inp(n, "W"_w, VALUE, "0.0"), scale);
    }
    const Text v = g.vector_or(n, "Vector"_w, "generated");
    if (d == 2) {
        return g.text("(($0).xy * $1)", v, scale);
    }
    if (d == 3) {
        return g.text("($0 * $1)", v, scale);
    }
    const Text w = g.inp(n, "W"_w, VALUE, "0.0");
    return g.text("(float4($0, $1) * $2)", v, w, scale);
}

}  // namespace quillgen
