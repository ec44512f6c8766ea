#include "closures/text_layout.h"

#include "closures/texts.h"

namespace quillgen {

namespace {

// Appends the struct texts of the library, by sorted name.
void append_structs(const Runtime& runtime, const Value& lines, const Value& structs) {
    const Value names = structs.sorted_list();
    if (names.size() == 0) {
        return;
    }
    const Value texts = runtime.library_entry("STRUCTS");
    names.for_each([&](const Value& name) { lines.append(texts.at(name)); });
}

}  // namespace

void append_head(const Value& lines, Text header, const Value& structs, const Value& need, const Value& extra_lib) {
    const Runtime& runtime = lines.runtime();
    lines.append(Value::text(runtime, header));
    append_structs(runtime, lines, structs);
    lines.append(Value::text(runtime, std::string(CLOSURE) + "\nstruct QWK {"));
    const Py_ssize_t before = lines.size();
    runtime.library_entry("resolve").call(need).for_each([&](const Value& text) { lines.append(text); });
    if (lines.size() == before) {
        lines.append(Value::text(runtime, ""));
    }
    std::string closing(CLOSURE_LIB);
    if (extra_lib.present()) {
        std::string storage;
        closing += extra_lib.checked_text(storage);
    }
    closing += "\n};\nQWK L;";
    lines.append(Value::text(runtime, closing));
}

Value lay_out(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text statements) {
    const Value lines = Value::list(runtime);
    append_head(lines, header, structs, need, {});
    lines.append(Value::text(runtime, statements.substr(0, statements.size() - 1)));
    return lines.joined();
}

}  // namespace quillgen
