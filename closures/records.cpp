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

// The places of the entries in the order of their names. The first bytes, as numbers, tell nearly all names apart; what
// is left is told by the whole names.
std::vector<std::size_t> order_by_name(const std::vector<Input>& inputs) {
    struct Entry {
        std::uint64_t first;
        std::uint64_t second;
        std::size_t place;
    };
    const auto number = [](const char* bytes) {
        std::uint64_t most_significant_first = 0;
        for (int i = 0; i < 8; ++i) {
            most_significant_first = most_significant_first << 8U | static_cast<unsigned char>(bytes[i]);
        }
        return most_significant_first;
    };
    std::vector<Entry> entries;
    entries.reserve(inputs.size());
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        char start[16] = {};
        put(start, inputs[i].name.substr(0, sizeof start));
        entries.push_back({number(start), number(start + 8), i});
    }
    std::sort(entries.begin(), entries.end(), [&](const Entry& a, const Entry& b) {
        if (a.first != b.first) {
            return a.first < b.first;
        }
        return a.second != b.second ? a.second < b.second : inputs[a.place].name < inputs[b.place].name;
    });
    std::vector<std::size_t> order(entries.size());
    std::transform(entries.begin(), entries.end(), order.begin(), [](const Entry& entry) { return entry.place; });
    return order;
}

// A record of a parameter: a copy of one of its kind that is complete but for what differs, which is
// cheaper than a map that grows.
class ParameterRecords {
public:
    explicit ParameterRecords(bool with_names) : with_names_(with_names) {}

    Value make(const Gen& g, const Input& input, const Value& name) {
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
            record.put("name", name);
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
    std::vector<Value> names;
    names.reserve(inputs.size());
    for (const Input& input : inputs) {
        const Value& name = names.emplace_back(Value::name(g.runtime(), input.name));
        if (input.is_parameter) {
            records.params.put(name, Value::pair(word(g, input.kind), input.value));
        }
        check_signals_at(names.size());
    }
    ParameterRecords parameters(true);
    for (const std::size_t i : order_by_name(inputs)) {
        if (inputs[i].is_parameter) {
            records.sorted.append(parameters.make(g, inputs[i], names[i]));
            continue;
        }
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
    ParameterRecords parameters(false);
    for (const Input& input : g.inputs.entries()) {
        const Value name = Value::name(g.runtime(), input.name);
        if (input.is_parameter) {
            map.put(name, parameters.make(g, input, name));
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
