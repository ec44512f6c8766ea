// What the generator reads from the library while it writes.
#include "core/gen/gen.h"

namespace quillgen {

Text Gen::types(int d) { return formatted(runtime().library_entry("TYPES").at(static_cast<Py_ssize_t>(d))); }

}  // namespace quillgen
