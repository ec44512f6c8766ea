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

// The record of a parameter but for its value. Each record is a copy of such a one: that is cheaper than a map that
// grows, and what it holds already need not be put in.
Value parameter_form(const Gen& g, Word kind, const Value& name) {
    Value form = Value::map(g.runtime());
    if (name.present()) {
        form.put("name", name);
    }
    form.put("kind", word(g, kind));
    form.put("default", Value::none(g.runtime()));
    return form;
}

Value parameter_record(const Value& form, const Input& input) {
    Value record = form.copied_map();
    record.put("default", input.value);
    return record;
}

// The form for that input's name, which keeps it.
const Value& named_form(const Gen& g, const Input& input) {
    Name::Form& form = input.name->form;
    if (!form.record.present() || form.kind != input.kind) {
        form = {parameter_form(g, input.kind, input.name->string), input.kind};
    }
    return form.record;
}

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
    for (const Input* const input : in_order_of_names(inputs)) {
        if (input->is_parameter) {
            records.sorted.append(parameter_record(named_form(g, *input), *input));
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
    const Value scalar = parameter_form(g, "scalar", {});
    const Value vector = parameter_form(g, "vector", {});
    for (const Input& input : g.inputs.entries()) {
        const Value& name = input.name->string;
        if (input.is_parameter) {
            map.put(name, parameter_record(input.kind == Word("scalar") ? scalar : vector, input));
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
