// Formats: HLSL with the placeholders `$0` to `$9`, and `$(10)` and up, for the arguments. HLSL has no dollar sign, and
// its braces need no escape. A format whose placeholders do not match its arguments does not compile.
#pragma once

#include <string>
#include <string_view>

#include "core/gen/buffer.h"

// Keeps a function out of line. A handler's frame stays on the stack while the upstream graph is evaluated, so the
// arguments of a format must not enlarge it.
#if defined(_MSC_VER)
#define QUILLGEN_OWN_FRAME __declspec(noinline)
#else
#define QUILLGEN_OWN_FRAME __attribute__((noinline))
#endif

namespace quillgen {

// A format with `Count` arguments, each of which appears at least once.
template <std::size_t Count>
class Format;

// An argument of a format: a string, or an integer in decimal digits. It cannot be copied, because `text_` may point
// into `digits_`.
class Argument {
public:
    // NOLINTBEGIN(google-explicit-constructor): arguments are written as what they are
    Argument(std::string_view text) : text_(text) {}
    Argument(const std::string& text) : text_(text) {}
    Argument(const char* text) : text_(text) {}
    Argument(int number);
    // NOLINTEND(google-explicit-constructor)
    Argument(const Argument&) = delete;
    Argument& operator=(const Argument&) = delete;

    [[nodiscard]] std::string_view text() const { return text_; }

private:
    char digits_[12];
    std::string_view text_;
};

struct Placeholder {
    std::size_t index;  // of the argument
    std::size_t end;    // offset after the placeholder
};

// The placeholder whose dollar sign is at `start`.
constexpr Placeholder read_placeholder(std::string_view format, std::size_t start) {
    std::size_t at = start + 1;
    if (format[at] != '(') {
        return {static_cast<std::size_t>(format[at] - '0'), at + 1};
    }
    std::size_t index = 0;
    for (++at; format[at] != ')'; ++at) {
        index = index * 10 + static_cast<std::size_t>(format[at] - '0');
    }
    return {index, at + 1};
}

template <std::size_t Count>
class Format {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a format is written as a plain text
    consteval Format(const char* text) : text_(text) {
        unsigned long seen = 0;
        for (std::size_t at = 0; at < text_.size(); ++at) {
            if (text_[at] == '$') {
                seen |= 1UL << read_placeholder(text_, at).index;
            }
        }
        if (seen != (1UL << Count) - 1) {
            throw "a placeholder without an argument, or the other way round";
        }
    }
    [[nodiscard]] std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

void fill_format(Buffer& out, std::string_view format, const Argument* arguments);

// Appends the format with its placeholders filled.
template <class... Args>
void fill(Buffer& out, Format<sizeof...(Args)> format, const Args&... args) {
    const Argument arguments[] = {Argument(args)...};
    fill_format(out, format.text(), arguments);
}

}  // namespace quillgen
