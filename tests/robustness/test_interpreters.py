"""Several interpreters in a process, at the same time and in sequence."""

import pathlib
import shutil
import subprocess
import sys
import sysconfig

import pytest

import quillgen
from robustness.isolated import TESTS, environment, run

CODE = """
import hashlib, sys
import quillgen, quillgen_lib
from robustness.outcomes import CALLS, base_documents, outcome, plain
said = [plain(outcome(call, d)) for d in base_documents().values() for call in CALLS.values()]
print(hashlib.sha256(repr(said).encode("utf-8", "surrogatepass")).hexdigest(), flush=True)
"""


def test_second_interpreter():
    said = run(f"""
import _xxsubinterpreters as interpreters
code = {CODE!r}
exec(code)
others = [interpreters.create() for _ in range(3)]
for other in others * 2:
    interpreters.run_string(other, code)
for other in others:
    interpreters.destroy(other)
exec(code)
""")
    assert len(said.split()) == 8 and len(set(said.split())) == 1


def test_errors_of_two_interpreters_are_apart():
    run("""
import _xxsubinterpreters as interpreters
import quillgen
code = '''
import quillgen
try:
    quillgen.compile({"nodes": [], "out": {}})
except quillgen.Unsupported:
    pass
quillgen.Unsupported.mark = 1
'''
other = interpreters.create()
interpreters.run_string(other, code)
assert not hasattr(quillgen.Unsupported, "mark")
interpreters.destroy(other)
try:
    quillgen.compile({"nodes": [], "out": {}})
except quillgen.Unsupported:
    pass
""")


def test_module_made_twice_in_one_interpreter():
    run("""
import sys
import quillgen
first = quillgen
del sys.modules["quillgen"], sys.modules["quillgen_lib"]
import quillgen
assert quillgen is not first and quillgen.Unsupported is not first.Unsupported
for module in (first, quillgen):
    try:
        module.compile({"nodes": [], "out": {}})
    except module.Unsupported:
        pass
del first
import gc; gc.collect()
quillgen.param_name("a b", "c")
""")


@pytest.fixture(scope="module")
def program(tmp_path_factory):
    path = tmp_path_factory.mktemp("embedding") / "embedding"
    config = sysconfig.get_config_var
    library = pathlib.Path(config("LIBDIR"))
    if config("Py_ENABLE_SHARED"):
        linked = [f"-L{library}", f"-lpython{config('LDVERSION')}", f"-Wl,-rpath,{library}"]
    else:
        linked = [str(pathlib.Path(config("LIBPL")) / config("LIBRARY")), "-Wl,--export-dynamic"]
    subprocess.run(
        [
            *config("CC").split()[:1],
            f"-I{sysconfig.get_path('include')}",
            "-o",
            path,
            TESTS / "robustness" / "embedding.c",
            *linked,
            *config("LIBS").split(),
            "-lm",
        ],
        check=True,
    )
    return path


def test_embedded_finalised_and_initialised_again(program):
    folders = [folder for folder in sys.path if folder]
    env = environment(PYTHONHOME=sys.base_prefix)
    env["PYTHONPATH"] += ":" + ":".join(folders)
    done = subprocess.run([program], env=env, capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr[-2000:]
    said = done.stdout.split()
    assert len(said) == 18 and set(said) == {run(CODE)}


CLEARED = """
import ctypes, sys
import quillgen

class Definition(ctypes.Structure):
    _fields_ = [("base", ctypes.c_void_p * 5), ("name", ctypes.c_char_p), ("doc", ctypes.c_char_p),
                ("size", ctypes.c_ssize_t), ("methods", ctypes.c_void_p), ("slots", ctypes.c_void_p),
                ("traverse", ctypes.c_void_p), ("clear", ctypes.PYFUNCTYPE(ctypes.c_int, ctypes.py_object))]

get_definition = ctypes.pythonapi.PyModule_GetDef
get_definition.argtypes, get_definition.restype = [ctypes.py_object], ctypes.POINTER(Definition)
definition = get_definition(quillgen).contents
assert definition.name == b"quillgen"
assert quillgen.tex_input("a").startswith("T_a_")
definition.clear(quillgen)
for call in (lambda: quillgen.compile({"nodes": [], "out": {}}), lambda: quillgen.parts({"nodes": [], "out": {}}),
             lambda: quillgen.assemble([], set(), set()), lambda: quillgen.tex_input("a")):
    try:
        call()
        print("no error")
    except RuntimeError as error:
        print(error)
"""


def test_call_of_a_module_that_has_been_cleared():
    assert run(CLEARED).splitlines() == ["quillgen has been cleared"] * 4


OWN_LOCK = """
import sys
try:
    import _interpreters as interpreters
except ImportError:
    import _xxsubinterpreters as interpreters
code = '''CODE'''
exec(code)
for _ in range(2):
    other = interpreters.create()  # with a lock of its own, from 3.12 on
    interpreters.run_string(other, code)
    interpreters.destroy(other)
"""


def runs(python):
    return subprocess.run([python, "-c", ""], capture_output=True, check=False).returncode == 0


def pythons():
    """Pythons 3.12 and newer: this one, those on the path, and those of pyenv."""
    found = [sys.executable] if sys.version_info >= (3, 12) else []
    found += filter(None, (shutil.which(f"python3.{minor}") for minor in range(12, 16)))
    found += map(str, sorted(pathlib.Path.home().glob(".pyenv/versions/3.1[2-9].*/bin/python")))
    return [python for python in found if runs(python)]


@pytest.mark.parametrize("python", pythons() or [None])
def test_interpreter_with_a_lock_of_its_own(python):
    if python is None:
        pytest.skip("no CPython of 3.12 or newer is here")
    folder = str(pathlib.Path(quillgen.__file__).parent)
    code = CODE.replace("import hashlib, sys", f"import hashlib, sys\nsys.path[:0] = [{folder!r}, {str(TESTS)!r}]")
    done = subprocess.run([python, "-c", OWN_LOCK.replace("CODE", code)], capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr[-2000:]
    assert len(done.stdout.split()) == 3 and len(set(done.stdout.split())) == 1
