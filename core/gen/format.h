// Format texts: HLSL with `$0` to `$9` and `$(10)` up standing for the arguments, as in `"$0 = $1;"_fmt`. HLSL has no
// dollar sign, and its braces stay plain. A format is cut into its pieces while compiling, so that filling it is one
// move after the other: a third of the instructions that reading it each time takes. One that does not fit its
// arguments does not compile.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "core/gen/put.h"

// A handler's frame stays on the stack while the graph above it is evaluated, so what a function only needs
// for a moment stands in a frame of its own: the arguments below, and the words of a failure.
#if defined(_MSC_VER)
#define QUILLGEN_OWN_FRAME __declspec(noinline)
#else
#define QUILLGEN_OWN_FRAME __attribute__((noinline))
#endif

namespace quillgen {

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

template <std::size_t Size>
struct FormatText {
    char characters[Size] = {};

    // NOLINTNEXTLINE(google-explicit-constructor): a format is written as a plain text
    consteval FormatText(const char (&text)[Size]) { std::copy_n(text, Size, characters); }
    [[nodiscard]] constexpr std::string_view view() const { return {characters, Size - 1}; }
};

template <FormatText F>
struct Format {
    // Plain text, and the argument behind it.
    struct Piece {
        std::size_t start = 0;
        std::size_t size = 0;
        std::size_t argument = 0;
    };

    static constexpr std::size_t kHoles =
        static_cast<std::size_t>(std::count(F.characters, F.characters + F.view().size(), '$'));
    // One for each placeholder, and the plain text behind the last.
    static constexpr std::array<Piece, kHoles + 1> kPieces = [] {
        std::array<Piece, kHoles + 1> pieces;
        std::size_t start = 0;
        for (std::size_t i = 0; i < kHoles; ++i) {
            std::size_t hole = start;  // by hand: with sanitizers on, GCC 12 takes no search of a view for a constant
            while (F.characters[hole] != '$') {
                ++hole;
            }
            const Placeholder placeholder = read_placeholder(F.view(), hole);
            pieces[i] = {start, hole - start, placeholder.index};
            start = placeholder.end;
        }
        pieces[kHoles] = {start, F.view().size() - start};
        return pieces;
    }();
    template <std::size_t I>
    static constexpr std::string_view kPlain = {F.characters + kPieces[I].start, kPieces[I].size};

    // Whether there is a placeholder for each of that many arguments, and none for another.
    static constexpr bool takes(std::size_t arguments) {
        unsigned long seen = 0;
        for (std::size_t i = 0; i < kHoles; ++i) {
            seen |= 1UL << kPieces[i].argument;
        }
        return seen == (1UL << arguments) - 1;
    }
};

template <FormatText F>
consteval Format<F> operator""_fmt() {
    return {};
}

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

    [[nodiscard]] std::size_t size() const { return text_.size(); }
    char* put(char* to) const;  // the place behind it

private:
    char digits_[12];
    std::string_view text_;
};

template <class Out, FormatText F, std::size_t... Hole>
void fill_holes(Out& out, Format<F> /*format*/, const Argument* arguments, std::index_sequence<Hole...> /*holes*/) {
    using Pieces = Format<F>;
    char* to = out.room((arguments[Pieces::kPieces[Hole].argument].size() + ... + F.view().size()));
    ((to = put(to, Pieces::template kPlain<Hole>), to = arguments[Pieces::kPieces[Hole].argument].put(to)), ...);
    out.end_at(put(to, Pieces::template kPlain<Pieces::kHoles>));
}

// Appends the format with its placeholders filled.
template <class Out, FormatText F, class... Args>
void fill(Out& out, Format<F> format, const Args&... args) {
    static_assert(Format<F>::takes(sizeof...(Args)), "a placeholder without an argument, or the other way round");
    const Argument arguments[] = {Argument(args)...};
    fill_holes(out, format, arguments, std::make_index_sequence<Format<F>::kHoles>{});
}

}  // namespace quillgen
