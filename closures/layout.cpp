#include "closures/layout.h"

#include "closures/closure.h"

namespace quillgen {

Value head_lines(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text extra_lib) {
    Value lines = Value::list(runtime, {Value::text(runtime, header)});
    structs.sorted().for_each([&](const Value& name) { lines.append(runtime.library_entry("STRUCTS"_w).at(name)); });
    lines.append(Value::text(runtime, CLOSURE));
    lines.append(Value::text(runtime, "struct QWK {"));
    const Py_ssize_t before = lines.size();
    runtime.library_entry("resolve"_w).call(need).for_each([&](const Value& text) { lines.append(text); });
    if (lines.size() == before) {
        lines.append(Value::text(runtime, ""));  // the line is present even without functions
    }
    std::string closing(CLOSURE_LIB);
    closing += extra_lib;
    closing += "\n};\nQWK L;";
    lines.append(Value::text(runtime, closing));
    return lines;
}

Value lay_out(const Runtime& runtime, Text header, const Value& structs, const Value& need, Text body) {
    const Value lines = head_lines(runtime, header, structs, need);
    lines.append(Value::text(runtime, body.substr(0, body.size() - 1)));
    return lines.joined();
}

}  // namespace quillgen
