#include "closures/records.h"

namespace quillgen {

namespace {

Value word(const Runtime& runtime, Word text) { return Value::word(runtime, text); }

// The record of an input, with nones for what differs from document to document.
Value make_form(const Runtime& runtime, const Input& input, bool with_name) {
    const Value none = Value::none(runtime);
    Value form = Value::map(runtime);
    if (with_name) {
        form.put("name", input.name->string);
    }
    form.put("kind", word(runtime, input.kind));
    if (input.is_parameter) {
        form.put("default", none);
    } else if (input.texture != nullptr) {
        form.put("image", none);
        form.put("srgb", Value::boolean(runtime, false));
        form.put("float", none);
        form.put("extension", none);
        form.put("interpolation", none);
    } else if (input.kind == Word("texcoord")) {
        form.put("index", Value::integer(runtime, input.index));
    } else if (input.kind == Word("view_axis") || input.kind == Word("object_axis")) {
        form.put("axis", word(runtime, input.axis));
    } else if (input.kind == Word("ddx") || input.kind == Word("ddy")) {
        form.put("of", none);
    }
    return form;
}

// What a derivative is of.
Value differentiated(const Runtime& runtime, const Input& input) {
    Value of = Value::map(runtime);
    of.put("kind", word(runtime, input.of));
    if (input.of == Word("texcoord")) {
        of.put("index", Value::integer(runtime, input.index));
    }
    return of;
}

// A copy of the form that the name keeps, with this document's values: that is cheaper than a map that grows, and what
// the form holds already need not be put in.
Value make_record(const Runtime& runtime, const Input& input, bool with_name) {
    Name::Form& form = with_name ? input.name->with_name : input.name->without_name;
    if (!form.record.present() || form.kind != input.kind) {
        form = {make_form(runtime, input, with_name), input.kind};
    }
    // Most numbers are the very ones that the last call has had.
    if (input.is_parameter && input.value.is_float() && form.number.object() != input.value.object()) {
        form.record.put("default", input.value);
        form.number = input.value;
    }
    Value record = form.record.copied_map();
    if (input.is_parameter && !input.value.is_float()) {
        record.put("default", input.value);
    } else if (input.texture != nullptr) {
        record.put("image", input.texture->image);
        record.put("float", Value::boolean(runtime, input.texture->is_float));
        record.put("extension", input.texture->extension);
        record.put("interpolation", input.texture->interpolation);
    } else if (input.kind == Word("ddx") || input.kind == Word("ddy")) {
        record.put("of", differentiated(runtime, input));
    }
    return record;
}

}  // namespace

InputRecords input_records(const Runtime& runtime, const Draft& draft) {
    InputRecords records = {Value::list(runtime), Value::map(runtime)};
    std::size_t step = 0;
    for (const Input& input : draft.inputs) {
        if (input.is_parameter) {
            records.params.put(input.name->string, Value::pair(word(runtime, input.kind), input.value));
        }
        check_signals_at(step++);
    }
    for (const Input* const input : draft.sorted) {
        records.sorted.append(make_record(runtime, *input, true));
        check_signals_at(step++);
    }
    return records;
}

Value inputs_by_name(const Runtime& runtime, const Draft& draft) {
    Value map = Value::map(runtime);
    for (const Input& input : draft.inputs) {
        map.put(input.name->string, make_record(runtime, input, false));
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
