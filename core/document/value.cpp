#include "core/document/value.h"

#include <unordered_map>

namespace quillgen {

namespace {

// A borrowed reference to the item of a dict; null if the key is missing.
PyObject* looked_up(PyObject* map, PyObject* key) {
    PyObject* item = PyDict_GetItemWithError(map, key);
    if (item == nullptr && PyErr_Occurred() != nullptr) {
        throw PythonError{};
    }
    return item;
}

// Whether the object is a mutable container, which a document and a result must not share.
bool is_container(PyObject* object) {
    return PyList_CheckExact(object) || PyDict_CheckExact(object) || Py_IS_TYPE(object, &PySet_Type) != 0;
}

bool compare(PyObject* left, PyObject* right, int operation) {
    return checked(PyObject_RichCompareBool(left, right, operation));
}

}  // namespace

bool Value::truthy() const {
    PyObject* object = object_.get();
    if (object == nullptr || object == Py_None || object == Py_False) {
        return false;
    }
    return object == Py_True || checked(PyObject_IsTrue(object));
}

bool Value::is(Text word) const {
    if (!present()) {
        return false;
    }
    if (PyUnicode_CheckExact(object_.get())) {
        std::string storage;
        return to_text(object_.get(), storage) == word;
    }
    return compare(object_.get(), to_python(word).get(), Py_EQ);
}

bool Value::equals(const Value& other) const { return compare(object_.get(), other.object_.get(), Py_EQ); }

bool Value::less_than(double number) const {
    return compare(object_.get(), Ref::checked(PyFloat_FromDouble(number)).get(), Py_LT);
}

bool Value::greater_than(double number) const {
    return compare(object_.get(), Ref::checked(PyFloat_FromDouble(number)).get(), Py_GT);
}

bool Value::is_list_or_tuple() const {
    return present() && (PyList_Check(object_.get()) != 0 || PyTuple_Check(object_.get()) != 0);
}

void Value::check_hashable() const {
    if (PyObject_Hash(object_.get()) == -1) {
        throw PythonError{};
    }
}

// ---- items ----------------------------------------------------------------------------------

Value Value::at(Word key) const {
    PyObject* name = runtime_->word(key);
    if (PyDict_CheckExact(object_.get())) {
        if (PyObject* item = looked_up(object_.get(), name)) {
            return share(item);
        }
        raise_key_error(name);
    }
    return own(PyObject_GetItem(object_.get(), name));
}

Value Value::at(const Value& key) const { return own(PyObject_GetItem(object_.get(), key.object())); }

Value Value::item(Py_ssize_t index) const {
    PyObject* object = object_.get();
    if (PyList_CheckExact(object) && index < PyList_Size(object)) {
        return share(PyList_GetItem(object, index));
    }
    return own(PyObject_GetItem(object, Ref::checked(PyLong_FromSsize_t(index)).get()));
}

Value Value::get(Word key) const {
    PyObject* name = runtime_->word(key);
    if (PyDict_CheckExact(object_.get())) {
        PyObject* item = looked_up(object_.get(), name);
        return item != nullptr ? share(item) : Value();
    }
    // A new object as the default distinguishes a missing key from a key whose value is None.
    const Ref missing = Ref::checked(PyList_New(0));
    const Ref item = Ref::checked(PyObject_CallMethod(object_.get(), "get", "OO", name, missing.get()));
    return item.get() == missing.get() ? Value() : Value(item, *runtime_);
}

Value Value::find(Word key) const {
    if (PyDict_CheckExact(object_.get())) {
        PyObject* item = looked_up(object_.get(), runtime_->word(key));
        return item != nullptr ? share(item) : Value();
    }
    return contains(key) ? at(key) : Value();
}

bool Value::contains(Word key) const { return checked(PySequence_Contains(object_.get(), runtime_->word(key))); }

bool Value::contains(const Value& item) const { return checked(PySequence_Contains(object_.get(), item.object())); }

Py_ssize_t Value::index_of(const Value& item) const {
    const Ref place = Ref::checked(PyObject_CallMethod(object_.get(), "index", "(O)", item.object()));
    const Py_ssize_t index = PyLong_AsSsize_t(place.get());
    if (index == -1 && PyErr_Occurred() != nullptr) {
        throw PythonError{};
    }
    return index;
}

Py_ssize_t Value::size() const { return checked_size(PyObject_Size(object_.get())); }

std::size_t Value::expected_size() const {
    const bool is_plain = PyList_CheckExact(object_.get()) || PyDict_CheckExact(object_.get());
    return is_plain ? static_cast<std::size_t>(size()) : 0;
}

template <std::size_t Count>
std::array<Value, Count> Value::unpack() const {
    std::array<Value, Count> result;
    if (PyList_CheckExact(object_.get()) && PyList_Size(object_.get()) == Count) {
        for (std::size_t i = 0; i < Count; ++i) {
            result[i] = share(PyList_GetItem(object_.get(), static_cast<Py_ssize_t>(i)));
        }
        return result;
    }
    // At most one item too many is read, because the iterator may be infinite.
    const Ref iterator = Ref::checked(PyObject_GetIter(object_.get()));
    for (std::size_t i = 0; i <= Count; ++i) {
        const Ref item = Ref::steal(PyIter_Next(iterator.get()));
        if (!item && PyErr_Occurred() != nullptr) {
            throw PythonError{};
        }
        if (static_cast<bool>(item) != (i < Count)) {
            raise_value_error(i < Count ? "not enough values to unpack" : "too many values to unpack");
        }
        if (item) {
            result[i] = {item, *runtime_};
        }
    }
    return result;
}

std::array<Value, 2> Value::unpack2() const { return unpack<2>(); }

std::array<Value, 3> Value::unpack3() const { return unpack<3>(); }

// ---- conversions ----------------------------------------------------------------------------

double Value::as_float() const { return PyFloat_AsDouble(to_float().object()); }

Value Value::to_float() const { return is_float() ? *this : own(PyNumber_Float(object_.get())); }

Value Value::to_int() const { return own(PyNumber_Long(object_.get())); }

Value Value::lower() const { return called("lower"); }

Value Value::call(const Value& argument) const {
    return own(PyObject_CallFunctionObjArgs(object_.get(), argument.object(), nullptr));
}

Value Value::remainder(const Value& operand) const { return own(PyNumber_Remainder(object_.get(), operand.object())); }

Value Value::sorted() const {
    Value list = own(PySequence_List(object_.get()));
    checked(PyList_Sort(list.object()));
    return list;
}

Value Value::joined() const { return own(PyUnicode_Join(to_python("\n").get(), object_.get())); }

Value Value::copied_list() const {
    Value list = own(PySequence_List(object_.get()));
    for (Py_ssize_t i = 0; i < PyList_Size(list.object()); ++i) {
        if (is_container(PyList_GetItem(list.object(), i))) {
            return list.unshared();
        }
    }
    return list;
}

// Each container is copied once, without recursion, because containers may be nested to any depth or hold themselves.
Value Value::unshared() const {
    if (!is_container(object_.get())) {
        return *this;
    }
    std::vector<Ref> copies;
    std::unordered_map<PyObject*, std::size_t> indices;  // container -> index of its copy
    const auto copy_of = [&](PyObject* item) {
        if (!is_container(item)) {
            return Ref::borrow(item);
        }
        const auto [known, is_new] = indices.try_emplace(item, copies.size());
        if (is_new) {
            copies.push_back(Ref::checked(PyList_CheckExact(item)   ? PySequence_List(item)
                                          : PyDict_CheckExact(item) ? PyDict_Copy(item)
                                                                    : PySet_New(item)));
        }
        return copies[known->second];
    };
    Value result = {copy_of(object_.get()), *runtime_};
    // NOLINTNEXTLINE(modernize-loop-convert): the list grows while it is gone through
    for (std::size_t i = 0; i < copies.size(); ++i) {
        const Ref copy = copies[i];
        if (PyList_CheckExact(copy.get())) {
            for (Py_ssize_t j = 0; j < PyList_Size(copy.get()); ++j) {
                checked(PyList_SetItem(copy.get(), j, copy_of(PyList_GetItem(copy.get(), j)).release()));
            }
        } else if (PyDict_CheckExact(copy.get())) {
            const Ref keys = Ref::checked(PyDict_Keys(copy.get()));
            for (Py_ssize_t j = 0; j < PyList_Size(keys.get()); ++j) {
                PyObject* const key = PyList_GetItem(keys.get(), j);
                const Ref item = Ref::checked(PyObject_GetItem(copy.get(), key));
                checked(PyDict_SetItem(copy.get(), key, copy_of(item.get()).get()));
            }
        }
    }
    return result;
}

Text Value::text(std::string& storage) const {
    if (!is_str()) {
        raise_type_error("expected a string");
    }
    return to_text(object_.get(), storage);
}

Text Value::formatted(std::string& storage) const {
    if (PyUnicode_CheckExact(object_.get())) {
        return to_text(object_.get(), storage);
    }
    append_formatted(storage, object_.get());
    return storage;
}

Value Value::called(const char* method) const { return own(PyObject_CallMethod(object_.get(), method, nullptr)); }

// ---- new values -----------------------------------------------------------------------------

Value Value::number(const Runtime& runtime, double number) {
    return {Ref::checked(PyFloat_FromDouble(number)), runtime};
}

Value Value::integer(const Runtime& runtime, long number) { return {Ref::checked(PyLong_FromLong(number)), runtime}; }

Value Value::boolean(const Runtime& runtime, bool truth) { return {Ref::borrow(truth ? Py_True : Py_False), runtime}; }

Value Value::list(const Runtime& runtime, std::initializer_list<Value> items) {
    const Ref list = Ref::checked(PyList_New(static_cast<Py_ssize_t>(items.size())));
    Py_ssize_t i = 0;
    for (const Value& item : items) {
        checked(PyList_SetItem(list.get(), i++, Ref(item.object_).release()));
    }
    return {list, runtime};
}

Value Value::map(const Runtime& runtime, std::initializer_list<Item> items) {
    Value map = {Ref::checked(PyDict_New()), runtime};
    for (const Item& item : items) {
        map.set_item(item.key, item.value);
    }
    return map;
}

void Value::append(const Value& item) const { checked(PyList_Append(object_.get(), item.object())); }

void Value::truncate(Py_ssize_t size) const {
    checked(PyList_SetSlice(object_.get(), size, PyList_Size(object_.get()), nullptr));
}

void Value::add(const Value& item) const { checked(PySet_Add(object_.get(), item.object())); }

void Value::set_item(Word key, const Value& item) const {
    checked(PyDict_SetItem(object_.get(), runtime_->word(key), item.object()));
}

void Value::set_item(const Value& key, const Value& item) const {
    checked(PyDict_SetItem(object_.get(), key.object(), item.object()));
}

}  // namespace quillgen
