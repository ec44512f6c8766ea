// What the generator reads from the library while it writes.
#include "core/gen/gen.h"

namespace quillgen {

std::string library_type(const Runtime& runtime, int d) {
    std::string word;
    runtime.library_entry("TYPES").at(static_cast<Py_ssize_t>(d)).append_to(word);
    return word;
}

Text Gen::types(int d) {
    const std::string word = library_type(runtime(), d);
    types_.at(static_cast<std::size_t>(d)) = word;
    return keep(word);
}

}  // namespace quillgen
