"""Checks the contents of a wheel, and that its modules need only CPython and the libraries of every such system.

Each function returns or yields the faults that it finds, as texts. `check` also runs abi3audit on every wheel,
auditwheel on wheels for Linux and delvewheel on wheels for Windows.
"""

import base64
import csv
import hashlib
import json
import re
import subprocess
import sys
import tomllib
import zipfile
from collections.abc import Iterable, Iterator
from pathlib import Path

import lief

from targets import MODULES, Target

ROOT = Path(__file__).resolve().parents[2]

LINUX_LIBRARIES = {"libc.so.6", "libm.so.6", "libpthread.so.0", "libdl.so.2", "ld-linux-x86-64.so.2",
                   "ld-linux-aarch64.so.1"}  # fmt: skip
WINDOWS_LIBRARIES = re.compile(
    r"python3\.dll|kernel32\.dll|ntdll\.dll|api-ms-win-crt-[a-z]+-l1-1-0\.dll", re.IGNORECASE
)
MACOS_LIBRARIES = {"/usr/lib/libSystem.B.dylib"}
GLIBC = (2, 28)
WINDOWS = (10, 0)  # the first with the C runtime; CPython 3.11 and Blender run on 8.1 and later
MACOS = {"ARM64": (11, 0), "X86_64": (10, 15)}
PROCESSORS = {"manylinux_2_28_x86_64": ["X86_64"], "manylinux_2_28_aarch64": ["AARCH64"], "win_amd64": ["AMD64"],
              "macosx_11_0_arm64": ["ARM64"], "macosx_10_15_universal2": ["ARM64", "X86_64"]}  # fmt: skip


def check(wheel: Path, target: Target) -> list[str]:
    with zipfile.ZipFile(wheel) as archive:
        files = {name: archive.read(name) for name in archive.namelist()}
    faults = [*contents(files, target), *machine_paths(files)]
    for module in MODULES:
        name = module + target.suffix
        if name in files:
            faults += [f"{name}: {fault}" for fault in binary(files[name], module, target)]
    return [*faults, *abi3audit(wheel), *auditors(wheel, target)]


def contents(files: dict[str, bytes], target: Target) -> Iterator[str]:
    """Checks the modules, the packages that pyproject.toml names, the licence, the metadata and RECORD."""
    project = tomllib.loads((ROOT / "pyproject.toml").read_text())
    packages = project["tool"]["scikit-build"]["wheel"]["packages"]
    wanted = [module + target.suffix for module in MODULES]
    for package in packages:
        folder = ROOT / package
        sources = [path for path in folder.rglob("*") if path.is_file() and "__pycache__" not in path.parts]
        wanted += [str(path.relative_to(folder.parent)) for path in sources if path.suffix in (".py", ".pyi", ".typed")]
    info = f"{project['project']['name']}-{project['project']['version']}.dist-info"
    wanted += [f"{info}/{name}" for name in ("METADATA", "WHEEL", "RECORD", "licenses/LICENSE")]
    if "scripts" in project["project"]:
        wanted.append(f"{info}/entry_points.txt")
    yield from (f"{name} is missing" for name in wanted if name not in files)
    stray = [name for name in files if Path(name).suffix in (".so", ".pyd", ".dll", ".dylib") and name not in wanted]
    yield from (f"{name} does not belong to it" for name in stray)
    if f"{info}/RECORD" not in files:
        return
    listed = {row[0]: row[1] for row in csv.reader(files[f"{info}/RECORD"].decode().splitlines())}
    for name, content in files.items():
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode()
        if listed.get(name) != ("" if name == f"{info}/RECORD" else f"sha256={digest}"):
            yield f"RECORD differs from {name}"
    if f"Tag: cp311-abi3-{target.platform}" not in files[f"{info}/WHEEL"].decode().splitlines():
        yield "WHEEL has another tag"


def machine_paths(files: dict[str, bytes]) -> Iterator[str]:
    """Checks that no path of the build machine is in a file. It would disclose the machine and change the bytes."""
    for name, content in files.items():
        for path in {str(ROOT), sys.prefix, str(Path.home() / ".cache")}:
            if path.encode() in content:
                yield f"{name} holds the path {path}"


def binary(content: bytes, module: str, target: Target) -> Iterator[str]:
    """Checks one module: processors, exports, dependencies, and the oldest system that it runs on."""
    parse = {"manylinux": lief.ELF.parse, "win": lief.PE.parse, "macosx": lief.MachO.parse}
    examine = {"manylinux": elf, "win": pe, "macosx": macho}
    kind = target.platform.split("_")[0]
    parsed = parse[kind](list(content))
    if parsed is None:
        yield "no binary of this system"
        return
    binaries = list(parsed) if kind == "macosx" else [parsed]
    processors = [str(b.header.cpu_type if kind == "macosx" else getattr(b.header, "machine", None) or
                      b.header.machine_type).split(".")[-1].removeprefix("CPU_TYPE_") for b in binaries]  # fmt: skip
    if sorted(processors) != PROCESSORS[target.platform]:
        yield f"is for {', '.join(processors)}"
    for one in binaries:
        yield from examine[kind](one, f"PyInit_{module}")


