// The generator: one instance translates one graph of one document into HLSL statements, and
// everything that a node handler does, it does through the operations here.
//
// Evaluation is pull-based. Nothing walks the list of nodes: one output is read, its node's handler
// reads the inputs that it needs, and so on up the graph, each node once. Statements are appended as
// evaluation goes, so the order of reading in a handler is the order of lines and of the numbers in
// names.
#pragma once

#include <array>
#include <list>
#include <span>
#include <string>
#include <vector>

#include "core/gen/counter.h"
#include "core/gen/format.h"
#include "core/gen/module.h"
#include "core/gen/number.h"
#include "core/gen/signal.h"

namespace quillgen {

// How far the signals are moved while a graph is evaluated again beside the shaded point. Each member
// names a variable: `w` a world-space offset, `a` and `b` the same offset in screen steps in x and y.
struct Offset {
    Text w;
    Text a;
    Text b;
};

// What a shader node has touched; a flag only ever goes from false to true.
struct Uses {
    bool normal = false;
    bool alpha = false;
    bool emission = false;
    bool coat = false;
};

// The library's word for the type of a coordinate of `d` dimensions. KeyError where it has none.
std::string library_type(const Runtime& runtime, int d);

class Gen {
public:
    // KeyError where the document, or a node record of it, lacks a mandatory key.
    Gen(const Module& module, Value document, bool emission_mode, bool with_params, Value bias);
    // Another translation of the same document. What the one that is done has read of it is taken from it, so that one
    // is good for its results only from then on.
    struct After {
        Gen& done;
    };
    explicit Gen(After other);
    Gen(const Gen&) = delete;
    Gen& operator=(const Gen&) = delete;

    // ---- statements -------------------------------------------------------------------------
    // A fresh name: the prefix and the next number of the one counter.
    Text tmp(Prefix prefix = "t") {
        arena_.end_at(k_.put_name(arena_.room(Counter::kMostCharacters), prefix));
        return arena_.finished();
    }

    void emit(Text line);
    template <FormatText F, class... Args>
    QUILLGEN_OWN_FRAME void emit(Format<F> line, const Args&... args) {
        body_.append("  ");
        fill(body_, line, args...);
        body_.append("\n");
        end_line();
    }

    // Declares a variable and gives its name. The type "closure" stands for the closure record.
    Text var(Text type, Text expr) { return declare(type, "v", expr); }
    template <FormatText F, class... Args>
    QUILLGEN_OWN_FRAME Text var(Text type, Format<F> expr, const Args&... args) {
        const Text name = begin_declaration(type, "v");
        fill(body_, expr, args...);
        body_.append(";\n");
        end_line();
        return name;
    }

    // A text that lives as long as the generator.
    Text keep(Text text) { return arena_.keep(text); }
    template <FormatText F, class... Args>
    QUILLGEN_OWN_FRAME Text text(Format<F> format, const Args&... args) {
        fill(arena_, format, args...);
        return arena_.finished();
    }
    // A float literal, and a float3 of the first three of a sequence's items, padded with zeros. TypeError or
    // ValueError where a value does not convert to a float.
    Text _f(const Value& value);
    Text _v3(const Value& value);
    // The literals of the numbers with ", " between them. The text holds until the next call.
    [[nodiscard]] Text literals(std::span<const double> numbers) const;
    Text formatted(const Value& value);  // as a format of Python's writes it

    void warn(Text warning) { warnings.push_back(keep(warning)); }
    template <FormatText F, class... Args>
    void warn(Format<F> warning, const Args&... args) {
        warnings.push_back(text(warning, args...));
    }
    [[noreturn]] void unsupported(Text message) const { module_.runtime.raise_unsupported(message); }

    // The row of an operation, or of `fallback` where the word is absent; null for one without a row.
    [[nodiscard]] const TemplateTable::Row* row(Text table, const Value& operation, Text fallback) const;
    // The row's HLSL with the operands in it; asks for the library names that it calls.
    Text fill_row(const TemplateTable::Row& row, std::initializer_list<Text> operands);

