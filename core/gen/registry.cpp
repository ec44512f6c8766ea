#include "core/gen/registry.h"

#include <utility>

namespace quillgen {

namespace {

// Written only by the constructors of static objects, and constant once the binary is loaded.
constinit const node* last_node = nullptr;
constinit const TemplateTable* last_table = nullptr;

Template cut(const Runtime& runtime, const TemplateTable& table, const TemplateRow& row) {
    const std::string pattern = "\\b([" + std::string(table.letters) + "])\\b";
    const std::string marked = runtime.re_sub(pattern, "$\\1", row.hlsl);  // "$a + $b"
    Template result = {{}, {}, &row};
    std::size_t start = 0;
    for (std::size_t mark = marked.find('$'); mark != std::string::npos; mark = marked.find('$', start)) {
        result.pieces.push_back({marked.substr(start, mark - start), table.letters.find(marked[mark + 1])});
        start = mark + 2;
    }
    result.rest = marked.substr(start);
    return result;
}

}  // namespace

node::node(std::initializer_list<Text> node_types, Handler function)
    : types(node_types), handler(function), next(std::exchange(last_node, this)) {}

TemplateTable::TemplateTable(Text operand_letters, std::initializer_list<TemplateRow> table_rows)
    : letters(operand_letters),
      rows(table_rows),
      index(last_table == nullptr ? 0 : last_table->index + 1),
      next(std::exchange(last_table, this)) {}

Registry::Registry(const Runtime& runtime)
    : runtime_(runtime), tables_(last_table == nullptr ? 0 : last_table->index + 1) {
    for (const node* entry = last_node; entry != nullptr; entry = entry->next) {
        for (const Text type : entry->types) {
            NODES_.set(to_python(type).get(), handlers_.size());
        }
        handlers_.push_back(entry->handler);
    }
    for (const TemplateTable* table = last_table; table != nullptr; table = table->next) {
        CutTable& made = tables_[table->index];
        for (const TemplateRow& row : table->rows) {
            made.operations.set(to_python(row.operation).get(), made.templates.size());
            made.templates.push_back(cut(runtime, *table, row));
        }
    }
}

Handler Registry::find(const Value& type) const {
    const int index = NODES_.find(type.object());
    return index < 0 ? nullptr : handlers_[static_cast<std::size_t>(index)];
}

const Template* Registry::find(const TemplateTable& table, const Value& operation) const {
    const CutTable& cut = tables_[table.index];
    const int index = cut.operations.find(operation.object());
    return index < 0 ? nullptr : &cut.templates[static_cast<std::size_t>(index)];
}

Value Registry::types() const {
    const Value types = Value::list(runtime_);
    for (const node* entry = last_node; entry != nullptr; entry = entry->next) {
        for (const Text type : entry->types) {
            types.append(Value::text(runtime_, type));
        }
    }
    return types.sorted();
}

}  // namespace quillgen
