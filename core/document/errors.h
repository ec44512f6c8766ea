// Raising of Python errors: the functions set the error in the interpreter and throw PythonError.
#pragma once

#include <cstddef>

#include "core/document/handle.h"

namespace quillgen {

[[noreturn]] void raise_key_error(PyObject* key);
[[noreturn]] void raise_type_error(const char* message);
[[noreturn]] void raise_index_error(const char* message);
[[noreturn]] void raise_value_error(const char* message);
[[noreturn]] void raise_overflow_error(const char* message);
[[noreturn]] void raise_runtime_error(const char* message);
[[noreturn]] void raise_recursion_error();

// Handles a pending Ctrl-C. `check_signals_at` does so at regular intervals in a loop whose trip count depends on the
// document.
void check_signals();
inline void check_signals_at(std::size_t step) {
    constexpr std::size_t kInterval = 4096;
    if (step % kInterval == kInterval - 1) {
        check_signals();
    }
}

}  // namespace quillgen
