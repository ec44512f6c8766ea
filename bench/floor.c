// The least that a translation can cost: reading what it reads, and making what it makes from finished strings.
#define Py_LIMITED_API 0x030B0000
#define PY_SSIZE_T_CLEAN
#include <Python.h>

// A copy of a template: maps, lists and sets are made anew; a pair is a separator and a list of strings to be joined
// with it; a tuple of one element stands for that very object.
static PyObject* make(PyObject* form) {
    if (PyDict_CheckExact(form)) {
        PyObject* map = PyDict_New();
        PyObject *key, *value;
        Py_ssize_t at = 0;
        while (map != NULL && PyDict_Next(form, &at, &key, &value)) {
            PyObject* made = make(value);
            if (made == NULL || PyDict_SetItem(map, key, made) < 0) {
                Py_CLEAR(map);
            }
            Py_XDECREF(made);
        }
        return map;
    }
    if (PyList_CheckExact(form)) {
        const Py_ssize_t size = PyList_Size(form);
        PyObject* list = PyList_New(size);
        for (Py_ssize_t i = 0; list != NULL && i < size; ++i) {
            PyObject* made = make(PyList_GetItem(form, i));
            if (made == NULL || PyList_SetItem(list, i, made) < 0) {
                Py_CLEAR(list);
            }
        }
        return list;
    }
    if (PyTuple_CheckExact(form)) {
        if (PyTuple_Size(form) == 1) {
            return Py_NewRef(PyTuple_GetItem(form, 0));
        }
        return PyUnicode_Join(PyTuple_GetItem(form, 0), PyTuple_GetItem(form, 1));
    }
    return PyAnySet_CheckExact(form) ? PySet_New(form) : Py_NewRef(form);
}

// replay(reads, form): `reads` alternates containers and keys.
static PyObject* replay(PyObject* module, PyObject* const* args, Py_ssize_t count) {
    (void)module;
    if (count != 2) {
        PyErr_SetString(PyExc_TypeError, "replay takes reads and form");
        return NULL;
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
    return PyErr_Occurred() != NULL ? NULL : make(args[1]);
}

static PyMethodDef methods[] = {{"replay", (PyCFunction)(void (*)(void))replay, METH_FASTCALL, NULL}, {NULL, NULL, 0, NULL}};
static PyModuleDef_Slot slots[] = {{0, NULL}};
static PyModuleDef definition = {PyModuleDef_HEAD_INIT, "bench_floor", NULL, 0, methods, slots, NULL, NULL, NULL};

PyMODINIT_FUNC PyInit_bench_floor(void) { return PyModuleDef_Init(&definition); }
