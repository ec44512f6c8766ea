// The records of the inputs in a result.
#include <algorithm>

#include "closures/compile.h"
#include "core/document/errors.h"

namespace quillgen {

namespace {

// The record of an input. In a list, its first key is the name.
Value record_of(const Runtime& runtime, const Input& input, bool is_named) {
    Value record = Value::map(runtime);
    if (is_named) {
        record.set_item("name"_w, input.key);
    }
    record.set_item("kind"_w, Value::word(runtime, input.kind));
    if (input.value.present()) {
        record.set_item("default"_w, input.value);
    }
    if (input.rest.present()) {
        input.rest.for_each_item([&](const Value& key, const Value& item) { record.set_item(key, item); });
    }
    return record;
}

}  // namespace

Value input_list(const Gen& g) {
    std::vector<const Input*> inputs;
    inputs.reserve(g.inputs.expected_size());
    g.inputs.for_each([&](const Input& input) { inputs.push_back(&input); });
    std::size_t step = 0;
    std::sort(inputs.begin(), inputs.end(), [&step](const Input* a, const Input* b) {
        check_signals_at(step++);  // sorting hundreds of thousands of inputs takes a third of a second
        return a->name < b->name;
    });
    Value list = Value::list(g.runtime());
    step = 0;
    for (const Input* const input : inputs) {
        list.append(record_of(g.runtime(), *input, true));
        check_signals_at(step++);
    }
    return list;
}

Value input_map(const Gen& g) {
    Value map = Value::map(g.runtime());
    g.inputs.for_each([&](const Input& input) { map.set_item(input.key, record_of(g.runtime(), input, false)); });
    return map;
}

void add_parameters(const Gen& g, const Value& params) {
    g.inputs.for_each([&](const Input& input) {
        if (input.value.present()) {
            params.set_item(input.key, Value::list(g.runtime(), {Value::word(g.runtime(), input.kind), input.value}));
        }
    });
}

}  // namespace quillgen
