// A plain value of a document or of a result, with Python's own meaning of every operation: what a
// subscript, a comparison or a conversion does, and how it fails, is what Python does.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "core/document/handle.h"
#include "core/document/runtime.h"

namespace quillgen {

// The keys of small maps that come by the hundred. They are told by their addresses, and by what they say only where
// those are new: the keys of one document are mostly the same objects all over, if not the words themselves.
template <std::size_t Count>
class SmallMapKeys {
public:
    SmallMapKeys(const Runtime& runtime, const Word (&words)[Count]) {
        for (std::size_t i = 0; i < Count; ++i) {
            words_[i] = runtime.word(words[i]);
            seen_[i] = Ref::borrow(words_[i]);
        }
    }
    // The number of the key, or Count.
    std::size_t find(PyObject* key) {
        for (std::size_t i = 0; i < Count; ++i) {
            if (seen_[i].get() == key) {
                return i;
            }
        }
        for (std::size_t i = 0; PyUnicode_CheckExact(key) && i < Count; ++i) {
            if (PyUnicode_Compare(words_[i], key) == 0) {
                seen_[i] = Ref::borrow(key);
                return i;
            }
        }
        return Count;
    }

private:
    std::array<PyObject*, Count> words_;
    std::array<Ref, Count> seen_;  // held, so that no other object comes to stand there
};

class Value {
public:
    Value() = default;
    Value(Ref object, const Runtime& runtime) : object_(std::move(object)), runtime_(&runtime) {}

    // An absent value (a key that is not there) is not the same as none, but counts as none.
    [[nodiscard]] bool present() const { return static_cast<bool>(object_); }
    [[nodiscard]] bool is_none() const { return !present() || object_.get() == Py_None; }
    [[nodiscard]] bool truthy() const;
    [[nodiscard]] bool is(Text word) const;               // value == word
    [[nodiscard]] bool equals(const Value& other) const;  // value == other
    [[nodiscard]] bool less_than(double number) const;
    [[nodiscard]] bool greater_than(double number) const;
    [[nodiscard]] bool is_list_or_tuple() const;
    // Whether it is a plain map, of no type derived from it.
    [[nodiscard]] bool is_map() const { return PyDict_CheckExact(object_.get()) != 0; }
    void check_hashable() const;  // TypeError where it is not

    [[nodiscard]] Value at(Word key) const;          // value[key], KeyError
    [[nodiscard]] Value at(Py_ssize_t index) const;  // value[index], IndexError
    [[nodiscard]] Value at(const Value& key) const;  // value[key]
    [[nodiscard]] Value get(Word key) const;         // value.get(key), absent where it has none
    [[nodiscard]] bool contains(Word key) const;     // key in value
    [[nodiscard]] bool contains(const Value& item) const;
    [[nodiscard]] Py_ssize_t index_of(const Value& item) const;  // value.index(item)
    [[nodiscard]] Py_ssize_t size() const;                       // len(value)
    // value[key] where the value is a map that has the key, else absent: `key in value` and the
    // subscript in one look.
    [[nodiscard]] Value find(Word key) const;
    [[nodiscard]] Value find(const Value& key) const;  // of a map of our own; TypeError without a hash
    // find(key) for each of the keys in one pass over a small plain map. False for any other value, and where the map
    // has keys that are no plain texts; then what has not been found may be there all the same.
    template <std::size_t Count>
    bool pick(SmallMapKeys<Count>& keys, Ref* const (&found)[Count]) const;
    // Another object of the same interpreter.
    [[nodiscard]] Value sibling(const Ref& object) const { return {object, *runtime_}; }
    // What to make room for: the size of a plain list, and 0 of anything else, which may say anything.
    [[nodiscard]] std::size_t expected_size() const {
        return PyList_CheckExact(object_.get()) ? static_cast<std::size_t>(PyList_Size(object_.get())) : 0;
    }
    // The items of a plain list of three, nulls of anything else.
    [[nodiscard]] std::array<Ref, 3> plain_triple() const;
    // What `a, b, c = value` gives; ValueError where there are not three items.
    [[nodiscard]] std::array<Value, 3> unpack3() const;

    [[nodiscard]] std::array<Value, 2> unpack2() const;
    [[nodiscard]] Value call(const Value& argument) const;                  // value(argument)
    [[nodiscard]] Value remainder(const Value& operand) const;              // value % operand
    [[nodiscard]] Value sorted_list() const;                                // sorted(value)
    [[nodiscard]] Value joined() const;                                     // "\n".join(value)
    [[nodiscard]] Value cut_out(std::size_t start, std::size_t end) const;  // value[start:end] of a str
    [[nodiscard]] Text checked_text(std::string& storage) const;            // TypeError for other than a str

    // Calls `visit(Value)` for each item in the order of Python's `for`. A list may change meanwhile.
    template <class Visit>
    void for_each(Visit visit) const;
    // The same over value.values(), as visit(address of the key of a plain map, item), and over value.items() with
    // the pair apart.
    template <class Visit>
    void for_each_value(Visit visit) const;
    template <class Visit>
    void for_each_item(Visit visit) const;

