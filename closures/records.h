// The records of a result that are made of a generator's state.
#pragma once

#include "core/gen/gen.h"

namespace quillgen {

// A list of maps, one for each input, sorted by name: the name first, then the input's record.
Value sorted_inputs(const Gen& g);
// A map from name to record, in the order of declaration.
Value inputs_by_name(const Gen& g);
// A map from the name of each tweakable value to the list of its kind word and value.
Value parameters(const Gen& g);
Value warning_list(const Gen& g);

}  // namespace quillgen
