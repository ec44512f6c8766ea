// What a translation puts down while it runs: the records of its document's graph, and its texts.
//
// The memory is kept from call to call, so that a translation of a graph as large as one before it allocates little
// but its result.
#pragma once

#include <array>
#include <memory>
#include <span>
#include <vector>

#include "core/gen/arena.h"
#include "core/gen/inputs.h"
#include "core/gen/registry.h"
#include "core/gen/socket_type.h"
#include "core/gen/text_buffer.h"

namespace quillgen {

struct NodeState;

// A node record of the document, with what its translation needs at hand.
struct Node {
    Value record;
    Value id;
    Value in;
    NodeState* state = nullptr;  // null of a record that is no node of the document
    // What the first look at the record has met of it, or null.
    Ref known_type = {};
    Ref known_props = {};

    [[nodiscard]] Value type() const { return known_type ? record.sibling(known_type) : record.at("type"); }
    [[nodiscard]] Value props() const { return known_props ? record.sibling(known_props) : record.at("props"); }
};

// What an output is bound to.
struct Bound {
    Text text;
    SocketType type;
};

// An output that something reads.
struct Output {
    int name;  // of names: see Gen::name_of
    int next;  // the node's next output, or -1
    bool bound = false;
    Bound value = {};
};

// What the items of a source come to.
struct Source {
    int place = -1;  // of the node; -1 for one that the document lacks
    int name = -1;   // of the output
};

// An entry of a node's inputs. What has been read of it is kept: bumps read most sockets three times, and asking the
// document once takes a quarter off their translation.
struct Socket {
    const void* key = nullptr;  // of the entry: the address of a word, once that word has found it
    Ref entry = {};
    Ref link = {};          // null where it is unlinked
    Ref t = {};             // the entry's `t`, or its link's; null where the first look did not meet it
    Ref v = {};             // the entry's `v`, in the same way
    Source source = {};     // of a link
    Text text = {};         // of an unlinked value
    SocketType type = {};   // of a link as it is written there, else the socket's own
    bool is_typed = false;  // whether the link has a type written
    bool is_named = false;  // whether a word has found it, or none may
    bool is_read = false;
};

// How far a node's translation is.
struct NodeState {
    std::span<Socket> sockets = {};
    int first_output = -1;
    bool done = false;           // its handler has started
    Handler handler = nullptr;   // once it has been looked up
    NodeNames* names = nullptr;  // once one has been asked for
};

// What is read of a document's graph, and how far the translation of it is.
struct Graph {
    std::vector<Node> nodes;
    std::vector<NodeState> states;  // by node
    std::vector<Output> outputs;
    std::vector<Socket> sockets;  // by node
    Places places;                // node id -> place; of two records with one id the later
    Places other_names;           // output names that are no words -> number
    int other_name_count = 0;

    // Leaves what is read, for a translation from the start.
    void begin_again() {
        for (NodeState& state : states) {
            state.done = false;
        }
        for (Output& output : outputs) {
            output.bound = false;
        }
        for (Socket& socket : sockets) {
            socket.is_read = false;
        }
    }
    void clear() {
        nodes.clear();
        states.clear();
        outputs.clear();
        sockets.clear();
        places.clear();
        other_names.clear();
        other_name_count = 0;
    }
};

struct Storage {
    Graph graph;
    Arena arena;
    TextBuffer body;
    std::vector<std::size_t> line_ends;
    Inputs inputs;
    std::vector<const void*> decisive;       // entries: see Gen::entry
    std::vector<bool> needed;                // by word: the library names asked for
    std::vector<const void*> socket_keys;    // by word: the address of the document's key for it, once it is known
    std::vector<std::size_t> socket_places;  // by word: where a node had its socket last; a guess that may be wrong

    void clear() {
        graph.clear();
        arena.clear();
        body.clear();
        line_ends.clear();
        inputs.clear();
        decisive.clear();
        needed.clear();
        socket_keys.clear();
    }
};

// What no translation uses at the moment: of a material and of its displacement, which has a generator of its own.
using IdleStorage = std::array<std::unique_ptr<Storage>, 2>;

// A storage for as long as one translation takes. Translations may run inside one another, by the code of a
// document's objects, and on several threads: each has its own.
class StorageLoan {
public:
    explicit StorageLoan(IdleStorage& idle) : idle_(idle) {
        for (std::unique_ptr<Storage>& one : idle_) {
            if (one != nullptr) {
                storage_ = std::move(one);
                return;
            }
        }
        storage_ = std::make_unique<Storage>();
    }
    // What a graph of many thousands of nodes has needed is not kept.
    ~StorageLoan() {
        constexpr std::size_t kMostBytes = std::size_t{1024} * 1024;
        if (storage_->body.size() + storage_->graph.sockets.size() * sizeof(Socket) > kMostBytes) {
            return;
        }
        storage_->clear();
        for (std::unique_ptr<Storage>& one : idle_) {
            if (one == nullptr) {
                one = std::move(storage_);
                return;
            }
        }
    }
    StorageLoan(const StorageLoan&) = delete;
    StorageLoan& operator=(const StorageLoan&) = delete;

    Storage* operator->() const { return storage_.get(); }

private:
    IdleStorage& idle_;
    std::unique_ptr<Storage> storage_;
};

}  // namespace quillgen
