#include "core/document/text.h"

namespace quillgen {

namespace {

// The UTF-8 of a str with lone surrogates. Called after the interpreter refused to encode it; other errors are thrown.
Text encoded_with_surrogates(PyObject* string, std::string& storage) {
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

bool is_identifier_character(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Whether the byte is the first byte of a character.
bool begins_character(char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }

}  // namespace

Ref to_python(Text text) {
    return Ref::checked(PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogatepass"));
}

Text to_text(PyObject* string, std::string& storage) {
    Py_ssize_t size = 0;
    const char* const bytes = PyUnicode_AsUTF8AndSize(string, &size);
    return bytes != nullptr ? Text(bytes, static_cast<std::size_t>(size)) : encoded_with_surrogates(string, storage);
}

void append_formatted(std::string& out, PyObject* object) {
    const Ref text =
        PyUnicode_CheckExact(object) ? Ref::borrow(object) : Ref::checked(PyObject_Format(object, nullptr));
    std::string storage;
    out += to_text(text.get(), storage);
}

void append_identifier(std::string& out, Text text) {
    for (const char c : text) {
        if (is_identifier_character(c)) {
            out += c;
        } else if (begins_character(c)) {
            out += '_';
        }
    }
}

}  // namespace quillgen
