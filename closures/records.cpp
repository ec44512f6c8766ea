// The inputs in the form that a result has them in.
#include <algorithm>

#include "closures/compile.h"
#include "core/document/errors.h"

namespace quillgen {

Value input_list(const Gen& g) {
    struct Input {
        Text name;
        Value record;
    };
    std::vector<Input> inputs;
    inputs.reserve(g.inputs.expected_size());
    std::string storage;  // stays empty: the names of inputs are ASCII
    g.inputs.for_each_item([&](const Value& name, const Value& record) {
        inputs.push_back({name.text(storage), record});
    });
    std::size_t step = 0;
    std::sort(inputs.begin(), inputs.end(), [&step](const Input& a, const Input& b) {
        check_signals_at(step++);  // hundreds of thousands of inputs take a third of a second
        return a.name < b.name;
    });
    Value list = Value::list(g.runtime());
    for (const Input& input : inputs) {
        list.append(input.record);
    }
    return list;
}

Value input_map(const Gen& g) {
    Value map = Value::map(g.runtime());
    g.inputs.for_each_item(
        [&](const Value& name, const Value& record) { map.set_item(name, record.without("name"_w)); });
    return map;
}

void add_parameters(const Gen& g, const Value& params) {
    g.inputs.for_each_item([&](const Value& name, const Value& record) {
        if (const Value value = record.find("default"_w); value.present()) {
            params.set_item(name, Value::list(g.runtime(), {record.at("kind"_w), value}));
        }
    });
}

}  // namespace quillgen
