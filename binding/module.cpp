// The module's entry points: the functions that Python calls. C++ exceptions are converted to Python's only here.
#include <array>
#include <exception>
#include <new>
#include <span>

#include "binding/arguments.h"
#include "binding/docstrings.h"
#include "closures/closure.h"
#include "closures/compile.h"
#include "nodes/texture/image.h"

namespace quillgen {

namespace {

struct State {
    Module* module;  // null before the module is executed, and once it has been cleared
};

State& state_of(PyObject* self) { return *static_cast<State*>(PyModule_GetState(self)); }

// RuntimeError if the interpreter has already cleared the module, in a garbage collection or at finalization.
const Module& module_of(PyObject* self) {
    if (state_of(self).module == nullptr) {
        raise_runtime_error("quillgen has been cleared");
    }
    return *state_of(self).module;
}

// It is not noexcept: while the interpreter finalizes, it terminates a daemon thread that requests the GIL, and before
// 3.14 it does so by unwinding the thread's stack through this frame.
template <class Body>
PyObject* guarded(Body body) {
    // The C++ runtime allocates a thread's exception state at its first use, and terminates the process if there is no
    // memory for it. This call makes it allocate the state now, before memory can run out.
    [[maybe_unused]] const volatile int uncaught = std::uncaught_exceptions();
    try {
        return body().release();
    } catch (const PythonError&) {
        return nullptr;
    } catch (const std::bad_alloc&) {
        return PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
        return nullptr;
    }
}

PyObject* py_compile(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* names) {
    return guarded([&]() -> Ref {
        constexpr std::array<const char*, 3> kNames = {"ir", "mode", "use_params"};
        const Arguments<3> given("compile", kNames, 1, args, count, names);
        const Module& module = module_of(self);
        const Runtime& runtime = module.runtime;
        const Value mode = given[1] != nullptr ? borrowed(runtime, given[1]) : Value::word(runtime, "surface"_w);
        const bool use_params = given[2] == nullptr || borrowed(runtime, given[2]).truthy();
        return compile(module, borrowed(runtime, given[0]), mode, use_params).take();
    });
}

PyObject* py_parts(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* names) {
    return guarded([&]() -> Ref {
        constexpr std::array<const char*, 4> kNames = {"ir", "mode", "use_params", "uv_bias"};
        const Arguments<4> given("parts", kNames, 1, args, count, names);
        const Module& module = module_of(self);
        const Runtime& runtime = module.runtime;
        const Value mode = given[1] != nullptr ? borrowed(runtime, given[1]) : Value::word(runtime, "emission"_w);
        const bool use_params = given[2] != nullptr && borrowed(runtime, given[2]).truthy();
        const Value uv_bias = given[3] != nullptr ? borrowed(runtime, given[3]) : Value();
        return parts(module, borrowed(runtime, given[0]), mode, use_params, uv_bias).take();
    });
}

PyObject* py_assemble(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* names) {
    return guarded([&]() -> Ref {
        constexpr std::array<const char*, 6> kNames = {"bodies", "structs", "need", "selector", "wrap", "extra_lib"};
        const Arguments<6> given("assemble", kNames, 3, args, count, names);
        const Module& module = module_of(self);
        const Runtime& runtime = module.runtime;
        const auto argument = [&](std::size_t i) { return borrowed(runtime, given[i]); };
        const Value selector = given[3] != nullptr ? argument(3) : Value();
        const Value wrap = given[4] != nullptr ? argument(4) : Value::text(runtime, "%s");
        const Value extra_lib = given[5] != nullptr ? argument(5) : Value();
        return assemble(module, argument(0), argument(1), argument(2), selector, wrap, extra_lib).take();
    });
}

PyObject* py_param_name(PyObject* /*self*/, PyObject* const* args, Py_ssize_t count, PyObject* names) {
    return guarded([&]() -> Ref {
        constexpr std::array<const char*, 2> kNames = {"node_id", "socket"};
        const Arguments<2> given("param_name", kNames, 2, args, count, names);
        std::string text;
        append_formatted(text, given[0]);
        text += "__";
        append_formatted(text, given[1]);
        std::string name = "P_";
        append_identifier(name, text);
        return to_python(name);
    });
}

PyObject* py_tex_input(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* names) {
    return guarded([&]() -> Ref {
        constexpr std::array<const char*, 1> kNames = {"image_name"};
        const Arguments<1> given("tex_input", kNames, 1, args, count, names);
        const Runtime& runtime = module_of(self).runtime;
        return to_python(tex_input(runtime, borrowed(runtime, given[0])));
    });
}

int exec(PyObject* self) {
    const Ref result = Ref::steal(guarded([&]() -> Ref {
        const Module& module = *(state_of(self).module = new Module(kClosureText));
        checked(PyModule_AddObjectRef(self, "Unsupported", module.runtime.Unsupported()));
        const Ref types = Ref::checked(PySequence_Tuple(module.registry.types().object()));
        checked(PyModule_AddObjectRef(self, "NODES", types.get()));
        checked(PyModule_AddStringConstant(self, "__version__", QUILLGEN_VERSION));
        return Ref::borrow(Py_None);
    }));
    return result ? 0 : -1;
}

int traverse(PyObject* self, visitproc visit, void* arg) {
    const Module* module = state_of(self).module;
    return module == nullptr ? 0 : module->runtime.traverse(visit, arg);
}

int clear(PyObject* self) {
    delete std::exchange(state_of(self).module, nullptr);
    return 0;
}

void release(void* self) { clear(static_cast<PyObject*>(self)); }

PyCFunction keyword_function(PyObject* (*function)(PyObject*, PyObject* const*, Py_ssize_t, PyObject*)) {
    return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

constexpr int kFlags = METH_FASTCALL | METH_KEYWORDS;

PyMethodDef methods[] = {
    {"compile", keyword_function(py_compile), kFlags, kCompileDoc},
    {"parts", keyword_function(py_parts), kFlags, kPartsDoc},
    {"assemble", keyword_function(py_assemble), kFlags, kAssembleDoc},
    {"param_name", keyword_function(py_param_name), kFlags, kParamNameDoc},
    {"tex_input", keyword_function(py_tex_input), kFlags, kTexInputDoc},
    {nullptr, nullptr, 0, nullptr},
};

#ifndef Py_mod_multiple_interpreters
// Added in CPython 3.12, whose headers omit it for the limited API of 3.11.
#define Py_mod_multiple_interpreters 3
#define Py_MOD_PER_INTERPRETER_GIL_SUPPORTED (reinterpret_cast<void*>(2))
#endif

// All state of the module is per interpreter, so it supports interpreters with their own GIL. CPython 3.11 rejects
// slots that it does not know, so it gets a definition without that slot.
PyModuleDef_Slot slots[] = {{Py_mod_exec, reinterpret_cast<void*>(exec)}, {0, nullptr}};
PyModuleDef_Slot slots_of_312[] = {{Py_mod_exec, reinterpret_cast<void*>(exec)},
                                   {Py_mod_multiple_interpreters, Py_MOD_PER_INTERPRETER_GIL_SUPPORTED},
                                   {0, nullptr}};

PyModuleDef define(PyModuleDef_Slot* of_version) {
    return {
        PyModuleDef_HEAD_INIT, "quillgen", kModuleDoc, sizeof(State), methods, of_version, traverse, clear, release};
}
PyModuleDef definition = define(slots);
PyModuleDef definition_of_312 = define(slots_of_312);

}  // namespace

}  // namespace quillgen

PyMODINIT_FUNC PyInit_quillgen() {
    constexpr unsigned long k312 = 0x030C0000;
    return PyModuleDef_Init(Py_Version >= k312 ? &quillgen::definition_of_312 : &quillgen::definition);
}
