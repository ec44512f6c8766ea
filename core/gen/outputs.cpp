// Output sockets: binding them, and evaluating the node of an output that is read.
#include "core/gen/gen.h"

namespace quillgen {

void Gen::set(Node& n, Word out, const SocketType& type, Text expr) {
    if (is_used(n, out)) {
        bind(n, out, type, var(hlsl(type), expr));
    }
}

void Gen::bind(Node& n, Word out, const SocketType& type, Text expr) {
    if (Output* output = n.find_output(static_cast<int>(out.index()))) {
        output->is_bound = true;
        output->bound = {expr, type};
    }
}

void Gen::bind(Node& n, const Value& out, const SocketType& type, Text expr) {
    if (Output* output = n.find_output(output_name(graph_, out))) {
        output->is_bound = true;
        output->bound = {expr, type};
    }
}

void Gen::no_output(Node& n, const Value& name) {
    unsupported(text("$0 has no output $1", formatted(n.type()), formatted(name)));
}

// `names` is the sequence that `source` was found by; errors quote its items.
Bound Gen::output(const Source& source, const Value& names) {
    if (source.node < 0) {
        raise_key_error(names.item(0).object());
    }
    Node& n = graph_.nodes[static_cast<std::size_t>(source.node)];
    const Output* output = n.find_output(source.output);
    if (output == nullptr || !output->is_bound) {
        node(n, names);
        output = n.find_output(source.output);
    }
    if (output == nullptr || !output->is_bound) {
        no_output(n, names.item(1));
    }
    return output->bound;
}

void Gen::node(Node& n, const Value& names) {
    if (n.done) {
        return;
    }
    n.done = true;  // before the handler runs, so that a cycle ends at its second visit
    const RecursionLevel level(stack_entry_);
    if (n.handler == nullptr) {
        n.handler = module_.registry.find(n.type());
    }
    if (n.handler != nullptr) {
        n.handler(*this, n);
    } else {
        fall_back(n, names.item(0));
    }
}

// For a node type without a handler: warns, and binds the outputs that its record declares to zero.
void Gen::fall_back(Node& n, const Value& id) {
    warn("$0 ($1) has no Unreal equivalent - its outputs are 0", formatted(id), formatted(n.type()));
    const Value outs = n.record.get("outs"_w);
    if (!outs.present()) {
        return;
    }
    outs.for_each_item([&](const Value& out, const Value& word) {
        const SocketType type = socket_type(word);
        bind(n, out, type, is_closure(type) ? module_.closure.none : is_float3(type) ? "float3(0.0, 0.0, 0.0)" : "0.0");
    });
}

}  // namespace quillgen
