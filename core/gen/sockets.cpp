// Input sockets: where the graph is walked, where a value becomes a parameter or a literal, and where
// types meet.
#include <algorithm>

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
    return {SocketType::unknown, static_cast<std::uint32_t>(unknown_types_.size())};
}

// The same for an unlinked entry's own type, which is only compared: anything may stand there.
SocketType Gen::socket_type(const Value& word) { return word.is_str() ? written_type(word) : SocketType{}; }

// The socket whose key is the word itself, or the object that has been the key of such a socket before; null where
// there is none, which tells nothing about equal keys.
Socket* Gen::find_socket(const Node& n, Word ident) {
    if (n.state == nullptr) {
        return nullptr;
    }
    const std::span<Socket> all = n.state->sockets;
    const void* const word = runtime().word(ident);
    const void* const known = socket_keys_[ident.index()] != nullptr ? socket_keys_[ident.index()] : word;
    const auto is_wanted = [&](const Socket& socket) { return socket.key == word || socket.key == known; };
    // Nodes of one type have their sockets in one order.
    std::size_t& place = socket_places_[ident.index()];
    if (place >= all.size() || !is_wanted(all[place])) {
        const auto found = std::find_if(all.begin(), all.end(), is_wanted);
        if (found == all.end()) {
            return nullptr;
        }
        place = static_cast<std::size_t>(found - all.begin());
    }
    Socket& socket = all[place];
    socket.key = word;
    socket.is_named = true;
    return &socket;
}

// The socket of an entry that the document has under that word. It is named by the word from then on, and found by
// it. Where one entry stands for several sockets, each gets one of them, which may be another's: then its key tells
// nothing.
Socket* Gen::find_socket(const Node& n, Word ident, const Value& entry) {
    if (n.state == nullptr) {
        return nullptr;
    }
    Socket* found = nullptr;
    int sharing = 0;
    for (Socket& socket : n.state->sockets) {
        if (socket.entry.get() == entry.object()) {
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
        return static_cast<bool>(socket->link);
    }
    const Value entry = n.in.get(ident);
    return !entry.is_none() && entry.contains("link");
}

Value Gen::entry(const Node& n, Word ident) {
    const Socket* const socket = find_socket(n, ident);
    Value found = socket != nullptr ? shared(socket->entry) : n.in.get(ident);
    if (found.present()) {
        decisive_.push_back(found.object());
    }
    return found;
}

void Gen::no_input(const Node& n, Word ident) {
    unsupported(text("$0: no input $1"_fmt, formatted(n.type()), ident.text()));
}

Text Gen::inp(const Node& n, Word ident, SocketType want, Text fallback) {
    Socket* const socket = find_socket(n, ident);
    return socket != nullptr ? read(n, ident, *socket, want) : inp_by_entry(n, ident, want, fallback);
}

// The same for a socket that no word has found yet, or none will.
Text Gen::inp_by_entry(const Node& n, Word ident, SocketType want, Text fallback) {
    const Value entry = n.in.get(ident);
    if (entry.is_none()) {
        if (fallback.data() != nullptr) {
            return fallback;
        }
        no_input(n, ident);
    }
    Socket* const socket = find_socket(n, ident, entry);
    return socket != nullptr ? read(n, ident, *socket, want) : read_entry(n, ident, entry, want);
}

void Gen::read_socket(const Node& n, Word ident, Socket& socket) {
    if (socket.link) {
        const Value type = socket.t ? shared(socket.t) : shared(socket.link).unpack3()[2];
        if (type.is_str()) {
            socket.type = written_type(type);
            socket.is_typed = socket.type.kind != SocketType::unknown || type.truthy();
        } else {
            if (!type.is_none()) {
                output(socket.source, shared(socket.link));  // it may fail, but not ahead of its source
            }
            socket.is_typed = type.truthy();
            socket.type = socket.is_typed ? written_type(type) : SocketType{};
        }
    } else {
        socket.type = socket_type(socket.t ? shared(socket.t) : shared(socket.entry).at("t"));
        if (is_value_type(socket.type)) {
            const Value v = socket.v ? shared(socket.v) : shared(socket.entry).get("v");
            socket.text = param(n, ident, socket.type, v, {socket.entry.get(), "v"});
        }
    }
    socket.is_read = true;
}

Text Gen::read(const Node& n, Word ident, Socket& socket, SocketType want) {
    if (!socket.is_read || inputs.ambiguous()) {
        read_socket(n, ident, socket);
    }
    if (socket.link) {
        const Bound bound = output(socket.source, shared(socket.link));
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
        return convert(param(n, ident, type, entry.get("v"), {entry.object(), "v"}), type, want);
    }
    return is_closure(type) && is_closure(want) ? "L.closure_none()" : "0.0";
}

Text Gen::convert(Text expr, SocketType from, SocketType to) {
    if (shape(from) == shape(to)) {
        return expr;
    }
    const auto word = [&](SocketType type) {
        return type.word > 0 ? formatted(unknown_types_[type.word - 1]) : kWords[kFirstType + type.kind];
    };
    if (is_closure(to)) {
        unsupported(text("a $0 value plugged into a shader socket"_fmt, word(from)));
    }
    if (is_closure(from)) {
        unsupported(text("a shader plugged into a $0 socket"_fmt, word(to)));
    }
    if (is_float3(to)) {
        return text("((float3)($0))"_fmt, expr);
    }
    if (from == RGBA) {
        return text("dot($0, float3(0.2126, 0.7152, 0.0722))"_fmt, expr);
    }
    return text("(($0).x + ($0).y + ($0).z) * (1.0 / 3.0)"_fmt, expr);
}

// ---- parameters -----------------------------------------------------------------------------

NodeNames& Gen::names_of(const Node& n) {
    if (n.state->names == nullptr) {
        std::string storage;
        n.state->names = &names_->of_node(n.id.formatted(storage));
    }
    return *n.state->names;
}

const Name& Gen::param_name(const Node& n, Word socket) {
    NodeNames& names = names_of(n);
    const Name* const known = names.find(socket);
    return known != nullptr ? *known : names.add(socket, param_name(n, runtime().identifier(socket)));
}

const Name& Gen::param_name(const Node& n, Text socket) {
    return names_->get(arena_.keep({names_of(n).prefix(), socket}));
}

Text Gen::param(const Name* name, SocketType type, const Value& value, Origin origin) {
    const bool is_scalar = shape(type) == Shape::scalar;
    const Value made = is_scalar ? scalar_value(runtime(), value) : vector_value(runtime(), value);
    if (name == nullptr) {
        return is_scalar ? _f(made) : _v3(made);
    }
    inputs.put_parameter(*name, is_scalar ? Word("scalar") : Word("vector"), made, origin);
    return is_scalar ? name->text : arena_.keep({name->text, ".xyz"});
}

Text Gen::vector_or(const Node& n, Word ident, Signal coord) {
    return linked(n, ident) ? inp(n, ident, VECTOR) : geo(coord);
}

}  // namespace quillgen
