#include "core/gen/text_buffer.h"

#include <algorithm>

namespace quillgen {

void TextBuffer::reserve(std::size_t size) {
    const auto capacity = static_cast<std::size_t>(limit_ - data_.get());
    if (size <= capacity) {
        return;
    }
    const std::size_t wanted = std::max(size, 2 * capacity);
    auto data = std::make_unique_for_overwrite<char[]>(wanted);
    end_ = put(data.get(), view());
    limit_ = data.get() + wanted;
    data_ = std::move(data);
}

}  // namespace quillgen
