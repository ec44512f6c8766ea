"""Reads documents from files and writes results to files."""

from __future__ import annotations

import json
import os
from collections.abc import Iterable, Iterator
from pathlib import Path
from typing import Any, NamedTuple

from .tables import page
from .types import Result

ENDINGS = (".hlsl", ".displacement.hlsl", ".md", ".json")  # of the files of a result


class Job(NamedTuple):
    """One document to translate. `name`: its path below the output folder, without a suffix. `rival`: an earlier
    document with output files of the same names, None if there is none."""

    path: Path
    name: Path
    rival: Path | None = None


def jobs(paths: Iterable[Path]) -> Iterator[Job]:
    """The documents in files and folders, each once, in order; those of a folder keep their paths relative to it.

    In a folder every `.json` file with the keys `nodes` and `out` is a document, others are ignored. A file that is
    named itself always is one.
    """
    seen: set[Path] = set()
    taken: dict[str, Path] = {}
    for path in paths:
        found = in_folder(path) if os.path.isdir(path) else [Job(path, Path(path.stem))]
        for job in found:
            if job.path.resolve() in seen:
                continue
            seen.add(job.path.resolve())
            names = {os.path.normcase(f"{job.name}{ending}") for ending in ENDINGS}
            rival = next((taken[name] for name in sorted(names & taken.keys())), None)
            if rival is None:
                taken |= dict.fromkeys(names, job.path)
            yield job._replace(rival=rival)


def in_folder(folder: Path) -> list[Job]:
    try:
        paths = sorted(folder.rglob("*.json"))
    except FileNotFoundError:  # a folder was removed while it was read
        return []
    return [Job(path, path.relative_to(folder).with_suffix("")) for path in paths if is_document(path)]


def read(path: Path) -> Any:
    """The content of a JSON file in UTF-8, UTF-16 or UTF-32, with or without a byte order mark."""
    return json.loads(path.read_bytes())


def is_document(path: Path) -> bool:
    try:
        found = read(path)
    except (OSError, ValueError, RecursionError):
        return False
    return isinstance(found, dict) and "nodes" in found and "out" in found


def texts(name: str, result: Result) -> dict[str, str]:
    """File name -> content: NAME.hlsl, NAME.displacement.hlsl if there is one, NAME.md with what to wire, and NAME.json
    with the rest of the result, without the HLSL."""
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
    """Writes a result's files into a folder, which is created if necessary. A file that has the same content already is
    not touched, so that a build that compares times repeats no work. Returns the paths that were written."""
    folder.mkdir(parents=True, exist_ok=True)
    content = texts(name, result)
    written = [folder / file for file, text in content.items() if put(folder / file, text)]
    stale = folder / f"{name}.displacement.hlsl"
    if stale.name not in content:
        stale.unlink(missing_ok=True)
    return written


def put(path: Path, text: str) -> bool:
    """Writes a file atomically: a reader sees the old one or the new one. False if the content is unchanged.

    What UTF-8 can't encode, a lone surrogate from a document or from a file name, is written as JSON's escape.
    """
    data = text.encode("utf-8", "backslashreplace")
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
