// The bound of the depth of evaluation.
#pragma once

#include <cstdint>

#include "core/document/errors.h"

#if defined(_MSC_VER)
#include <intrin.h>
#endif

namespace quillgen {

// About where the stack ends at the moment: where the frame of the running function lies. The address of a local
// object would not tell, as sanitizers place those elsewhere.
inline std::uintptr_t stack_position() {
#if defined(_MSC_VER)
    return reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress());
#else
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#endif
}

// One level of evaluation, while it exists. It counts once against the interpreter's recursion limit, and against a
// budget of the stack of C: the limit says nothing about the latter, since a host may have set it to any number and a
// thread may have a stack of 1 MiB. RecursionError beyond either. A level takes some 500 to 850 bytes in a release
// build, so the budget is not reached under the interpreter's own limit of 1000; what it leaves of 1 MiB is for the
// host's frames below the call and for what the deepest level calls, which is some 10 KiB each.
class RecursionLevel {
public:
    // `entry` is the position of the stack where the call came in.
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
