// The normal that a node works on.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// The linked normal, unmodified, or else the shading normal. Either may be a long expression: a caller that uses it
// more than once stores it in a variable.
inline Text _normal_or_shading(Gen& g, Node& n, Word ident = "Normal"_w) {
    return g.linked(n, ident) ? g.inp(n, ident, VECTOR) : g.geo("Nf");
}

}  // namespace quillgen
