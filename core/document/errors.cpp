#include "core/document/errors.h"

namespace quillgen {

namespace {

[[noreturn]] void raise(PyObject* type, const char* message) {
    PyErr_SetString(type, message);
    throw PythonError{};
}

}  // namespace

void raise_key_error(PyObject* key) {
    // PyErr_SetObject takes a tuple for the arguments of the exception, so a key that is a tuple is wrapped.
    if (const Ref arguments = Ref::steal(PyTuple_Pack(1, key))) {
        PyErr_SetObject(PyExc_KeyError, arguments.get());
    }
    throw PythonError{};
}

void raise_type_error(const char* message) { raise(PyExc_TypeError, message); }
void raise_index_error(const char* message) { raise(PyExc_IndexError, message); }
void raise_value_error(const char* message) { raise(PyExc_ValueError, message); }
void raise_overflow_error(const char* message) { raise(PyExc_OverflowError, message); }
void raise_runtime_error(const char* message) { raise(PyExc_RuntimeError, message); }

void raise_recursion_error() {
    raise(PyExc_RecursionError, "maximum recursion depth exceeded while a node graph was evaluated");
}

void check_signals() { checked(PyErr_CheckSignals()); }

}  // namespace quillgen