def elf(module: lief.ELF.Binary, entry: str) -> Iterator[str]:
    yield from exports((symbol.name for symbol in module.exported_symbols), entry)
    yield from needs(library for library in module.libraries if library not in LINUX_LIBRARIES)
    required = {name.name for need in module.symbols_version_requirement for name in need.get_auxiliary_symbols()}
    for name in required:
        version = re.fullmatch(r"GLIBC_(\d+)\.(\d+)(\.\d+)?", name)
        if version is None or (int(version[1]), int(version[2])) > GLIBC:
            yield f"needs {name}"
    for symbol in module.imported_symbols:
        versioned = symbol.has_version and symbol.symbol_version.has_auxiliary_version
        if symbol.name and not versioned and not re.match("_?Py", symbol.name):
            yield f"needs {symbol.name}"
    if any(entry.tag in (lief.ELF.DynamicEntry.TAG.RPATH, lief.ELF.DynamicEntry.TAG.RUNPATH)
           for entry in module.dynamic_entries):  # fmt: skip
        yield "has a run path"
    if not module.has_nx:
        yield "has an executable stack"


def pe(module: lief.PE.Binary, entry: str) -> Iterator[str]:
    exported = module.get_export().entries if module.has_exports else []
    yield from exports((symbol.name for symbol in exported), entry)
    yield from needs(library for library in module.libraries if not WINDOWS_LIBRARIES.fullmatch(library))
    if "python3.dll" not in (library.lower() for library in module.libraries):
        yield "does not import python3.dll"
    header = module.optional_header
    for what in ("operating_system", "subsystem"):
        version = (getattr(header, f"major_{what}_version"), getattr(header, f"minor_{what}_version"))
        if version > WINDOWS:
            yield f"needs Windows {version[0]}.{version[1]}"
    for protection in ("DYNAMIC_BASE", "NX_COMPAT", "HIGH_ENTROPY_VA"):
        if getattr(lief.PE.OptionalHeader.DLL_CHARACTERISTICS, protection) not in header.dll_characteristics_lists:
            yield f"lacks {protection}"


def macho(module: lief.MachO.Binary, entry: str) -> Iterator[str]:
    yield from exports((symbol.name.removeprefix("_") for symbol in module.exported_symbols), entry)
    yield from needs(library.name for library in module.libraries if library.name not in MACOS_LIBRARIES)
    processor = str(module.header.cpu_type).split(".")[-1]
    minimum = module.build_version.minos if module.has_build_version else module.version_min.version
    if tuple(minimum[:2]) != MACOS[processor]:
        yield f"needs macOS {'.'.join(map(str, minimum))} on {processor}"
    # The interpreter provides CPython's symbols. Every other symbol must be bound to a named library.
    anywhere = [symbol.name for symbol in module.imported_symbols
                if not (symbol.has_binding_info and symbol.binding_info.has_library)]  # fmt: skip
    yield from needs(name for name in anywhere if not re.match("__?Py", name) and name != "dyld_stub_binder")
    if not module.has_code_signature:
        yield "is not signed: a processor of Apple does not run it"


def exports(names: Iterable[str], entry: str) -> Iterator[str]:
    found = sorted(set(names))
    if found != [entry]:
        yield f"exports {', '.join(found) or 'nothing'}"


def needs(names: Iterable[str]) -> Iterator[str]:
    yield from (f"needs {name}" for name in sorted(set(names)))


def abi3audit(wheel: Path) -> Iterator[str]:
    done = run("abi3audit", "--strict", "--report", str(wheel))
    report = json.loads(done.stdout or "{}").get("specs", {}).get(str(wheel), {}).get("wheel", [])
    audited = {entry["name"]: entry["result"] for entry in report}
    for name, result in audited.items():
        if not (result["is_abi3"] and result["is_abi3_baseline_compatible"] and result["baseline"] == "3.11"):
            yield f"abi3audit of {name}: {result}"
    if len(audited) != len(MODULES) or done.returncode:
        yield f"abi3audit: {done.stderr.strip() or 'not both modules were seen'}"


def auditors(wheel: Path, target: Target) -> Iterator[str]:
    """Runs auditwheel or delvewheel."""
    if target.platform.startswith("manylinux"):
        done = run("auditwheel", "show", str(wheel))
        found = re.search(r'the following platform tag:\s*"manylinux_2_(\d+)_(\w+)"', done.stdout)
        if found is None or int(found[1]) > GLIBC[1] or not target.platform.endswith(found[2]):
            yield f"auditwheel: {done.stdout} {done.stderr}"
    elif target.platform.startswith("win"):
        done = run("delvewheel", "show", str(wheel))
        if done.returncode or "The following DLLs will be copied into the wheel" in done.stdout:
            text = done.stdout
            copied = re.search(r"will be copied into the wheel\.?\s*\n(.*?)\n\n", text + "\n\n", re.DOTALL)
            if done.returncode or copied is None or copied[1].strip() not in ("None", ""):
                yield f"delvewheel: {text} {done.stderr}"


def run(tool: str, *arguments: str) -> subprocess.CompletedProcess[str]:
    program = str(Path(sys.executable).parent / tool)
    return subprocess.run([program, *arguments], capture_output=True, text=True, check=False)
