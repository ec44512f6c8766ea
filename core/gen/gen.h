// The generator: one instance translates one graph of one document into HLSL statements. The handlers of nodes work
// only through the operations declared here.
//
// Evaluation is pull-based. Nothing iterates over the list of nodes: an output is read, its node's handler reads the
// inputs that it needs, and so on up the graph, each node once. Statements are appended during evaluation, so the order
// in which a handler reads its inputs is the order of lines and of the numbers in names.
#pragma once

#include <string>
#include <vector>

#include "core/document/recursion.h"
#include "core/gen/arena.h"
#include "core/gen/format.h"
#include "core/gen/graph.h"
#include "core/gen/inputs.h"
#include "core/gen/module.h"
#include "core/gen/signal.h"

namespace quillgen {

// The offset of the geometry signals while a graph is evaluated again beside the shaded point. Each member names an
// HLSL variable: `w` is the offset in world space, `a` and `b` are the same offset in screen steps along x and y.
struct Offset {
    Text w;
    Text a;
    Text b;
};

// Features that the shader nodes used. Flags are set, never cleared.
struct Uses {
    bool normal = false;
    bool alpha = false;
    bool emission = false;
    bool coat = false;
};

// What is read from a document once: its graph, and the inputs that were declared for socket values.
struct Reading {
    Graph graph;
    Inputs inputs = {};
};

class Gen {
public:
    // `uv_bias` is absent, None, or a pair of numbers that is added to every UV coordinate. KeyError where the
    // document or one of its node records lacks a mandatory key.
    Gen(const Module& module, const Value& document, bool with_params, Value uv_bias = {});
    // Generates another text from the same document. `reading` comes from `release_reading` of an earlier generator.
    Gen(const Module& module, Value document, Reading reading, bool with_params, Value uv_bias = {});
    Gen(const Gen&) = delete;
    Gen& operator=(const Gen&) = delete;

    // ---- statements (statements.cpp) --------------------------------------------------------
    // A new name: the prefix and the next number of a counter that all prefixes share.
    Text tmp(Text prefix = "t");
    void emit(Text line);
    template <class... Args>
    QUILLGEN_OWN_FRAME void emit(Format<sizeof...(Args)> line, const Args&... args) {
        begin_line();
        fill(body_, line, args...);
        end_line();
    }
    // Declares a variable and returns its name. The type "closure" stands for the closure struct.
    Text var(Text type, Text expr) { return var_with_prefix("v", type, expr); }
    Text var_with_prefix(Text prefix, Text type, Text expr);
    template <class... Args>
    QUILLGEN_OWN_FRAME Text var(Text type, Format<sizeof...(Args)> expr, const Args&... args) {
        const Text name = begin_declaration(type, "v");
        fill(body_, expr, args...);
        end_declaration();
        return name;
    }

    // A copy of the string that lives as long as the generator.
    Text keep(Text text) { return arena_.keep(text); }
    template <class... Args>
    QUILLGEN_OWN_FRAME Text text(Format<sizeof...(Args)> format, const Args&... args) {
        buffer_.clear();
        fill(buffer_, format, args...);
        return keep_buffer();
    }
    Text formatted(const Value& value);  // format(value)
    // `_f` returns a float literal, `_v3` a float3 of the first three items of a sequence, padded with zeros. TypeError
    // or ValueError where a value does not convert to a float.
    Text _f(double number);
    Text _f(const Value& value) { return _f(value.as_float()); }
    Text _v3(const Value& value);
    // The items of a sequence as float literals, separated by ", ".
    Text literals(const Value& items);

    void warn(Text warning) { warnings.append(Value::text(runtime(), warning)); }
    template <class... Args>
    QUILLGEN_OWN_FRAME void warn(Format<sizeof...(Args)> warning, const Args&... args) {
        warn(text(warning, args...));
    }
    [[noreturn]] void unsupported(Text message) const { runtime().raise_unsupported(message); }

    // Requests library functions. A name that is composed from the document is passed as a Text.
    template <class... Words>
    void use(Word name, Words... names) {
        need.add(Value::word(runtime(), name));
        (need.add(Value::word(runtime(), names)), ...);
    }
    void use(Text name) { need.add(Value::text(runtime(), name)); }
    void use_struct(Word name) { structs.add(Value::word(runtime(), name)); }
    // The HLSL type of a coordinate of `d` dimensions, from the library. KeyError where the library has none.
    Text types(int d);
    // The template of an operation, or of `fallback` where the operation is absent. Null if the table has none.
    [[nodiscard]] const Template* find_template(const TemplateTable& table, const Value& operation,
                                                Text fallback) const;
    // Returns the template's HLSL with the operands filled in, and requests the library functions that it calls.
    Text fill_template(const Template& row, std::initializer_list<Text> operands);

