"""Builds wheels for this and other platforms, and checks them. See tools/wheels.

A wheel is built like with `pip install .`, by scikit-build-core and CMakeLists.txt, so that sources, flags, packages
and metadata are defined in one place. Only the toolchain differs: zig.cmake.
"""

import argparse
import base64
import hashlib
import os
import shutil
import subprocess
import sys
import sysconfig
import zipfile
from collections.abc import Iterable, Sequence
from pathlib import Path

import ziglang

import check
import python3_def
from targets import MODULES, TARGETS, Build, Target

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
WORK = ROOT / "build" / "wheels"
ZIG = Path(ziglang.__file__).parent / "zig"


def main(arguments: Sequence[str]) -> int:
    parser = argparse.ArgumentParser(prog="tools/wheels", description="Makes the wheels and checks them.")
    parser.add_argument("keys", nargs="*", metavar="KEY", help="what to make: " + ", ".join(TARGETS) + " (all)")
    parser.add_argument("--out", type=Path, default=ROOT / "dist", help="where the wheels go (dist)")
    options = parser.parse_args(arguments)
    unknown = [key for key in options.keys if key not in TARGETS]
    if unknown:
        parser.error(f"unknown: {', '.join(unknown)}; there are {', '.join(TARGETS)}")
    failed = False
    made: dict[Build, Path] = {}
    for target in (TARGETS[key] for key in options.keys or TARGETS):
        wheel = make(target, options.out.resolve(), made)
        faults = check.check(wheel, target)
        print(f"{wheel.name}: {wheel.stat().st_size:,} bytes, {'; '.join(faults) if faults else 'passes its checks'}")
        failed = failed or bool(faults)
    return int(failed)


def make(target: Target, out: Path, made: dict[Build, Path]) -> Path:
    """Makes the wheel of a target. `made` caches the wheels of the single builds."""
    for build in target.builds:
        if build not in made:
            made[build] = build_wheel(build)
    out.mkdir(parents=True, exist_ok=True)
    first = made[target.builds[0]]
    name, version, *_ = first.name.split("-")
    wheel = out / f"{name}-{version}-cp311-abi3-{target.platform}.whl"
    write_wheel(wheel, target, [made[build] for build in target.builds])
    return wheel


def build_wheel(build: Build) -> Path:
    """Builds the modules for one system and processor. The platform tag of the returned wheel is not the final one."""
    work = WORK / build.zig
    wheels = work / "wheel"
    shutil.rmtree(wheels, ignore_errors=True)
    work.mkdir(parents=True, exist_ok=True)
    defines = {
        "CMAKE_TOOLCHAIN_FILE": HERE / "zig.cmake",
        "CMAKE_PROJECT_INCLUDE": HERE / "project.cmake",
        "ZIG": ZIG,
        "ZIG_TARGET": build.zig,
        "SYSTEM": build.system,
        "PROCESSOR": build.processor,
        "INCLUDE": headers(build, work),
    }
    if build.system == "Windows":
        defines["PYTHON_LIBRARY"] = import_library(work)
    if build.system == "Darwin":
        linker = (sys.executable, HERE / "link_macos.py", ZIG, build.zig, llvm_tool("lld"))
        defines["LINK"] = " ".join(f'"{word}"' for word in linker)
    settings = {"build-dir": str(work / "cmake"), "install.strip": "false", "wheel.py-api": "cp311"}
    settings |= {f"cmake.define.{name}": str(value) for name, value in defines.items()}
    program = f"import scikit_build_core.build as b; b.build_wheel({str(wheels)!r}, {settings!r})"
    log = work / "log"
    print(f"building for {build.zig} (log: {log.relative_to(ROOT)})", flush=True)
    with log.open("w") as file:
        done = subprocess.run(
            [sys.executable, "-c", program], cwd=ROOT, stdout=file, stderr=subprocess.STDOUT, check=False
        )
    if done.returncode:
        sys.exit("".join(log.read_text().splitlines(keepends=True)[-40:]))
    return next(wheels.glob("*.whl"))


def headers(build: Build, work: Path) -> Path:
    """The folder of CPython's headers, with the target's own pyconfig.h for Windows."""
    installed = Path(sysconfig.get_path("include"))
    if build.system != "Windows":
        return installed
    folder = work / "include"
    shutil.copytree(installed, folder, dirs_exist_ok=True)
    shutil.copy(HERE / "windows" / "pyconfig.h", folder)
    return folder


def import_library(work: Path) -> Path:
    """Makes the import library of python3.dll."""
    definition, library = work / "python3.def", work / "python3.lib"
    definition.write_text(python3_def.text())
    command: list[str | Path] = [ZIG, "dlltool", "-m", "i386:x86-64", "-d", definition, "-l", library]
    subprocess.run(command, check=True)
    return library


def llvm_tool(name: str) -> str:
    """The path of an LLVM program. Debian installs some of them under versioned names only."""
    path = shutil.which(
        name, path=os.pathsep.join([os.environ["PATH"], *map(str, Path("/usr/lib").glob("llvm-*/bin"))])
    )
    return path or sys.exit(f"{name} is missing: tools/setup wheels installs it")


def write_wheel(path: Path, target: Target, wheels: Sequence[Path]) -> None:
    """Merges `wheels`, which differ only in their modules, into one. The result is independent of the build's time and
    machine."""
    contents = [read_wheel(wheel) for wheel in wheels]
    files = dict(contents[0])
    for module in MODULES:
        name = module + target.suffix
        if len(contents) > 1:
            files[name] = join([content[name] for content in contents], WORK / target.key)
    (info,) = {Path(name).parts[0] for name in files if ".dist-info/" in name}
    wheel_file = files[f"{info}/WHEEL"].decode()
    lines = [line for line in wheel_file.splitlines() if line and not line.startswith("Tag:")]
    files[f"{info}/WHEEL"] = "\n".join([*lines, f"Tag: cp311-abi3-{target.platform}", ""]).encode()
    del files[f"{info}/RECORD"]
    files[f"{info}/RECORD"] = record(files, f"{info}/RECORD")
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED, compresslevel=9) as archive:
        for name in sorted(files, key=lambda name: (name.startswith(info), name)):
            entry = zipfile.ZipInfo(name)  # the default date, 1980-01-01, is the earliest that zip can hold
            entry.external_attr = (0o100755 if name.endswith((".so", ".pyd")) else 0o100644) << 16
            entry.compress_type = zipfile.ZIP_DEFLATED
            archive.writestr(entry, files[name])


def read_wheel(path: Path) -> dict[str, bytes]:
    with zipfile.ZipFile(path) as archive:
        return {name: archive.read(name) for name in archive.namelist() if not name.endswith("/")}


def record(files: dict[str, bytes], own_name: str) -> bytes:
    """The contents of RECORD, the list of a wheel's files with checksums."""

    def lines() -> Iterable[str]:
        for name, content in sorted(files.items()):
            digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
            yield f"{name},sha256={digest},{len(content)}\n"
        yield f"{own_name},,\n"

    return "".join(lines()).encode()


def join(binaries: Sequence[bytes], work: Path) -> bytes:
    """Joins binaries of one processor each to a universal binary for macOS."""
    work.mkdir(parents=True, exist_ok=True)
    parts = [work / f"part-{index}" for index in range(len(binaries))]
    for part, binary in zip(parts, binaries):
        part.write_bytes(binary)
    joined = work / "joined"
    subprocess.run([llvm_tool("llvm-lipo"), "-create", *parts, "-output", joined], check=True)
    return joined.read_bytes()


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
