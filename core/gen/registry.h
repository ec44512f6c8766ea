// The registry: the handlers of the node types, and the tables of templates that some handlers use.
//
// Each file of nodes registers its handlers and tables with static objects while the binary is loaded. They never
// change afterwards. Each interpreter's copy of the module builds a Registry from them.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "core/document/value.h"

namespace quillgen {

class Gen;
struct Node;

// A handler reads a node's inputs, writes statements and binds the node's outputs.
using Handler = void (*)(Gen& g, Node& n);

// The registrar: a static object of this type registers the handler of one or more node types.
struct node {
    node(std::initializer_list<Text> node_types, Handler function);
    node(const node&) = delete;
    node& operator=(const node&) = delete;

    const std::vector<Text> types;
    const Handler handler;
    const node* const next;  // in the list of all registered handlers
};

// One operation of a table: its HLSL with single letters for the operands.
struct TemplateRow {
    Text operation;
    Text hlsl;
    std::vector<Word> needs = {};  // the library names that the HLSL calls
    bool is_scalar = false;        // the result is a scalar; used by tables of vector operations
};

// The operations of a node type, also a static object. `letters` are the operands in the order of a call's arguments.
// In the rows, a letter is an operand only as a whole word.
struct TemplateTable {
    TemplateTable(Text operand_letters, std::initializer_list<TemplateRow> table_rows);
    TemplateTable(const TemplateTable&) = delete;
    TemplateTable& operator=(const TemplateTable&) = delete;

    const Text letters;
    const std::vector<TemplateRow> rows;
    const std::size_t index;
    const TemplateTable* const next;
};

// A row, split at its operands.
struct Template {
    struct Piece {
        std::string plain;
        std::size_t operand;  // index of the operand after the plain text
    };
    std::vector<Piece> pieces;
    std::string rest;  // plain text after the last operand
    const TemplateRow* row;
};

class Registry {
public:
    explicit Registry(const Runtime& runtime);

    // The handler of a node type, or null. TypeError where the type is not hashable.
    [[nodiscard]] Handler find(const Value& type) const;
    // The template of an operation, or null. TypeError where the operation is not hashable.
    [[nodiscard]] const Template* find(const TemplateTable& table, const Value& operation) const;
    // All node types: a sorted list of str.
    [[nodiscard]] Value types() const;

private:
    const Runtime& runtime_;
    Index NODES_;  // node type -> index in handlers_
    std::vector<Handler> handlers_;
    struct CutTable {
        Index operations;  // operation -> index in templates
        std::vector<Template> templates;
    };
    std::vector<CutTable> tables_;  // by TemplateTable::index
};

}  // namespace quillgen
