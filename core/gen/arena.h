// Storage for the texts of one translation: a text that is kept here stays where it is until the
// arena goes, so that expressions can be handed about as plain views.
#pragma once

#include <initializer_list>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "core/gen/put.h"

namespace quillgen {

class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    std::string_view keep(std::string_view text) {
        end_at(put(room(text.size()), text));
        return finished();
    }
    // The pieces as one text.
    std::string_view keep(std::initializer_list<std::string_view> pieces) {
        for (const std::string_view piece : pieces) {
            end_at(put(room(piece.size()), piece));
        }
        return finished();
    }

    // A text that is written in steps: room for that many more characters at its end, how far it has been written, and
    // the text as it stands.
    char* room(std::size_t size) {
        if (size > static_cast<std::size_t>(limit_ - next_)) {
            grow(size);
        }
        return next_;
    }
    void end_at(char* end) { next_ = end; }
    std::string_view finished() {
        const char* const start = std::exchange(start_, next_);
        return {start, static_cast<std::size_t>(next_ - start)};
    }

    // Gives up the texts, and all blocks but the last, which is the largest.
    void clear();

private:
    struct Block {
        std::unique_ptr<char[]> characters;
        std::size_t size = 0;
    };

    void grow(std::size_t wanted);
    void begin(const Block& block);

    std::vector<Block> blocks_;
    char* start_ = nullptr;  // of the text that is being written
    char* next_ = nullptr;
    char* limit_ = nullptr;
};

}  // namespace quillgen
