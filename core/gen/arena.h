// Storage for the texts of one translation: a text that is kept here stays where it is until the
// arena goes, so that expressions can be handed about as plain views.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <memory>
#include <string_view>
#include <vector>

#include "core/gen/put.h"

namespace quillgen {

class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    std::string_view keep(std::string_view text) { return keep({text}); }
    // The pieces as one text.
    std::string_view keep(std::initializer_list<std::string_view> pieces) {
        std::size_t size = 0;
        for (const std::string_view piece : pieces) {
            size += piece.size();
        }
        if (size > left_) {
            grow(size);
        }
        char* const start = next_;
        for (const std::string_view piece : pieces) {
            next_ = put(next_, piece);
        }
        left_ -= size;
        return {start, size};
    }

    // Gives up the texts, and all blocks but the last, which is the largest.
    void clear() {
        if (!blocks_.empty()) {
            blocks_.front() = std::move(blocks_.back());
            blocks_.resize(1);
            begin(blocks_.front());
        }
    }

private:
    struct Block {
        std::unique_ptr<char[]> characters;
        std::size_t size = 0;
    };

    void grow(std::size_t wanted) {
        const std::size_t size = std::max(wanted, kBlock << std::min<std::size_t>(blocks_.size(), 8));
        blocks_.push_back({std::make_unique_for_overwrite<char[]>(size), size});
        begin(blocks_.back());
    }
    void begin(const Block& block) {
        next_ = block.characters.get();
        left_ = block.size;
    }

    // Most materials need a few thousand characters; later blocks double up to a megabyte.
    static constexpr std::size_t kBlock = 4096;

    std::vector<Block> blocks_;
    char* next_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace quillgen
