// The inputs of the Custom expression that a translation declares, by name and in the order of
// their first declaration.
#pragma once

#include <cstdint>
#include <vector>

#include "core/document/value.h"
#include "core/document/words.h"

namespace quillgen {

// A texture's record. The first node that declares a texture fixes how all of them read it.
struct Texture {
    Value image;
    bool is_float = false;
    Value extension;
    Value interpolation;
};

struct Input {
    Text name;
    Word kind;
    Value value = {};      // "scalar", "vector": the default; "texture": none
    int index = 0;         // "texcoord": the UV set
    Word axis = "x";       // "view_axis", "object_axis"
    Word of = "texcoord";  // "ddx", "ddy": the kind whose derivative it is
    Texture* texture = nullptr;
    bool is_parameter = false;
};

class Inputs {
public:
    // The entry of that name, or null.
    Input* find(Text name);
    // Puts the entry in, or in the place of the one that has its name.
    Input& put(Input input);

    // Makes room for that many entries.
    void reserve(std::size_t count);
    void clear();

    [[nodiscard]] const std::vector<Input>& entries() const { return entries_; }
    // Whether an entry has been replaced by one with another value: two sockets whose names come to the same
    // then take it in turns, and what was read of either may not be left out.
    [[nodiscard]] bool ambiguous() const { return ambiguous_; }

private:
    [[nodiscard]] std::size_t place_of(Text name) const;

    static constexpr std::uint32_t kFree = 0;

    bool ambiguous_ = false;
    std::vector<Input> entries_;
    std::vector<std::uint32_t> places_;  // open addressing: index of an entry plus 1, or kFree
};

}  // namespace quillgen
