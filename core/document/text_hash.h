// A hash for the short names that documents and inputs have. They come from the document's author, not from an
// attacker: eight bytes at a time, each mixed in by a multiplication with 2^64 over the golden ratio, is
// enough to spread them.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace quillgen {

struct TextHash {
    using is_transparent = void;

    std::size_t operator()(std::string_view text) const {
        std::uint64_t mixed = text.size();
        const auto mix = [&](std::uint64_t bytes) {
            mixed = (mixed ^ bytes) * 0x9E3779B97F4A7C15U;
            mixed ^= mixed >> 32U;
        };
        std::size_t i = 0;
        for (; i + 8 <= text.size(); i += 8) {
            std::uint64_t bytes = 0;
            std::memcpy(&bytes, text.data() + i, 8);
            mix(bytes);
        }
        std::uint64_t rest = 0;
        std::memcpy(&rest, text.data() + i, text.size() - i);
        mix(rest);
        return static_cast<std::size_t>(mixed);
    }
};

}  // namespace quillgen
