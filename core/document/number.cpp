#include "core/document/number.h"

#include <charconv>
#include <cmath>
#include <version>

#include "core/document/text.h"

namespace quillgen {

namespace {

#if defined(__cpp_lib_to_chars)

void append_repr(std::string& out, double number) {
    // repr uses positional notation from 1e-4 up to below 1e16, and an exponent otherwise. The longest result has 24
    // characters: a sign, 17 digits, the point, and four zeros or an exponent.
    const double size = std::abs(number);
    const bool is_positional = size == 0.0 || (size >= 1e-4 && size < 1e16);
    const auto form = is_positional ? std::chars_format::fixed : std::chars_format::scientific;
    char buffer[32];
    const char* const end = std::to_chars(buffer, buffer + sizeof buffer, number, form).ptr;
    const Text digits(buffer, static_cast<std::size_t>(end - buffer));
    out += digits;
    if (is_positional && digits.find('.') == Text::npos) {
        out += ".0";
    }
}

#else

// For C++ libraries without std::to_chars of floating-point numbers, and for targets older than the first system that
// has it, such as macOS before 13.3. The interpreter's own function takes several times as long.
void append_repr(std::string& out, double number) {
    char* const text = PyOS_double_to_string(number, 'r', 0, Py_DTSF_ADD_DOT_0, nullptr);
    if (text == nullptr) {
        throw PythonError{};
    }
    out += text;
    PyMem_Free(text);
}

#endif

}  // namespace

void append_literal(std::string& out, double number) {
    if (std::isnan(number)) {
        out += "0.0";
    } else if (std::isinf(number)) {
        out += number > 0 ? "3.402823466e+38" : "-3.402823466e+38";
    } else {
        append_repr(out, number);
    }
}

}  // namespace quillgen
