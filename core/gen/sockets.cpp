// Input sockets: following links, turning values into parameters or literals, and converting types.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

// The value of a scalar parameter: a float. IndexError for an empty sequence.
Value scalar_value(const Runtime& runtime, const Value& value) {
    const Value item = value.is_list_or_tuple() ? value.item(0) : value;
    return item.is_none() ? Value::number(runtime, 0.0) : item.to_float();
}

// The value of a vector parameter: a list of four.
Value vector_value(const Runtime& runtime, const Value& value) {
    Value items;
    if (value.is_list_or_tuple()) {
        items = value.copied_list();
    } else {
        const Value x = value.truthy() ? value.to_float() : Value::number(runtime, 0.0);
        items = Value::list(runtime, {x, x, x});
    }
    // A list of three is padded with 0.0; only an empty list is padded up to the 1.0.
    for (const double pad : {0.0, 0.0, 0.0, 1.0}) {
        if (items.size() >= 4) {
            break;
        }
        items.append(Value::number(runtime, pad));
    }
    items.truncate(4);
    return items;
}

// The frames of Gen::inp and its callees stay on the stack while the upstream graph is evaluated. To keep them small,
// code with temporary objects is out of line, here and in Gen::no_input.
QUILLGEN_OWN_FRAME Value link_type(const Value& link) { return link.unpack3()[2]; }

}  // namespace

// The type that a string of the document names. An unknown one is kept as the name of the type, for messages.
// TypeError where the object is not hashable, as for a dict lookup.
SocketType Gen::socket_type(const Value& word) {
    if (word.is_str()) {
        std::string storage;
        const Text name = word.text(storage);
        for (const SocketType type : kSocketTypes) {
            if (type.name == name) {
                return type;
            }
        }
    }
    word.check_hashable();
    return {SocketType::unknown, formatted(word)};
}

bool Gen::linked(Node& n, Word ident) {
    const Socket* const socket = n.find_socket(ident);
    return socket != nullptr && socket->link.present();
}

Value Gen::stored(Node& n, Word ident) {
    const Socket* const socket = n.find_socket(ident);
    return socket != nullptr ? socket->entry.get("v"_w) : Value();
}

Text Gen::inp(Node& n, Word ident, const SocketType& want, Text fallback) {
    Socket* const socket = n.find_socket(ident);
    if (socket == nullptr) {
        return fallback.data() != nullptr ? fallback : no_input(n, ident);
    }
    if (socket->link.present()) {
        return read_link(*socket, want);
    }
    if (socket->text.empty() || (socket->input >= 0 && !inputs.declare_again(socket->input, *socket))) {
        read_value(n, ident, *socket);
    }
    if (is_value_type(socket->type)) {
        return convert(socket->text, socket->type, want);
    }
    return is_closure(socket->type) && is_closure(want) ? module_.closure.none : "0.0";
}

Text Gen::no_input(Node& n, Word ident) { unsupported(text("$0: no input $1", formatted(n.type()), ident.text())); }

Text Gen::read_link(Socket& socket, const SocketType& want) {
    const Value type = socket.type.name.empty() ? link_type(socket.link) : Value();
    const Bound bound = output(socket.source, socket.link);
    if (type.truthy()) {
        socket.type = socket_type(type);
    }
    // The type in the document takes precedence over the type that the handler bound.
    return convert(bound.text, socket.type.name.empty() ? bound.type : socket.type, want);
}

void Gen::read_value(Node& n, Word ident, Socket& socket) {
    const Value type = socket.entry.at("t"_w);
    socket.type = type.is_str() ? socket_type(type) : SocketType{};
    socket.text = "0.0";
    if (is_value_type(socket.type)) {
        socket.text = param(n, ident.identifier(), socket.type, socket.entry.get("v"_w), &socket);
    }
}

Text Gen::convert(Text expr, const SocketType& from, const SocketType& to) {
    if (have_same_hlsl(from, to)) {
        return expr;
    }
    if (is_closure(to)) {
        unsupported(text("a $0 value plugged into a shader socket", from.name));
    }
    if (is_closure(from)) {
        unsupported(text("a shader plugged into a $0 socket", to.name));
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

Text Gen::param_name(Node& n, Text ident) {
    if (n.parameter_prefix.empty()) {
        std::string storage;
        std::string prefix = "P_";
        append_identifier(prefix, n.id.formatted(storage));
        n.parameter_prefix = keep(prefix + "__");
    }
    return arena_.keep(n.parameter_prefix, ident);
}

void Gen::declare_parameter(Text name, Word kind, const Value& value, Socket* socket) {
    const int number = inputs.declare(
        {.name = name, .key = Value::text(runtime(), name), .kind = kind, .value = value, .socket = socket});
    if (socket != nullptr) {
        socket->input = number;
    }
}

Text Gen::param(Node& n, Text ident, const SocketType& type, const Value& value, Socket* socket) {
    const bool is_scalar = !is_float3(type) && !is_closure(type);
    const Value made = is_scalar ? scalar_value(runtime(), value) : vector_value(runtime(), value);
    if (!use_params) {
        return is_scalar ? _f(made) : _v3(made);
    }
    const Text name = param_name(n, ident);
    declare_parameter(name, is_scalar ? "scalar"_w : "vector"_w, made, socket);
    return is_scalar ? name : arena_.keep(name, ".xyz");
}

Text Gen::vector_or(Node& n, Word ident, Signal coord) { return linked(n, ident) ? inp(n, ident, VECTOR) : geo(coord); }

}  // namespace quillgen
