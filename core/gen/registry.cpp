#include "core/gen/registry.h"

#include <algorithm>

namespace quillgen {

TemplateTable::TemplateTable(const Runtime& runtime, std::string_view letters, std::span<const TemplateRow> rows) {
    const std::string pattern = "\\b([" + std::string(letters) + "])\\b";
    for (const TemplateRow& row : rows) {
        const std::string marked = runtime.re_sub(pattern.c_str(), "$\\1", row.hlsl);  // "$a + $b"
        Row cut = {{}, {}, row.needs, row.is_scalar};
        std::size_t start = 0;
        for (std::size_t mark = marked.find('$'); mark != std::string::npos; mark = marked.find('$', start)) {
            cut.pieces.push_back({marked.substr(start, mark - start), letters.find(marked[mark + 1])});
            start = mark + 2;
        }
        cut.rest = marked.substr(start);
        places_.put(Value::text(runtime, row.operation).object(), static_cast<int>(rows_.size()));
        rows_.push_back(std::move(cut));
    }
}

const TemplateTable::Row* TemplateTable::find(const Value& operation) const {
    const int place = places_.find(operation.object());
    return place < 0 ? nullptr : &rows_[static_cast<std::size_t>(place)];
}

Registry::Registry(const Runtime& runtime) : runtime_(runtime), NODES_(Value::list(runtime)) {}

void Registry::node(std::initializer_list<const char*> types, Handler handler) {
    for (const char* type : types) {
        const Value word = Value::text(runtime_, type);
        NODES_.append(word);
        places_.put(word.object(), static_cast<int>(handlers_.size()));
    }
    handlers_.push_back(handler);
}

void Registry::table(Text name, std::string_view letters, std::span<const TemplateRow> rows) {
    tables_.emplace_back(name, TemplateTable(runtime_, letters, rows));
}

Handler Registry::find(const Value& type) const {
    const int place = places_.find(type.object());
    return place < 0 ? nullptr : handlers_[static_cast<std::size_t>(place)];
}

const TemplateTable& Registry::table(Text name) const {
    return std::find_if(tables_.begin(), tables_.end(), [&](const auto& entry) { return entry.first == name; })->second;
}

const Value& Registry::constant(Text name) const {
    const auto is_named = [&](const auto& entry) { return entry.first == name; };
    return std::find_if(constants_.begin(), constants_.end(), is_named)->second;
}

}  // namespace quillgen
