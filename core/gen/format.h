// Format texts: HLSL with `$0` to `$9` and `$(10)` up standing for the arguments. HLSL has no dollar sign, and
// its braces stay plain. A text that does not fit its arguments does not compile.
#pragma once

#include <charconv>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

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
    std::size_t end;    // behind the placeholder
};

// Reads the placeholder whose dollar sign stands at `at`.
constexpr Placeholder read_placeholder(std::string_view format, std::size_t at) {
    if (format[at + 1] != '(') {
        return {static_cast<std::size_t>(format[at + 1] - '0'), at + 2};
    }
    std::size_t index = 0;
    std::size_t end = at + 2;
    for (; format[end] != ')'; ++end) {
        index = index * 10 + static_cast<std::size_t>(format[end] - '0');
    }
    return {index, end + 1};
}

template <class... Args>
class BasicFormat {
public:
    // NOLINTNEXTLINE(google-explicit-constructor): a format is written as a plain text
    consteval BasicFormat(const char* text) : text_(text) {
        unsigned long seen = 0;
        for (std::size_t i = 0; i < text_.size(); ++i) {
            if (text_[i] == '$') {
                const std::size_t index = read_placeholder(text_, i).index;
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

// Appends the format with its placeholders filled. `Out` is a std::string or a TextBuffer.
template <class Out>
void fill(Out& out, std::string_view format, std::initializer_list<Argument> arguments) {
    std::size_t start = 0;
    for (;;) {
        const std::size_t at = format.find('$', start);
        if (at == std::string_view::npos) {
            out.append(format.substr(start));
            return;
        }
        out.append(format.substr(start, at - start));
        const Placeholder placeholder = read_placeholder(format, at);
        out.append(arguments.begin()[placeholder.index].text());
        start = placeholder.end;
    }
}

}  // namespace quillgen
