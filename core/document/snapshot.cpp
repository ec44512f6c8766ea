#include "core/document/snapshot.h"

#include <bit>
#include <cmath>

namespace quillgen {

namespace {

bool is_map(PyObject* object) { return PyDict_CheckExact(object) != 0; }
bool is_list(PyObject* object) { return PyList_CheckExact(object) != 0; }
bool is_number(PyObject* object) { return PyFloat_CheckExact(object) != 0; }

// The two zeros are not the same.
bool same_bits(PyObject* left, PyObject* right) {
    return std::bit_cast<std::uint64_t>(PyFloat_AsDouble(left)) ==
           std::bit_cast<std::uint64_t>(PyFloat_AsDouble(right));
}

// Whether anything is a plain str like the one at the right.
bool same_text(PyObject* left, PyObject* right) {
    return left == right || (PyUnicode_CheckExact(left) && PyUnicode_Compare(left, right) == 0);
}

bool same_integer(PyObject* left, PyObject* right) {
    return PyLong_CheckExact(left) && PyObject_RichCompareBool(left, right, Py_EQ) == 1;
}

bool is_small_integer(PyObject* object) {
    int overflow = 0;
    PyLong_AsLongLongAndOverflow(object, &overflow);
    return overflow == 0;
}

// Whether it is a float, or a list of floats with one at least.
bool is_free_value(PyObject* object) {
    if (!is_list(object)) {
        return is_number(object);
    }
    const Py_ssize_t size = PyList_Size(object);
    for (Py_ssize_t i = 0; i < size; ++i) {
        if (!is_number(PyList_GetItem(object, i))) {
            return false;
        }
    }
    return size > 0;
}

// What a plain map has under a key that is a word, or null. A look that runs no code of the document's keys.
PyObject* find(PyObject* map, PyObject* word) {
    if (!is_map(map)) {
        return nullptr;
    }
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    for (Py_ssize_t place = 0; PyDict_Next(map, &place, &key, &item) != 0;) {
        if (same_text(key, word)) {
            return item;
        }
    }
    return nullptr;
}

}  // namespace

std::size_t Snapshot::fingerprint(const Value& document) {
    const Runtime& runtime = document.runtime();
    PyObject* const nodes = find(document.object(), runtime.word("nodes"));
    if (nodes == nullptr || !is_list(nodes)) {
        return 0;
    }
    std::uint64_t print = 1;
    const Py_ssize_t size = PyList_Size(nodes);
    for (Py_ssize_t i = 0; i < size; ++i) {
        PyObject* const id = find(PyList_GetItem(nodes, i), runtime.word("id"));
        if (id == nullptr || !PyUnicode_CheckExact(id)) {
            return 0;
        }
        constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15U;  // odd, of bits without a pattern
        print = (print ^ static_cast<std::uint64_t>(PyObject_Hash(id))) * kFactor;
        print ^= print >> 32;
    }
    return static_cast<std::size_t>(print | 1);
}

// ---- taking it down -------------------------------------------------------------------------

class Snapshot::Walk {
public:
    Walk(std::vector<Token>& tokens, const Runtime& runtime, FreeItems& free)
        : tokens_(tokens), runtime_(runtime), free_(free) {}

    bool value(PyObject* object, PyObject* key, int depth) {
        constexpr int kDeepest = 32;
        if (PyUnicode_CheckExact(object)) {
            count_text(object);
            return add_plain(key, Kind::text, object);
        }
        if (is_number(object)) {
            return !std::isnan(PyFloat_AsDouble(object)) && add_plain(key, Kind::number, object);
        }
        if (depth < kDeepest && is_map(object)) {
            return add(key, Kind::map, PyDict_Size(object)) && items_of_map(object, depth + 1);
        }
        if (depth < kDeepest && is_list(object)) {
            return add(key, Kind::list, PyList_Size(object)) && items(object, PyList_GetItem, depth + 1);
        }
        if (depth < kDeepest && PyTuple_CheckExact(object)) {
            return add(key, Kind::tuple, PyTuple_Size(object)) && items(object, PyTuple_GetItem, depth + 1);
        }
        if (PyLong_CheckExact(object)) {
            return is_small_integer(object) && add_plain(key, Kind::integer, object);
        }
        return (object == Py_None || object == Py_True || object == Py_False) && add_plain(key, Kind::constant, object);
    }

    [[nodiscard]] std::size_t free_count() const { return static_cast<std::size_t>(free_count_); }
    [[nodiscard]] std::size_t text_bytes() const { return text_bytes_; }

private:
    // One list may stand in many places, and what it holds counts in each: that could go on for ever.
    bool add(PyObject* key, Kind kind, Py_ssize_t size) {
        constexpr std::size_t kMostTokens = 300'000;
        if (tokens_.size() >= kMostTokens || size > static_cast<Py_ssize_t>(kMostTokens)) {
            return false;
        }
        Token& token = tokens_.emplace_back();
        token.key = Ref::borrow(key);
        token.kind = kind;
        token.size = static_cast<std::uint32_t>(size);
        return true;
    }

