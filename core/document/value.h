// A value of a document or of a result. Every operation (subscript, comparison, conversion) behaves and fails as it
// does in Python.
#pragma once

#include <array>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/document/errors.h"
#include "core/document/runtime.h"

namespace quillgen {

class Value {
public:
    Value() = default;
    Value(Ref object, const Runtime& runtime) : object_(std::move(object)), runtime_(&runtime) {}

    // An absent value (of a missing key) is distinct from None, but `is_none` is true for both.
    [[nodiscard]] bool present() const { return static_cast<bool>(object_); }
    [[nodiscard]] bool is_none() const { return !present() || object_.get() == Py_None; }
    [[nodiscard]] bool truthy() const;
    [[nodiscard]] bool is(Text word) const;               // value == word
    [[nodiscard]] bool equals(const Value& other) const;  // value == other
    [[nodiscard]] bool less_than(double number) const;
    [[nodiscard]] bool greater_than(double number) const;
    [[nodiscard]] bool is_list_or_tuple() const;
    [[nodiscard]] bool is_float() const { return PyFloat_CheckExact(object_.get()) != 0; }
    [[nodiscard]] bool is_str() const { return present() && PyUnicode_Check(object_.get()) != 0; }
    void check_hashable() const;  // TypeError if it is not hashable

    [[nodiscard]] Value at(Word key) const;            // value[key], KeyError
    [[nodiscard]] Value at(const Value& key) const;    // value[key]
    [[nodiscard]] Value item(Py_ssize_t index) const;  // value[index], IndexError
    [[nodiscard]] Value get(Word key) const;           // value.get(key), absent if the key is missing
    [[nodiscard]] Value find(Word key) const;          // value[key] if key in value, else absent
    [[nodiscard]] bool contains(Word key) const;       // key in value
    [[nodiscard]] bool contains(const Value& item) const;
    [[nodiscard]] Py_ssize_t index_of(const Value& item) const;  // value.index(item)
    [[nodiscard]] Py_ssize_t size() const;                       // len(value)
    // The size to reserve: that of a plain list or dict. 0 for any other type, because its __len__ may return anything.
    [[nodiscard]] std::size_t expected_size() const;
    // The items as in `a, b = value`. ValueError if their number differs.
    [[nodiscard]] std::array<Value, 2> unpack2() const;
    [[nodiscard]] std::array<Value, 3> unpack3() const;

    // Calls `visit(item)` for each item in the order of Python's `for`. A list may change during the iteration.
    template <class Visit>
    void for_each(Visit visit) const;
    // Calls `visit(key, item)` over value.items(). RuntimeError if a dict changes its size during the iteration.
    template <class Visit>
    void for_each_item(Visit visit) const;

    [[nodiscard]] double as_float() const;                      // float(value)
    [[nodiscard]] Value to_float() const;                       // float(value), as an object
    [[nodiscard]] Value to_int() const;                         // int(value), as an object
    [[nodiscard]] Value lower() const;                          // value.lower()
    [[nodiscard]] Value call(const Value& argument) const;      // value(argument)
    [[nodiscard]] Value remainder(const Value& operand) const;  // value % operand
    [[nodiscard]] Value sorted() const;                         // sorted(value)
    [[nodiscard]] Value joined() const;                         // "\n".join(value)
    [[nodiscard]] Value copied_list() const;                    // list(value), with its items `unshared`
    // The value, or a deep copy of a list, dict or set, so that a result shares no container with its document.
    [[nodiscard]] Value unshared() const;

    // The text of a str; see `to_text` for `storage`. TypeError for any other type.
    [[nodiscard]] Text text(std::string& storage) const;
    [[nodiscard]] Text formatted(std::string& storage) const;  // the text of format(value), for any value

    [[nodiscard]] PyObject* object() const { return object_.get(); }
    [[nodiscard]] const Runtime& runtime() const { return *runtime_; }
    [[nodiscard]] Ref take() && { return std::move(object_); }

    // New values.
    struct Item;
    static Value none(const Runtime& runtime) { return {Ref::borrow(Py_None), runtime}; }
    static Value word(const Runtime& runtime, Word word) { return {Ref::borrow(runtime.word(word)), runtime}; }
    static Value text(const Runtime& runtime, Text text) { return {to_python(text), runtime}; }
    static Value number(const Runtime& runtime, double number);
    static Value integer(const Runtime& runtime, long number);
    static Value boolean(const Runtime& runtime, bool truth);
    static Value list(const Runtime& runtime, std::initializer_list<Value> items = {});
    static Value map(const Runtime& runtime, std::initializer_list<Item> items = {});
    static Value set(const Runtime& runtime) { return {Ref::checked(PySet_New(nullptr)), runtime}; }

    void append(const Value& item) const;              // to a list
    void truncate(Py_ssize_t size) const;              // a list
    void add(const Value& item) const;                 // to a set
    void set_item(Word key, const Value& item) const;  // of a map
    void set_item(const Value& key, const Value& item) const;

private:
    [[nodiscard]] Value own(PyObject* result) const { return {Ref::checked(result), *runtime_}; }
    [[nodiscard]] Value share(PyObject* borrowed) const { return {Ref::borrow(borrowed), *runtime_}; }
    [[nodiscard]] Value called(const char* method) const;
    template <std::size_t Count>
    [[nodiscard]] std::array<Value, Count> unpack() const;

    Ref object_;
    const Runtime* runtime_ = nullptr;
};

// An item of a map, for Value::map.
struct Value::Item {
    Word key;
    Value value;
};

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
void Value::for_each_item(Visit visit) const {
    if (!PyDict_CheckExact(object_.get())) {
        called("items").for_each([&](const Value& pair) {
            const auto [key, item] = pair.unpack2();
            visit(key, item);
        });
        return;
    }
    const Py_ssize_t size = PyDict_Size(object_.get());
    PyObject* key = nullptr;
    PyObject* item = nullptr;
    std::size_t step = 0;
    for (Py_ssize_t position = 0; PyDict_Next(object_.get(), &position, &key, &item) != 0;) {
        visit(share(key), share(item));
        check_signals_at(step++);
        if (PyDict_Size(object_.get()) != size) {
            raise_runtime_error("dictionary changed size during iteration");
        }
    }
}

}  // namespace quillgen
