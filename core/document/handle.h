// The reference handle, and the one exception that carries a Python error through C++.
#pragma once

#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <utility>

namespace quillgen {

// Thrown where an error is set in the interpreter. The entries of the module let Python go on with that error.
struct PythonError {};

// One owned reference to a Python object, or none.
class Ref {
public:
    Ref() = default;
    static Ref steal(PyObject* object) { return Ref(object); }
    static Ref borrow(PyObject* object) {
        Py_XINCREF(object);
        return Ref(object);
    }
    // Owns the new reference that a call of the C API has returned. PythonError where it has returned null.
    static Ref checked(PyObject* object) {
        if (object == nullptr) {
            throw PythonError{};
        }
        return Ref(object);
    }

    Ref(const Ref& other) : object_(other.object_) { Py_XINCREF(object_); }
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(const Ref& other) {
        Ref copy(other);
        std::swap(object_, copy.object_);
        return *this;
    }
    Ref& operator=(Ref&& other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() { Py_XDECREF(object_); }

    [[nodiscard]] PyObject* get() const { return object_; }
    [[nodiscard]] PyObject* release() { return std::exchange(object_, nullptr); }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit Ref(PyObject* object) : object_(object) {}

    PyObject* object_ = nullptr;
};

// The answer of a call of the C API that is negative where it has set an error; PythonError in that case.
inline bool checked(int answer) {
    if (answer < 0) {
        throw PythonError{};
    }
    return answer != 0;
}

inline Py_ssize_t checked_size(Py_ssize_t size) {
    if (size < 0) {
        throw PythonError{};
    }
    return size;
}

}  // namespace quillgen
