// The inputs of the Custom expression that a text reads.
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
    Value rest = {};                 // a map of what else the kind needs; absent where it needs nothing
    const Socket* socket = nullptr;  // whose value it is, if a socket's
    bool is_declared = true;         // false once it has been withdrawn
};

// Inputs by their names, in the order in which they were declared first. They have a table of their own, as a large
// part of most documents becomes an input: beside std::unordered_map, which allocates each entry, it takes 4 % off the
// translation of the example materials.
class Inputs {
public:
    // Declares an input in the place of one of the same name, if there is one, and gives its number. The name's text
    // has to live as long as this.
    int declare(const Input& input);
    // Null where none of that name is declared.
    [[nodiscard]] const Input* find(Text name) const;
    // Declares an input again that the socket has declared as that number. False where it is another socket's by now,
    // whose name has come to the same.
    bool declare_again(int number, const Socket& socket);
    // Nothing is declared any more; the numbers stay, for `declare_again`.
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
    // Not less than the number of those that are declared.
    [[nodiscard]] std::size_t expected_size() const { return inputs_.size(); }

private:
    [[nodiscard]] const Input& numbered(int number) const { return inputs_[static_cast<std::size_t>(number)]; }
    [[nodiscard]] std::size_t find_slot(Text name) const;
    void grow();

    std::vector<Input> inputs_;
    std::vector<int> slots_;  // a power of two of them: a number where the hash of its name leads, or -1
};

}  // namespace quillgen
