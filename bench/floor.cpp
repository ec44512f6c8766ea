// The least that a translation can cost: reading what it reads, and making what it makes from finished texts.
#define Py_LIMITED_API 0x030B0000
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <charconv>

// Makes what a template stands for: dicts, lists and sets anew; a bytes object as a new str; a pair of a separator and
// a list as the list's strings joined with it; a tuple of one element as that very object, and all else as it is.
static PyObject* make(PyObject* form) {
    if (PyBytes_CheckExact(form)) {
        return PyUnicode_DecodeUTF8(PyBytes_AsString(form), PyBytes_Size(form), "surrogatepass");
    }
    if (PyDict_CheckExact(form)) {
        PyObject* map = PyDict_New();
        PyObject* key = nullptr;
        PyObject* value = nullptr;
        Py_ssize_t at = 0;
        while (map != nullptr && PyDict_Next(form, &at, &key, &value)) {
            PyObject* made_key = make(key);
            PyObject* made = make(value);
            if (made_key == nullptr || made == nullptr || PyDict_SetItem(map, made_key, made) < 0) {
                Py_CLEAR(map);
            }
            Py_XDECREF(made_key);
            Py_XDECREF(made);
        }
        return map;
    }
    if (PyList_CheckExact(form)) {
        const Py_ssize_t size = PyList_Size(form);
        PyObject* list = PyList_New(size);
        for (Py_ssize_t i = 0; list != nullptr && i < size; ++i) {
            PyObject* made = make(PyList_GetItem(form, i));
            if (made == nullptr || PyList_SetItem(list, i, made) < 0) {
                Py_CLEAR(list);
            }
        }
        return list;
    }
    if (PyTuple_CheckExact(form)) {
        if (PyTuple_Size(form) == 1) {
            return Py_NewRef(PyTuple_GetItem(form, 0));
        }
        PyObject* pieces = make(PyTuple_GetItem(form, 1));
        PyObject* joined = pieces == nullptr ? nullptr : PyUnicode_Join(PyTuple_GetItem(form, 0), pieces);
        Py_XDECREF(pieces);
        return joined;
    }
    return PyAnySet_CheckExact(form) ? PySet_New(form) : Py_NewRef(form);
}

// Finds the digits of a list's numbers.
static void write(PyObject* numbers) {
    char digits[32];
    const Py_ssize_t size = PyList_Size(numbers);
    for (Py_ssize_t i = 0; i < size; ++i) {
        std::to_chars(digits, digits + sizeof digits, PyFloat_AsDouble(PyList_GetItem(numbers, i)));
    }
}

// replay(reads, form, tables): `reads` alternates containers and keys, `tables` are lists of numbers.
static PyObject* replay(PyObject*, PyObject* const* args, Py_ssize_t count) {
    if (count != 3) {
        PyErr_SetString(PyExc_TypeError, "replay takes reads, form and tables");
        return nullptr;
    }
    const Py_ssize_t size = PyTuple_Size(args[0]);
    for (Py_ssize_t i = 0; i < size; i += 2) {
        PyObject* container = PyTuple_GetItem(args[0], i);
        PyObject* key = PyTuple_GetItem(args[0], i + 1);
        if (PyDict_CheckExact(container)) {
            PyDict_GetItemWithError(container, key);
        } else {
            PyList_GetItem(container, PyLong_AsSsize_t(key));
        }
    }
    for (Py_ssize_t i = 0; i < PyTuple_Size(args[2]); ++i) {
        write(PyTuple_GetItem(args[2], i));
    }
    return PyErr_Occurred() != nullptr ? nullptr : make(args[1]);
}

static PyMethodDef methods[] = {
    {"replay", reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(replay)), METH_FASTCALL, nullptr},
    {nullptr, nullptr, 0, nullptr}};
static PyModuleDef_Slot slots[] = {{0, nullptr}};
static PyModuleDef definition = {
    PyModuleDef_HEAD_INIT, "bench_floor", nullptr, 0, methods, slots, nullptr, nullptr, nullptr};

PyMODINIT_FUNC PyInit_bench_floor(void) { return PyModuleDef_Init(&definition); }
