#include "core/gen/arena.h"

#include <algorithm>

namespace quillgen {

void Arena::clear() {
    if (!blocks_.empty()) {
        blocks_.front() = std::move(blocks_.back());
        blocks_.resize(1);
        begin(blocks_.front());
    }
}

void Arena::grow(std::size_t wanted) {
    // Most materials need a few thousand characters; later blocks double up to a megabyte.
    constexpr std::size_t kBlock = 4096;
    const std::string_view begun(start_, static_cast<std::size_t>(next_ - start_));
    const std::size_t least = begun.size() + wanted;
    const std::size_t size = std::max(least, kBlock << std::min<std::size_t>(blocks_.size(), 8));
    blocks_.push_back({std::make_unique_for_overwrite<char[]>(size), size});
    begin(blocks_.back());
    next_ = put(next_, begun);
}

void Arena::begin(const Block& block) {
    start_ = next_ = block.characters.get();
    limit_ = start_ + block.size;
}

}  // namespace quillgen
