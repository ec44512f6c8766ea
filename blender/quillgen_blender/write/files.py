"""Files that appear whole or not at all."""

import contextlib
import hashlib
import os
import shutil
import tempfile
import time
from collections.abc import Iterator, Mapping
from pathlib import Path

from .names import TEMPORARY

RETRIES = 5  # Windows refuses to replace a file while another program reads it
LEFT_OVER = 3600.0  # seconds after which a temporary file belongs to a program that ended


def checksum(content: bytes) -> str:
    return hashlib.sha256(content).hexdigest()


def checksum_of(path: Path) -> str:
    with path.open("rb") as file:
        return hashlib.file_digest(file, "sha256").hexdigest()


def move(source: Path, place: Path) -> None:
    for turn in range(RETRIES):
        try:
            os.replace(source, place)
            return
        except PermissionError:
            if turn == RETRIES - 1 or os.name != "nt":
                raise
            time.sleep(0.02 * 2**turn)


@contextlib.contextmanager
def beside(folder: Path) -> Iterator[Path]:
    """A temporary folder on the same file system, gone at the end."""
    made = Path(tempfile.mkdtemp(prefix=TEMPORARY, dir=folder))
    try:
        yield made
    finally:
        shutil.rmtree(made, ignore_errors=True)


def make_folder(place: Path, files: Mapping[str, bytes]) -> None:
    """A new folder that holds these files from the moment it is seen."""
    with beside(place.parent) as made:
        whole = made / "whole"
        whole.mkdir()
        for name, content in files.items():
            (whole / name).write_bytes(content)
        if place.exists():
            place.rmdir()  # it is empty, or this fails
        os.rename(whole, place)


def put(place: Path, content: bytes) -> None:
    """Puts one file into its place."""
    handle, name = tempfile.mkstemp(prefix=TEMPORARY, dir=place.parent)
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(content)
        os.chmod(name, 0o644)  # mkstemp lets nobody else read it
        move(Path(name), place)
    except OSError:
        Path(name).unlink(missing_ok=True)
        raise


def replace(folder: Path, files: Mapping[str, bytes]) -> None:
    """Puts the files into a folder in the order given, each whole. Where one can't be put, those before it become
    again what they were."""
    with beside(folder) as made:
        for name, content in files.items():
            (made / name).write_bytes(content)
        before: dict[str, bytes | None] = {}
        try:
            for name in files:
                place = folder / name
                old = place.read_bytes() if place.exists() else None
                move(made / name, place)
                before[name] = old
        except OSError:
            for name, old in before.items():
                if old is None:
                    (folder / name).unlink()
                else:
                    (folder / name).write_bytes(old)
            raise


def copy(source: Path, place: Path) -> None:
    with beside(place.parent) as made:
        shutil.copyfile(source, made / "copy")
        move(made / "copy", place)


def sweep(folder: Path) -> None:
    """Removes what an export that was killed left behind."""
    for path in folder.glob(TEMPORARY + "*"):
        with contextlib.suppress(OSError):
            if time.time() - path.stat().st_mtime > LEFT_OVER:
                shutil.rmtree(path) if path.is_dir() else path.unlink()
