#include "core/document/runtime.h"

#include "core/document/value.h"

namespace quillgen {

namespace {

Ref import(const char* module) { return Ref::checked(PyImport_ImportModule(module)); }

Ref call(const Ref& owner, const char* name, PyObject* argument) {
    const Ref function = Ref::checked(PyObject_GetAttrString(owner.get(), name));
    return Ref::checked(PyObject_CallFunctionObjArgs(function.get(), argument, nullptr));
}

}  // namespace

Runtime::Runtime() : words_(WordEntry::last()->index + 1) {
    for (const WordEntry* entry = WordEntry::last(); entry != nullptr; entry = entry->next) {
        PyObject* word = to_python(entry->text).release();
        PyUnicode_InternInPlace(&word);
        words_[entry->index] = Ref::steal(word);
        word_index_.set(word, entry->index);
    }
    re_ = import("re");
    hashlib_ = import("hashlib");
    math_ = import("math");
    library_ = import("quillgen_lib");
    unsupported_ = Ref::checked(PyErr_NewExceptionWithDoc(
        "quillgen.Unsupported", "The graph cannot be translated; the message says why.", PyExc_Exception, nullptr));
}

std::string Runtime::re_sub(Text pattern, Text replacement, Text text) const {
    const Ref replaced = Ref::checked(PyObject_CallMethod(re_.get(), "sub", "OOO", to_python(pattern).get(),
                                                          to_python(replacement).get(), to_python(text).get()));
    std::string storage;
    return std::string(to_text(replaced.get(), storage));
}

std::string Runtime::sha1_digits(PyObject* name, std::size_t digits) const {
    const Ref bytes = Ref::checked(PyUnicode_AsUTF8String(name));
    const Ref digest = call(hashlib_, "sha1", bytes.get());
    const Ref hexadecimal = Ref::checked(PyObject_CallMethod(digest.get(), "hexdigest", nullptr));
    std::string storage;
    return std::string(to_text(hexadecimal.get(), storage).substr(0, digits));
}

long Runtime::ceil_log2(double value) const {
    const Ref number = Ref::checked(PyFloat_FromDouble(value));
    const Ref two = Ref::checked(PyFloat_FromDouble(2.0));
    const Ref log_value = call(math_, "log", number.get());
    const Ref log_two = call(math_, "log", two.get());
    const Ref quotient = Ref::checked(PyNumber_TrueDivide(log_value.get(), log_two.get()));
    const Ref rounded = call(math_, "ceil", quotient.get());
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
    PyErr_SetObject(unsupported_.get(), to_python(message).get());
    throw PythonError{};
}

int Runtime::traverse(visitproc visit, void* arg) const {
    for (const Ref* held : {&re_, &hashlib_, &math_, &library_, &unsupported_}) {
        Py_VISIT(held->get());
    }
    return 0;
}

}  // namespace quillgen
