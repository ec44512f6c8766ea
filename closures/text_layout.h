// The layout of a finished text: header, structs, `struct QWK` with the library and the closure
// functions, its one instance, and the statements.
#pragma once

#include <string>

#include "core/gen/module.h"

namespace quillgen {

// Appends the lines above the statements. `header` is "material" or "displacement"; `structs` and `need` are sets of
// names that the library is asked for; KeyError for a struct that it lacks, and whatever its `resolve` answers to a
// name that it lacks. `extra_lib` is absent, or a str that goes directly behind the closure functions.
void append_head(const Module& module, const Value& lines, Text header, const Value& structs, const Value& need,
                 const Value& extra_lib);

// The finished text. The statements are a str of lines.
Value lay_out(const Module& module, Text header, const Value& structs, const Value& need, const Value& statements);

}  // namespace quillgen
