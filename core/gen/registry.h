// The registry of handlers, the tables of templates that some of them read, and what all results have in common.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/document/value.h"

namespace quillgen {

class Gen;
struct Node;

// A handler reads a node's inputs, writes statements and binds the node's outputs.
using Handler = void (*)(Gen& g, const Node& n);

// One operation of a table: its HLSL with single letters for the operands.
struct TemplateRow {
    const char* operation;
    const char* hlsl;
    std::vector<Word> needs = {};
    bool is_scalar = false;  // of a table whose rows give vectors or scalars
};

// The rows, cut at their letters once, when the module loads.
class TemplateTable {
public:
    // Plain text, and the operand behind it.
    struct Piece {
        std::string plain;
        std::size_t operand;
    };
    struct Row {
        std::vector<Piece> pieces;
        std::string rest;  // behind the last operand
        std::vector<Word> needs;
        bool is_scalar;
    };

    // `letters` are the operands in the order of a call's arguments; they are found as whole words.
    TemplateTable(const Runtime& runtime, std::string_view letters, std::span<const TemplateRow> rows);
    // The row of an operation, or null. TypeError where the word has no hash.
    [[nodiscard]] const Row* find(const Value& operation) const;

private:
    std::vector<Row> rows_;
    Places places_;  // operation -> place in rows_
};

class Registry {
public:
    explicit Registry(const Runtime& runtime);

    // The registrar: the handler of one or more node types.
    void node(std::initializer_list<const char*> types, Handler handler);
    // Prepares a table; a handler finds it again under the same name.
    void table(Text name, std::string_view letters, std::span<const TemplateRow> rows);

    // Keeps what results are made of: a string that stands in them as it is, or a map that they hold copies of.
    void constant(Text name, const Value& value) { constants_.emplace_back(name, value); }

    // The handler of a node type, or null. TypeError where the type has no hash.
    [[nodiscard]] Handler find(const Value& type) const;
    [[nodiscard]] const TemplateTable& table(Text name) const;
    [[nodiscard]] const Value& constant(Text name) const;
    [[nodiscard]] const Runtime& runtime() const { return runtime_; }
    [[nodiscard]] const Value& types() const { return NODES_; }  // a list

private:
    const Runtime& runtime_;
    Value NODES_;
    Places places_;  // node type -> place in handlers_
    std::vector<Handler> handlers_;
    std::vector<std::pair<Text, TemplateTable>> tables_;
    std::vector<std::pair<Text, Value>> constants_;
};

}  // namespace quillgen
