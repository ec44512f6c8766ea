"""Writes files atomically: they appear complete or not at all."""

import contextlib
import hashlib
import os
import shutil
import tempfile
import time
from collections.abc import Iterator, Mapping
from pathlib import Path

from .names import TEMPORARY

RETRIES = 5  # Windows can't replace a file while another program reads it
LEFT_OVER = 3600.0  # seconds after which a temporary file counts as left over by a program that ended


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
    """A temporary folder on the same file system, removed at the end."""
    made = Path(tempfile.mkdtemp(prefix=TEMPORARY, dir=folder))
    try:
        yield made
    finally:
        shutil.rmtree(made, ignore_errors=True)


def make_folder(place: Path, files: Mapping[str, bytes]) -> None:
    """Creates a folder that already contains these files when it appears."""
    with beside(place.parent) as made:
        whole = made / "whole"
        whole.mkdir()
        for name, content in files.items():
            (whole / name).write_bytes(content)
        if place.exists():
            place.rmdir()  # fails unless it is empty
        os.rename(whole, place)


def content_of(path: Path) -> bytes | None:
    """The content of a file, None if there is none."""
    try:
        return path.read_bytes()
    except FileNotFoundError:
        return None


def replace(folder: Path, files: Mapping[str, bytes], before: Mapping[str, bytes | None]) -> None:
    """Writes files to a folder in the order given, each atomically. `before`: their old contents. If one can't be
    written, those before it are restored."""
    waiting = {name: folder / f"{TEMPORARY}{os.getpid()}-{name}" for name in files}
    done = []
    try:
        for name, content in files.items():
            waiting[name].write_bytes(content)
        for name in files:
            move(waiting[name], folder / name)
            done.append(name)
    except OSError:
        for name in waiting.keys() - done:
            waiting[name].unlink(missing_ok=True)
        for name in done:
            old = before.get(name)
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
    """Removes temporary files that an export left behind when it was killed."""
    for path in folder.glob(TEMPORARY + "*"):
        with contextlib.suppress(OSError):
            if time.time() - path.stat().st_mtime > LEFT_OVER:
                shutil.rmtree(path) if path.is_dir() else path.unlink()
