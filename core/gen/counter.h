// The counter that tells names apart, and the names that it is in.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace quillgen {

// The letters in front of the number, at most eight, the first in the lowest byte.
struct Prefix {
    std::uint64_t letters = 0;

    // NOLINTNEXTLINE(google-explicit-constructor): a prefix is written as a plain text
    consteval Prefix(const char* text) {
        for (std::size_t i = 0; text[i] != '\0'; ++i) {
            letters |= std::uint64_t{static_cast<unsigned char>(text[i])} << 8 * i;
        }
    }
    [[nodiscard]] constexpr std::size_t size() const {
        return (static_cast<std::size_t>(std::bit_width(letters)) + 7) / 8;
    }
};

// Names of up to eight characters are moved as one number: a processor waits where it reads at once what it has just
// written in parts, and each name is read right behind its being made.
class Counter {
public:
    static constexpr std::size_t kMostCharacters = 24;

    // Writes the prefix and the next of 1, 2, 3 ..., and gives the place behind them. There is room for
    // `kMostCharacters`, all of which may be written to.
    char* put_name(char* to, Prefix prefix) {
        advance();
        if (prefix.size() + size_ > sizeof digits_) {
            return put_long_name(to, prefix);
        }
        const std::uint64_t name = prefix.letters | digits_ << 8 * prefix.size();
        std::memcpy(to, &name, sizeof name);
        return to + prefix.size() + size_;
    }

private:
    static_assert(std::endian::native == std::endian::little, "the first character is the lowest byte");

    void advance() {
        ++number_;
        const std::size_t ones = 8 * (size_ - 1);  // where the last digit is
        if (size_ - 1 < sizeof digits_ && digits_ >> ones < '9') {
            digits_ += std::uint64_t{1} << ones;
            return;
        }
        rewrite();
    }
    char* put_long_name(char* to, Prefix prefix) const;
    void rewrite();  // the digits of a number that is not just another last digit

    std::uint64_t number_ = 0;
    std::uint64_t digits_ = 0;  // of the number, the first in the lowest byte, if there are no more than eight
    std::size_t size_ = 0;      // how many there are
};

}  // namespace quillgen
