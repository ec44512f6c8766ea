// What one interpreter's copy of the module holds of the interpreter's: the words as strings, and the functions of the
// standard library and of quillgen_lib that are called.
#pragma once

#include <vector>

#include "core/document/index.h"
#include "core/document/text.h"
#include "core/document/words.h"

namespace quillgen {

class Value;

class Runtime {
public:
    Runtime();

    [[nodiscard]] PyObject* word(Word word) const { return words_[word.index()].get(); }
    // The index of the word that equals the object, or -1. TypeError where the object has no hash.
    [[nodiscard]] int find_word(PyObject* object) const { return word_index_.find(object); }
    // How many words there are.
    [[nodiscard]] std::size_t word_count() const { return words_.size(); }

    // re.sub(pattern, replacement, text)
    [[nodiscard]] std::string re_sub(Text pattern, Text replacement, Text text) const;
    // The first digits of the SHA-1 of a name's UTF-8 bytes. UnicodeEncodeError for a lone surrogate.
    [[nodiscard]] std::string sha1_digits(PyObject* name, std::size_t digits) const;
    // ceil(ln(value) / ln(2)), by the standard library's own functions.
    [[nodiscard]] long ceil_log2(double value) const;
    // An entry of quillgen_lib, as it stands there at this moment.
    [[nodiscard]] Value library_entry(Word name) const;
    // The exception type.
    [[nodiscard]] PyObject* Unsupported() const { return unsupported_.get(); }
    [[noreturn]] void raise_unsupported(Text message) const;

    int traverse(visitproc visit, void* arg) const;

private:
    std::vector<Ref> words_;  // by index
    Index word_index_;
    Ref re_;
    Ref hashlib_;
    Ref math_;
    Ref library_;
    Ref unsupported_;
};

}  // namespace quillgen
