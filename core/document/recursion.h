// The limit on the depth of evaluation.
#pragma once

#include <cstdint>

#include "core/document/errors.h"

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace quillgen {

// The approximate stack pointer: the address of the current function's frame. The address of a local object would not
// do, because sanitizers place local objects elsewhere.
inline std::uintptr_t stack_position() {
#if defined(_MSC_VER)
    return reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress());
#else
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#endif
}

// One level of evaluation, while it exists. It counts once against the interpreter's recursion limit, and its stack
// position is checked against a budget of C stack; beyond either, RecursionError is raised. The recursion limit does
// not protect the C stack, because a host may set it to any number and a thread may have a stack of 1 MiB. A level
// takes about 500 to 850 bytes in a release build, so the budget is not reached under the interpreter's default limit
// of 1000. The rest of 1 MiB is for the host's frames below the call and for the functions that the deepest level
// calls, about 10 KiB each.
class RecursionLevel {
public:
    // `entry` is the stack position at the start of the translation.
    explicit RecursionLevel(std::uintptr_t entry) {
        const std::uintptr_t position = stack_position();
        if ((position < entry ? entry - position : position - entry) > kMostStack) {
            raise_recursion_error();
        }
        if (Py_EnterRecursiveCall(" while a node graph was evaluated") != 0) {
            throw PythonError{};
        }
    }
    ~RecursionLevel() { Py_LeaveRecursiveCall(); }
    RecursionLevel(const RecursionLevel&) = delete;
    RecursionLevel& operator=(const RecursionLevel&) = delete;

private:
    static constexpr std::uintptr_t kMostStack = std::uintptr_t{800} * 1024;
};

}  // namespace quillgen
