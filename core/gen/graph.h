// The graph of a document as a translation uses it: nodes, sockets, and the outputs that something reads. Ids and names
// are looked up once, here. From then on, nodes and outputs are identified by numbers.
#pragma once

#include <vector>

#include "core/document/value.h"
#include "core/gen/registry.h"
#include "core/gen/socket_type.h"

namespace quillgen {

// The node output that a link or an output of the material refers to.
struct Source {
    int node = -1;    // index in Graph::nodes; -1 for a node that the document lacks
    int output = -1;  // number of the output's name: see output_name
};

// An input socket of a node.
struct Socket {
    int name = -1;  // index of a word, or -1 for a name that no handler reads
    Value entry = {};
    Value link = {};  // absent where the socket is unlinked
    Source source = {};
    // The type that the entry or the link states; its name is empty before the first read. Types and values are cached
    // because bumps read most sockets three times: a material with bumps translates in a third less time.
    SocketType type = {};
    Text text = {};  // the expression of an unlinked socket's value; empty before the first read
    int input = -1;  // number of the input that was declared for the value, or -1
};

// What an output evaluates to.
struct Bound {
    Text text;
    SocketType type;
};

// An output that something reads.
struct Output {
    int name;
    bool is_bound = false;
    Bound bound = {};
};

// A node record and the state of its evaluation.
struct Node {
    Value record;
    Value id;
    std::vector<Socket> sockets = {};
    std::vector<Output> outputs = {};
    Handler handler = nullptr;   // null before it is looked up
    bool done = false;           // its handler has started
    Text parameter_prefix = {};  // P_{id}__, once a parameter has been named
    Value type_entry = {};       // the record's, once it has been read
    Value props_entry = {};

    // KeyError where the record lacks them.
    const Value& type() { return entry(type_entry, "type"_w); }
    const Value& props() { return entry(props_entry, "props"_w); }

    Socket* find_socket(Word name);
    Output* find_output(int name);
    // Resets the evaluation state. The cached expressions of socket values stay.
    void forget_evaluation();

private:
    const Value& entry(Value& read, Word key) const {
        if (!read.present()) {
            read = record.at(key);
        }
        return read;
    }
};

struct Graph {
    std::vector<Node> nodes;
    Index indices;             // node id -> index in nodes; the last node where several share an id
    Index other_output_names;  // output names that are not words -> number, after the numbers of the words
};

// Reads all nodes and links. An output counts as read if any node links to it, even a node that is never evaluated, or
// if an output of the material refers to it. KeyError where the document or a node lacks a mandatory key.
Graph read_graph(const Value& document);

// A number for the name of an output; equal names have equal numbers. TypeError where the name is not hashable.
int output_name(Graph& graph, const Value& name);
// The source that the first two items of a sequence name: a node id and an output.
Source find_source(Graph& graph, const Value& source);
// The indices of a node and of all nodes upstream of it; empty for node -1.
std::vector<int> upstream(const Graph& graph, int node);

}  // namespace quillgen
