// quillgen_lib: the HLSL functions that generated text calls, by name.
#ifndef Py_LIMITED_API
#define Py_LIMITED_API 0x030B0000
#endif
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <cstddef>
#include <iterator>
#include <vector>

#include "lib/docstrings.h"

namespace {

// A library name and the indices in kFunctions of all the functions that it needs, ascending.
struct Unit {
    const char* name;
    std::size_t first;  // in kPlaces
    std::size_t count;
};

struct Struct {
    const char* name;
    const char* text;
};

// Each function stands after those that it calls.
#include "library_texts.inc"

// Objects created once, at import.
struct State {
    PyObject* texts;  // list of str, in the order of kFunctions
    PyObject* units;  // name -> index in kUnits
};

State& state_of(PyObject* module) { return *static_cast<State*>(PyModule_GetState(module)); }

// Marks the functions of one library name. Returns false with KeyError set if the name is unknown.
bool mark(const State& state, PyObject* name, std::vector<bool>& wanted) {
    PyObject* place = PyDict_GetItemWithError(state.units, name);
    if (place == nullptr) {
        if (PyErr_Occurred() == nullptr) {
            PyErr_Format(PyExc_KeyError, "quillgen_lib has no function named %R", name);
        }
        return false;
    }
    const Unit& unit = kUnits[PyLong_AsSize_t(place)];
    for (std::size_t i = unit.first; i < unit.first + unit.count; ++i) {
        wanted[kPlaces[i]] = true;
    }
    return true;
}

PyObject* marked_texts(const State& state, const std::vector<bool>& wanted) {
    PyObject* texts = PyList_New(0);
    for (std::size_t i = 0; texts != nullptr && i < wanted.size(); ++i) {
        if (wanted[i] && PyList_Append(texts, PyList_GetItem(state.texts, static_cast<Py_ssize_t>(i))) < 0) {
            Py_CLEAR(texts);
        }
    }
    return texts;
}

PyObject* resolve(PyObject* module, PyObject* need) {
    const State& state = state_of(module);
    std::vector<bool> wanted(std::size(kFunctions), false);
    PyObject* names = PyObject_GetIter(need);
    if (names == nullptr) {
        return nullptr;
    }
    bool known = true;
    while (PyObject* name = known ? PyIter_Next(names) : nullptr) {
        known = mark(state, name, wanted);
        Py_DECREF(name);
    }
    Py_DECREF(names);
    return PyErr_Occurred() != nullptr ? nullptr : marked_texts(state, wanted);
}

// Adds a read-only view of the map to the module. Steals the reference to the map.
int add_map(PyObject* module, const char* name, PyObject* map) {
    if (map == nullptr) {
        return -1;
    }
    PyObject* view = PyDictProxy_New(map);
    Py_DECREF(map);
    const int result = view == nullptr ? -1 : PyModule_AddObjectRef(module, name, view);
    Py_XDECREF(view);
    return result;
}

PyObject* struct_texts() {
    PyObject* map = PyDict_New();
    for (const Struct& entry : kStructs) {
        PyObject* text = map == nullptr ? nullptr : PyUnicode_FromString(entry.text);
        if (text == nullptr || PyDict_SetItemString(map, entry.name, text) < 0) {
            Py_CLEAR(map);
        }
        Py_XDECREF(text);
    }
    return map;
}

PyObject* type_words() { return Py_BuildValue("{i:s,i:s,i:s,i:s}", 1, "float", 2, "float2", 3, "float3", 4, "float4"); }

int make_texts(State& state) {
    state.texts = PyList_New(0);
    for (const char* function : kFunctions) {
        PyObject* text = state.texts == nullptr ? nullptr : PyUnicode_FromString(function);
        const int appended = text == nullptr ? -1 : PyList_Append(state.texts, text);
        Py_XDECREF(text);
        if (appended < 0) {
            return -1;
        }
    }
    state.units = PyDict_New();
    for (std::size_t i = 0; i < std::size(kUnits); ++i) {
        PyObject* place = state.units == nullptr ? nullptr : PyLong_FromSize_t(i);
        const int put = place == nullptr ? -1 : PyDict_SetItemString(state.units, kUnits[i].name, place);
        Py_XDECREF(place);
        if (put < 0) {
            return -1;
        }
    }
    return 0;
}

int exec(PyObject* module) {
    State& state = state_of(module);
    if (make_texts(state) < 0 || add_map(module, "STRUCTS", struct_texts()) < 0 ||
        add_map(module, "TYPES", type_words()) < 0 ||
        PyModule_AddStringConstant(module, "__version__", QUILLGEN_VERSION) < 0) {
        return -1;
    }
    PyObject* names = PyDict_Keys(state.units);
    PyObject* tuple = names == nullptr ? nullptr : PyList_AsTuple(names);
    const int result = tuple == nullptr ? -1 : PyModule_AddObjectRef(module, "NAMES", tuple);
    Py_XDECREF(names);
    Py_XDECREF(tuple);
    return result;
}

int traverse(PyObject* module, visitproc visit, void* arg) {
    const State& state = state_of(module);
    Py_VISIT(state.texts);
    Py_VISIT(state.units);
    return 0;
}

int clear(PyObject* module) {
    State& state = state_of(module);
    Py_CLEAR(state.texts);
    Py_CLEAR(state.units);
    return 0;
}

void release(void* module) { clear(static_cast<PyObject*>(module)); }

PyMethodDef methods[] = {{"resolve", resolve, METH_O, kResolveDoc}, {nullptr, nullptr, 0, nullptr}};

#ifndef Py_mod_multiple_interpreters
// Added in CPython 3.12; the headers hide it under the limited API of 3.11.
#define Py_mod_multiple_interpreters 3
#define Py_MOD_PER_INTERPRETER_GIL_SUPPORTED (reinterpret_cast<void*>(2))
#endif

// CPython 3.11 rejects unknown slots.
PyModuleDef_Slot slots[] = {{Py_mod_exec, reinterpret_cast<void*>(exec)}, {0, nullptr}};
PyModuleDef_Slot slots_of_312[] = {{Py_mod_exec, reinterpret_cast<void*>(exec)},
                                   {Py_mod_multiple_interpreters, Py_MOD_PER_INTERPRETER_GIL_SUPPORTED},
                                   {0, nullptr}};

PyModuleDef define(PyModuleDef_Slot* of_version) {
    return {PyModuleDef_HEAD_INIT,
            "quillgen_lib",
            kModuleDoc,
            sizeof(State),
            methods,
            of_version,
            traverse,
            clear,
            release};
}
PyModuleDef definition = define(slots);
PyModuleDef definition_of_312 = define(slots_of_312);

}  // namespace

PyMODINIT_FUNC PyInit_quillgen_lib() {
    constexpr unsigned long k312 = 0x030C0000;
    return PyModuleDef_Init(Py_Version >= k312 ? &definition_of_312 : &definition);
}
