// What one interpreter's copy of the module keeps for its whole life: the words as interned Python
// strings, and the functions of the standard library that a translation calls.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/document/handle.h"
#include "core/document/places.h"
#include "core/document/remembered.h"
#include "core/document/words.h"

namespace quillgen {

// UTF-8 text. Lone surrogates, which Blender hands out for names that were not UTF-8, pass through
// as the three bytes that UTF-8 would give them.
using Text = std::string_view;

class Value;

class Runtime {
public:
    Runtime();

    [[nodiscard]] PyObject* word(Word word) const { return words_[word.index()].get(); }
    // The word as it stands in the name of a parameter.
    [[nodiscard]] Text identifier(Word word) const { return identifiers_[word.index()]; }
    // The index of the word that equals the object, or -1. TypeError where it has no hash.
    [[nodiscard]] int find_word(PyObject* object) const { return word_places_.find(object); }

    // `name` with every character that an identifier of the text cannot hold replaced by "_".
    [[nodiscard]] std::string identifier(Text name) const;
    [[nodiscard]] std::string identifier(PyObject* name) const;  // TypeError for anything but a str
    [[nodiscard]] std::string re_sub(const char* pattern, const char* replacement, Text text) const;
    [[nodiscard]] std::string re_sub(const char* pattern, const char* replacement, PyObject* subject) const;
    // The first digits of the SHA-1 of a name's UTF-8 bytes. UnicodeEncodeError for a lone surrogate.
    [[nodiscard]] std::string sha1_digits(PyObject* name, std::size_t digits) const;
    // ceil(ln(value) / ln(2)), by the standard library's own functions.
    [[nodiscard]] long ceil_log2(double value) const;
    // What is kept from call to call.
    struct Memory {
        Remembered textures{std::size_t{128} * 1024};  // image name -> name of its input
        Remembered literals{std::size_t{512} * 1024};  // bytes of numbers -> literals
    };
    [[nodiscard]] Memory& memory() const { return memory_; }
    // The library's entries, as they stand on its module at this moment.
    [[nodiscard]] Value library_entry(Word name) const;
    [[nodiscard]] PyObject* unsupported() const { return unsupported_.get(); }
    [[noreturn]] void raise_unsupported(Text message) const;

    int traverse(visitproc visit, void* arg) const;

private:
    std::array<Ref, kWords.size()> words_;
    std::array<std::string, kWords.size()> identifiers_;
    Places word_places_;
    mutable Memory memory_;
    Ref re_;
    Ref hashlib_;
    Ref math_;
    Ref library_;
    Ref unsupported_;
};

// Text from and to Python strings.
Ref to_python(Text text);
// For to_text, where the interpreter has just refused to encode a str object: its bytes in `storage` if that was for
// lone surrogates.
Text encoded_surrogates(PyObject* string, std::string& storage);
// The UTF-8 bytes of a str object; `storage` holds them where the object itself cannot.
inline Text to_text(PyObject* string, std::string& storage) {
    Py_ssize_t size = 0;
    const char* const bytes = PyUnicode_AsUTF8AndSize(string, &size);
    return bytes != nullptr ? Text(bytes, static_cast<std::size_t>(size)) : encoded_surrogates(string, storage);
}
// What a format of Python's would write for any object.
void append_formatted(std::string& out, PyObject* object);

[[noreturn]] void raise_key_error(PyObject* key);
[[noreturn]] void raise_type_error(const char* message);
[[noreturn]] void raise_index_error(const char* message);
[[noreturn]] void raise_value_error(const char* message);
[[noreturn]] void raise_overflow_error(const char* message);
[[noreturn]] void raise_recursion_error();

// Lets a waiting Ctrl-C through.
void check_signals();
// The same now and then, in step after step of a loop whose length the document decides.
inline void check_signals_at(std::size_t step) {
    constexpr std::size_t kInterval = 4096;
    if (step % kInterval == kInterval - 1) {
        check_signals();
    }
}

// One level of evaluation, counted once against the interpreter's recursion limit, and against a budget of the
// stack of C, which the limit says nothing about: a host may have set it to any number, and a thread may have a
// stack of 1 MiB. RecursionError beyond either. A level takes 500 to 850 bytes in a release build, so at the
// interpreter's own limit of 1000 the budget is not reached; what it leaves of 1 MiB is for the host's frames below
// the call and for what the deepest level calls, which is some 10 KiB each.
class RecursionLevel {
public:
    // `entry` stands on the stack where the call came in.
    explicit RecursionLevel(const void* entry) {
        if (distance(this, entry) > kMostStack) {
            raise_recursion_error();
        }
        if (Py_EnterRecursiveCall(" while a node graph was evaluated") != 0) {
            throw PythonError{};
        }
    }
    ~RecursionLevel() { Py_LeaveRecursiveCall(); }
    RecursionLevel(const RecursionLevel&) = delete;
    RecursionLevel& operator=(const RecursionLevel&) = delete;

private:
    static constexpr std::uintptr_t kMostStack = std::uintptr_t{800} * 1024;

    static std::uintptr_t distance(const void* a, const void* b) {
        const auto left = reinterpret_cast<std::uintptr_t>(a);
        const auto right = reinterpret_cast<std::uintptr_t>(b);
        return left < right ? right - left : left - right;
    }
};

}  // namespace quillgen
