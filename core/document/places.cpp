#include "core/document/places.h"

#include <algorithm>
#include <bit>
#include <cstdint>

namespace quillgen {

namespace {

Py_hash_t hash_of(PyObject* key) {
    const Py_hash_t hash = PyObject_Hash(key);
    if (hash == -1) {
        throw PythonError{};
    }
    return hash;
}

// Names, which most keys are, are compared without the detour through their type.
bool are_equal(PyObject* a, PyObject* b) {
    if (PyUnicode_CheckExact(a) && PyUnicode_CheckExact(b)) {
        return PyUnicode_Compare(a, b) == 0;
    }
    return checked(PyObject_RichCompareBool(a, b, Py_EQ));
}

}  // namespace

// Python's hashes of integers are the integers: they are spread by a multiplication with 2^64 over the golden ratio.
std::size_t Places::first_slot(Py_hash_t hash) const {
    const std::uint64_t spread = static_cast<std::uint64_t>(hash) * 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(spread >> 32U) & (slots_.size() - 1);
}

std::size_t Places::slot_of(PyObject* key, Py_hash_t hash) const {
    std::size_t slot = first_slot(hash);
    for (;; slot = (slot + 1) & (slots_.size() - 1)) {
        const Slot& held = slots_[slot];
        if (!held.key || held.key.get() == key || (held.hash == hash && are_equal(held.key.get(), key))) {
            return slot;
        }
    }
}

int Places::find(PyObject* key) const {
    const Py_hash_t hash = hash_of(key);
    return slots_.empty() ? -1 : slots_[slot_of(key, hash)].number;
}

void Places::put(PyObject* key, int number) {
    const Py_hash_t hash = hash_of(key);
    if (2 * (size_ + 1) > slots_.size()) {
        reserve(std::max<std::size_t>(8, 2 * size_));
    }
    Slot& slot = slots_[slot_of(key, hash)];
    if (!slot.key) {
        slot.key = Ref::borrow(key);
        slot.hash = hash;
        ++size_;
    }
    slot.number = number;
}

void Places::clear() {
    slots_.clear();
    size_ = 0;
}

void Places::reserve(std::size_t count) {
    if (size_ == 0) {
        slots_.resize(std::bit_ceil(2 * count));
        return;
    }
    std::vector<Slot> before(std::bit_ceil(2 * count));
    before.swap(slots_);
    for (Slot& slot : before) {
        if (!slot.key) {
            continue;
        }
        // Held keys differ from one another: the first free slot is the place.
        std::size_t place = first_slot(slot.hash);
        while (slots_[place].key) {
            place = (place + 1) & (slots_.size() - 1);
        }
        slots_[place] = std::move(slot);
    }
}

}  // namespace quillgen
