// The inputs of the Custom expression that a translation declares, by name and in the order of
// their first declaration.
#pragma once

#include <vector>

#include "core/gen/names.h"

namespace quillgen {

// A texture's record. The first node that declares a texture fixes how all of them read it.
struct Texture {
    Value image;
    bool is_float = false;
    Value extension;
    Value interpolation;
};

// Where in the document the value of a parameter stands: an item of a map. Only told apart, never looked into.
struct Origin {
    const void* map = nullptr;  // null for no such place
    Word key = "v";             // of the item

    bool operator==(const Origin&) const = default;
};

struct Input {
    const Name* name = nullptr;
    Word kind = "scalar";
    Value value = {};      // "scalar", "vector": the default; "texture": none
    int index = 0;         // "texcoord": the UV set
    Word axis = "x";       // "view_axis", "object_axis"
    Word of = "texcoord";  // "ddx", "ddy": the kind whose derivative it is
    Texture* texture = nullptr;
    bool is_parameter = false;
    Origin origin = {};  // of a parameter
};

// The value of a parameter: a float, or a list of four items. Of a document's number or sequence; nothing and none
// count as 0.0. TypeError or ValueError where a value does not convert to a float, IndexError for a scalar of no items.
Value scalar_value(const Runtime& runtime, const Value& value);
Value vector_value(const Runtime& runtime, const Value& value);

class Inputs {
public:
    // The entry of that name, or null.
    Input* find(const Name& name);
    // Puts the entry in, or in the place of the one that has its name.
    Input& put(const Input& input);
    // The same for a parameter, "scalar" or "vector".
    void put_parameter(const Name& name, Word kind, const Value& value, Origin origin = {});

    void reserve(std::size_t count) { entries_.reserve(count); }
    void clear();

    [[nodiscard]] const std::vector<Input>& entries() const { return entries_; }
    // Whether an entry has been replaced by one of another place or value: two sockets whose names come to the same
    // then take it in turns, and what was read of either may not be left out.
    [[nodiscard]] bool ambiguous() const { return ambiguous_; }

private:
    Input& entry(const Name& name, const Value& value, Origin origin);

    bool ambiguous_ = false;
    std::vector<Input> entries_;
    // By the number of a name: where its entry is, if that entry has the name. What other translations have left here
    // tells nothing and does no harm.
    std::vector<std::size_t> places_;
};

}  // namespace quillgen
