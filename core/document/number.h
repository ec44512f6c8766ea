// Numbers as HLSL literals.
#pragma once

#include <string>

namespace quillgen {

// Appends the shortest decimal text that reads back as the same 64-bit float, in the form of Python's repr.
// NaN becomes "0.0", and an infinity becomes the largest finite 32-bit float of its sign.
void append_literal(std::string& out, double number);

}  // namespace quillgen
