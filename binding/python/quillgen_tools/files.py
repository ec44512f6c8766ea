"""Documents from files, results into files."""

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
    """One document to translate. `name`: its place below the output folder, without a suffix. `rival`: an earlier
    document that has files of the same names, None where there is none."""

    path: Path
    name: Path
    rival: Path | None = None


def jobs(paths: Iterable[Path]) -> Iterator[Job]:
    """The documents that files and folders hold, each once, in order; those of a folder keep their places in it.

    In a folder every `.json` file with the keys `nodes` and `out` is a document, others are left alone. A file that is
    named is one whatever it holds.
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
    except FileNotFoundError:  # a folder went away while it was read
        return []
    return [Job(path, path.relative_to(folder).with_suffix("")) for path in paths if is_document(path)]


def read(path: Path) -> Any:
    """What a JSON file holds, in UTF-8, UTF-16 or UTF-32, with a byte order mark or without."""
    return json.loads(path.read_bytes())


def is_document(path: Path) -> bool:
    try:
        found = read(path)
    except (OSError, ValueError, RecursionError):
        return False
    return isinstance(found, dict) and "nodes" in found and "out" in found


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
    """Writes a file as a whole: a reader sees the old one or the new one. False where it said the same already.

    What UTF-8 doesn't have, a lone surrogate from a document or from the name of a file, is written as JSON's escape.
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
