// What a translation comes to, before its result is made of it.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "core/gen/gen.h"

namespace quillgen {

// What one generator has written, and what it asks for. The inputs are the generator's.
struct Draft {
    Value statements;                       // a str of lines; of parts a list of them
    Value structs;                          // a set of struct names
    Value need;                             // a set of library names
    Value warnings;                         // a list of str
    std::span<const Input> inputs;          // in the order of their declaration
    std::vector<const Input*> sorted = {};  // by name; of a material
    Value code = {};                        // of a material: the finished text; absent where it has to be laid out
};

// An output of a material.
struct MaterialOutput {
    Word name;
    Value expr;
};

struct Translation {
    Draft surface;
    Value ret = {};  // of parts: the expression of the colour
    // Of a material.
    Value material = {};
    std::vector<MaterialOutput> outputs = {};
    std::optional<Draft> displacement = {};
    double magnitude = 0.0;  // of the displacement: a power of two, at least 0.0625
};

// What the generator of a material or of its displacement has come to; `header` as for lay_out.
Draft material_draft(const Gen& g, Text header);
// The draft's finished text.
Value finished_text(const Module& module, Text header, const Draft& draft);

}  // namespace quillgen
