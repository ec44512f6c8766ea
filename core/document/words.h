// Words: the fixed strings that occur in documents and results, such as keys, socket names and kinds. A word is written
// where it is used, as "Base Color"_w. All words are registered and numbered while the binary is loaded, and never
// change afterwards. Each interpreter has an interned string for each word (see Runtime), so that lookups compute no
// hash.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quillgen {

// A string as a template argument.
template <std::size_t Size>
struct FixedText {
    char characters[Size] = {};

    // NOLINTNEXTLINE(google-explicit-constructor): it is written as a plain text
    consteval FixedText(const char (&text)[Size]) { std::copy_n(text, Size, characters); }
    [[nodiscard]] constexpr std::string_view view() const { return {characters, Size - 1}; }
};

// A registered word. There is one entry per word.
class WordEntry {
public:
    explicit WordEntry(std::string_view word);
    WordEntry(const WordEntry&) = delete;
    WordEntry& operator=(const WordEntry&) = delete;

    const std::string_view text;
    const std::string identifier;  // the text as it appears in the name of a parameter
    const std::size_t index;
    const WordEntry* const next;

    // The entry that was registered last: the head of the list that `next` links.
    static const WordEntry* last();
};

template <FixedText Text>
inline const WordEntry kWordEntry{Text.view()};

class Word {
public:
    constexpr explicit Word(const WordEntry& entry) : entry_(&entry) {}

    [[nodiscard]] std::string_view text() const { return entry_->text; }
    [[nodiscard]] std::string_view identifier() const { return entry_->identifier; }
    [[nodiscard]] std::size_t index() const { return entry_->index; }
    constexpr bool operator==(const Word&) const = default;

private:
    const WordEntry* entry_;
};

template <FixedText Text>
constexpr Word operator""_w() {
    return Word(kWordEntry<Text>);
}

}  // namespace quillgen
