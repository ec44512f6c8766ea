"""Translates material documents into HLSL files.

DOCUMENT is a JSON file, or a folder in which every JSON file with the keys "nodes" and "out" is one. For each document
the output folder gets NAME.hlsl, the text of the Custom expression; NAME.md, what to wire to it; NAME.json, the same
for programs; and NAME.displacement.hlsl where the material has real displacement.

A document is never overwritten; of two documents that would have the same files, the second is an error.

Exit status: 0 when all documents were translated; 1 when one could not be, or has warnings under --strict; 2 when the
command line is wrong or there is no document; 130 when Ctrl-C ended it, but 0 under --watch.
"""

from __future__ import annotations

import argparse
import json
import os
import shutil
import sys
import time
from collections.abc import Sequence
from dataclasses import dataclass, field
from pathlib import Path
from typing import TextIO

import quillgen

from . import files
from .files import Job

POLL = 0.5  # seconds between two checks of the documents with --watch


@dataclass
class Outcome:
    translated: int = 0
    written: int = 0  # files
    warnings: int = 0
    failed: list[str] = field(default_factory=list[str])


def main(arguments: Sequence[str] | None = None) -> int:
    """The command `quillgen-translate`. Returns the exit status."""
    options = parse(arguments)
    reconfigure = getattr(sys.stdout, "reconfigure", None)
    if reconfigure is not None:
        reconfigure(errors="backslashreplace")  # file names may have characters that the terminal can't encode
    try:
        return run(options)
    except KeyboardInterrupt:
        return 0 if options.watch else 130
    # the reader has closed the pipe; the null device replaces stdout, because the rest is flushed at exit
    except BrokenPipeError:
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        return 1


def run(options: argparse.Namespace) -> int:
    mistake = wrong_paths(options)
    if mistake:
        print(f"quillgen-translate: {mistake}", file=sys.stderr)
        return 2
    work = list(files.jobs(options.documents))
    if not work and not options.watch:
        print("quillgen-translate: there is no document", file=sys.stderr)
        return 2
    seen = stamps(work)  # taken before the translation, so that changes during it are translated again
    outcome = translate_all(work, options)
    if options.watch:
        watch(options, seen)
    return 1 if outcome.failed or (options.strict and outcome.warnings) else 0


def wrong_paths(options: argparse.Namespace) -> str:
    """The error in the paths of the command line, "" if there is none."""
    missing: list[str] = []
    for path in options.documents:
        try:
            path.stat()
        except (FileNotFoundError, NotADirectoryError):
            missing.append(str(path))
        except OSError as error:
            return f"{path}: {error.strerror}"
    if missing:
        return f"no such file or folder: {', '.join(missing)}"
    if os.path.exists(options.out) and not os.path.isdir(options.out):
        return f"{options.out} is no folder"
    return ""


def parse(arguments: Sequence[str] | None) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="quillgen-translate", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    parser.add_argument("documents", nargs="+", type=Path, metavar="DOCUMENT", help="JSON file or folder")
    parser.add_argument("--out", type=Path, default=Path("out"), metavar="FOLDER", help="output folder (out)")
    parser.add_argument("--mode", choices=("surface", "emission"), default="surface")
    parser.add_argument("--literals", action="store_true", help="write values as literals instead of parameters")
    parser.add_argument("--strict", action="store_true", help="exit status 1 where there are warnings")
    parser.add_argument("--watch", action="store_true", help="go on, translating what changes; Ctrl-C ends it")
    parser.add_argument("--quiet", action="store_true", help="errors only")
    parser.add_argument("--version", action="version", version=f"quillgen {quillgen.__version__}")
    return parser.parse_args(arguments)


def translate_all(work: Sequence[Job], options: argparse.Namespace) -> Outcome:
    """Translates the documents. Prints a line for each that has warnings or fails, and a summary."""
    outcome = Outcome()
    bar = Bar(len(work), sys.stderr, shown=not options.quiet and sys.stderr.isatty())
    started = time.perf_counter()
    try:
        for job in work:
            bar.show(str(job.name))
            lines = translate(job, options, outcome)
            if lines:
                bar.clear()
                print("\n".join(lines), file=sys.stderr, flush=True)
            bar.step()
    finally:
        bar.clear()
    if not options.quiet:
        print(summary(outcome, options.out, time.perf_counter() - started), flush=True)
    return outcome


