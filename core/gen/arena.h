// Storage for the texts of one translation: a text that is kept here stays where it is until the
// arena goes, so that expressions can be handed about as plain views.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

namespace quillgen {

class Arena {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    std::string_view keep(std::string_view text) {
        if (text.size() > left_) {
            grow(text.size());
        }
        char* place = next_;
        std::memcpy(place, text.data(), text.size());
        next_ += text.size();
        left_ -= text.size();
        return {place, text.size()};
    }

private:
    void grow(std::size_t wanted) {
        const std::size_t size = std::max(wanted, kBlock << std::min<std::size_t>(blocks_.size(), 8));
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(size));
        next_ = blocks_.back().get();
        left_ = size;
    }

    // Most materials need a few thousand characters; later blocks double up to a megabyte.
    static constexpr std::size_t kBlock = 4096;

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* next_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace quillgen
