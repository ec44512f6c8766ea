// The graph of a document as a translation reads it: the nodes by their ids, the sockets by their names, and which
// outputs are read at all. Everything is looked up once, here; from then on nodes and sockets are told by numbers.
#pragma once

#include <vector>

#include "core/document/value.h"
#include "core/gen/registry.h"
#include "core/gen/socket_type.h"

namespace quillgen {

// What a link names, or an output of the material.
struct Source {
    int node = -1;    // index in Graph::nodes; -1 for a node that the document lacks
    int output = -1;  // number of the output's name: see output_name
};

// An entry of a node's inputs.
struct Socket {
    int name = -1;  // index of a word, or -1 for a name that no handler asks for
    Value entry = {};
    Value link = {};  // absent where the socket is unlinked
    Source source = {};
    // The type that the entry, or the link, says. It is read once, and so is a value, though bumps have most sockets
    // read three times: that takes a third off the translation of a material with bumps. No name before the reading.
    SocketType type = {};
    Text text = {};  // what the value of an unlinked socket has come to; empty before the reading
    int input = -1;  // number of the input that it has become, or -1
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

// A node record, and how far its evaluation is.
struct Node {
    Value record;
    Value id;
    std::vector<Socket> sockets = {};
    std::vector<Output> outputs = {};
    Handler handler = nullptr;   // once it has been looked up
    bool done = false;           // its handler has started
    Text parameter_prefix = {};  // P_{id}__, once a parameter has been named
    Value type_entry = {};       // of the record, once it has been read
    Value props_entry = {};

    // KeyError where the record lacks them.
    const Value& type() { return entry(type_entry, "type"_w); }
    const Value& props() { return entry(props_entry, "props"_w); }

    Socket* find_socket(Word name);
    Output* find_output(int name);
    // What the values of sockets have come to stays.
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
    Index indices;             // node id -> index in nodes; of two nodes with one id the later
    Index other_output_names;  // names of outputs that are no words -> number, behind those of the words
};

// Reads all nodes and links. An output counts as read by a link of any node, also of one that evaluation never
// reaches, and by an output of the material. KeyError where the document or a node lacks a mandatory key.
Graph read_graph(const Value& document);

// A number for the name of an output; equal names have equal numbers. TypeError where the name has no hash.
int output_name(Graph& graph, const Value& name);
// What the first two items of a sequence name.
Source find_source(Graph& graph, const Value& source);
// The indices of a node and of every node that feeds it, through any link; none for the node -1.
std::vector<int> upstream(const Graph& graph, int node);

}  // namespace quillgen
