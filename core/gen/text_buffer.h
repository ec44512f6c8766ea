// A text that grows at its end.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>

#include "core/gen/put.h"

namespace quillgen {

class TextBuffer {
public:
    void append(std::string_view text) { end_at(put(room(text.size()), text)); }
    // Room for that many more characters at the end; `end_at` tells how far it has been written.
    char* room(std::size_t size) {
        if (size > capacity_ - size_) {
            reserve(size_ + size);
        }
        return data_.get() + size_;
    }
    void end_at(const char* end) { size_ = static_cast<std::size_t>(end - data_.get()); }
    // Makes room for a text of that size in all.
    void reserve(std::size_t size) {
        if (size <= capacity_) {
            return;
        }
        const std::size_t capacity = std::max(size, 2 * capacity_);
        auto data = std::make_unique_for_overwrite<char[]>(capacity);
        std::copy_n(data_.get(), size_, data.get());
        data_ = std::move(data);
        capacity_ = capacity;
    }
    void clear() { size_ = 0; }

    [[nodiscard]] std::size_t size() const { return size_; }
    [[nodiscard]] std::string_view view() const { return {data_.get(), size_}; }

private:
    std::unique_ptr<char[]> data_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

}  // namespace quillgen
