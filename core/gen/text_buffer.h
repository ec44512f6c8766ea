// A text that grows at its end.
#pragma once

#include <memory>
#include <string_view>

#include "core/gen/put.h"

namespace quillgen {

class TextBuffer {
public:
    void append(std::string_view text) { end_at(put(room(text.size()), text)); }
    // Room for that many more characters at the end; `end_at` tells how far it has been written.
    char* room(std::size_t size) {
        if (size > static_cast<std::size_t>(limit_ - end_)) {
            reserve(this->size() + size);
        }
        return end_;
    }
    void end_at(char* end) { end_ = end; }
    // Makes room for a text of that size in all.
    void reserve(std::size_t size);
    void clear() { end_ = data_.get(); }

    [[nodiscard]] std::size_t size() const { return static_cast<std::size_t>(end_ - data_.get()); }
    [[nodiscard]] std::string_view view() const { return {data_.get(), size()}; }

private:
    std::unique_ptr<char[]> data_;
    char* end_ = nullptr;    // of the text
    char* limit_ = nullptr;  // of the room
};

}  // namespace quillgen
