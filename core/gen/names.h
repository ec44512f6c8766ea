// The names of inputs, and those of library functions that are composed. They come back with every edit of a material,
// so an interpreter's copy of the module keeps them from call to call: the text and the Python string of each are made
// once, and a translation tells them apart by where they stand.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/document/text_hash.h"
#include "core/document/value.h"

namespace quillgen {

struct Name {
    // The record of an input of that name and kind, but for what differs from document to document. Absent before the
    // first.
    struct Form {
        Value record;
        Word kind = "scalar";
        Value number = {};  // the default that it has from the last document, if that was a float
    };

    Text text;
    Value string;
    std::size_t number = 0;        // among the names, from 0
    mutable std::size_t rank = 0;  // among all names by their texts; see Names::rank
    mutable Form with_name = {};
    mutable Form without_name = {};
};

// The names of one node's parameters, by socket.
class NodeNames {
public:
    explicit NodeNames(std::string prefix) : prefix_(std::move(prefix)) {}

    [[nodiscard]] Text prefix() const { return prefix_; }  // P_{id}__
    // Null for a socket that has not been asked for before. The order is that of the last call: where the last one was
    // found, the next one comes.
    const Name* find(Word socket);
    const Name& add(Word socket, const Name& name);

private:
    std::string prefix_;
    std::vector<std::pair<Word, const Name*>> names_;
    std::size_t next_ = 0;
};

class Names {
public:
    explicit Names(const Runtime& runtime) : runtime_(runtime) {}

    // The one name of that text.
    const Name& get(Text text);
    NodeNames& of_node(Text id);
    // Sees to it that the ranks of all names hold. Inputs are sorted by them: names begin alike, and comparing those
    // takes one per cent of a translation more.
    void rank();
    [[nodiscard]] std::size_t bytes() const { return bytes_; }  // of all texts

private:
    template <class Made>
    using ByText = std::unordered_map<std::string, Made, TextHash, std::equal_to<>>;  // what it holds stays where it is

    const Runtime& runtime_;
    ByText<Name> names_;
    ByText<NodeNames> nodes_;
    std::vector<const Name*> ranked_;  // in the order of their texts
    std::vector<const Name*> new_;     // those without a rank
    std::size_t bytes_ = 0;
};

// The names for a translation, which holds them for as long as it runs. What a long session has gathered is given up
// with the last translation that holds it.
class SharedNames {
public:
    explicit SharedNames(const Runtime& runtime) : runtime_(runtime) {}
    std::shared_ptr<Names> lend();

private:
    const Runtime& runtime_;
    std::shared_ptr<Names> names_;
};

}  // namespace quillgen