def translate(job: Job, options: argparse.Namespace, outcome: Outcome) -> list[str]:
    """Translates one document and returns the messages about it. An error does not stop the other documents."""

    def failed(why: str) -> list[str]:
        outcome.failed.append(str(job.path))
        return [f"{job.path}: {why}"]

    folder, name = options.out / job.name.parent, job.name.name
    if job.rival:
        return failed(f"its files would take the place of those of {job.rival}")
    if files.is_document(folder / f"{name}.json"):
        return failed(f"its result would overwrite the document {folder / name}.json")
    try:
        result = quillgen.compile(files.read(job.path), options.mode, not options.literals)
    except Exception as error:
        return failed(reason(error))
    try:
        outcome.written += len(files.write(folder, name, result))
    except OSError as error:
        return failed(f"can't be written: {error}")
    outcome.translated += 1
    outcome.warnings += len(result["warnings"])
    return [] if options.quiet else [f"{job.path}: warning: {warning}" for warning in result["warnings"]]


def reason(error: Exception) -> str:
    """The error in words. Documents are not validated as a whole: a KeyError names the missing key."""
    if isinstance(error, quillgen.Unsupported):
        return f"can't be translated: {error}"
    if isinstance(error, OSError):
        return f"can't be read: {error.strerror or error}"
    if isinstance(error, json.JSONDecodeError | UnicodeDecodeError):
        return f"is no JSON: {error}"
    if isinstance(error, KeyError):
        return f"is no sound document: nothing under the key {error}"
    return f"is no sound document: {type(error).__name__}: {error}"


def summary(outcome: Outcome, folder: Path, seconds: float) -> str:
    parts = [f"{outcome.translated} translated into {folder} in {seconds:.2f} s, {outcome.written} files written"]
    if outcome.warnings:
        parts.append(f"{outcome.warnings} warnings")
    if outcome.failed:
        parts.append(f"{len(outcome.failed)} failed")
    return ", ".join(parts)


def watch(options: argparse.Namespace, seen: dict[Job, tuple[int, int]]) -> None:
    """Translates documents that are new or have changed since `seen`, until it is interrupted."""
    if not options.quiet:
        print("watching; Ctrl-C ends it", flush=True)
    while True:
        time.sleep(POLL)
        now = stamps(list(files.jobs(path for path in options.documents if os.path.exists(path))))
        changed = [job for job, stamp in now.items() if seen.get(job) != stamp]
        if changed:
            translate_all(changed, options)
        seen = now


def stamps(work: Sequence[Job]) -> dict[Job, tuple[int, int]]:
    found: dict[Job, tuple[int, int]] = {}
    for job in work:
        try:
            status = job.path.stat()
        except OSError:
            continue  # removed since it was found
        found[job] = (status.st_mtime_ns, status.st_size)
    return found


class Bar:
    """A progress bar on a terminal; nothing elsewhere."""

    WIDTH = 30

    def __init__(self, total: int, stream: TextIO, shown: bool) -> None:
        self.total = total
        self.done = 0
        self.stream = stream
        self.shown = shown and total > 1

    def show(self, what: str) -> None:
        if self.shown:
            full = self.WIDTH * self.done // self.total
            line = f"[{'#' * full}{' ' * (self.WIDTH - full)}] {self.done}/{self.total} {what}"
            width = shutil.get_terminal_size().columns - 1  # a full line would wrap
            self.stream.write(f"\r\x1b[K{line[:width]}")
            self.stream.flush()

    def step(self) -> None:
        self.done += 1

    def clear(self) -> None:
        if self.shown:
            self.stream.write("\r\x1b[K")
            self.stream.flush()


if __name__ == "__main__":
    sys.exit(main())
