// Enumeration words of a document as the integers that the library's functions take.
#pragma once

#include <initializer_list>
#include <span>

#include "core/document/value.h"

namespace quillgen {

struct Choice {
    Text word;
    int code;
};

// The code of the property `key`, or of `fallback` where the properties lack it. KeyError for a word that
// is not among the choices.
inline int code_of(const Value& props, Word key, Text fallback, std::span<const Choice> choices) {
    const Value word = props.get(key);
    std::string storage;
    // Null of a value that has an equality of its own.
    const Text text = !word.present() ? fallback : word.is_plain_str() ? word.text(storage) : Text();
    for (const Choice& choice : choices) {
        if (text.data() != nullptr ? choice.word == text : word.is(choice.word)) {
            return choice.code;
        }
    }
    word.check_hashable();
    raise_key_error(word.object());
}

inline int code_of(const Value& props, Word key, Text fallback, std::initializer_list<Choice> choices) {
    return code_of(props, key, fallback, std::span<const Choice>(choices.begin(), choices.size()));
}

// Whether the property `key`, or `fallback` where the properties lack it, equals `word`.
inline bool property_is(const Value& props, Word key, Text fallback, Text word) {
    const Value property = props.get(key);
    return property.present() ? property.is(word) : fallback == word;
}

}  // namespace quillgen
