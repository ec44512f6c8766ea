// The layout of a finished text: header, structs, `struct QWK` with the functions of the library and of the closures,
// its instance, and the statements.
#pragma once

#include "core/gen/module.h"

namespace quillgen {

inline constexpr Text kMaterialHeader =
    "// Quillwork - generated from Blender's node tree. Edit the material in Blender, not here.";
inline constexpr Text kDisplacementHeader = "// Quillwork - displacement of Blender's node tree (Nanite tessellation).";

// The lines above the statements, as a list of str. `structs` and `need` are sets of names of the library: KeyError for
// a struct that it lacks, and the error that its `resolve` raises for a function that it lacks. `extra_lib` is inserted
// directly after the closures' functions.
Value head_lines(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text extra_lib = {});

// The finished text, a str. `body` is the statements, each ended by a line feed.
Value lay_out(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text body);

}  // namespace quillgen
