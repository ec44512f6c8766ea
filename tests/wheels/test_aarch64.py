"""The wheel for Linux on aarch64, under qemu: every golden document translates to the stored result.

QUILLGEN_AARCH64 names a folder with CPython 3.11 or newer for that processor, unpacked from Debian's packages
(docs/wheels.md has the commands). Without it, or without qemu-aarch64-static, the test is skipped.
"""

import os
import shutil
import subprocess
import zipfile
from pathlib import Path

import pytest

from test_linux import ROOT, wheel

# Runs under qemu. Doesn't use pytest, because an emulated processor is slow and the comparison is one line.
COMPARE = """
import sys
sys.path[:0] = [{site!r}, {tests!r}]
import quillgen, quillgen_lib
from golden import kept
from golden.cases import all_cases
count = 0
for file, cases in all_cases().items():
    expected = kept.read(file)
    for title, case in cases.items():
        assert kept.section(case).split("\\n") == expected[title].split("\\n"), (file, title)
        count += 1
print(count)
"""


def test_goldens(tmp_path: Path) -> None:
    qemu = os.environ.get("QUILLGEN_QEMU") or shutil.which("qemu-aarch64-static")
    root = os.environ.get("QUILLGEN_AARCH64")
    if not qemu or not root:
        pytest.skip("no qemu-aarch64-static or no CPython for aarch64 (QUILLGEN_AARCH64)")
    site = tmp_path / "site"
    with zipfile.ZipFile(wheel("manylinux_2_28_aarch64")) as archive:
        archive.extractall(site)
    program = COMPARE.format(site=str(site), tests=str(ROOT / "tests"))
    environment = {name: value for name, value in os.environ.items() if not name.startswith("PYTHON")}
    command = [qemu, "-L", root, str(next(Path(root, "usr/bin").glob("python3.*"))), "-B", "-c", program]
    done = subprocess.run(command, env=environment, capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stderr[-2000:]
    assert int(done.stdout) > 100
