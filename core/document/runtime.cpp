#include "core/document/runtime.h"

#include <algorithm>

#include "core/document/value.h"

namespace quillgen {

namespace {

constexpr const char* kNotOfIdentifiers = "[^A-Za-z0-9_]";

// What that regular expression would not touch: names made of these need no call of it.
bool is_identifier_character(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

Ref import(const char* module) { return Ref::checked(PyImport_ImportModule(module)); }

Ref call(PyObject* owner, const char* name, PyObject* arguments) {
    const Ref function = Ref::checked(PyObject_GetAttrString(owner, name));
    return Ref::checked(PyObject_Call(function.get(), arguments, nullptr));
}

Ref call_with(PyObject* owner, const char* name, PyObject* argument) {
    const Ref function = Ref::checked(PyObject_GetAttrString(owner, name));
    return Ref::checked(PyObject_CallFunctionObjArgs(function.get(), argument, nullptr));
}

}  // namespace

Runtime::Runtime() {
    word_places_.reserve(kWords.size());
    for (std::size_t i = 0; i < kWords.size(); ++i) {
        words_[i] = Ref::checked(PyUnicode_InternFromString(kWords[i].data()));
        word_places_.put(words_[i].get(), static_cast<int>(i));
    }
    re_ = import("re");
    hashlib_ = import("hashlib");
    math_ = import("math");
    library_ = import("quillgen_lib");
    unsupported_ = Ref::checked(PyErr_NewExceptionWithDoc(
        "quillgen.Unsupported", "The graph cannot be translated; the message says why.", PyExc_Exception, nullptr));
    for (std::size_t i = 0; i < kWords.size(); ++i) {
        identifiers_[i] = identifier(kWords[i]);
    }
}

std::string Runtime::identifier(Text name) const {
    if (std::all_of(name.begin(), name.end(), is_identifier_character)) {
        return std::string(name);
    }
    return re_sub(kNotOfIdentifiers, "_", name);
}

std::string Runtime::identifier(PyObject* name) const {
    if (PyUnicode_Check(name) == 0) {
        return re_sub(kNotOfIdentifiers, "_", name);
    }
    std::string storage;
    return identifier(to_text(name, storage));
}

std::string Runtime::re_sub(const char* pattern, const char* replacement, Text text) const {
    return re_sub(pattern, replacement, to_python(text).get());
}

std::string Runtime::re_sub(const char* pattern, const char* replacement, PyObject* subject) const {
    const Ref arguments = Ref::checked(Py_BuildValue("(ssO)", pattern, replacement, subject));
    const Ref replaced = call(re_.get(), "sub", arguments.get());
    std::string storage;
    return std::string(to_text(replaced.get(), storage));
}

std::string Runtime::sha1_digits(PyObject* name, std::size_t digits) const {
    const Ref bytes = Ref::checked(PyUnicode_AsUTF8String(name));
    const Ref digest = call_with(hashlib_.get(), "sha1", bytes.get());
    const Ref hexadecimal = Ref::checked(PyObject_CallMethod(digest.get(), "hexdigest", nullptr));
    std::string storage;
    return std::string(to_text(hexadecimal.get(), storage).substr(0, digits));
}

long Runtime::ceil_log2(double value) const {
    const Ref number = Ref::checked(PyFloat_FromDouble(value));
    const Ref two = Ref::checked(PyFloat_FromDouble(2.0));
    const Ref log_value = call_with(math_.get(), "log", number.get());
    const Ref log_two = call_with(math_.get(), "log", two.get());
    const Ref quotient = Ref::checked(PyNumber_TrueDivide(log_value.get(), log_two.get()));
    const Ref rounded = call_with(math_.get(), "ceil", quotient.get());
    const long result = PyLong_AsLong(rounded.get());
    if (result == -1 && PyErr_Occurred() != nullptr) {
        throw PythonError{};
    }
    return result;
}

Value Runtime::library_entry(Word name) const {
    return {Ref::checked(PyObject_GetAttr(library_.get(), word(name))), *this};
}

void Runtime::raise_unsupported(Text message) const {
    const Ref text = to_python(message);
    PyErr_SetObject(unsupported_.get(), text.get());
    throw PythonError{};
}

int Runtime::traverse(visitproc visit, void* arg) const {
    for (const Ref* held : {&re_, &hashlib_, &math_, &library_, &unsupported_}) {
        Py_VISIT(held->get());
    }
    return 0;
}

Ref to_python(Text text) {
    return Ref::checked(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogatepass"));
}

Text encoded_surrogates(PyObject* string, std::string& storage) {
    if (PyErr_ExceptionMatches(PyExc_UnicodeEncodeError) == 0) {
        throw PythonError{};
    }
    PyErr_Clear();
    const Ref encoded = Ref::checked(PyUnicode_AsEncodedString(string, "utf-8", "surrogatepass"));
    char* start = nullptr;
    Py_ssize_t size = 0;
    checked(PyBytes_AsStringAndSize(encoded.get(), &start, &size));
    storage.assign(start, static_cast<std::size_t>(size));
    return storage;
}

void append_formatted(std::string& out, PyObject* object) {
    std::string storage;
    if (PyUnicode_CheckExact(object)) {
        out += to_text(object, storage);
        return;
    }
    const Ref text = Ref::checked(PyObject_Format(object, nullptr));
    out += to_text(text.get(), storage);
}

void raise_key_error(PyObject* key) {
    // A tuple given as it is would be taken for the arguments of the exception.
    if (const Ref arguments = Ref::steal(PyTuple_Pack(1, key))) {
        PyErr_SetObject(PyExc_KeyError, arguments.get());
    }
    throw PythonError{};
}

void raise_type_error(const char* message) {
    PyErr_SetString(PyExc_TypeError, message);
    throw PythonError{};
}

void raise_index_error(const char* message) {
    PyErr_SetString(PyExc_IndexError, message);
    throw PythonError{};
}

void raise_value_error(const char* message) {
    PyErr_SetString(PyExc_ValueError, message);
    throw PythonError{};
}

void raise_overflow_error(const char* message) {
    PyErr_SetString(PyExc_OverflowError, message);
    throw PythonError{};
}

void raise_recursion_error() {
    PyErr_SetString(PyExc_RecursionError, "maximum recursion depth exceeded while a node graph was evaluated");
    throw PythonError{};
}

void check_signals() { checked(PyErr_CheckSignals()); }

}  // namespace quillgen