    bool add_plain(PyObject* key, Kind kind, PyObject* object) {
        if (!add(key, kind, 0)) {
            return false;
        }
        tokens_.back().object = Ref::borrow(object);
        return true;
    }

    bool items_of_map(PyObject* map, int depth) {
        const auto found = free_.find(map);
        FreeItem* const free = found != free_.end() ? &found->second : nullptr;
        if (free != nullptr && std::exchange(free->is_met, true)) {
            return false;
        }
        PyObject* key = nullptr;
        PyObject* item = nullptr;
        for (Py_ssize_t place = 0; PyDict_Next(map, &place, &key, &item) != 0;) {
            if (!PyUnicode_CheckExact(key)) {
                return false;
            }
            count_text(key);
            const bool is_free = free != nullptr && is_free_value(item) && same_text(key, runtime_.word(free->key));
            if (is_free) {
                free->place = free_count_++;
            }
            if (!(is_free ? add(key, Kind::free, 0) : value(item, key, depth))) {
                return false;
            }
        }
        return true;
    }

    bool items(PyObject* list, PyObject* (*get)(PyObject*, Py_ssize_t), int depth) {
        const std::uint32_t size = tokens_.back().size;
        for (std::uint32_t i = 0; i < size; ++i) {
            if (!value(get(list, static_cast<Py_ssize_t>(i)), nullptr, depth)) {
                return false;
            }
        }
        return true;
    }

    // Short texts are in what is reckoned for a token, and most are shared.
    void count_text(PyObject* text) {
        constexpr Py_ssize_t kShort = 16;
        constexpr std::size_t kMostOfCharacter = 4;
        const Py_ssize_t length = PyUnicode_GetLength(text);
        text_bytes_ += length > kShort ? kMostOfCharacter * static_cast<std::size_t>(length) : 0;
    }

    std::vector<Token>& tokens_;
    const Runtime& runtime_;
    FreeItems& free_;
    int free_count_ = 0;
    std::size_t text_bytes_ = 0;
};

bool Snapshot::take(const Value& document, FreeItems& free) {
    tokens_.reserve(8 * free.size());
    Walk walk(tokens_, document.runtime(), free);
    const bool taken = walk.value(document.object(), nullptr, 0);
    free_count_ = walk.free_count();
    constexpr std::size_t kObject = 64;  // what a token may keep alive
    bytes_ = tokens_.capacity() * sizeof(Token) + tokens_.size() * kObject + walk.text_bytes();
    return taken;
}

// ---- comparing ------------------------------------------------------------------------------

class Snapshot::Comparison {
public:
    Comparison(const std::vector<Token>& tokens, const Runtime& runtime, std::vector<Value>& values)
        : next_(tokens.data()), runtime_(runtime), values_(values) {}

    // Most of a document is the very texts and numbers that it held before.
    bool same(PyObject* object) {
        if (object == next_->object.get()) {
            ++next_;
            return true;
        }
        return same_value(object);
    }

private:
    bool same_value(PyObject* object) {
        const Token& token = *next_++;
        switch (token.kind) {
        case Kind::map:
            return is_map(object) && PyDict_Size(object) == token.size && items_of_map(object, token.size);
        case Kind::list:
            return is_list(object) && PyList_Size(object) == token.size && items(object, token.size, PyList_GetItem);
        case Kind::tuple:
            return PyTuple_CheckExact(object) && PyTuple_Size(object) == token.size &&
                   items(object, token.size, PyTuple_GetItem);
        case Kind::text:
            return same_text(object, token.object.get());
        case Kind::integer:
            return same_integer(object, token.object.get());
        case Kind::number:
            return is_number(object) && same_bits(object, token.object.get());
        case Kind::constant:
            return false;
        case Kind::free:
            values_.emplace_back(Ref::borrow(object), runtime_);
            return is_free_value(object);
        }
        return false;
    }

    bool items_of_map(PyObject* object, std::uint32_t size) {
        PyObject* key = nullptr;
        PyObject* item = nullptr;
        Py_ssize_t place = 0;
        for (std::uint32_t i = 0; i < size && PyDict_Next(object, &place, &key, &item) != 0; ++i) {
            if (!same_text(key, next_->key.get()) || !same(item)) {
                return false;
            }
        }
        return true;
    }

    bool items(PyObject* object, std::uint32_t size, PyObject* (*get)(PyObject*, Py_ssize_t)) {
        for (std::uint32_t i = 0; i < size; ++i) {
            if (!same(get(object, static_cast<Py_ssize_t>(i)))) {
                return false;
            }
        }
        return true;
    }

    const Token* next_;
    const Runtime& runtime_;
    std::vector<Value>& values_;
};

bool Snapshot::matches(const Value& document, std::vector<Value>& values) const {
    values.clear();
    values.reserve(free_count_);
    return Comparison(tokens_, document.runtime(), values).same(document.object());
}

}  // namespace quillgen
