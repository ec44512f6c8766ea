#include "core/gen/format.h"

#include <charconv>

namespace quillgen {

static_assert(Format<"$0 = $(10) + $1;">::kHoles == 3);
static_assert(Format<"$0 = $0 * $1;">::takes(2));
static_assert(!Format<"$0 = $1;">::takes(1), "a placeholder without an argument");
static_assert(!Format<"$0 = $1;">::takes(3), "an argument without a placeholder");

Argument::Argument(int number) : text_(digits_, std::to_chars(digits_, digits_ + sizeof digits_, number).ptr) {}

char* Argument::put(char* to) const { return quillgen::put(to, text_); }

}  // namespace quillgen
