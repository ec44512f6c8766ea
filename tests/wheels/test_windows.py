"""The wheel for Windows under Wine: its modules are loaded and their entries called.

There is no CPython for Windows here. python3.dll is a stub that exports the stable ABI and does nothing; only
PyModuleDef_Init returns a recognizable value. The test shows that every import is resolved, that the C and C++ runtimes
start, and that the entry calls PyModuleDef_Init. Needs wine64 and the tools of `tools/setup wheels`.
"""

import os
import shutil
import subprocess
import zipfile
from pathlib import Path

import pytest

from test_linux import ROOT, wheel

HERE = Path(__file__).resolve().parent
MODULES = ("quillgen", "quillgen_lib")
PYTHON = ROOT / ".venv-wheels" / "bin" / "python"


def run(*command: str | Path, **further: object) -> str:
    done = subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False, **further)  # type: ignore[call-overload]
    assert done.returncode == 0, f"{done.stdout}\n{done.stderr}"
    return str(done.stdout)


def stand_in(definition: str) -> str:
    """C source of a stub python3.dll with the exports of a module definition file."""
    lines = []
    for line in definition.split("EXPORTS")[1].strip().splitlines():
        name, *data = line.split()
        if data:
            lines.append(f"__declspec(dllexport) void* {name}[64];")
        elif name == "PyModuleDef_Init":
            lines.append(f"__declspec(dllexport) void* {name}(void) {{ return (void*)0x51; }}")
        else:
            lines.append(f"__declspec(dllexport) void* {name}(void) {{ return 0; }}")
    return "\n".join(lines)


def test_modules_load(tmp_path: Path) -> None:
    wine = shutil.which("wine64") or shutil.which("wine64", path="/usr/lib/wine")
    if not wine or not PYTHON.is_file():
        pytest.skip("no wine64, or no .venv-wheels")
    with zipfile.ZipFile(wheel("win_amd64")) as archive:
        archive.extractall(tmp_path)
    definition = run(PYTHON, "-c", "import python3_def; print(python3_def.text())",
                     env={**os.environ, "PYTHONPATH": str(ROOT / "tools" / "wheel_targets")})  # fmt: skip
    (tmp_path / "python3.c").write_text(stand_in(definition))
    zig: list[str | Path] = [PYTHON, "-m", "ziglang", "cc", "-target", "x86_64-windows-gnu", "-O3", "-g0", "-s"]
    run(*zig, "-shared", "-o", "python3.dll", "python3.c", cwd=tmp_path)
    run(*zig, "-o", "loader.exe", HERE / "windows_loader.c", cwd=tmp_path)
    prefix = ROOT / "build" / "wheels" / "wine"
    prefix.mkdir(parents=True, exist_ok=True)
    environment = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all", "DISPLAY": ""}
    words = [word for name in MODULES for word in (f"{name}.pyd", f"PyInit_{name}")]
    said = run(wine, "loader.exe", *words, cwd=tmp_path, env=environment)
    assert said.splitlines() == [f"{name}.pyd: PyInit_{name} called, gave a definition" for name in MODULES]
