// What a document held at one moment, to tell whether a document holds the same.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "core/document/value.h"

namespace quillgen {

class Snapshot {
public:
    // An item of a map whose value may change: a float, or a list of floats, to any other.
    struct FreeItem {
        explicit FreeItem(Word key_of_item) : key(key_of_item) {}
        Word key;
        // Set by `take`:
        int place = -1;  // among all free values; -1 where it does not have such a value
        bool is_met = false;
    };
    using FreeItems = std::unordered_map<const void*, FreeItem>;  // by map

    // A number that tells documents apart by the ids of their nodes, at a small part of the cost of a comparison;
    // 0 for a document that is not made of plain maps and lists.
    static std::size_t fingerprint(const Value& document);

    // Takes down all of the document, and gives the free items their places. False where it holds anything but plain
    // maps, lists, tuples, texts and numbers, too many of them, a not-a-number that isn't free (Python tells those
    // apart by where they stand, too), an integer of more than 64 bits, or the map of a free item twice: then nothing
    // is to be asked of the snapshot. No code but our own runs meanwhile.
    [[nodiscard]] bool take(const Value& document, FreeItems& free);
    // Whether the document holds the same: equal keys in the same order, and values of the same types and bits.
    // `values` gets those that are free, by their places. No code but our own runs meanwhile.
    [[nodiscard]] bool matches(const Value& document, std::vector<Value>& values) const;

    [[nodiscard]] std::size_t bytes() const { return bytes_; }  // of memory, about

private:
    enum class Kind : std::uint8_t { map, list, tuple, text, integer, number, constant, free };
    // A value, in depth-first order.
    struct Token {
        Ref key;     // of an item of a map
        Ref object;  // of what has no items
        Kind kind = Kind::constant;
        std::uint32_t size = 0;  // of what has items
    };
    class Walk;
    class Comparison;

    std::vector<Token> tokens_;
    std::size_t free_count_ = 0;
    std::size_t bytes_ = 0;
};

}  // namespace quillgen