    // ---- library names ----------------------------------------------------------------------
    void use(std::span<const Word> names);
    void use(std::initializer_list<Word> names) { use(std::span<const Word>(names.begin(), names.size())); }
    void use(Word name) { use({name}); }
    void use_composed(Text name);  // a name made of words of the document
    void use_struct(Word name);
    Text types(int d);  // library_type

    // ---- output sockets ---------------------------------------------------------------------
    // Whether anything in the document reads the output.
    [[nodiscard]] bool is_used(const Node& n, Word out) const { return find_output(n, out) != nullptr; }
    // Binds an output. `set` makes a variable of it; `bind` leaves the text as it is, to be pasted by each
    // reader. An output that nothing reads costs nothing.
    void set(const Node& n, Word out, SocketType type, Text expr);
    void bind(const Node& n, Word out, SocketType type, Text expr);
    template <FormatText F, class... Args>
    void set(const Node& n, Word out, SocketType type, Format<F> expr, const Args&... args) {
        if (is_used(n, out)) {
            bind(n, out, type, var(hlsl(type), expr, args...));
        }
    }
    template <FormatText F, class... Args>
    void bind(const Node& n, Word out, SocketType type, Format<F> expr, const Args&... args) {
        if (is_used(n, out)) {
            bind(n, out, type, text(expr, args...));
        }
    }
    // The same for an output whose name the document gives.
    void bind(const Node& n, const Value& out, SocketType type, Text expr);

    // Reads the output that a source names (its first items are a node's id and an output), evaluating its node
    // if that has not happened yet. Unsupported "{type} has no output {out}"; KeyError for a node that the
    // document lacks.
    Bound output(const Value& source);

    // ---- input sockets ----------------------------------------------------------------------
    // The socket as text of the type `want`: the output that it is linked to, a parameter or literal, or
    // `fallback` where the record lacks the socket. Unsupported "{type}: no input {ident}".
    Text inp(const Node& n, Word ident, SocketType want, Text fallback = {});
    bool linked(const Node& n, Word ident);
    // The entry of a socket, absent where the record lacks it. Whoever decides by a socket's stored value, or writes it
    // as a literal, reads it here: the text depends on the value then, even where it has become a parameter.
    Value entry(const Node& n, Word ident);
    // Unsupported where a shader meets a value.
    Text convert(Text expr, SocketType from, SocketType to);
    // The value of a socket, or of a property, as a tweakable input or, without use_params, a literal.
    // A socket that is no word is a text in the form that identifiers have.
    template <class Ident>
    Text param(const Node& n, Ident socket, SocketType type, const Value& value, Origin origin = {}) {
        return param(use_params ? &param_name(n, socket) : nullptr, type, value, origin);
    }
    const Name& param_name(const Node& n, Word socket);
    const Name& param_name(const Node& n, Text socket);
    const Name& input_name(Text name) { return names_->get(name); }

    // ---- geometry signals -------------------------------------------------------------------
    Text geo(Signal what);
    // The screen-space derivative along 'x' or 'y'. Unsupported "no derivative for {what}".
    Text deriv(Signal what, char axis);
    // A linked vector socket, else the signal.
    Text vector_or(const Node& n, Word ident, Signal coord);
    void declare_input(Text name, Word kind);

    // ---- evaluation at moved positions ------------------------------------------------------
    // Evaluates what feeds a linked input once more with the signals moved, and gives the name of a new
    // variable that holds the input's value there. All else is as before. KeyError without a link.
    Text inp_offset(const Node& n, Word ident, SocketType want, const Offset& offset);

    // ---- the whole graph --------------------------------------------------------------------
    struct Run {
        Text base;     // in emission mode the colour
        Text closure;  // in every other mode the variable of the closure
    };
    Run run();
    // Bumps the shading normal by the displacement output, where the document asks for it.
    void displacement_normal();

