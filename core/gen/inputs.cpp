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
inline Input& Inputs::entry(const Name& name, const Value& value, Origin origin) {
    if (Input* const known = find(name)) {
        ambiguous_ = ambiguous_ || known->value.object() != value.object() || known->origin != origin;
        return *known;
    }
    if (name.number >= places_.size()) {
        places_.resize(2 * name.number + 1);
    }
    places_[name.number] = entries_.size();
    return entries_.emplace_back();
}

Input& Inputs::put(const Input& input) { return entry(*input.name, input.value, input.origin) = input; }

void Inputs::put_parameter(const Name& name, Word kind, const Value& value, Origin origin) {
    Input& input = entry(name, value, origin);
    input.name = &name;
    input.kind = kind;
    input.value = value;
    input.is_parameter = true;
    input.origin = origin;
}

void Inputs::clear() {
    ambiguous_ = false;
    entries_.clear();
}

Value scalar_value(const Runtime& runtime, const Value& value) {
    const Value item = value.is_list_or_tuple() ? value.at(Py_ssize_t{0}) : value;
    return item.is_none() ? Value::number(runtime, 0.0) : item.to_float();
}

Value vector_value(const Runtime& runtime, const Value& value) {
    Value items;
    if (value.is_list_or_tuple()) {
        items = value.copied_list();
    } else {
        const Value x = value.truthy() ? value.to_float() : Value::number(runtime, 0.0);
        items = Value::list(runtime);
        for (int i = 0; i < 3; ++i) {
            items.append(x);
        }
    }
    // A list of three gets 0.0 for its fourth; only an empty one reaches the 1.0.
    for (const double pad : {0.0, 0.0, 0.0, 1.0}) {
        if (items.size() >= 4) {
            break;
        }
        items.append(Value::number(runtime, pad));
    }
    items.cut(4);
    return items;
}

}  // namespace quillgen
