// Text, and its way from and to Python's strings.
#pragma once

#include <string>
#include <string_view>

#include "core/document/handle.h"

namespace quillgen {

// UTF-8. Lone surrogates, which Blender hands out for names that were not UTF-8, are the three bytes that UTF-8 would
// give them.
using Text = std::string_view;

Ref to_python(Text text);
// The text of a str object. `storage` holds it where the object cannot: where it has lone surrogates.
Text to_text(PyObject* string, std::string& storage);
// Appends what format(object) gives.
void append_formatted(std::string& out, PyObject* object);
// Appends the text with "_" for each character that is no ASCII letter, digit or underscore.
void append_identifier(std::string& out, Text text);

}  // namespace quillgen
