// The Python objects that one interpreter's copy of the module owns: the words as interned strings, the modules of the
// standard library that it calls, quillgen_lib, and the exception type.
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
    // The index of the word that equals the object, or -1. TypeError where the object is not hashable.
    [[nodiscard]] int find_word(PyObject* object) const { return word_index_.find(object); }
    // The number of words.
    [[nodiscard]] std::size_t word_count() const { return words_.size(); }

    // re.sub(pattern, replacement, text)
    [[nodiscard]] std::string re_sub(Text pattern, Text replacement, Text text) const;
    // The first hexadecimal digits of the SHA-1 of a name's UTF-8 bytes. UnicodeEncodeError for a lone surrogate.
    [[nodiscard]] std::string sha1_digits(PyObject* name, std::size_t digits) const;
    // ceil(ln(value) / ln(2)), computed with Python's math module.
    [[nodiscard]] long ceil_log2(double value) const;
    // The current value of an attribute of quillgen_lib.
    [[nodiscard]] Value library_entry(Word name) const;
    // The exception type quillgen.Unsupported.
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
