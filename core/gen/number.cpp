#include "core/gen/number.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>

namespace quillgen {

namespace {

// Python's repr writes a float positionally from 1e-4 up to below 1e16.
constexpr int kLeastPositional = -4;
constexpr int kFirstScientific = 16;

// Appends `digits` (no point, no leading zero) as the number digits[0].digits[1..] * 10^exponent.
void append_positional(std::string& out, std::string_view digits, int exponent) {
    if (exponent < 0) {
        out += "0.";
        out.append(static_cast<std::size_t>(-exponent - 1), '0');
        out += digits;
        return;
    }
    const auto whole = static_cast<std::size_t>(exponent) + 1;
    if (digits.size() <= whole) {
        out += digits;
        out.append(whole - digits.size(), '0');
        out += ".0";
        return;
    }
    out += digits.substr(0, whole);
    out += '.';
    out += digits.substr(whole);
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
    // "d.ddde+xx": at most 17 digits, sign, point and an exponent of three digits.
    char buffer[32] = {};
    const char* end = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::scientific).ptr;
    std::string_view text(buffer, static_cast<std::size_t>(end - buffer));
    if (text.front() == '-') {
        out += '-';
        text.remove_prefix(1);
    }
    const std::size_t mark = text.find('e');
    const int exponent = std::atoi(text.data() + mark + 1);
    if (exponent < kLeastPositional || exponent >= kFirstScientific) {
        out += text;
        return;
    }
    char digits[20] = {text.front()};
    std::size_t count = 1;
    for (const char c : text.substr(1, mark - 1)) {
        if (c != '.') {
            digits[count++] = c;
        }
    }
    append_positional(out, {digits, count}, exponent);
}

std::string _f(const Value& value) {
    std::string out;
    append_literal(out, value.as_float());
    return out;
}

std::string _v3(const Value& value) {
    const Value items = value.copied_list();
    double numbers[3] = {};
    for (int i = 0; i < 3 && i < items.size(); ++i) {
        numbers[i] = items.at(static_cast<Py_ssize_t>(i)).as_float();
    }
    std::string out = "float3(";
    append_literal(out, numbers[0]);
    out += ", ";
    append_literal(out, numbers[1]);
    out += ", ";
    append_literal(out, numbers[2]);
    out += ')';
    return out;
}

}  // namespace quillgen
