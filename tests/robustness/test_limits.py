"""Work that takes too long or too much: Ctrl-C ends it within a second, and memory that ends is a MemoryError."""
import subprocess
import sysconfig

import pytest

from robustness.isolated import TESTS, run

# Each bump within another triples the work: forty of them have no end.
ENDLESS = """
import os, resource, signal, sys, threading, time
import quillgen
from golden.documents import link, material, node

def bumps(depth):
    nodes = [node("Bump", id=f"Bump {i}") for i in range(depth)]
    for reader, source in zip(nodes, nodes[1:]):
        reader["in"]["Height"] = link(source, "Normal")
    nodes[-1]["in"]["Height"] = link(node("TexNoise"), "Fac")
    return material(*nodes, node("TexNoise"))

small = bumps(2)
before = quillgen.compile(small)
"""

INTERRUPTED = """
started = time.monotonic()
signal.signal(signal.SIGALRM, lambda *_: signal.raise_signal(signal.SIGINT))
for attempt in range(3):
    signal.setitimer(signal.ITIMER_REAL, 0.3)
    started = time.monotonic()
    try:
        CALL
        print("it has an end")
    except KeyboardInterrupt:
        print(time.monotonic() - started < 1.3)
    assert quillgen.compile(small) == before
"""

LONG_WORK = {
    "a material": "quillgen.compile(bumps(40))",
    "parts": "quillgen.parts(bumps(40), 'surface')",
    "a displacement": "quillgen.compile({**bumps(40), 'out': {'surface': ['TexNoise', 'Fac'], "
                      "'displacement': ['Bump 0', 'Normal']}})",
    "a handler of the host's": "quillgen.compile({**bumps(40), 'settings': {'displacement': 'BOTH'}})",
}


@pytest.mark.parametrize("call", LONG_WORK.values(), ids=LONG_WORK)
def test_ctrl_c(call):
    assert run(ENDLESS + INTERRUPTED.replace("CALL", call)).split() == ["True"] * 3


def test_memory_that_ends():
    said = run(ENDLESS + """
mib = 1 << 20
used = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
for room in (1, 2, 3, 5, 8, 16, 50, 100, 300):
    resource.setrlimit(resource.RLIMIT_AS, (used + room * mib, resource.RLIM_INFINITY))
    try:
        quillgen.compile(bumps(40))
        print("it has an end")
    except MemoryError:
        print("MemoryError")
    resource.setrlimit(resource.RLIMIT_AS, (resource.RLIM_INFINITY,) * 2)
    assert quillgen.compile(small) == before
""")
    assert said.split() == ["MemoryError"] * 9


@pytest.fixture(scope="session")
def failing_malloc(tmp_path_factory):
    library = tmp_path_factory.mktemp("malloc") / "failing_malloc.so"
    compiler = sysconfig.get_config_var("CC").split()[0]
    subprocess.run([compiler, "-shared", "-fPIC", "-O1", "-o", library, TESTS / "robustness" / "failing_malloc.c"],
                   check=True)
    return library


@pytest.mark.parametrize("count", [1, 5, 1000])
def test_every_allocation_that_can_fail(failing_malloc, count):
    """One call after another, each with memory for one allocation more than the last, until one succeeds."""
    said = run("""
import ctypes, gc, sys
import quillgen
from robustness.outcomes import base_documents

fail_after = ctypes.CDLL(None).fail_after
fail_after.argtypes = [ctypes.c_long, ctypes.c_long]
documents = base_documents()
gc.disable()
failed = 0

def attempt(call, document, allocations, count):
    try:
        fail_after(allocations, count)
        return call(document)
    except (MemoryError, ctypes.ArgumentError):
        return None
    except ValueError as error:  # what hashlib makes of it
        assert "digital envelope" in str(error), error

def recover():
    while True:
        try:
            return fail_after(0, 0)
        except (MemoryError, ctypes.ArgumentError):
            pass

for title in ("ShaderNodeBump", "ShaderNodeTexImage", "ShaderNodeValToRGB", "ShaderNodeRGBCurve", "ShaderNodeMath"):
    document = documents[title]
    document["settings"] = {"displacement": "BOTH"}
    document["out"]["displacement"] = document["out"]["surface"]
    for call in (quillgen.compile, quillgen.parts):
        wanted = call(document)
        allocations, result = 0, None
        while result is None:
            result = attempt(call, document, allocations, int(sys.argv[1]))
            recover()
            allocations += 1
        assert result == wanted == call(document)
        failed += allocations
print(failed)
""", count, LD_PRELOAD=str(failing_malloc), PYTHONMALLOC="malloc")
    assert int(said) > 1000
