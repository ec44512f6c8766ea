// The counter that tells names apart, kept as the digits that it is written in.
#pragma once

#include <cstddef>
#include <string_view>

namespace quillgen {

class Counter {
public:
    Counter() {
        for (char& digit : digits_) {
            digit = '0';
        }
    }
    // 1, 2, 3 ...; the view holds until the next call.
    std::string_view next() {
        std::size_t place = sizeof digits_ - 1;
        for (; digits_[place] == '9'; --place) {
            digits_[place] = '0';
        }
        ++digits_[place];
        if (place < first_) {
            first_ = place;
        }
        return {digits_ + first_, sizeof digits_ - first_};
    }

private:
    char digits_[20];
    std::size_t first_ = sizeof digits_;
};

}  // namespace quillgen
