// A test module of the core and one node type. It shows that the core doesn't depend on the code that uses it.
#include "core/gen/gen.h"

namespace quillgen {

namespace {

void _twice(Gen& g, Node& n) { g.set(n, "Value"_w, VALUE, "2.0 * $0", g.inp(n, "Value"_w, VALUE)); }

const node nodes[] = {{{"Twice"}, _twice}};

// translate(document) returns the statements of the output that `surface` names, and the expression of that output.
PyObject* translate(PyObject* /*self*/, PyObject* document) {
    try {
        const Module module({"Closure", "no_closure()"});
        Gen g(module, {Ref::borrow(document), module.runtime}, true);
        const Bound surface = g.output(g.ir.at("out"_w).at("surface"_w));
        return Value::list(module.runtime,
                           {Value::text(module.runtime, g.body()), Value::text(module.runtime, surface.text)})
            .take()
            .release();
    } catch (const PythonError&) {
        return nullptr;
    }
}

PyMethodDef methods[] = {{"translate", translate, METH_O, nullptr}, {nullptr, nullptr, 0, nullptr}};
PyModuleDef_Slot slots[] = {{0, nullptr}};
PyModuleDef definition = {PyModuleDef_HEAD_INIT, "core_alone", nullptr, 0, methods, slots, nullptr, nullptr, nullptr};

}  // namespace

}  // namespace quillgen

PyMODINIT_FUNC PyInit_core_alone() { return PyModuleDef_Init(&quillgen::definition); }
