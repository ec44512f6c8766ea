#!/usr/bin/env python3
"""Looks for memory leaks of the modules with LeakSanitizer. For tools/sanitize.

    python leaks.py

It calls everything and then, while the interpreter is still running, makes LeakSanitizer search for unreachable blocks.
Blocks that were not allocated by a call of the modules belong to the interpreter or to other modules and are ignored.
At the end a result is leaked on purpose, which must be found.
"""

import contextlib
import copy
import ctypes
import gc
import os
import pathlib
import re
import sys
import tempfile

sys.path[:0] = [str(pathlib.Path(__file__).parents[1]), str(pathlib.Path(__file__).parents[1] / "gpu")]

import quillgen
import quillgen_lib
from robustness import fuzz_mutations
from robustness.outcomes import CALLS, base_documents, outcome, paths, put

OURS = re.compile(r"quillgen::|quillgen(_lib)?\.abi3\.so|/lib/module\.cpp")


def work():
    documents = base_documents()
    for document in documents.values():
        for call in CALLS.values():
            outcome(call, document)
    for document in list(documents.values())[::5]:
        for path in list(paths(document))[::3]:
            wrong = put(copy.deepcopy(document), path, [])
            for call in CALLS.values():
                outcome(call, wrong)
    fuzz_mutations.fuzz(1500, 1)
    fuzz_mutations.fuzz(1500, 1, objects=True)
    made = quillgen.parts(documents["ShaderNodeTexVoronoi"])
    quillgen.assemble([(made["body"], made["ret"])] * 2, made["structs"], made["need"], "s")
    for name in ("a b", "\udcff", 5):
        with contextlib.suppress(TypeError, ValueError):
            quillgen.param_name(name, name)
            quillgen.tex_input(name)
    with contextlib.suppress(KeyError):
        quillgen_lib.resolve(["no such name"])
    for module in ("quillgen", "quillgen_lib"):  # imports a second copy and drops it
        kept = sys.modules.pop(module)
        __import__(module)
        sys.modules[module] = kept


def leak():
    code = quillgen.compile(base_documents()["ShaderNodeMath"])["code"]
    ctypes.pythonapi.Py_IncRef(ctypes.py_object(code))


def leaks():
    """The blocks of the modules in LeakSanitizer's report."""
    gc.collect()
    with tempfile.TemporaryFile() as file:
        sys.stderr.flush()
        kept = os.dup(2)
        os.dup2(file.fileno(), 2)
        ctypes.CDLL(None).__lsan_do_recoverable_leak_check()
        os.dup2(kept, 2)
        file.seek(0)
        blocks = file.read().decode(errors="replace").split("\n\n")
    return [block for block in blocks if "leak of" in block and OURS.search(block)]


def main():
    work()
    found = leaks()
    print("leaks:", "\n\n".join(found) or "none", flush=True)
    leak()
    proven = bool(leaks())
    print("a deliberate leak is", "seen" if proven else "NOT SEEN", flush=True)
    # Skips the leak check at exit, because the interpreter doesn't free all of its memory.
    os._exit(0 if proven and not found else 1)


if __name__ == "__main__":
    main()
