// Input sockets: where the graph is walked, where a value becomes a parameter or a literal, and where
// types meet.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

constexpr std::size_t kFirstType = Word("VALUE").index();
static_assert(Word("ROTATION").index() - kFirstType == SocketType::rotation);

}  // namespace

// The type that a word of the document stands for. Words that no table knows keep their text, which
// messages quote. TypeError where the word has no hash, as for any look into a table.
SocketType Gen::written_type(const Value& word) {
    if (word.is_str()) {
        std::string storage;
        const Text text = word.text(storage);
        for (std::size_t kind = 0; kind <= SocketType::rotation; ++kind) {
            if (kWords[kFirstType + kind] == text) {
                return {static_cast<SocketType::Kind>(kind)};
            }
        }
    }
    word.check_hashable();
    unknown_types_.push_back(word);
    return {SocketType::unknown, &unknown_types_.back()};
}

// The same for an unlinked entry's own type, which is only compared: anything may stand there.
SocketType Gen::socket_type(const Value& word) { return word.is_str() ? written_type(word) : SocketType{}; }

// None of a record that is no node of the document.
std::span<Socket> Gen::sockets(int place) {
    if (place < 0) {
        return {};
    }
    const NodeState& state = states_[static_cast<std::size_t>(place)];
    return std::span(sockets_).subspan(static_cast<std::size_t>(state.first_socket),
                                       static_cast<std::size_t>(state.socket_count));
}

// The socket whose key is the word itself, or the object that has been the key of such a socket before; null where
// there is none, which tells nothing about equal keys.
Socket* Gen::find_socket(const Node& n, Word ident) {
    const void* const word = runtime().word(ident);
    const void* const known = socket_keys_[ident.index()] != nullptr ? socket_keys_[ident.index()] : word;
    for (Socket& socket : sockets(n.place)) {
        if (socket.key == word || socket.key == known) {
            socket.key = word;
            socket.is_named = true;
            return &socket;
        }
    }
    return nullptr;
}

// The socket of an entry that the document has under that word. It is named by the word from then on, and found by
// it. Where one entry stands for several sockets, each gets one of them, which may be another's: then its key tells
// nothing.
Socket* Gen::find_socket(const Node& n, Word ident, const Value& entry) {
    Socket* found = nullptr;
    int sharing = 0;
    for (Socket& socket : sockets(n.place)) {
        if (socket.entry.object() == entry.object()) {
            ++sharing;
            if (found == nullptr && !socket.is_named) {
                found = &socket;
            }
        }
    }
    if (found != nullptr) {
        if (sharing == 1) {
            socket_keys_[ident.index()] = found->key;
        }
        found->key = runtime().word(ident);
        found->is_named = true;
    }
    return found;
}

bool Gen::linked(const Node& n, Word ident) {
    if (const Socket* socket = find_socket(n, ident)) {
        return socket->link.present();
    }
    const Value entry = n.in.get(ident);
    return !entry.is_none() && entry.contains("link");
}

void Gen::no_input(const Node& n, Word ident) {
    unsupported(text("$0: no input $1", formatted(n.type()), ident.text()));
}

Text Gen::inp(const Node& n, Word ident, SocketType want, Text fallback) {
    Socket* socket = find_socket(n, ident);
    if (socket == nullptr) {
        const Value entry = n.in.get(ident);
        if (entry.is_none()) {
            if (fallback.data() != nullptr) {
                return fallback;
            }
            no_input(n, ident);
        }
        socket = find_socket(n, ident, entry);
        if (socket == nullptr) {
            return read_entry(n, ident, entry, want);
        }
    }
    if (!socket->is_read || inputs.ambiguous()) {
        read_socket(n, ident, *socket);
    }
    return read(*socket, want);
}

void Gen::read_socket(const Node& n, Word ident, Socket& socket) {
    if (socket.link.present()) {
        const Value type = socket.link.unpack3()[2];
        if (!type.is_str() && !type.is_none()) {
            output(socket.source, socket.link);  // what is no word may fail, but not ahead of its source
        }
        socket.is_typed = type.truthy();
        socket.type = socket.is_typed ? written_type(type) : SocketType{};
    } else {
        socket.type = socket_type(socket.t.present() ? socket.t : socket.entry.at("t"));
        if (is_value_type(socket.type)) {
            const Value v = socket.v.present() ? socket.v : socket.entry.get("v");
            socket.text = param(n, runtime().identifier(ident), socket.type, v);
        }
    }
    socket.is_read = true;
}

