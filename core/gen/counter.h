// The counter that tells names apart, kept as the digits that it is written in.
#pragma once

#include <cstddef>
#include <cstring>

namespace quillgen {

class Counter {
public:
    static constexpr std::size_t kMostDigits = 16;

    // Writes the next of 1, 2, 3 ... and gives the place behind it. There is room for `kMostDigits` characters, all of
    // which may be written to.
    char* put_next(char* to) {
        std::size_t place = size_;
        while (place > 0 && digits_[place - 1] == '9') {
            digits_[--place] = '0';
        }
        if (place > 0) {
            ++digits_[place - 1];
        } else {
            // Nines all over, which are zeros now.
            std::memmove(digits_ + 1, digits_, size_++);
            digits_[0] = '1';
        }
        std::memcpy(to, digits_, kMostDigits);
        return to + size_;
    }

private:
    char digits_[kMostDigits] = {};
    std::size_t size_ = 0;
};

}  // namespace quillgen
