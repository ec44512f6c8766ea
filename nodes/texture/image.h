// Images as textures of the Custom expression: their names, their declarations and the code that samples them.
#pragma once

#include <string>

#include "core/gen/gen.h"

namespace quillgen {

// The name of an image's texture input: a readable part, and the start of a hash of the whole name that makes it
// distinct. TypeError for anything but a str.
std::string tex_input(const Runtime& runtime, const Value& image_name);

struct DeclaredImage {
    Text t;      // the texture input
    Value spec;  // the further keys of the input, as set by the first node that uses the image
    Value info;  // the image's record
};

// Declares an image of the document. Warns if the node's extension or interpolation differs from the first node's.
DeclaredImage _image_spec(Gen& g, Node& n, const Value& img);

// How an image's colour is associated with its alpha.
struct AlphaUse {
    int assoc;         // whether a fetch multiplies the colour by alpha: 0 no, 1 yes, 2 yes for a float image
    bool can_unassoc;  // whether a filtered sample may be divided by its alpha
};

AlphaUse _image_alpha(const Value& info);

// Whether the colour space is one for images that hold data instead of colour.
bool is_data_space(const Value& colorspace);

// Samples the texture at `tuv`, a float2 variable with v upwards, and returns the float4 variable of the sample. With
// `unassociate`, the colour is divided by alpha if the image allows it.
Text _image_lookup(Gen& g, const DeclaredImage& image, Text tuv, bool unassociate = false);

}  // namespace quillgen
