// The layout of a finished text: header, structs, `struct QWK` with the library's functions and the closures', its one
// instance, and the statements.
#pragma once

#include "core/gen/module.h"

namespace quillgen {

inline constexpr Text kMaterialHeader =
    "// Quillwork - generated from Blender's node tree. Edit the material in Blender, not here.";
inline constexpr Text kDisplacementHeader = "// Quillwork - displacement of Blender's node tree (Nanite tessellation).";

// The lines above the statements, as a list of str. `structs` and `need` are sets of names that the library is asked
// for: KeyError for a struct that it lacks, and whatever its `resolve` answers to a name that it lacks. `extra_lib`
// goes directly behind the closures' functions.
Value head_lines(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text extra_lib = {});

// The finished text, a str. `body` are the statements, each ended by a line feed.
Value lay_out(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text body);

}  // namespace quillgen
