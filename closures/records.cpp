// The inputs in the form that a result has them in.
#include "closures/compile.h"

namespace quillgen {

Value input_list(const Gen& g) {
    Value list = Value::list(g.runtime());
    g.inputs.sorted().for_each([&](const Value& name) { list.append(g.inputs.find(name)); });
    return list;
}

Value input_map(const Gen& g) {
    Value map = Value::map(g.runtime());
    g.inputs.for_each_item(
        [&](const Value& name, const Value& record) { map.set_item(name, record.without("name"_w)); });
    return map;
}

Value parameter_map(const Gen& g) {
    Value params = Value::map(g.runtime());
    g.inputs.for_each_item([&](const Value& name, const Value& record) {
        if (const Value value = record.find("default"_w); value.present()) {
            params.set_item(name, Value::list(g.runtime(), {record.at("kind"_w), value}));
        }
    });
    return params;
}

}  // namespace quillgen
