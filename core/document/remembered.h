// What is dear to make of a text and comes back with every edit of a material: a text never comes to anything else,
// so one interpreter's copy of the module keeps it from call to call.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "core/document/text_hash.h"

namespace quillgen {

class Remembered {
public:
    // All of it is forgotten where it comes to more bytes than about that, so that a long session does not grow.
    explicit Remembered(std::size_t most_bytes) : most_bytes_(most_bytes) {}

    // What has been made of the key; the first time `make()`, which may throw. It stays until the next call.
    template <class Make>
    const std::string& get(std::string_view key, Make make) {
        if (const auto known = made_.find(key); known != made_.end()) {
            return known->second;
        }
        // Making it may run any code, and with that other calls of this.
        std::string made = make();
        constexpr std::size_t kEntry = 4 * sizeof(std::string);  // of the table, about
        const std::size_t bytes = kEntry + key.size() + made.size();
        bytes_ += bytes;
        if (bytes_ > most_bytes_) {
            made_.clear();
            bytes_ = bytes;
        }
        return made_.insert_or_assign(std::string(key), std::move(made)).first->second;
    }

private:
    const std::size_t most_bytes_;
    std::size_t bytes_ = 0;
    std::unordered_map<std::string, std::string, TextHash, std::equal_to<>> made_;
};

}  // namespace quillgen
