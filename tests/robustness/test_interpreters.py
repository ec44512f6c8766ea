"""More than one interpreter in a process: side by side, and one after the other."""
import pathlib
import subprocess
import sys
import sysconfig

import pytest

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
    subprocess.run([*config("CC").split()[:1], f"-I{sysconfig.get_path('include')}", "-o", path,
                    TESTS / "robustness" / "embedding.c", *linked, *config("LIBS").split(), "-lm"], check=True)
    return path


def test_embedded_finalised_and_initialised_again(program):
    folders = [folder for folder in sys.path if folder]
    env = environment(PYTHONHOME=sys.base_prefix)
    env["PYTHONPATH"] += ":" + ":".join(folders)
    done = subprocess.run([program], env=env, capture_output=True, text=True, timeout=120)
    assert done.returncode == 0, done.stderr[-2000:]
    said = done.stdout.split()
    assert len(said) == 18 and set(said) == {run(CODE)}
