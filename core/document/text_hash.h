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
        const auto mix = [&](const char* from, std::size_t size) {
            std::uint64_t bytes = 0;
            if (size > 0) {  // an empty text may have no address
                std::memcpy(&bytes, from, size);
            }
            mixed = (mixed ^ bytes) * 0x9E3779B97F4A7C15U;
            mixed ^= mixed >> 32U;
        };
        if (text.size() < 8) {
            mix(text.data(), text.size());
            return static_cast<std::size_t>(mixed);
        }
        // The last eight bytes may overlap those before: a copy of a fixed size is no call.
        for (std::size_t i = 0; i + 8 < text.size(); i += 8) {
            mix(text.data() + i, 8);
        }
        mix(text.data() + text.size() - 8, 8);
        return static_cast<std::size_t>(mixed);
    }
};

}  // namespace quillgen
