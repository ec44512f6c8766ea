"""Python code in a process of its own, for what may take the interpreter down."""

import os
import pathlib
import subprocess
import sys

TESTS = pathlib.Path(__file__).parents[1]


def environment(**further):
    """That of this process, in which the tests' own modules are found too."""
    folders = [*filter(None, os.environ.get("PYTHONPATH", "").split(os.pathsep)), str(TESTS)]
    return {**os.environ, "PYTHONPATH": os.pathsep.join(folders), **further}


def run(code, *arguments, timeout=120, **env):
    """What the code prints. It ends by itself, with exit status 0."""
    command = [sys.executable, "-X", "faulthandler", "-c", code, *map(str, arguments)]
    done = subprocess.run(command, env=environment(**env), capture_output=True, text=True, timeout=timeout)
    assert done.returncode == 0, (done.returncode, done.stderr[-2000:])
    return done.stdout.strip()
