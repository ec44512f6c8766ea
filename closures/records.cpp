#include "closures/records.h"

#include <algorithm>

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

}  // namespace

Value sorted_inputs(const Gen& g) {
    std::vector<const Input*> sorted;
    sorted.reserve(g.inputs.entries().size());
    for (const Input& input : g.inputs.entries()) {
        sorted.push_back(&input);
    }
    std::sort(sorted.begin(), sorted.end(), [](const Input* a, const Input* b) { return a->name < b->name; });
    const Value list = Value::list(g.runtime());
    for (const Input* input : sorted) {
        const Value record = Value::map(g.runtime());
        record.put("name", Value::text(g.runtime(), input->name));
        record.put("kind", word(g, input->kind));
        put_details(g, record, *input);
        list.append(record);
    }
    return list;
}

Value inputs_by_name(const Gen& g) {
    const Value map = Value::map(g.runtime());
    for (const Input& input : g.inputs.entries()) {
        const Value record = Value::map(g.runtime());
        record.put("kind", word(g, input.kind));
        put_details(g, record, input);
        map.put(Value::text(g.runtime(), input.name), record);
    }
    return map;
}

Value parameters(const Gen& g) {
    const Value map = Value::map(g.runtime());
    for (const Input& input : g.inputs.entries()) {
        if (input.is_parameter) {
            const Value pair = Value::list(g.runtime());
            pair.append(word(g, input.kind));
            pair.append(input.value);
            map.put(Value::text(g.runtime(), input.name), pair);
        }
    }
    return map;
}

Value warning_list(const Gen& g) {
    const Value list = Value::list(g.runtime());
    for (const Text warning : g.warnings) {
        list.append(Value::text(g.runtime(), warning));
    }
    return list;
}

}  // namespace quillgen
