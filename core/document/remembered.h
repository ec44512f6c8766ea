// Texts that are dear to make and come back with every edit of a material: what they are made of never changes what
// they are, so one interpreter's copy of the module keeps them from call to call.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/document/text_hash.h"

namespace quillgen {

class RememberedTexts {
public:
    // All of it is forgotten where keys and texts come to more bytes than that, so that a long session does not grow.
    explicit RememberedTexts(std::size_t most_bytes) : most_bytes_(most_bytes) {}

    // The text of the key; the first time `make()`, which may throw. The view holds until the next call.
    template <class Make>
    std::string_view get(std::string_view key, Make make) {
        if (const auto known = texts_.find(key); known != texts_.end()) {
            return known->second;
        }
        // Making it may run any code, and with that other calls of this.
        std::string made = make();
        bytes_ += key.size() + made.size();
        if (bytes_ > most_bytes_) {
            texts_.clear();
            bytes_ = key.size() + made.size();
        }
        return texts_.insert_or_assign(std::string(key), std::move(made)).first->second;
    }

private:
    const std::size_t most_bytes_;
    std::size_t bytes_ = 0;
    std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> texts_;
};

}  // namespace quillgen
