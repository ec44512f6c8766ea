// The reference handle: one owned reference to a Python object, and the one exception that carries
// a Python error through C++.
#pragma once

#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <utility>

namespace quillgen {

// A Python error is set in the interpreter; whoever throws this has set it. It becomes a Python
// error again in one place, at the entries of the module.
struct PythonError {};

class Ref {
public:
    Ref() = default;
    static Ref steal(PyObject* object) { return Ref(object); }
    static Ref borrow(PyObject* object) {
        Py_XINCREF(object);
        return Ref(object);
    }
    // Takes a new reference that a call of the C API returned; null means that the call failed.
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

// For the calls that answer with a negative number when they have set an error.
inline Py_ssize_t checked(Py_ssize_t answer) {
    if (answer < 0) {
        throw PythonError{};
    }
    return answer;
}

inline bool checked(int answer) {
    if (answer < 0) {
        throw PythonError{};
    }
    return answer != 0;
}

}  // namespace quillgen
