"""Documents from files, results into files."""

from __future__ import annotations

import json
import os
from collections.abc import Iterable, Iterator
from pathlib import Path
from typing import Any, NamedTuple

from .tables import page
from .types import Result


class Job(NamedTuple):
    """One document to translate. `name`: its place below the output folder, without a suffix."""

    path: Path
    name: Path


def jobs(paths: Iterable[Path]) -> Iterator[Job]:
    """The documents that files and folders hold, each once, in order; those of a folder keep their places in it.

    In a folder every `.json` file with the keys `nodes` and `out` is a document, others are left alone. A file that is
    named is one whatever it holds.
    """
    seen: set[Path] = set()
    for path in paths:
        found = (
            [
                Job(one, one.relative_to(path).with_suffix(""))
                for one in sorted(path.rglob("*.json"))
                if is_document(one)
            ]
            if path.is_dir()
            else [Job(path, Path(path.stem))]
        )
        for job in found:
            if job.path.resolve() not in seen:
                seen.add(job.path.resolve())
                yield job


def is_document(path: Path) -> bool:
    try:
        read = json.loads(path.read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return False
    return isinstance(read, dict) and "nodes" in read and "out" in read


def texts(name: str, result: Result) -> dict[str, str]:
    """File name -> content: NAME.hlsl, NAME.displacement.hlsl where there is one, NAME.md with what to wire, and
    NAME.json with all of the result but the texts."""
    rest: dict[str, Any] = {key: value for key, value in result.items() if key not in ("code", "displacement")}
    found = {f"{name}.hlsl": result["code"] + "\n"}
    displacement = result["displacement"]
    if displacement:
        found[f"{name}.displacement.hlsl"] = displacement["code"] + "\n"
        rest["displacement"] = {key: value for key, value in displacement.items() if key != "code"}
    found[f"{name}.md"] = page(name, result)
    found[f"{name}.json"] = json.dumps(rest, indent=1, ensure_ascii=False) + "\n"
    return found


def write(folder: Path, name: str, result: Result) -> list[Path]:
    """Writes a result's files into a folder, which is made where it is missing. A file that says the same already is
    left as it is, so that a build which looks at times does nothing anew. Returns the paths that were written."""
    folder.mkdir(parents=True, exist_ok=True)
    content = texts(name, result)
    written = [folder / file for file, text in content.items() if put(folder / file, text)]
    stale = folder / f"{name}.displacement.hlsl"
    if stale.name not in content:
        stale.unlink(missing_ok=True)
    return written


def put(path: Path, text: str) -> bool:
    """Writes a file as a whole: a reader sees the old one or the new one. False where it said the same already."""
    data = text.encode("utf-8")
    try:
        if path.read_bytes() == data:
            return False
    except FileNotFoundError:
        pass
    part = path.with_name(f".{path.name}.{os.getpid()}.part")
    try:
        part.write_bytes(data)
        part.replace(path)
    finally:
        part.unlink(missing_ok=True)
    return True
