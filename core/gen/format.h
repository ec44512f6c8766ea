// Formats: HLSL with `$0` to `$9` and `$(10)` up standing for the arguments. HLSL has no dollar sign, and its braces
// stay plain. A format that does not fit its arguments does not compile.
#pragma once

#include <string>
#include <string_view>

#include "core/gen/buffer.h"

// A handler's frame stays on the stack while the graph above it is evaluated, so the arguments of a format stand in a
// frame of their own.
#if defined(_MSC_VER)
#define QUILLGEN_OWN_FRAME __declspec(noinline)
#else
#define QUILLGEN_OWN_FRAME __attribute__((noinline))
#endif

namespace quillgen {

// A format of that many arguments, each of which stands in it at least once.
template <std::size_t Count>
class Format;

// What a format takes: a text, or an integer in decimal digits. It is made where it is used, and stays there.
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
    std::size_t end;    // behind the placeholder
};

// The placeholder whose dollar sign stands at `start`.
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
