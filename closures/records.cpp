#include "closures/records.h"

#include <algorithm>
#include <cstdint>

namespace quillgen {

namespace {

Value word(const Gen& g, Word text) { return Value::word(g.runtime(), text); }

// The rest of a record, behind its kind.
void put_details(const Gen& g, const Value& record, const Input& input) {
    if (input.is_parameter) {
        record.put("default", input.value);
    } else if (input.texture != nullptr) {
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

// The places of the entries in the order of their names. Names that are nearly all "P_" and a node's name are told
// apart by eight bytes behind that, as one number, in most cases; the rest is left to the whole names.
std::vector<std::size_t> order_by_name(const std::vector<Input>& inputs) {
    struct Entry {
        std::uint64_t bytes;
        std::size_t place;
    };
    const auto key = [](Text name) {
        std::uint64_t bytes = 0;
        for (std::size_t i = 2; i < 10; ++i) {
            bytes = bytes << 8U | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
        }
        return bytes;
    };
    const auto starts_alike = [](Text a, Text b) { return a[0] == b[0] && a[1] == b[1]; };
    std::vector<Entry> entries;
    entries.reserve(inputs.size());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        entries.push_back({key(inputs[i].name), i});
    }
    std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
        const Text a_name = inputs[a.place].name;
        const Text b_name = inputs[b.place].name;
        return a.bytes != b.bytes && starts_alike(a_name, b_name) ? a.bytes < b.bytes : a_name < b_name;
    });
    std::vector<std::size_t> order(entries.size());
    std::transform(entries.begin(), entries.end(), order.begin(), [](const Entry& entry) { return entry.place; });
    return order;
}

}  // namespace

InputRecords input_records(const Gen& g) {
    const std::vector<Input>& inputs = g.inputs.entries();
    InputRecords records = {Value::list(g.runtime()), Value::map(g.runtime())};
    std::vector<Value> names;
    names.reserve(inputs.size());
    for (const Input& input : inputs) {
        const Value& name = names.emplace_back(Value::text(g.runtime(), input.name));
        if (input.is_parameter) {
            records.params.put(name, Value::pair(word(g, input.kind), input.value));
        }
        check_signals_at(names.size());
    }
    for (const std::size_t i : order_by_name(inputs)) {
        Value record = Value::map(g.runtime());
        record.put("name", names[i]);
        record.put("kind", word(g, inputs[i].kind));
        put_details(g, record, inputs[i]);
        records.sorted.append(record);
        check_signals_at(i);
    }
    return records;
}

Value inputs_by_name(const Gen& g) {
    Value map = Value::map(g.runtime());
    for (const Input& input : g.inputs.entries()) {
        Value record = Value::map(g.runtime());
        record.put("kind", word(g, input.kind));
        put_details(g, record, input);
        map.put(Value::text(g.runtime(), input.name), record);
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
