"""Work that takes too long or too much memory: Ctrl-C ends it within a second, and out of memory is a MemoryError."""

import subprocess
import sysconfig

import pytest

from robustness.isolated import TESTS, run

# Each nested bump triples the work, so forty of them never end.
ENDLESS = """
import itertools, os, resource, signal, sys, threading, time
import quillgen
from golden.documents import link, material, node

def bumps(depth):
    nodes = [node("Bump", id=f"Bump {i}") for i in range(depth)]
    for reader, source in zip(nodes, nodes[1:]):
        reader["in"]["Height"] = link(source, "Normal")
    nodes[-1]["in"]["Height"] = link(node("TexNoise"), "Fac")
    return material(*nodes, node("TexNoise"))

def ramp(stops):
    return {"stops": stops, "interp": "LINEAR", "mode": "RGB"}

class Tables(list):  # that one cannot get to the end of
    def __init__(self, tables):
        super().__init__([[0.5, 1.0]])
        self.tables = tables
    def __iter__(self):
        return self.tables

def curve(tables):
    return {"tables": Tables(tables), "min": 0.0, "max": 1.0}

STOP = [0.5, [0.1, 0.2, 0.3, 1.0]]
small = bumps(2)
before = quillgen.compile(small)
"""

# Times are CPU times, which don't depend on the machine's load.
INTERRUPTED = """
signal.signal(signal.SIGPROF, lambda *_: signal.raise_signal(signal.SIGINT))
for attempt in range(3):
    signal.setitimer(signal.ITIMER_PROF, 0.3)
    started = time.process_time()
    try:
        CALL
        print("it has an end")
    except KeyboardInterrupt:
        print(time.process_time() - started < 1.3)
    assert quillgen.compile(small) == before
"""

LONG_WORK = {
    "a material": "quillgen.compile(bumps(40))",
    "parts": "quillgen.parts(bumps(40), 'surface')",
    "a displacement": "quillgen.compile({**bumps(40), 'out': {'surface': ['TexNoise', 'Fac'], "
    "'displacement': ['Bump 0', 'Normal']}})",
    "a handler of the host's": "quillgen.compile({**bumps(40), 'settings': {'displacement': 'BOTH'}})",
    "stops that have no end": "quillgen.compile(material(node('ValToRGB', ramp=ramp(itertools.repeat(STOP)))))",
    "tables that have no end": "quillgen.compile(material(node('RGBCurve', curve=curve(itertools.repeat([0.5])))))",
}


@pytest.mark.parametrize("call", LONG_WORK.values(), ids=LONG_WORK)
def test_ctrl_c(call):
    assert run(ENDLESS + INTERRUPTED.replace("CALL", call)).split() == ["True"] * 3


@pytest.mark.parametrize("call", ["quillgen.compile(many)", "quillgen.parts(many, 'surface', True)"])
def test_signals_are_looked_at_all_the_time(call):
    """Covers reading many stops, writing their statements, sorting and listing their inputs. A timer raises a signal
    every few milliseconds, and the interval between two that Python handles must be short."""
    said = run(
        ENDLESS
        + """
import gc
gc.disable()  # a collection of millions of objects takes a third of the time, and looks at no signals
many = material(node("ValToRGB", ramp=ramp([STOP] * 300_000)))
seen = []
signal.signal(signal.SIGPROF, lambda *_: seen.append(time.process_time()))
signal.setitimer(signal.ITIMER_PROF, 0.002, 0.002)
started = time.process_time()
result = CALL
whole = time.process_time() - started
signal.setitimer(signal.ITIMER_PROF, 0)
assert len(result["inputs"]) > 600_000
times = [started, *seen, started + whole]
print(max(later - earlier for earlier, later in zip(times, times[1:])) / whole)

for share in (0.1, 0.3, 0.5):
    signal.signal(signal.SIGPROF, lambda *_: signal.raise_signal(signal.SIGINT))
    signal.setitimer(signal.ITIMER_PROF, share * whole)
    try:
        CALL
        print("it has come to its end")
    except KeyboardInterrupt:
        print("interrupted")
    assert quillgen.compile(small) == before
""".replace("CALL", call)
    )
    longest, *ends = said.split("\n")
    assert float(longest) < 0.15
    assert ends == ["interrupted"] * 3


def test_memory_that_ends():
    said = run(
        ENDLESS
        + """
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
"""
    )
    assert said.split() == ["MemoryError"] * 9


@pytest.fixture(scope="session")
def failing_malloc(tmp_path_factory):
    library = tmp_path_factory.mktemp("malloc") / "failing_malloc.so"
    compiler = sysconfig.get_config_var("CC").split()[0]
    subprocess.run(
        [compiler, "-shared", "-fPIC", "-O1", "-o", library, TESTS / "robustness" / "failing_malloc.c"], check=True
    )
    return library


@pytest.mark.parametrize("count", [1, 5, 1000])
def test_every_allocation_that_can_fail(failing_malloc, count):
    """Repeats a call, allowing one more successful allocation each time, until it succeeds."""
    said = run(
        """
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
""",
        count,
        LD_PRELOAD=str(failing_malloc),
        PYTHONMALLOC="malloc",
    )
    assert int(said) > 1000


def test_every_allocation_of_an_import_that_can_fail(failing_malloc):
    said = run(
        """
import ctypes, gc, importlib.util
import quillgen, quillgen_lib
from golden.documents import material, node

fail_after = ctypes.CDLL(None).fail_after
fail_after.argtypes = [ctypes.c_long, ctypes.c_long]
document = material(node("Math"), node("TexNoise"))
wanted = quillgen.compile(document)
gc.disable()

def load(spec, allocations):
    try:
        fail_after(allocations, 1)
        module = importlib.util.module_from_spec(spec)
        spec.loader.exec_module(module)
        return module
    except (MemoryError, ctypes.ArgumentError):
        return None

def recover():
    while True:
        try:
            return fail_after(0, 0)
        except (MemoryError, ctypes.ArgumentError):
            pass

for name in ("quillgen_lib", "quillgen"):
    spec = importlib.util.find_spec(name)
    allocations, module = 0, None
    while module is None:
        module = load(spec, allocations)
        recover()
        allocations += 1
        if allocations % 100 == 0:
            gc.collect()
    print(allocations)
    if name == "quillgen":
        assert module is not quillgen and module.compile(document) == wanted == quillgen.compile(document)
    else:
        assert module.resolve(["gabor"]) == quillgen_lib.resolve(["gabor"])
""",
        LD_PRELOAD=str(failing_malloc),
        PYTHONMALLOC="malloc",
    )
    library, translator = map(int, said.split())
    assert library > 100 and translator > 1000
