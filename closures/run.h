// The run over the whole graph of a surface.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// Bumps the shading normal by the displacement output, where the document asks for it, and evaluates the surface
// output. The result is the text of its colour in emission mode, and in every other mode the name of its closure's
// variable. Unsupported "no surface output".
Text run(Gen& g, bool emission_mode);

}  // namespace quillgen
