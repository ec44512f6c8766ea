// Shared code of the textures of one to four dimensions.
#pragma once

#include "core/gen/gen.h"
#include "core/gen/properties.h"

namespace quillgen {

// The dimension words of a document. NOLINTNEXTLINE(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
inline constexpr EnumItem _DIMS[] = {{"1D", 1}, {"2D", 2}, {"3D", 3}, {"4D", 4}};

// The node's coordinate of dimension `d` times `scale`, as an expression in parentheses. It reads only the sockets that
// the dimension needs: W in 1D, Vector in 2D and 3D, both in 4D.
Text _coord(Gen& g, Node& n, int d, Text scale);

}  // namespace quillgen
