// The inputs in the form that a result has them in.
#include "closures/compile.h"

namespace quillgen {

Value input_list(const Gen& g) {
    Value list = Value::list(g.runtime());
    g.inputs.sorted().for_each([&](const Value& name) {
        const Value item = Value::map(g.runtime(), {{"name"_w, name}});
        item.update(g.inputs.find(name));
        list.append(item);
    });
    return list;
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
