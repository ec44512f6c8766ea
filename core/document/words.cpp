#include "core/document/words.h"

#include <utility>

#include "core/document/text.h"

namespace quillgen {

namespace {

// Written only by the constructors of static objects, and constant once the binary is loaded.
constinit const WordEntry* last_entry = nullptr;

std::string identifier_of(std::string_view word) {
    std::string identifier;
    append_identifier(identifier, word);
    return identifier;
}

}  // namespace

WordEntry::WordEntry(std::string_view word)
    : text(word),
      identifier(identifier_of(word)),
      index(last_entry == nullptr ? 0 : last_entry->index + 1),
      next(std::exchange(last_entry, this)) {}

const WordEntry* WordEntry::last() { return last_entry; }

}  // namespace quillgen
