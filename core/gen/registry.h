// The registry: the handlers of the node types, and the tables of templates that some of them read.
//
// A file of nodes registers its own by static objects, while the binary is loaded. What they say never changes again;
// each interpreter's copy of the module makes a Registry of it.
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
    const node* const next;  // of all that are registered
};

// One operation of a table: its HLSL with single letters for the operands.
struct TemplateRow {
    Text operation;
    Text hlsl;
    std::vector<Word> needs = {};  // the library names that the HLSL calls
    bool is_scalar = false;        // of a table whose rows give vectors or scalars
};

// The rows of the operations of a node type: a static object, too. `letters` are the operands in the order of a call's
// arguments; they are found in the rows as whole words.
struct TemplateTable {
    TemplateTable(Text operand_letters, std::initializer_list<TemplateRow> table_rows);
    TemplateTable(const TemplateTable&) = delete;
    TemplateTable& operator=(const TemplateTable&) = delete;

    const Text letters;
    const std::vector<TemplateRow> rows;
    const std::size_t index;
    const TemplateTable* const next;
};

// A row that is cut at its letters.
struct Template {
    struct Piece {
        std::string plain;
        std::size_t operand;  // behind the plain text
    };
    std::vector<Piece> pieces;
    std::string rest;  // behind the last operand
    const TemplateRow* row;
};

class Registry {
public:
    explicit Registry(const Runtime& runtime);

    // The handler of a node type, or null. TypeError where the type has no hash.
    [[nodiscard]] Handler find(const Value& type) const;
    // The template of an operation, or null. TypeError where the operation has no hash.
    [[nodiscard]] const Template* find(const TemplateTable& table, const Value& operation) const;
    // All node types, in the order of their names: a list of str.
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