    [[nodiscard]] const Module& module() const { return module_; }
    [[nodiscard]] const Runtime& runtime() const { return module_.runtime; }
    // The statements, each ended by a line feed; `line_ends` are the places behind those.
    [[nodiscard]] Text body() const { return body_.view(); }
    [[nodiscard]] const std::vector<std::size_t>& line_ends() const { return line_ends_; }
    [[nodiscard]] Value need() const { return need_; }              // a set of library names
    [[nodiscard]] Value structs() const { return structs_; }        // a set of struct names
    [[nodiscard]] std::vector<const Input*> sorted_inputs() const;  // by name
    [[nodiscard]] const Node* find_node(const Value& nid) const;    // null where there is none
    // All entries that `entry` has given.
    [[nodiscard]] const std::vector<const void*>& decisive() const { return decisive_; }
    // The library's words that `types` has given, by the number of dimensions; empty where it has not been asked.
    using Types = std::array<std::string, 5>;
    [[nodiscard]] const Types& asked_types() const { return types_; }
    [[nodiscard]] const std::shared_ptr<Names>& names() const { return names_; }

private:
    const StorageLoan storage_;  // ahead of all that refers to it
    const std::shared_ptr<Names> names_;

public:
    const Value ir;
    const bool use_params;
    const Value uv_bias;
    Inputs& inputs;
    std::vector<Text> warnings;
    std::list<Texture> textures;
    Uses uses;
    Text n_override;          // replaces the shading normal once a displacement bump has made it
    bool disp_stage = false;  // normals come from vertex data while displacement is compiled

private:
    class MovedEvaluation;

    Gen(const Module& module, Value document, bool emission_mode, bool with_params, Value bias,
        std::shared_ptr<Names> names);
    void read_nodes();
    void read_links();
    void read_link(const void* key, const Value& entry);
    Source find_source(const Value& source);
    Source find_source(const Value& nid, const Value& out);
    void mark_used(const Source& source);
    Bound output(const Source& found, const Value& source);
    [[noreturn]] void no_input(const Node& n, Word ident);
    int name_of(const Value& out);
    [[nodiscard]] int find_place(const Value& nid) const;
    [[nodiscard]] const Output* find_output(const Node& n, Word out) const;
    Output* find_output(const NodeState& state, int name);
    void node(const Node& n, const Value& source);
    void fall_back(const Value& nid, const Node& n, const Value& type);

    void end_line();
    Text begin_declaration(Text type, Prefix prefix);
    Text declare(Text type, Prefix prefix, Text expr);

    [[nodiscard]] Value shared(const Ref& object) const { return {object, runtime()}; }
    SocketType socket_type(const Value& word);
    Socket* find_socket(const Node& n, Word ident);
    Socket* find_socket(const Node& n, Word ident, const Value& entry);
    void read_socket(const Node& n, Word ident, Socket& socket);
    Text inp_by_entry(const Node& n, Word ident, SocketType want, Text fallback);
    Text read(const Node& n, Word ident, Socket& socket, SocketType want);
    Text read_entry(const Node& n, Word ident, const Value& entry, SocketType want);
    SocketType written_type(const Value& word);
    Text param(const Name* name, SocketType type, const Value& value, Origin origin);  // null without use_params
    NodeNames& names_of(const Node& n);

    Text _geo(Signal what);
    Text frame_vector(Signal what);
    Text uv_signal(int index);
    Text axis_signal(Signal what);

    std::vector<int> upstream(int place);
    void displacement_bump(const Value& src, bool object_space);

    const Module& module_;
    const bool emission_mode_;
    Arena& arena_;
    TextBuffer& body_;
    std::vector<std::size_t>& line_ends_;
    Counter k_;

    std::vector<Node>& nodes_;
    std::vector<NodeState>& states_;
    std::vector<Output>& outputs_;
    std::vector<Socket>& sockets_;
    SmallMapKeys<3> entry_keys_;
    std::vector<Value> unknown_types_;
    std::vector<const void*>& decisive_;

    Value need_;
    std::vector<bool>& needed_;
    std::vector<const void*>& socket_keys_;
    std::vector<std::size_t>& socket_places_;
    Value structs_;
    Types types_;
    const Offset* boff_ = nullptr;
};

}  // namespace quillgen
