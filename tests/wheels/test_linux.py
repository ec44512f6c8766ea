"""Installs the wheel for Linux in each available CPython, and runs the golden and edge-case tests on it.

`tools/wheels linux-x86_64` makes the wheel. Interpreters are found by name and among those of pyenv; for a missing one
the test is skipped. Tests that run shaders are skipped, because these environments don't have DXC.
"""

import os
import re
import subprocess
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
DIST = Path(os.environ.get("QUILLGEN_DIST", ROOT / "dist"))
WORK = ROOT / "build" / "wheels" / "pythons"
VERSIONS = ("3.11", "3.12", "3.13")
TESTS = ("tests/golden/test_golden.py", "tests/core", "tests/closures", "tests/nodes")
PACKAGES = ("pytest==8.4.2", "numpy>=1.26,<3")


def wheel(platform: str) -> Path:
    """The path of the wheel for `platform`, of the version in pyproject.toml."""
    version = re.search(r'^version = "([^"]+)"', (ROOT / "pyproject.toml").read_text(), re.MULTILINE)
    assert version
    path = DIST / f"quillgen-{version[1]}-cp311-abi3-{platform}.whl"
    if not path.is_file():
        pytest.fail(f"{path.name} is not there: tools/wheels makes it")
    return path


def interpreter(version: str) -> str:
    pyenv = sorted((Path.home() / ".pyenv" / "versions").glob(f"{version}.*/bin/python3"))
    for name in [f"/usr/bin/python{version}", *map(str, pyenv), f"python{version}"]:
        program = "import sys; print('%d.%d' % sys.version_info[:2])"
        try:
            said = subprocess.run([name, "-c", program], capture_output=True, text=True, check=False).stdout.strip()
        except OSError:
            continue
        if said == version:
            return name
    pytest.skip(f"there is no CPython {version} here")


def installed(version: str) -> Path:
    """The Python of a virtual environment with the wheel installed."""
    python = WORK / version / "bin" / "python"
    if not python.is_file():
        subprocess.run([interpreter(version), "-m", "venv", str(WORK / version)], check=True)
        subprocess.run([str(python), "-m", "pip", "install", "-q", *PACKAGES], check=True)
    install = [str(python), "-m", "pip", "install", "-q", "--no-deps", "--force-reinstall"]
    subprocess.run([*install, str(wheel("manylinux_2_28_x86_64"))], check=True)
    return python


def environment() -> dict[str, str]:
    """The environment without PYTHONPATH, which could contain other builds of the modules."""
    return {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}


@pytest.mark.parametrize("version", VERSIONS)
def test_goldens_and_edge_cases(version: str) -> None:
    python = installed(version)
    where = "import quillgen, quillgen_lib; print(quillgen.__file__, quillgen_lib.__file__)"
    done = subprocess.run([str(python), "-c", where], cwd=WORK, env=environment(), capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    assert all(str(WORK / version) in path for path in done.stdout.split())
    tests = [str(python), "-m", "pytest", "-q", "-p", "no:cacheprovider", "-p", "without_dxc", *TESTS]
    plugins = {**environment(), "PYTHONPATH": str(ROOT / "tests" / "wheels")}
    done = subprocess.run(tests, cwd=ROOT, env=plugins, capture_output=True, text=True, check=False)
    print(done.stdout[-3000:], done.stderr[-1000:])
    assert done.returncode == 0
    passed = re.search(r"(\d+) passed", done.stdout)
    assert passed and int(passed[1]) > 1000, "tests must have run"


@pytest.mark.parametrize("version", VERSIONS)
def test_command(version: str) -> None:
    """The command line that the wheel installs."""
    python = installed(version)
    done = subprocess.run(
        [str(python.with_name("quillgen-translate")), "--help"], env=environment(), capture_output=True, text=True
    )
    assert done.returncode == 0, done.stderr
    assert "quillgen-translate" in done.stdout
