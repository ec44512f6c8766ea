// What a translation comes to, before its result is made of it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/gen/gen.h"

namespace quillgen {

// What one generator has written, and what it asks for. The inputs belong to the generator, or to what keeps the draft.
struct Draft {
    Text header;                            // of a material: see lay_out
    Value statements;                       // a str of lines; of parts a list of them
    Value structs;                          // a set of struct names
    Value need;                             // a set of library names
    Value warnings;                         // a list of str
    std::span<const Input> inputs;          // in the order of their declaration
    std::vector<const Input*> sorted = {};  // by name; of a material
    Value code = {};  // of a material: the finished text; absent of a kept draft, as the library may have changed
};

// An output of a material.
struct MaterialOutput {
    Word name;
    Value expr;
};

struct Displacement {
    Draft draft;
    double magnitude;  // in centimetres, a power of two, at least 0.0625
};

struct Translation {
    Draft surface;
    Value ret = {};  // of parts: the expression of the colour
    // Of a material.
    Value material = {};
    std::vector<MaterialOutput> outputs = {};
    std::optional<Displacement> displacement = {};
};

// What the generator of a material or of its displacement has come to. It is laid out at once: an error of the library
// comes ahead of one of the displacement.
Draft material_draft(const Gen& g, Text header);
// The draft's finished text.
Value finished_text(const Module& module, const Draft& draft);

}  // namespace quillgen
