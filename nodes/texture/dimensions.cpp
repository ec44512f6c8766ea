#include "nodes/texture/dimensions.h"

namespace quillgen {

Text _coord(Gen& g, const Node& n, int d, Text scale) {
    if (d == 1) {
        return g.text("($0 * $1)"_fmt, g.inp(n, "W", VALUE, "0.0"), scale);
    }
    const Text v = g.vector_or(n, "Vector", "generated");
    if (d == 2) {
        return g.text("(($0).xy * $1)"_fmt, v, scale);
    }
    if (d == 3) {
        return g.text("($0 * $1)"_fmt, v, scale);
    }
    const Text w = g.inp(n, "W", VALUE, "0.0");
    return g.text("(float4($0, $1) * $2)"_fmt, v, w, scale);
}

}  // namespace quillgen
