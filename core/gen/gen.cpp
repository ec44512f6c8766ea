// The generator's state: reading the document's graph, statements, library names, output sockets and
// the run over the whole graph.
#include "core/gen/gen.h"

#include <algorithm>

namespace quillgen {

Gen::Gen(const Module& module, Value document, bool emission_mode, bool with_params, Value bias)
    : Gen(module, std::move(document), emission_mode, with_params, std::move(bias), module.names.lend()) {
    read_nodes();
    read_links();
}

Gen::Gen(After other)
    : Gen(other.done.module_, other.done.ir, other.done.emission_mode_, other.done.use_params, other.done.uv_bias,
          other.done.names_) {
    std::swap(storage_->graph, other.done.storage_->graph);
    std::swap(socket_keys_, other.done.socket_keys_);
    storage_->graph.begin_again();
}

Gen::Gen(const Module& module, Value document, bool emission_mode, bool with_params, Value bias,
         std::shared_ptr<Names> names)
    : storage_(module.idle_storage),
      names_(std::move(names)),
      ir(std::move(document)),
      use_params(with_params),
      uv_bias(std::move(bias)),
      inputs(storage_->inputs),
      module_(module),
      emission_mode_(emission_mode),
      arena_(storage_->arena),
      body_(storage_->body),
      line_ends_(storage_->line_ends),
      nodes_(storage_->graph.nodes),
      states_(storage_->graph.states),
      outputs_(storage_->graph.outputs),
      sockets_(storage_->graph.sockets),
      entry_keys_(module.runtime, {"t", "v", "link"}),
      decisive_(storage_->decisive),
      need_(Value::set(module.runtime)),
      needed_(storage_->needed),
      socket_keys_(storage_->socket_keys),
      socket_places_(storage_->socket_places),
      structs_(Value::set(module.runtime)) {
    needed_.assign(kWords.size(), false);
    socket_keys_.assign(kWords.size(), nullptr);
    socket_places_.resize(kWords.size());
}

// ---- reading the graph ----------------------------------------------------------------------

void Gen::read_nodes() {
    const Value records = ir.at("nodes");
    SmallMapKeys<5> keys(runtime(), {"id", "type", "in", "props", "outs"});
    nodes_.reserve(records.expected_size());
    storage_->graph.places.reserve(records.expected_size());
    outputs_.reserve(2 * records.expected_size());
    records.for_each([&](const Value& record) {
        const int place = static_cast<int>(nodes_.size());
        Node& n = nodes_.emplace_back();
        Ref id;
        Ref in;
        Ref outs;
        record.pick(keys, {&id, &n.known_type, &in, &n.known_props, &outs});
        n.record = record;
        n.id = id ? record.sibling(id) : record.at("id");
        n.in = in ? record.sibling(in) : Value();
        storage_->graph.places.put(n.id.object(), place);
    });
    states_.resize(nodes_.size());
    // About what a node comes to, so that little moves while it grows.
    body_.reserve(256 * nodes_.size());
    line_ends_.reserve(8 * nodes_.size());
    sockets_.reserve(8 * nodes_.size());
    inputs.reserve(4 * nodes_.size());
}

// Finds out what is read: by a link of any record, also of one that evaluation never reaches, or by an
// output of the material that is not left empty.
void Gen::read_links() {
    for (std::size_t place = 0; place < nodes_.size(); ++place) {
        Node& n = nodes_[place];
        n.state = &states_[place];
        if (!n.in.present()) {
            n.in = n.record.at("in");
        }
        const std::size_t first = sockets_.size();
        n.in.for_each_value([&](const void* key, const Value& entry) { read_link(key, entry); });
        n.state->sockets = {sockets_.data(), sockets_.size() - first};  // only their number holds until all are read
    }
    Socket* first = sockets_.data();
    for (NodeState& state : states_) {
        state.sockets = {first, state.sockets.size()};
        first += state.sockets.size();
    }
    ir.at("out").for_each_value([&](const void*, const Value& source) {
        if (source.truthy()) {
            mark_used(find_source(source));
        }
    });
}

void Gen::read_link(const void* key, const Value& entry) {
    Socket& socket = sockets_.emplace_back();
    // What is no plain map may give another entry, or another item of it, at each look: no word finds those here.
    const bool is_plain = key != nullptr && entry.is_map();
    socket.key = is_plain ? key : nullptr;
    socket.is_named = !is_plain;
    socket.entry = Ref::borrow(entry.object());
    if (!entry.pick(entry_keys_, {&socket.t, &socket.v, &socket.link}) && !socket.link) {
        socket.link = entry.find("link").take();
    }
    if (socket.link) {
        auto [nid, out, type] = shared(socket.link).plain_triple();
        socket.source = nid ? find_source(shared(nid), shared(out)) : find_source(shared(socket.link));
        socket.t = std::move(type);
        mark_used(socket.source);
    }
}

Source Gen::find_source(const Value& source) {
    const Value nid = source.at(Py_ssize_t{0});
    return find_source(nid, source.at(Py_ssize_t{1}));
}

Source Gen::find_source(const Value& nid, const Value& out) {
    const int place = find_place(nid);
    return {place, name_of(out)};
}

void Gen::mark_used(const Source& source) {
    if (source.place < 0) {
        return;
    }
    NodeState& state = states_[static_cast<std::size_t>(source.place)];
    if (find_output(state, source.name) == nullptr) {
        outputs_.push_back({source.name, state.first_output});
        state.first_output = static_cast<int>(outputs_.size()) - 1;
    }
}

// A number for the name of an output; equal names have equal numbers.
int Gen::name_of(const Value& out) {
    const int word = runtime().find_word(out.object());
    if (word >= 0) {
        return word;
    }
    Graph& graph = storage_->graph;
    if (const int known = graph.other_names.find(out.object()); known >= 0) {
        return known;
    }
    const int name = static_cast<int>(kWords.size()) + graph.other_name_count++;
    graph.other_names.put(out.object(), name);
    return name;
}

int Gen::find_place(const Value& nid) const { return storage_->graph.places.find(nid.object()); }

const Node* Gen::find_node(const Value& nid) const {
    const int place = find_place(nid);
    return place < 0 ? nullptr : &nodes_[static_cast<std::size_t>(place)];
}

// ---- statements -----------------------------------------------------------------------------

void Gen::emit(Text line) {
    body_.append("  ");
    body_.append(line);
    body_.append("\n");
    end_line();
}

void Gen::end_line() {
    line_ends_.push_back(body_.size());
    check_signals_at(line_ends_.size());
}

Text Gen::begin_declaration(Text type, Prefix prefix) {
    const Text name = tmp(prefix);
    const Text word = type == "closure" ? Text("QWKClosure") : type;
    char* const start = body_.room(word.size() + name.size() + 6);
    body_.end_at(put(put(put(put(put(start, "  "), word), " "), name), " = "));
    return name;
}

Text Gen::declare(Text type, Prefix prefix, Text expr) {
    const Text name = begin_declaration(type, prefix);
    body_.append(expr);
    body_.append(";\n");
    end_line();
    return name;
}

Text Gen::_f(const Value& value) {
    const double number = value.as_float();
    return keep(literals({&number, 1}));
}

Text Gen::_v3(const Value& value) {
    const Value items = value.copied_list();
    double numbers[3] = {};
    for (int i = 0; i < 3 && i < items.size(); ++i) {
        numbers[i] = items.at(static_cast<Py_ssize_t>(i)).as_float();
    }
    return text("float3($0)"_fmt, literals(numbers));
}

// A curve has hundreds, and writing a number takes longer than anything else that a translation does for it: a material
// of many curves takes less than half the time where they have been written before.
Text Gen::literals(std::span<const double> numbers) const {
    const Text bytes(reinterpret_cast<const char*>(numbers.data()), numbers.size_bytes());
    return runtime().memory().literals.get(bytes, [&] {
        std::string list;
        for (const double number : numbers) {
            list += list.empty() ? "" : ", ";
            append_literal(list, number);
        }
        return list;
    });
}

Text Gen::formatted(const Value& value) {
    std::string storage;
    return keep(value.formatted(storage));
}

const TemplateTable::Row* Gen::row(Text table, const Value& operation, Text fallback) const {
    return module_.registry.table(table).find(operation.present() ? operation : Value::text(runtime(), fallback));
}

Text Gen::fill_row(const TemplateTable::Row& row, std::initializer_list<Text> operands) {
    use(row.needs);
    const auto append = [&](Text piece) { arena_.end_at(put(arena_.room(piece.size()), piece)); };
    for (const TemplateTable::Piece& piece : row.pieces) {
        append(piece.plain);
        append(operands.begin()[piece.operand]);
    }
    append(row.rest);
    return arena_.finished();
}

// ---- library names --------------------------------------------------------------------------

void Gen::use(std::span<const Word> names) {
    for (const Word name : names) {
        if (!needed_[name.index()]) {
            needed_[name.index()] = true;
            need_.add(Value::word(runtime(), name));
        }
    }
}

void Gen::use_composed(Text name) { need_.add(names_->get(name).string); }

void Gen::use_struct(Word name) { structs_.add(Value::word(runtime(), name)); }

// ---- output sockets -------------------------------------------------------------------------

const Output* Gen::find_output(const Node& n, Word out) const {
    return const_cast<Gen*>(this)->find_output(*n.state, static_cast<int>(out.index()));
}

Output* Gen::find_output(const NodeState& state, int name) {
    for (int i = state.first_output; i >= 0;) {
        Output& output = outputs_[static_cast<std::size_t>(i)];
        if (output.name == name) {
            return &output;
        }
        i = output.next;
    }
    return nullptr;
}

void Gen::set(const Node& n, Word out, SocketType type, Text expr) {
    if (is_used(n, out)) {
        bind(n, out, type, var(hlsl(type), expr));
    }
}

void Gen::bind(const Node& n, Word out, SocketType type, Text expr) {
    if (Output* output = find_output(*n.state, static_cast<int>(out.index()))) {
        output->bound = true;
        output->value = {expr, type};
    }
}

void Gen::bind(const Node& n, const Value& out, SocketType type, Text expr) {
    if (Output* output = find_output(*n.state, name_of(out))) {
        output->bound = true;
        output->value = {expr, type};
    }
}

Bound Gen::output(const Value& source) { return output(find_source(source), source); }

Bound Gen::output(const Source& found, const Value& source) {
    if (found.place < 0) {
        raise_key_error(source.at(Py_ssize_t{0}).object());
    }
    const Node& n = nodes_[static_cast<std::size_t>(found.place)];
    const Output* output = find_output(*n.state, found.name);
    if (output == nullptr || !output->bound) {
        node(n, source);
        output = find_output(*n.state, found.name);
    }
    if (output == nullptr || !output->bound) {
        const Value type = n.type();
        unsupported(text("$0 has no output $1"_fmt, formatted(type), formatted(source.at(Py_ssize_t{1}))));
    }
    return output->value;
}

void Gen::node(const Node& n, const Value& source) {
    NodeState& state = *n.state;
    if (state.done) {
        return;
    }
    state.done = true;                 // before the handler runs, so that a cycle ends at its second visit
    const RecursionLevel level(this);  // a generator stands on the stack of the call that made it
    if (state.handler == nullptr) {
        const Value type = n.type();
        state.handler = module_.registry.find(type);
        if (state.handler == nullptr) {
            fall_back(source.at(Py_ssize_t{0}), n, type);
            return;
        }
    }
    state.handler(*this, n);
}

// A node type without a handler: a warning, and zeros for the outputs that its record declares.
void Gen::fall_back(const Value& nid, const Node& n, const Value& type) {
    warn("$0 ($1) has no Unreal equivalent - its outputs are 0"_fmt, formatted(nid), formatted(type));
    const Value outs = n.record.get("outs");
    if (!outs.present()) {
        return;
    }
    outs.for_each_item([&](const Value& out, const Value& word) {
        const SocketType type_of_out = written_type(word);
        const Text zero = is_closure(type_of_out)  ? "L.closure_none()"
                          : is_float3(type_of_out) ? "float3(0.0, 0.0, 0.0)"
                                                   : "0.0";
        bind(n, out, type_of_out, zero);
    });
}

// ---- the whole graph ------------------------------------------------------------------------

Gen::Run Gen::run() {
    const Value src = ir.at("out").get("surface");
    if (src.is_none()) {
        unsupported("no surface output");
    }
    // Before the surface: its whole graph is to see the bumped normal.
    displacement_normal();
    const Bound surface = output(src);
    if (emission_mode_) {
        return {is_closure(surface.type) ? text("($0).emission"_fmt, surface.text)
                                         : convert(surface.text, surface.type, RGBA),
                {}};
    }
    const Text e = is_closure(surface.type)
                       ? surface.text
                       : text("L.closure_emission($0)"_fmt, convert(surface.text, surface.type, RGBA));
    return {{}, declare("closure", "surf", e)};
}

std::vector<const Input*> Gen::sorted_inputs() const {
    names_->rank();
    std::vector<const Input*> sorted;
    sorted.reserve(inputs.entries().size());
    for (const Input& input : inputs.entries()) {
        sorted.push_back(&input);
    }
    std::sort(sorted.begin(), sorted.end(),
              [](const Input* a, const Input* b) { return a->name->rank < b->name->rank; });
    return sorted;
}

}  // namespace quillgen