Text Gen::read(const Socket& socket, SocketType want) {
    if (socket.link.present()) {
        const Bound bound = output(socket.source, socket.link);
        // The document is believed over the handler.
        return convert(bound.text, socket.is_typed ? socket.type : bound.type, want);
    }
    if (is_value_type(socket.type)) {
        return convert(socket.text, socket.type, want);
    }
    return is_closure(socket.type) && is_closure(want) ? "L.closure_none()" : "0.0";
}

// Reads an entry that may be any object, as if for the first time.
Text Gen::read_entry(const Node& n, Word ident, const Value& entry, SocketType want) {
    if (const Value link = entry.find("link"); link.present()) {
        const auto [nid, out, type] = link.unpack3();
        const Bound bound = output({find_place(nid), name_of(out)}, Value::pair(nid, out));
        return convert(bound.text, type.truthy() ? written_type(type) : bound.type, want);
    }
    const SocketType type = socket_type(entry.at("t"));
    if (is_value_type(type)) {
        return convert(param(n, runtime().identifier(ident), type, entry.get("v")), type, want);
    }
    return is_closure(type) && is_closure(want) ? "L.closure_none()" : "0.0";
}

Text Gen::convert(Text expr, SocketType from, SocketType to) {
    const auto word = [&](SocketType type) {
        return type.word != nullptr ? formatted(*type.word) : kWords[kFirstType + type.kind];
    };
    if (hlsl(from) == hlsl(to)) {
        return expr;
    }
    if (is_closure(to)) {
        unsupported(text("a $0 value plugged into a shader socket", word(from)));
    }
    if (is_closure(from)) {
        unsupported(text("a shader plugged into a $0 socket", word(to)));
    }
    if (is_float3(to)) {
        return text("((float3)($0))", expr);
    }
    if (from == RGBA) {
        return text("dot($0, float3(0.2126, 0.7152, 0.0722))", expr);
    }
    return text("(($0).x + ($0).y + ($0).z) * (1.0 / 3.0)", expr);
}

// ---- parameters -----------------------------------------------------------------------------

Text Gen::identifier(const Node& n) {
    Text& identifier = states_[static_cast<std::size_t>(n.place)].identifier;
    if (identifier.data() == nullptr) {
        std::string storage;
        const Text id = n.id.formatted(storage);
        identifier = keep(runtime().memory().identifiers.get(id, [&] { return runtime().identifier(id); }));
    }
    return identifier;
}

// `socket` is in the form that identifiers have; see Runtime::identifier.
Text Gen::param_name(const Node& n, Text socket) { return arena_.keep({"P_", identifier(n), "__", socket}); }

Text Gen::param(const Node& n, Text socket, SocketType type, const Value& value) {
    if (hlsl(type) == "float") {
        return scalar_param(use_params ? param_name(n, socket) : Text(), value);
    }
    constexpr Text kComponents = ".xyz";
    return vector_param(use_params ? arena_.keep({param_name(n, socket), kComponents}) : Text(), value);
}

Text Gen::scalar_param(Text name, const Value& value) {
    const Value item = value.is_list_or_tuple() ? value.at(Py_ssize_t{0}) : value;
    const Value number = item.is_none() ? Value::number(runtime(), 0.0) : item.to_float();
    if (!use_params) {
        return _f(number);
    }
    inputs.put({.name = name, .kind = "scalar", .value = number, .is_parameter = true});
    return name;
}

// `expr` is the parameter's name and the components of it that are read.
Text Gen::vector_param(Text expr, const Value& value) {
    Value items;
    if (value.is_list_or_tuple()) {
        items = value.copied_list();
    } else {
        const Value x = value.truthy() ? value.to_float() : Value::number(runtime(), 0.0);
        items = Value::list(runtime());
        for (int i = 0; i < 3; ++i) {
            items.append(x);
        }
    }
    // A list of three gets 0.0 for its fourth; only an empty one reaches the 1.0.
    for (const double pad : {0.0, 0.0, 0.0, 1.0}) {
        if (items.size() >= 4) {
            break;
        }
        items.append(Value::number(runtime(), pad));
    }
    items.cut(4);
    if (!use_params) {
        return _v3(items);
    }
    const Text name = expr.substr(0, expr.rfind('.'));
    inputs.put({.name = name, .kind = "vector", .value = items, .is_parameter = true});
    return expr;
}

Text Gen::vector_or(const Node& n, Word ident, Signal coord) {
    return linked(n, ident) ? inp(n, ident, VECTOR) : geo(coord);
}

}  // namespace quillgen
