// Copying of short strings.
#pragma once

#include <cstring>
#include <string_view>

namespace quillgen {

// Copies the string and returns the end of the copy. Nearly all pieces of HLSL are shorter than sixteen characters, for
// which a call of memcpy takes several times as long as the copy itself.
inline char* copy(std::string_view text, char* to) {
    const char* const from = text.data();
    const std::size_t size = text.size();
    // Copies the first and the last `Half` bytes, which may overlap. Their size is a compile-time constant.
    const auto copy_halves = [&]<std::size_t Half>() {
        char first[Half];
        char last[Half];
        std::memcpy(first, from, Half);
        std::memcpy(last, from + size - Half, Half);
        std::memcpy(to, first, Half);
        std::memcpy(to + size - Half, last, Half);
    };
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        copy_halves.template operator()<8>();
    } else if (size >= 4) {
        copy_halves.template operator()<4>();
    } else if (size >= 2) {
        copy_halves.template operator()<2>();
    } else if (size == 1) {
        *to = *from;
    }
    return to + size;
}

}  // namespace quillgen
