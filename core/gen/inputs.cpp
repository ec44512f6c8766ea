#include "core/gen/inputs.h"

namespace quillgen {

Input* Inputs::find(const Name& name) {
    if (name.number >= places_.size()) {
        return nullptr;
    }
    const std::size_t place = places_[name.number];
    return place < entries_.size() && entries_[place].name == &name ? &entries_[place] : nullptr;
}

Input& Inputs::put(const Input& input) {
    if (Input* const known = find(*input.name)) {
        ambiguous_ = ambiguous_ || known->value.object() != input.value.object();
        return *known = input;
    }
    if (input.name->number >= places_.size()) {
        places_.resize(2 * input.name->number + 1);
    }
    places_[input.name->number] = entries_.size();
    return entries_.emplace_back(input);
}

void Inputs::clear() {
    ambiguous_ = false;
    entries_.clear();
}

}  // namespace quillgen
