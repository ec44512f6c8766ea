// Python's errors, raised as Python does: the error is set, and PythonError thrown.
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

// Lets a waiting Ctrl-C through; now and then, in step after step of a loop whose length the document decides.
void check_signals();
inline void check_signals_at(std::size_t step) {
    constexpr std::size_t kInterval = 4096;
    if (step % kInterval == kInterval - 1) {
        check_signals();
    }
}

}  // namespace quillgen
