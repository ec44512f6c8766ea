// Format texts: HLSL with `$0` to `$9` and `$(10)` up standing for the arguments. HLSL has no dollar sign, and
// its braces stay plain. A text that does not fit its arguments does not compile.
#pragma once

#include <charconv>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

#include "core/gen/text_buffer.h"

// A handler's frame stays on the stack while the graph above it is evaluated, so what a function only needs
// for a moment stands in a frame of its own: the arrays of arguments below, and the words of a failure.
#if defined(_MSC_VER)
#define QUILLGEN_OWN_FRAME __declspec(noinline)
#else
#define QUILLGEN_OWN_FRAME __attribute__((noinline))
#endif

namespace quillgen {

// What a format takes: a text, or an integer in decimal digits.
class Argument {
public:
    // NOLINTBEGIN(google-explicit-constructor): arguments are written as what they are
    Argument(std::string_view text) : text_(text) {}
    Argument(const std::string& text) : text_(text) {}
    Argument(const char* text) : text_(text) {}
    Argument(int number) : digits_size_(std::to_chars(digits_, digits_ + sizeof digits_, number).ptr - digits_) {}
    // NOLINTEND(google-explicit-constructor)

    [[nodiscard]] std::string_view text() const {
        return digits_size_ > 0 ? std::string_view(digits_, static_cast<std::size_t>(digits_size_)) : text_;
    }

private:
    std::string_view text_;
    char digits_[12];
    std::ptrdiff_t digits_size_ = 0;
};

struct Placeholder {
    std::size_t index;  // of the argument
    const char* end;    // behind the placeholder
};

// Reads the placeholder whose dollar sign stands in front of `at`.
constexpr Placeholder read_placeholder(const char* at) {
    if (*at != '(') {
        return {static_cast<std::size_t>(*at - '0'), at + 1};
    }
    std::size_t index = 0;
    for (++at; *at != ')'; ++at) {
        index = index * 10 + static_cast<std::size_t>(*at - '0');
    }
    return {index, at + 1};
}

template <class... Args>
class BasicFormat {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a format is written as a plain text
    consteval BasicFormat(const char* text) : text_(text) {
        unsigned long seen = 0;
        for (const char* at = text; *at != '\0'; ++at) {
            if (*at == '$') {
                const std::size_t index = read_placeholder(at + 1).index;
                if (index >= sizeof...(Args)) {
                    throw "a placeholder without an argument";
                }
                seen |= 1UL << index;
            }
        }
        if (seen != (1UL << sizeof...(Args)) - 1) {
            throw "an argument without a placeholder";
        }
    }
    [[nodiscard]] constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

template <class... Args>
using Format = BasicFormat<std::type_identity_t<Args>...>;

// Appends the format with its placeholders filled.
inline void fill(TextBuffer& out, std::string_view format, std::initializer_list<Argument> arguments) {
    const char* from = format.data();
    const char* const end = from + format.size();
    char* to = out.room(format.size());  // there is always room for what is left of the format
    while (from != end) {
        const char c = *from++;
        if (c != '$') {
            *to++ = c;
            continue;
        }
        const Placeholder placeholder = read_placeholder(from);
        from = placeholder.end;
        const std::string_view argument = arguments.begin()[placeholder.index].text();
        out.end_at(to);
        to = put(out.room(argument.size() + static_cast<std::size_t>(end - from)), argument);
    }
    out.end_at(to);
}

}  // namespace quillgen
