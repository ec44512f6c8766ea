// The arguments of a call, by position or by name, without an intermediate tuple or map.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>

#include "core/document/value.h"

namespace quillgen {

inline Value borrowed(const Runtime& runtime, PyObject* object) { return {Ref::borrow(object), runtime}; }

// Borrowed references in the order of the names; null for an optional argument that is not passed. Raises TypeError as
// Python's own functions do.
template <std::size_t Count>
class Arguments {
public:
    Arguments(const char* function, const std::array<const char*, Count>& names, std::size_t required,
              PyObject* const* args, Py_ssize_t positional, PyObject* keywords) {
        if (static_cast<std::size_t>(positional) > Count) {
            fail("%s() takes at most %zu arguments (%zd given)", function, Count, positional);
        }
        for (Py_ssize_t i = 0; i < positional; ++i) {
            values_[static_cast<std::size_t>(i)] = args[i];
        }
        const Py_ssize_t named = keywords == nullptr ? 0 : PyTuple_Size(keywords);
        for (Py_ssize_t i = 0; i < named; ++i) {
            take(function, names, PyTuple_GetItem(keywords, i), args[positional + i]);
        }
        for (std::size_t i = 0; i < required; ++i) {
            if (values_[i] == nullptr) {
                fail("%s() missing required argument: '%s'", function, names[i]);
            }
        }
    }

    PyObject* operator[](std::size_t i) const { return values_[i]; }

private:
    template <class... Details>
    [[noreturn]] static void fail(const char* message, Details... details) {
        PyErr_Format(PyExc_TypeError, message, details...);
        throw PythonError{};
    }

    void take(const char* function, const std::array<const char*, Count>& names, PyObject* name, PyObject* value) {
        for (std::size_t i = 0; i < Count; ++i) {
            if (PyUnicode_CompareWithASCIIString(name, names[i]) == 0) {
                if (values_[i] != nullptr) {
                    fail("%s() got multiple values for argument '%s'", function, names[i]);
                }
                values_[i] = value;
                return;
            }
        }
        fail("%s() got an unexpected keyword argument '%U'", function, name);
    }

    std::array<PyObject*, Count> values_ = {};
};

}  // namespace quillgen
