"""Builds the C++ files of the measurements."""

import importlib.util
import os
import pathlib
import shlex
import subprocess
import sysconfig

HERE = pathlib.Path(__file__).parent
BUILT = HERE.parent / "build" / "bench"


def built(name, *options):
    """The shared object of a C++ file here, rebuilt if it is older than its source."""
    source, target = HERE / f"{name}.cpp", BUILT / f"bench_{name}.so"
    if not target.exists() or target.stat().st_mtime < source.stat().st_mtime:
        BUILT.mkdir(parents=True, exist_ok=True)
        compiler = shlex.split(os.environ.get("CXX", "c++"))
        flags = ["-O3", "-std=c++20", "-Wall", "-Wextra", "-Werror", "-fPIC", "-shared", *options]
        subprocess.run([*compiler, *flags, str(source), "-o", str(target)], check=True)
    return target


def extension(name):
    """The Python module of a C++ file here."""
    path = built(name, f"-I{sysconfig.get_path('include')}")
    spec = importlib.util.spec_from_file_location(f"bench_{name}", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module
