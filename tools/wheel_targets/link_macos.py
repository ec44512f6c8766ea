"""Links a module for macOS: link_macos.py ZIG TARGET LLD MODULE OBJECT ...

Zig's linker always exports the C++ library's allocation functions, which makes them visible to modules of other
projects. So Zig only lists the static libraries that it would link (and builds the missing ones), and LLVM's linker
links the module. The interpreter that loads the module provides all symbols that are neither in these libraries nor in
libSystem.tbd.
"""

import os
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
ARCHITECTURES = {"aarch64": "arm64", "x86_64": "x86_64"}


def static_libraries(zig: str, target: str, module: str, objects: list[str]) -> list[str]:
    command = [zig, "c++", "-target", target, "-O3", "-shared", "-Wl,-undefined,dynamic_lookup", "-o", module, *objects]
    told = subprocess.run(
        command, env={**os.environ, "ZIG_VERBOSE_LINK": "1"}, stderr=subprocess.PIPE, text=True, check=False
    )
    if told.returncode:
        sys.exit(told.stderr)
    (line,) = (line for line in told.stderr.splitlines() if line.startswith("zig ld "))
    return [word for word in line.split() if word.endswith(".a")]


def main(zig: str, target: str, lld: str, module: str, *objects: str) -> int:
    processor, system = target.split("-")
    oldest = system.removeprefix("macos.")
    name = Path(module).name.split(".")[0]
    libraries = static_libraries(zig, target, module, list(objects))
    Path(module).unlink()
    command = [lld, "-flavor", "darwin", "-bundle", "-arch", ARCHITECTURES[processor]]
    command += ["-platform_version", "macos", oldest, oldest]
    command += ["-exported_symbol", f"_PyInit_{name}", "-undefined", "dynamic_lookup", "-dead_strip", "-x", "-S"]
    command += ["-adhoc_codesign", "-o", module, *objects, *libraries, str(HERE / "libSystem.tbd")]
    return subprocess.run(command, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
