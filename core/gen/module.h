// One interpreter's copy of the module.
#pragma once

#include "core/gen/registry.h"
#include "core/gen/storage.h"

namespace quillgen {

struct Module {
    Runtime runtime;
    Registry registry{runtime};
    mutable IdleStorage idle_storage;
    mutable SharedNames names{runtime};
};

}  // namespace quillgen
