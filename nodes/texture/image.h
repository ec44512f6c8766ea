// Images as textures of the Custom expression: their names, their declaration and the code that samples them.
#pragma once

#include <string>

#include "core/gen/gen.h"

namespace quillgen {

// The name of an image's texture input: readable, and told apart by the start of a hash of the whole name.
// TypeError for anything but a str.
std::string tex_input(const Runtime& runtime, const Value& image_name);

struct DeclaredImage {
    Text t;      // the texture input
    Value spec;  // what else the input needs, as the first node to use the image told it
    Value info;  // the image's record
};

// Declares an image that the document has. A node that wants it read in another way than the first gets a warning.
DeclaredImage _image_spec(Gen& g, Node& n, const Value& img);

// How an image's colour stands to its alpha.
struct AlphaUse {
    int assoc;         // how a fetch multiplies the colour by alpha: 0 not, 1 yes, 2 yes for a float image
    bool can_unassoc;  // whether a filtered sample may be divided by its alpha
};

AlphaUse _image_alpha(const Value& info);

// The colour spaces of images that hold data and no colour.
bool is_data_space(const Value& colorspace);

// Samples the texture at `tuv`, a float2 variable with v upwards, and gives the float4 variable of the sample.
// With `unassociate` the colour is straight, where the image allows it.
Text _image_lookup(Gen& g, const DeclaredImage& image, Text tuv, bool unassociate = false);

}  // namespace quillgen
