// Output: names, statements, strings and literals, and what they need from the library.
#include <utility>

#include "core/document/number.h"
#include "core/gen/gen.h"

namespace quillgen {

Gen::Gen(const Module& module, const Value& document, bool with_params, Value bias)
    : Gen(module, document, {read_graph(document)}, with_params, std::move(bias)) {}

Gen::Gen(const Module& module, Value document, Reading reading, bool with_params, Value bias)
    : ir(std::move(document)),
      use_params(with_params),
      uv_bias(std::move(bias)),
      need(Value::set(module.runtime)),
      structs(Value::set(module.runtime)),
      warnings(Value::list(module.runtime)),
      inputs(std::move(reading.inputs)),
      module_(module),
      graph_(std::move(reading.graph)) {}

Reading Gen::release_reading() {
    for (Node& n : graph_.nodes) {
        n.forget_evaluation();
    }
    inputs.withdraw_all();
    return {std::move(graph_), std::move(inputs)};
}

Node* Gen::find_node(const Value& id) {
    const int index = graph_.indices.find(id.object());
    return index < 0 ? nullptr : &graph_.nodes[static_cast<std::size_t>(index)];
}

// ---- statements -----------------------------------------------------------------------------

Text Gen::tmp(Text prefix) { return arena_.keep(prefix, Argument(++k_).text()); }

void Gen::emit(Text line) {
    begin_line();
    body_.append(line);
    end_line();
}

void Gen::begin_line() { body_.append("  "); }

void Gen::end_line() {
    body_.append("\n");
    line_ends_.push_back(body_.size());
    check_signals_at(line_ends_.size());
}

Text Gen::begin_declaration(Text type, Text prefix) {
    const Text name = tmp(prefix);
    body_.append("  ", type == "closure" ? module_.closure.type : type, " ", name, " = ");
    return name;
}

void Gen::end_declaration() {
    body_.append(";");
    end_line();
}

Text Gen::var_with_prefix(Text prefix, Text type, Text expr) {
    const Text name = begin_declaration(type, prefix);
    body_.append(expr);
    end_declaration();
    return name;
}

// ---- texts ----------------------------------------------------------------------------------

Text Gen::keep_buffer() { return keep(buffer_.text()); }

Text Gen::formatted(const Value& value) {
    std::string storage;
    return keep(value.formatted(storage));
}

Text Gen::_f(double number) {
    std::string literal;
    append_literal(literal, number);
    return keep(literal);
}

Text Gen::_v3(const Value& value) {
    const Value items = value.copied_list();
    Text numbers[3];
    for (Py_ssize_t i = 0; i < 3; ++i) {
        numbers[i] = i < items.size() ? _f(items.item(i)) : "0.0";
    }
    return text("float3($0, $1, $2)", numbers[0], numbers[1], numbers[2]);
}

Text Gen::literals(const Value& items) {
    std::string list;
    items.for_each([&](const Value& item) {
        list += list.empty() ? "" : ", ";
        append_literal(list, item.as_float());
    });
    return keep(list);
}

// ---- the library ----------------------------------------------------------------------------

Text Gen::types(int d) { return formatted(runtime().library_entry("TYPES"_w).at(Value::integer(runtime(), d))); }

const Template* Gen::find_template(const TemplateTable& table, const Value& operation, Text fallback) const {
    return module_.registry.find(table, operation.present() ? operation : Value::text(runtime(), fallback));
}

Text Gen::fill_template(const Template& row, std::initializer_list<Text> operands) {
    for (const Word name : row.row->needs) {
        use(name);
    }
    buffer_.clear();
    for (const Template::Piece& piece : row.pieces) {
        buffer_.append(piece.plain, operands.begin()[piece.operand]);
    }
    buffer_.append(row.rest);
    return keep_buffer();
}

}  // namespace quillgen
