// A string builder. Most appended pieces are a few characters long, so the capacity is checked once for all pieces of a
// call, where std::string would check it for each piece.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>

#include "core/gen/copy.h"

namespace quillgen {

class Buffer {
public:
    // Appends the pieces. None of them may point into this buffer.
    template <class... Pieces>
    void append(const Pieces&... pieces) {
        append_texts(std::string_view(pieces)...);
    }
    void clear() { size_ = 0; }

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::string_view text() const { return {text_.get(), size_}; }

private:
    template <class... Texts>
    void append_texts(Texts... texts) {
        const std::size_t added = (texts.size() + ...);
        if (added > capacity_ - size_) {
            grow(added);
        }
        char* end = text_.get() + size_;
        ((end = copy(texts, end)), ...);
        size_ += added;
    }
    void grow(std::size_t added) {
        capacity_ = std::max(size_ + added, 2 * capacity_ + 256);
        auto text = std::make_unique_for_overwrite<char[]>(capacity_);
        std::copy_n(text_.get(), size_, text.get());
        text_ = std::move(text);
    }

    std::unique_ptr<char[]> text_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace quillgen
