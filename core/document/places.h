// From the objects of a document to numbers of our own, by Python's equality: what a dict of integers would hold,
// without the integers.
#pragma once

#include <vector>

#include "core/document/handle.h"

namespace quillgen {

class Places {
public:
    // Gives the key its number, or another one if it has one. TypeError where it has no hash.
    void put(PyObject* key, int number);
    // The number of an equal key, or -1. TypeError where it has no hash.
    [[nodiscard]] int find(PyObject* key) const;
    // Makes room for that many keys.
    void reserve(std::size_t count);
    void clear();

private:
    struct Slot {
        Ref key;  // null where it is free
        Py_hash_t hash = 0;
        int number = -1;
    };
    [[nodiscard]] std::size_t first_slot(Py_hash_t hash) const;
    [[nodiscard]] std::size_t slot_of(PyObject* key, Py_hash_t hash) const;

    std::vector<Slot> slots_;  // open addressing, at most half full
    std::size_t size_ = 0;
};

}  // namespace quillgen
