// Bumped normals from heights beside the shaded point.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// Two steps in the tangent plane, each as long as one screen step: the world-space vectors `dpdx` and `dpdy`, and the
// offsets of the signals for them.
struct BumpOffsets {
    Text dpdx;
    Text dpdy;
    Offset dx;
    Offset dy;
};

// `fw`, the filter width, scales the offsets. It is a literal.
BumpOffsets _bump_offsets(Gen& g, Text fw);

// Names of variables, or literals. Vectors are in world space. `hc` is the height at the shaded point; `hx` and `hy`
// are the heights at the offsets.
struct Bump {
    Text N;
    Text hc;
    Text hx;
    Text hy;
    Text scale;
    Text strength;
    Text fw;
    Text dpdx;
    Text dpdy;
};

// Returns the name of the new normal, which is in world space even if the bump is computed in object space.
Text _bump_normal(Gen& g, Bump bump, bool object_space);

// If the document asks for it, bumps the shading normal by the displacement output, for everything that is evaluated
// afterwards.
void displacement_normal(Gen& g);

}  // namespace quillgen
