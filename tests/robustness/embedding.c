/* A program with Python inside, as Blender is one: translates in the main interpreter, in two more at once, and again
   after everything has been finalised and initialised anew. Prints what each of them got. */
#include <Python.h>

#include <stdio.h>
#include <stdlib.h>

static const char *const work =
    "import sys, hashlib, quillgen, quillgen_lib\n"
    "from robustness.outcomes import CALLS, base_documents, outcome, plain\n"
    "said = [plain(outcome(call, d)) for d in base_documents().values() for call in CALLS.values()]\n"
    "print(hashlib.sha256(repr(said).encode('utf-8', 'surrogatepass')).hexdigest(), flush=True)\n"
    "try:\n"
    "    quillgen.compile({'nodes': [], 'out': {}})\n"
    "except quillgen.Unsupported as error:\n"
    "    assert type(error) is quillgen.Unsupported\n";

static void run(void) {
    if (PyRun_SimpleString(work) != 0) {
        exit(1);
    }
}

static void translate_in_several(void) {
    PyThreadState *main_state = PyThreadState_Get();
    run();
    PyThreadState *first = Py_NewInterpreter();
    run();
    PyThreadState *second = Py_NewInterpreter();
    run();
    PyThreadState_Swap(first);
    run();
    Py_EndInterpreter(first);
    PyThreadState_Swap(second);
    run();
    Py_EndInterpreter(second);
    PyThreadState_Swap(main_state);
    run();
}

int main(void) {
    for (int round = 0; round < 3; ++round) {
        Py_Initialize();
        translate_in_several();
        if (Py_FinalizeEx() != 0) {
            return 2;
        }
    }
    return 0;
}
