// Storage of the strings of one translation. A string never moves while the arena exists, so expressions are passed
// around as plain views.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "core/gen/copy.h"

namespace quillgen {

class Arena {
public:
    // Stores the concatenation of the two strings.
    std::string_view keep(std::string_view text, std::string_view behind = {}) {
        const std::size_t size = text.size() + behind.size();
        if (size > room_) {
            grow(size);
        }
        char* const start = next_;
        next_ = copy(behind, copy(text, start));
        room_ -= size;
        return {start, size};
    }

private:
    void grow(std::size_t wanted) {
        constexpr std::size_t kBlock = std::size_t{16} * 1024;  // enough for a material of about fifty nodes
        room_ = std::max(wanted, kBlock);
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(room_));
        next_ = blocks_.back().get();
    }

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* next_ = nullptr;
    std::size_t room_ = 0;  // bytes left at `next_`
};

}  // namespace quillgen
