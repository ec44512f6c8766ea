// From heights beside the shaded point to a normal.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// Two steps in the tangent plane, each of the length of one screen step: the world-space vectors `dpdx` and
// `dpdy`, and how far to move the signals for them.
struct BumpOffsets {
    Text dpdx;
    Text dpdy;
    Offset dx;
    Offset dy;
};

// `fw`, the filter width, scales the offsets. It is a literal.
BumpOffsets _bump_offsets(Gen& g, Text fw);

// Names of variables or literals: vectors in world space, `hc` the height at the shaded point, `hx` and
// `hy` the heights at the offsets.
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

// The name of the new normal, in world space also where the bump is computed in object space.
Text _bump_normal(Gen& g, Bump bump, bool object_space);

// Bumps the shading normal of all that is evaluated from then on by the displacement output, where the document asks
// for it.
void displacement_normal(Gen& g);

}  // namespace quillgen