    [[nodiscard]] double as_float() const;             // float(value)
    [[nodiscard]] std::vector<double> floats() const;  // float(item) of each item
    [[nodiscard]] int as_int() const;                  // of an integer of our own
    [[nodiscard]] Value to_float() const;              // float(value), as an object
    [[nodiscard]] Value to_int() const;                // int(value), as an object
    [[nodiscard]] Value lower() const;                 // value.lower()
    [[nodiscard]] Value copied_list() const;           // list(value), and what it holds `unshared`
    [[nodiscard]] Value copied_map() const { return own(PyDict_Copy(object_.get())); }  // of a map of our own
    [[nodiscard]] Value copied_set() const { return own(PySet_New(object_.get())); }    // of a set of our own
    // The value, or a copy of a list, map or set, so that a result shares none with its document.
    [[nodiscard]] Value unshared() const;
    [[nodiscard]] bool is_float() const { return PyFloat_CheckExact(object_.get()) != 0; }
    [[nodiscard]] Text formatted(std::string& storage) const;  // as a format writes it
    void append_to(std::string& out) const;                    // as a format writes it
    // The text of a str value; `storage` holds it where the value itself cannot.
    [[nodiscard]] bool is_str() const {
        return present() && (PyUnicode_CheckExact(object_.get()) || PyUnicode_Check(object_.get()) != 0);
    }
    // Whether it is a str of no type derived from it.
    [[nodiscard]] bool is_plain_str() const { return present() && PyUnicode_CheckExact(object_.get()) != 0; }
    [[nodiscard]] Text text(std::string& storage) const { return to_text(object_.get(), storage); }

    [[nodiscard]] PyObject* object() const { return object_.get(); }
    [[nodiscard]] const Runtime& runtime() const { return *runtime_; }
    [[nodiscard]] Ref take() && { return std::move(object_); }

    // Building results.
    static Value none(const Runtime& runtime);
    static Value word(const Runtime& runtime, Word word);
    static Value text(const Runtime& runtime, Text text);
    static Value number(const Runtime& runtime, double number);
    static Value integer(const Runtime& runtime, long number);
    static Value boolean(const Runtime& runtime, bool truth);
    static Value list(const Runtime& runtime);
    static Value pair(const Value& first, const Value& second);  // a list of the two
    static Value map(const Runtime& runtime);
    static Value set(const Runtime& runtime);
    void append(const Value& item) const;         // to a list
    void add(const Value& item) const;            // to a set
    void put(Word key, const Value& item) const;  // into a map
    void put(const Value& key, const Value& item) const;
    void update(const Value& other) const;  // a map
    void cut(Py_ssize_t size) const;        // a list's items past the first `size`

private:
    [[nodiscard]] Value own(PyObject* result) const { return {Ref::checked(result), *runtime_}; }
    [[nodiscard]] Value share(PyObject* borrowed) const { return {Ref::borrow(borrowed), *runtime_}; }
    [[nodiscard]] Value called(Word method) const;
    template <std::size_t Count>
    [[nodiscard]] std::array<Value, Count> unpack() const;
    static void check_unchanged(Py_ssize_t before, PyObject* map);

    Ref object_;
    const Runtime* runtime_ = nullptr;
};

template <std::size_t Count>
bool Value::pick(SmallMapKeys<Count>& keys, Ref* const (&found)[Count]) const {
    if (!PyDict_CheckExact(object_.get())) {
        return false;
    }
    constexpr Py_ssize_t kMost = 16;  // a larger map is better asked for each key
    const Py_ssize_t size = PyDict_Size(object_.get());
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    Py_ssize_t place = 0;
    for (Py_ssize_t met = 0; met < size && PyDict_Next(object_.get(), &place, &key, &item) != 0; ++met) {
        const std::size_t i = keys.find(key);
        if (i < Count) {
            *found[i] = Ref::borrow(item);
        } else if (PyUnicode_CheckExact(key) == 0 || met > kMost) {
            return false;
        }
    }
    return true;
}

template <class Visit>
void Value::for_each(Visit visit) const {
    if (PyList_CheckExact(object_.get())) {
        for (Py_ssize_t i = 0; i < PyList_Size(object_.get()); ++i) {
            visit(share(PyList_GetItem(object_.get(), i)));
            check_signals_at(static_cast<std::size_t>(i));
        }
        return;
    }
    const Ref iterator = Ref::checked(PyObject_GetIter(object_.get()));
    std::size_t step = 0;
    while (PyObject* item = PyIter_Next(iterator.get())) {
        visit(Value(Ref::steal(item), *runtime_));
        check_signals_at(step++);
    }
    if (PyErr_Occurred() != nullptr) {
        throw PythonError{};
    }
}

template <class Visit>
void Value::for_each_value(Visit visit) const {
    if (!PyDict_CheckExact(object_.get())) {
        called("values").for_each([&](const Value& item) { visit(nullptr, item); });
        return;
    }
    const Py_ssize_t size = PyDict_Size(object_.get());
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    for (Py_ssize_t place = 0; PyDict_Next(object_.get(), &place, &key, &item) != 0;) {
        visit(key, share(item));
        check_unchanged(size, object_.get());
    }
}

template <class Visit>
void Value::for_each_item(Visit visit) const {
    called("items").for_each([&](const Value& pair) {
        const auto [key, item] = pair.unpack2();
        visit(key, item);
    });
}

}  // namespace quillgen
