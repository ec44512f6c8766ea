// The inputs of the Custom expression that the generated text reads.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "core/document/value.h"

namespace quillgen {

struct Socket;

struct Input {
    Text name;
    Value key;  // the name as a str
    Word kind;
    Value value = {};                // of a tweakable input: a float or a list of four; absent for any other
    Value rest = {};                 // a map of the further keys of the kind; absent where it has none
    const Socket* socket = nullptr;  // the socket that the value belongs to, if any
    bool is_declared = true;         // false once it has been withdrawn
};

// Inputs by name, in the order of their first declaration. Most documents declare many inputs, and std::unordered_map
// allocates each entry: this hash table takes 4 % off the translation of the example materials.
class Inputs {
public:
    // Declares an input, which replaces one of the same name, and returns its number. The characters of the name must
    // outlive this object.
    int declare(const Input& input);
    // Null if no input of that name is declared.
    [[nodiscard]] const Input* find(Text name) const;
    // Redeclares the input that the socket declared under that number. Returns false where another socket with the same
    // input name has replaced it.
    bool declare_again(int number, const Socket& socket);
    // Marks all inputs as not declared. Their numbers stay valid for `declare_again`.
    void withdraw_all();

    // visit(input) for each one that is declared.
    template <class Visit>
    void for_each(Visit visit) const {
        for (std::size_t i = 0; i < inputs_.size(); ++i) {
            if (inputs_[i].is_declared) {
                visit(inputs_[i]);
            }
            check_signals_at(i);
        }
    }
    // An upper bound of the number of declared inputs.
    [[nodiscard]] std::size_t expected_size() const { return inputs_.size(); }

private:
    [[nodiscard]] const Input& numbered(int number) const { return inputs_[static_cast<std::size_t>(number)]; }
    [[nodiscard]] std::size_t find_slot(Text name) const;
    void grow();

    std::vector<Input> inputs_;
    std::vector<int> slots_;  // hash table of input numbers, -1 for a free slot; its size is a power of two
};

}  // namespace quillgen
