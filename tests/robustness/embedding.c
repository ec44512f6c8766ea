/* Embeds Python, as Blender does. Translates in the main interpreter and in two subinterpreters that exist at the same
   time, then finalizes and initializes Python again, three rounds in all. Prints a hash of the results of each. */
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
