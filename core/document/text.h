// Text, and its conversion from and to Python strings.
#pragma once

#include <string>
#include <string_view>

#include "core/document/handle.h"

namespace quillgen {

// UTF-8. A lone surrogate, which Blender returns for names that are not valid UTF-8, is encoded in three bytes, as by
// Python's "surrogatepass".
using Text = std::string_view;

Ref to_python(Text text);
// The text of a str object. The object owns it, or `storage` if the str has lone surrogates.
Text to_text(PyObject* string, std::string& storage);
// Appends format(object).
void append_formatted(std::string& out, PyObject* object);
// Appends the text, with "_" for each character other than an ASCII letter, digit or underscore.
void append_identifier(std::string& out, Text text);

}  // namespace quillgen
