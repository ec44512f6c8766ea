#include "closures/text_layout.h"

#include "closures/texts.h"
#include "nodes/register.h"

namespace quillgen {

namespace {

constexpr const char* kEnd = "\n};\nQWK L;";

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

void append_head(const Module& module, const Value& lines, Text header, const Value& structs, const Value& need,
                 const Value& extra_lib) {
    const Runtime& runtime = module.runtime;
    lines.append(module.registry.constant(header));
    append_structs(runtime, lines, structs);
    lines.append(module.registry.constant("library"));
    const Py_ssize_t before = lines.size();
    runtime.library_entry("resolve").call(need).for_each([&](const Value& text) { lines.append(text); });
    if (lines.size() == before) {
        lines.append(Value::text(runtime, ""));
    }
    if (!extra_lib.present()) {
        lines.append(module.registry.constant("closing"));
        return;
    }
    std::string storage;
    std::string closing(CLOSURE_LIB);
    closing += extra_lib.checked_text(storage);
    lines.append(Value::text(runtime, closing + kEnd));
}

Value lay_out(const Module& module, Text header, const Value& structs, const Value& need, const Value& statements) {
    const Value lines = Value::list(module.runtime);
    append_head(module, lines, header, structs, need, {});
    lines.append(statements);
    return lines.joined();
}

void register_layout(Registry& registry) {
    const auto keep = [&](Text name, Text text) { registry.constant(name, Value::text(registry.runtime(), text)); };
    keep("material", "// Quillwork - generated from Blender's node tree. Edit the material in Blender, not here.");
    keep("displacement", "// Quillwork - displacement of Blender's node tree (Nanite tessellation).");
    keep("library", std::string(CLOSURE) + "\nstruct QWK {");
    keep("closing", std::string(CLOSURE_LIB) + kEnd);
}

}  // namespace quillgen
