// The owning reference to a Python object, and the C++ exception that stands for a Python error.
#pragma once

#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <utility>

namespace quillgen {

// Thrown after an error has been set in the interpreter. The module's functions catch it and return null, so that
// Python raises that error.
struct PythonError {};

// An owned reference to a Python object, or null.
class Ref {
public:
    Ref() = default;
    static Ref steal(PyObject* object) { return Ref(object); }
    static Ref borrow(PyObject* object) {
        Py_XINCREF(object);
        return Ref(object);
    }
    // Takes ownership of a new reference that the C API returned. Throws PythonError if it is null.
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

// The result of a C API call as a bool. Throws PythonError if it is negative, which means that an error is set.
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
