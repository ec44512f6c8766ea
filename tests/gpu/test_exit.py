"""A process that used the compiler exits, with the right status."""

import os
import pathlib
import subprocess
import sys

SCRIPT = """
import atexit, sys, dxc
atexit.register(print, "last words")
dxc.compile_hlsl("[numthreads(1, 1, 1)] void main() {}")
sys.exit(7)
"""


def test_the_compiler_is_not_asked_to_clean_up():
    run = subprocess.run(
        [sys.executable, "-c", SCRIPT],
        cwd=pathlib.Path(__file__).parent,
        capture_output=True,
        text=True,
        timeout=100,
        env={**os.environ, "LD_DEBUG": "files"},
    )
    assert (run.returncode, run.stdout) == (7, "last words\n")
    assert "calling init" in run.stderr and "libdxcompiler" in run.stderr
    assert not [line for line in run.stderr.splitlines() if "calling fini" in line and "libdxcompiler" in line]
