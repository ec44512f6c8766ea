// The evaluation of the whole graph of a surface.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// Bumps the shading normal by the displacement output, if the document asks for it, and evaluates the surface output.
// Returns the expression of the colour in emission mode, and the name of the closure's variable in every other mode.
// Unsupported "no surface output".
Text run(Gen& g, bool emission_mode);

}  // namespace quillgen
