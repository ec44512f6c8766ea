#include "core/gen/inputs.h"

#include <algorithm>
#include <bit>

#include "core/document/text_hash.h"

namespace quillgen {

std::size_t Inputs::place_of(Text name) const {
    const std::size_t mask = places_.size() - 1;
    std::size_t place = TextHash{}(name)&mask;
    while (places_[place] != kFree && entries_[places_[place] - 1].name != name) {
        place = (place + 1) & mask;
    }
    return place;
}

Input* Inputs::find(Text name) {
    if (places_.empty()) {
        return nullptr;
    }
    const std::uint32_t entry = places_[place_of(name)];
    return entry == kFree ? nullptr : &entries_[entry - 1];
}

Input& Inputs::put(Input input) {
    // At most half full, so that a chain of taken places stays short.
    if (2 * (entries_.size() + 1) > places_.size()) {
        reserve(std::max<std::size_t>(32, places_.size()));
    }
    const std::size_t place = place_of(input.name);
    if (places_[place] != kFree) {
        Input& entry = entries_[places_[place] - 1];
        ambiguous_ = ambiguous_ || entry.value.object() != input.value.object();
        return entry = std::move(input);
    }
    entries_.push_back(std::move(input));
    places_[place] = static_cast<std::uint32_t>(entries_.size());
    return entries_.back();
}

void Inputs::reserve(std::size_t count) {
    entries_.reserve(count);
    places_.assign(std::bit_ceil(2 * count), kFree);
    for (std::uint32_t i = 0; i < entries_.size(); ++i) {
        places_[place_of(entries_[i].name)] = i + 1;
    }
}

void Inputs::clear() {
    ambiguous_ = false;
    entries_.clear();
    places_.clear();
}

}  // namespace quillgen
