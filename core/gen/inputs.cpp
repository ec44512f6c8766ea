#include "core/gen/inputs.h"

namespace quillgen {

Input* Inputs::find(const Name& name) {
    if (name.number >= places_.size()) {
        return nullptr;
    }
    const std::size_t place = places_[name.number];
    return place < entries_.size() && entries_[place].name == &name ? &entries_[place] : nullptr;
}

// The entry of that name, which is to hold the value.
inline Input& Inputs::entry(const Name& name, const Value& value) {
    if (Input* const known = find(name)) {
        ambiguous_ = ambiguous_ || known->value.object() != value.object();
        return *known;
    }
    if (name.number >= places_.size()) {
        places_.resize(2 * name.number + 1);
    }
    places_[name.number] = entries_.size();
    return entries_.emplace_back();
}

Input& Inputs::put(const Input& input) { return entry(*input.name, input.value) = input; }

void Inputs::put_parameter(const Name& name, Word kind, const Value& value) {
    Input& input = entry(name, value);
    input.name = &name;
    input.kind = kind;
    input.value = value;
    input.is_parameter = true;
}

void Inputs::clear() {
    ambiguous_ = false;
    entries_.clear();
}

}  // namespace quillgen
