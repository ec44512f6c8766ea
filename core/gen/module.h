// One interpreter's copy of the module. It does not change after it is loaded.
#pragma once

#include "core/gen/registry.h"
#include "core/gen/socket_type.h"

namespace quillgen {

struct Module {
    explicit Module(ClosureText closure_text) : closure(closure_text) {}

    const ClosureText closure;
    const Runtime runtime;
    const Registry registry{runtime};
};

}  // namespace quillgen
