#include "core/gen/format.h"

#include <charconv>

namespace quillgen {

Argument::Argument(int number) : text_(digits_, std::to_chars(digits_, digits_ + sizeof digits_, number).ptr) {}

char* Argument::put(char* to) const { return quillgen::put(to, text_); }

}  // namespace quillgen
