#include "core/gen/number.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

namespace quillgen {

namespace {

// Python's repr writes a float positionally from 1e-4 up to below 1e16.
constexpr int kLeastPositional = -4;
constexpr int kFirstScientific = 16;

// Copies the text to `out` and gives the place behind it.
char* put(char* out, std::string_view text) { return std::copy(text.begin(), text.end(), out); }

char* put_zeros(char* out, std::size_t count) { return std::fill_n(out, count, '0'); }

// Writes `digits` (no point, no leading zero) as the number digits[0].digits[1..] * 10^exponent.
char* put_positional(char* out, std::string_view digits, int exponent) {
    if (exponent < 0) {
        return put(put_zeros(put(out, "0."), static_cast<std::size_t>(-exponent - 1)), digits);
    }
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) {
        return put(put_zeros(put(out, digits), whole - digits.size()), ".0");
    }
    return put(put(put(out, digits.substr(0, whole)), "."), digits.substr(whole));
}

}  // namespace

void append_literal(std::string& out, double number) {
    if (std::isnan(number)) {
        out += "0.0";
        return;
    }
    if (std::isinf(number)) {
        out += number > 0 ? "3.402823466e+38" : "-3.402823466e+38";
        return;
    }
    // "-d.ddde+xxx": a sign, 17 digits at most with a point, and an exponent; positional at most 24 characters.
    char buffer[32];
    const char* const scientific = buffer;
    const char* const end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific).ptr;
    const char* const mark = std::find(scientific, end, 'e');
    int exponent = 0;
    std::from_chars(mark[1] == '+' ? mark + 2 : mark + 1, end, exponent);
    if (exponent < kLeastPositional || exponent >= kFirstScientific) {
        out.append(scientific, end);
        return;
    }
    char literal[32];
    char* next = literal;
    const char* first = scientific;
    if (*first == '-') {
        *next++ = *first++;
    }
    char digits[20];
    char* last = digits;
    *last++ = *first++;
    if (first != mark) {
        last = std::copy(first + 1, mark, last);  // behind the point
    }
    next = put_positional(next, {digits, static_cast<std::size_t>(last - digits)}, exponent);
    out.append(literal, next);
}

}  // namespace quillgen
