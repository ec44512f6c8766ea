#include "closures/records.h"

#include <algorithm>
#include <cstdint>

namespace quillgen {

namespace {

Value word(const Gen& g, Word text) { return Value::word(g.runtime(), text); }

// The rest of a record, behind its kind.
void put_details(const Gen& g, const Value& record, const Input& input) {
    if (input.texture != nullptr) {
        record.put("image", input.texture->image);
        record.put("srgb", Value::boolean(g.runtime(), false));
        record.put("float", Value::boolean(g.runtime(), input.texture->is_float));
        record.put("extension", input.texture->extension);
        record.put("interpolation", input.texture->interpolation);
    } else if (input.kind == Word("texcoord")) {
        record.put("index", Value::integer(g.runtime(), input.index));
    } else if (input.kind == Word("view_axis") || input.kind == Word("object_axis")) {
        record.put("axis", word(g, input.axis));
    } else if (input.kind == Word("ddx") || input.kind == Word("ddy")) {
        const Value of = Value::map(g.runtime());
        of.put("kind", word(g, input.of));
        if (input.of == Word("texcoord")) {
            of.put("index", Value::integer(g.runtime(), input.index));
        }
        record.put("of", of);
    }
}

// The entries in the order of their names. The first bytes tell nearly all names apart; what is left is told by the
// whole names.
std::vector<const Input*> in_order_of_names(const std::vector<Input>& inputs) {
    std::vector<const Input*> order;
    order.reserve(inputs.size());
    for (const Input& input : inputs) {
        order.push_back(&input);
    }
    std::sort(order.begin(), order.end(), [](const Input* left, const Input* right) {
        const Name& a = *left->name;
        const Name& b = *right->name;
        for (std::size_t i = 0; i < a.start.size(); ++i) {
            if (a.start[i] != b.start[i]) {
                return a.start[i] < b.start[i];
            }
        }
        return a.text < b.text;
    });
    return order;
}

// A record of a parameter: a copy of one of its kind that is complete but for what differs, which is
// cheaper than a map that grows.
class ParameterRecords {
public:
    explicit ParameterRecords(bool with_names) : with_names_(with_names) {}

    Value make(const Gen& g, const Input& input) {
        Value& form = input.kind == Word("scalar") ? scalar_ : vector_;
        if (!form.present()) {
            form = Value::map(g.runtime());
            if (with_names_) {
                form.put("name", Value::none(g.runtime()));
            }
            form.put("kind", word(g, input.kind));
            form.put("default", Value::none(g.runtime()));
        }
        Value record = form.copied_map();
        if (with_names_) {
            record.put("name", input.name->string);
        }
        record.put("default", input.value);
        return record;
    }

private:
    const bool with_names_;
    Value scalar_;
    Value vector_;
};

}  // namespace

InputRecords input_records(const Gen& g) {
    const std::vector<Input>& inputs = g.inputs.entries();
    InputRecords records = {Value::list(g.runtime()), Value::map(g.runtime())};
    std::size_t step = 0;
    for (const Input& input : inputs) {
        if (input.is_parameter) {
            records.params.put(input.name->string, Value::pair(word(g, input.kind), input.value));
        }
        check_signals_at(step++);
    }
    ParameterRecords parameters(true);
    for (const Input* const input : in_order_of_names(inputs)) {
        if (input->is_parameter) {
            records.sorted.append(parameters.make(g, *input));
            continue;
        }
        Value record = Value::map(g.runtime());
        record.put("name", input->name->string);
        record.put("kind", word(g, input->kind));
        put_details(g, record, *input);
        records.sorted.append(record);
        check_signals_at(step++);
    }
    return records;
}

Value inputs_by_name(const Gen& g) {
    Value map = Value::map(g.runtime());
    ParameterRecords parameters(false);
    for (const Input& input : g.inputs.entries()) {
        const Value& name = input.name->string;
        if (input.is_parameter) {
            map.put(name, parameters.make(g, input));
            continue;
        }
        Value record = Value::map(g.runtime());
        record.put("kind", word(g, input.kind));
        put_details(g, record, input);
        map.put(name, record);
    }
    return map;
}

Value warning_list(const Gen& g) {
    Value list = Value::list(g.runtime());
    for (const Text warning : g.warnings) {
        list.append(Value::text(g.runtime(), warning));
    }
    return list;
}

}  // namespace quillgen
