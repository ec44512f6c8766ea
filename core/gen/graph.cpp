#include "core/gen/graph.h"

#include <algorithm>
#include <utility>

namespace quillgen {

namespace {

void read_nodes(Graph& graph, const Value& records) {
    graph.nodes.reserve(records.expected_size());
    records.for_each([&](const Value& record) {
        const Value id = record.at("id"_w);
        graph.indices.set(id.object(), graph.nodes.size());
        graph.nodes.push_back({record, id});
    });
}

void mark_used(Graph& graph, const Source& source) {
    if (source.node < 0) {
        return;
    }
    Node& node = graph.nodes[static_cast<std::size_t>(source.node)];
    if (node.find_output(source.output) == nullptr) {
        node.outputs.push_back({source.output});
    }
}

void read_sockets(Graph& graph, Node& node) {
    const Value in = node.record.at("in"_w);
    node.sockets.reserve(in.expected_size());
    in.for_each_item([&](const Value& name, const Value& entry) {
        Socket& socket = node.sockets.emplace_back();
        socket.name = in.runtime().find_word(name.object());
        socket.entry = entry;
        socket.link = entry.find("link"_w);
        if (socket.link.present()) {
            socket.source = find_source(graph, socket.link);
            mark_used(graph, socket.source);
        }
    });
}

}  // namespace

Socket* Node::find_socket(Word name) {
    const auto index = static_cast<int>(name.index());
    const auto found =
        std::find_if(sockets.begin(), sockets.end(), [index](const Socket& socket) { return socket.name == index; });
    return found == sockets.end() ? nullptr : &*found;
}

Output* Node::find_output(int name) {
    const auto found =
        std::find_if(outputs.begin(), outputs.end(), [name](const Output& output) { return output.name == name; });
    return found == outputs.end() ? nullptr : &*found;
}

void Node::forget_evaluation() {
    done = false;
    for (Output& output : outputs) {
        output.is_bound = false;
    }
}

Graph read_graph(const Value& document) {
    Graph graph;
    read_nodes(graph, document.at("nodes"_w));
    for (Node& node : graph.nodes) {
        read_sockets(graph, node);
    }
    document.at("out"_w).for_each_item([&](const Value&, const Value& source) {
        if (source.truthy()) {
            mark_used(graph, find_source(graph, source));
        }
    });
    return graph;
}

int output_name(Graph& graph, const Value& name) {
    const int word = name.runtime().find_word(name.object());
    if (word >= 0) {
        return word;
    }
    const int known = graph.other_output_names.find(name.object());
    if (known >= 0) {
        return known;
    }
    const std::size_t number = name.runtime().word_count() + graph.other_output_names.size();
    graph.other_output_names.set(name.object(), number);
    return static_cast<int>(number);
}

Source find_source(Graph& graph, const Value& source) {
    const Value id = source.item(0);
    const Value name = source.item(1);
    return {graph.indices.find(id.object()), output_name(graph, name)};
}

std::vector<int> upstream(const Graph& graph, int node) {
    std::vector<int> reached;
    std::vector<bool> seen(graph.nodes.size(), false);
    const auto reach = [&](int index) {
        if (index >= 0 && !seen[static_cast<std::size_t>(index)]) {
            seen[static_cast<std::size_t>(index)] = true;
            reached.push_back(index);
        }
    };
    reach(node);
    // NOLINTNEXTLINE(modernize-loop-convert): the list grows while it is gone through
    for (std::size_t i = 0; i < reached.size(); ++i) {
        for (const Socket& socket : graph.nodes[static_cast<std::size_t>(reached[i])].sockets) {
            reach(socket.source.node);
        }
    }
    return reached;
}

}  // namespace quillgen