    // ---- output sockets (outputs.cpp) -------------------------------------------------------
    // Whether anything in the document reads the output.
    static bool is_used(Node& n, Word out) { return n.find_output(static_cast<int>(out.index())) != nullptr; }
    // Binds an output to an expression. `set` stores the expression in a new variable; with `bind`, each reader repeats
    // the expression. Both do nothing for an output that nothing reads.
    void set(Node& n, Word out, const SocketType& type, Text expr);
    static void bind(Node& n, Word out, const SocketType& type, Text expr);
    template <class... Args>
    void set(Node& n, Word out, const SocketType& type, Format<sizeof...(Args)> expr, const Args&... args) {
        if (is_used(n, out)) {
            bind(n, out, type, var(hlsl(type), expr, args...));
        }
    }
    template <class... Args>
    void bind(Node& n, Word out, const SocketType& type, Format<sizeof...(Args)> expr, const Args&... args) {
        if (is_used(n, out)) {
            bind(n, out, type, text(expr, args...));
        }
    }
    // The same for an output name that comes from the document.
    void bind(Node& n, const Value& out, const SocketType& type, Text expr);
    // Reads the output that `source` names (its first two items are a node id and an output name), and evaluates the
    // node first if necessary. Unsupported "{type} has no output {out}"; KeyError for a node that the document lacks.
    Bound output(const Value& source) { return output(find_source(graph_, source), source); }

    // ---- input sockets (sockets.cpp) --------------------------------------------------------
    // The value of a socket as an expression of the type `want`: the linked output, a parameter or a literal, or
    // `fallback` where the record lacks the socket. Unsupported "{type}: no input {ident}" if there is no fallback.
    Text inp(Node& n, Word ident, const SocketType& want, Text fallback = {});
    static bool has_input(Node& n, Word ident) { return n.find_socket(ident) != nullptr; }
    static bool linked(Node& n, Word ident);
    // The default value of a socket, also of a linked one. Absent where the record has none.
    static Value stored(Node& n, Word ident);
    // Converts an expression to another type. Unsupported between a shader and a value.
    QUILLGEN_OWN_FRAME Text convert(Text expr, const SocketType& from, const SocketType& to);
    // A tweakable input of that name or, without use_params, a literal. The value is a number or a sequence of the
    // document; an absent value and None count as 0.0. TypeError or ValueError where it does not convert to a float.
    // `ident` is a valid identifier. If the value belongs to a socket, `socket` records the number of the input.
    Text param(Node& n, Text ident, const SocketType& type, const Value& value, Socket* socket = nullptr);
    Text param_name(Node& n, Text ident);
    // Declares a tweakable input of the kind "scalar" or "vector".
    void declare_parameter(Text name, Word kind, const Value& value, Socket* socket = nullptr);

    // ---- geometry signals (signals.cpp) -----------------------------------------------------
    // The signal at the shaded point, or at the moved position (offset.cpp).
    Text geo(Signal what);
    // The screen-space derivative along 'x' or 'y'. Unsupported "no derivative for {what}".
    Text deriv(Signal what, char axis);
    // A linked vector socket, else the signal.
    Text vector_or(Node& n, Word ident, Signal coord);
    // Declares an input of another kind. `rest` is a map of the further keys that the kind needs.
    void declare_input(Word name, Word kind);
    void declare_input(Text name, Word kind, const Value& rest);

    // ---- evaluation at moved positions (offset.cpp) -----------------------------------------
    // Evaluates the graph upstream of a linked input again with the signals moved, and returns the name of a new
    // variable that holds the input's value there. Afterwards the evaluation state is as before.
    Text inp_offset(Node& n, Word ident, const SocketType& want, const Offset& offset);
    // A node that is not part of the document, with one socket that is linked to the source.
    Node reader(Word ident, const Value& source);

    [[nodiscard]] const Module& module() const { return module_; }
    [[nodiscard]] const Runtime& runtime() const { return module_.runtime; }
    [[nodiscard]] Node* find_node(const Value& id);  // null where there is none
    // Passes the reading on to another generator with the same `use_params`. This generator must outlive that one,
    // because it owns the strings of the socket values, and it can evaluate nothing afterwards.
    Reading release_reading();
    // The statements, each ended by a line feed, and the offset after each.
    [[nodiscard]] Text body() const { return body_.text(); }
    [[nodiscard]] const std::vector<std::size_t>& line_ends() const { return line_ends_; }

    const Value ir;
    const bool use_params;
    const Value uv_bias;
    const Value need;      // set of str: library functions
    const Value structs;   // set of str: structs of the library
    const Value warnings;  // list of str
    Inputs inputs;
    Uses uses;
    Text n_override;          // replaces the shading normal; set by the bump of the displacement output
    bool disp_stage = false;  // normals come from vertex data while displacement is compiled

private:
    class MovedEvaluation;

    void begin_line();
    void end_line();
    Text begin_declaration(Text type, Text prefix);
    void end_declaration();
    Text keep_buffer();

    Bound output(const Source& source, const Value& names);
    void node(Node& n, const Value& names);
    QUILLGEN_OWN_FRAME void fall_back(Node& n, const Value& id);
    [[noreturn]] QUILLGEN_OWN_FRAME void no_output(Node& n, const Value& name);

    SocketType socket_type(const Value& word);
    [[noreturn]] QUILLGEN_OWN_FRAME Text no_input(Node& n, Word ident);
    Text read_link(Socket& socket, const SocketType& want);
    QUILLGEN_OWN_FRAME void read_value(Node& n, Word ident, Socket& socket);

    Text _geo(Signal what);
    Text frame_vector(Signal what);
    Text uv_signal(int index);
    Text axis_signal(Signal what);

    const Module& module_;
    const std::uintptr_t stack_entry_ = stack_position();
    Graph graph_;
    Arena arena_;
    Buffer buffer_;  // scratch for a string that is then kept in the arena
    Buffer body_;
    std::vector<std::size_t> line_ends_;
    int k_ = 0;  // the counter of `tmp`
    const Offset* boff_ = nullptr;
};

}  // namespace quillgen
