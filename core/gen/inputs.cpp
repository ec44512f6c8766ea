#include "core/gen/inputs.h"

namespace quillgen {

int Inputs::declare(const Input& input) {
    if (2 * inputs_.size() >= slots_.size()) {
        grow();
    }
    int& slot = slots_[find_slot(input.name)];
    if (slot < 0) {
        slot = static_cast<int>(inputs_.size());
        inputs_.push_back(input);
    } else {
        inputs_[static_cast<std::size_t>(slot)] = input;
    }
    return slot;
}

const Input* Inputs::find(Text name) const {
    const int number = slots_.empty() ? -1 : slots_[find_slot(name)];
    return number >= 0 && numbered(number).is_declared ? &numbered(number) : nullptr;
}

bool Inputs::declare_again(int number, const Socket& socket) {
    Input& input = inputs_[static_cast<std::size_t>(number)];
    if (input.socket != &socket) {
        return false;
    }
    if (!input.is_declared) {
        input.is_declared = true;
        if (input.value.is_list_or_tuple()) {
            input.value = input.value.copied_list();  // two results share no list
        }
    }
    return true;
}

void Inputs::withdraw_all() {
    for (Input& input : inputs_) {
        input.is_declared = false;
    }
}

// The slot that holds the number of that name, or the free slot for it. The probing is linear and short, because at
// least half of the slots are free.
std::size_t Inputs::find_slot(Text name) const {
    const std::size_t last = slots_.size() - 1;
    std::size_t slot = std::hash<Text>()(name) & last;
    while (slots_[slot] >= 0 && numbered(slots_[slot]).name != name) {
        slot = (slot + 1) & last;
    }
    return slot;
}

void Inputs::grow() {
    slots_.assign(std::max<std::size_t>(4 * slots_.size(), 128), -1);
    for (std::size_t i = 0; i < inputs_.size(); ++i) {
        slots_[find_slot(inputs_[i].name)] = static_cast<int>(i);
    }
}

}  // namespace quillgen
