// Numbers as HLSL literals.
#pragma once

#include <string>

#include "core/document/value.h"

namespace quillgen {

// The shortest decimal text that reads back as the same 64-bit float, in the form of Python's repr.
// Not-a-number becomes "0.0" and the infinities the largest finite 32-bit floats.
void append_literal(std::string& out, double number);

// `_f` and `_v3`: a float literal, and a float3 of the first three of a sequence's items, padded
// with zeros. TypeError or ValueError where a value does not convert to a float.
std::string _f(const Value& value);
std::string _v3(const Value& value);

}  // namespace quillgen
