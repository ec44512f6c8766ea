// A map from objects of a document to numbers, with Python's equality: a dict of integers.
#pragma once

#include "core/document/handle.h"

namespace quillgen {

class Index {
public:
    Index() : numbers_(Ref::checked(PyDict_New())) {}

    // Sets or replaces the number of the key. TypeError where the key is not hashable.
    void set(PyObject* key, std::size_t number) {
        const Ref object = Ref::checked(PyLong_FromSize_t(number));
        checked(PyDict_SetItem(numbers_.get(), key, object.get()));
    }
    // The number of the key, or -1. TypeError where the key is not hashable.
    [[nodiscard]] int find(PyObject* key) const {
        PyObject* const number = PyDict_GetItemWithError(numbers_.get(), key);
        if (number == nullptr && PyErr_Occurred() != nullptr) {
            throw PythonError{};
        }
        return number == nullptr ? -1 : static_cast<int>(PyLong_AsLong(number));
    }
    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(PyDict_Size(numbers_.get())); }

private:
    Ref numbers_;
};

}  // namespace quillgen
