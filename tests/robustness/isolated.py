"""Runs Python code in a separate process, for tests that might crash the interpreter."""

import os
import pathlib
import subprocess
import sys

TESTS = pathlib.Path(__file__).parents[1]


def environment(**further):
    """This process's environment, with the tests' modules added to PYTHONPATH."""
    folders = [*filter(None, os.environ.get("PYTHONPATH", "").split(os.pathsep)), str(TESTS)]
    return {**os.environ, "PYTHONPATH": os.pathsep.join(folders), **further}


def run(code, *arguments, timeout=120, **env):
    """Runs the code and returns its output. Fails unless it exits with status 0."""
    command = [sys.executable, "-X", "faulthandler", "-c", code, *map(str, arguments)]
    done = subprocess.run(command, env=environment(**env), capture_output=True, text=True, timeout=timeout)
    assert done.returncode == 0, (done.returncode, done.stderr[-2000:])
    return done.stdout.strip()
