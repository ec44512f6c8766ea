#include "core/gen/counter.h"

#include <charconv>

namespace quillgen {

char* Counter::put_long_name(char* to, Prefix prefix) const {
    std::memcpy(to, &prefix.letters, sizeof prefix.letters);
    return std::to_chars(to + prefix.size(), to + kMostCharacters, number_).ptr;
}

void Counter::rewrite() {
    char text[kMostCharacters] = {};
    size_ = static_cast<std::size_t>(std::to_chars(text, text + sizeof text, number_).ptr - text);
    std::memcpy(&digits_, text, sizeof digits_);
}

}  // namespace quillgen
