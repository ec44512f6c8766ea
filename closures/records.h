// The records of a result.
#pragma once

#include "closures/translation.h"

namespace quillgen {

struct InputRecords {
    Value sorted;  // a list of maps, one for each input, sorted by name: the name first, then the input's record
    Value params;  // a map from the name of each tweakable value to the list of its kind word and value
};
InputRecords input_records(const Runtime& runtime, const Draft& draft);
// A map from name to record, in the order of declaration.
Value inputs_by_name(const Runtime& runtime, const Draft& draft);
Value warning_list(const Gen& g);

}  // namespace quillgen
