"""The command line: exports the materials of a file one after the other, with a progress bar and a summary."""

import argparse
import contextlib
import importlib
import json
import sys
import time
from collections.abc import Sequence
from pathlib import Path
from typing import Any

from .passes import Options
from .pipeline import Settings

DONE, FAILED, REFUSED, STOPPED = 0, 1, 2, 130
RUN = ".quillgen_run.json"  # not the name of a temporary file: an export removes those after an hour
NEEDED = {
    "bpy": "install it, or run Blender in background",
    "quillgen": "install it (pip install .), or name the folder with its build in PYTHONPATH",
}
WIDTH = 30  # characters of the bar

EPILOG = """exit codes:
  0    all materials were exported
  1    some were not: each is told with its reason
  2    nothing was done: the file or a material isn't there, the folder can't be made, or an argument is wrong
  130  interrupted; the same command goes on where it stopped
"""


def parser() -> argparse.ArgumentParser:
    found = argparse.ArgumentParser(
        prog="quillgen_blender",
        description="Exports the materials of a .blend file for Unreal.",
        epilog=EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
    )
    found.add_argument("file", type=Path, help="the .blend file")
    found.add_argument("--out", type=Path, required=True, metavar="FOLDER", help="the folder to export to")
    found.add_argument("--material", nargs="+", default=[], metavar="NAME", help="these materials, instead of all")
    found.add_argument("--parameters", choices=("auto", "all", "named", "none"), default="auto", help="live parameters")
    found.add_argument("--no-displacement", action="store_true", help="displacement bumps the surface")
    found.add_argument("--no-textures", action="store_true", help="don't save pictures")
    found.add_argument("--from-start", action="store_true", help="export again what an interrupted run has done")
    found.add_argument("--quiet", action="store_true", help="tell failures only")
    return found


def main(words: Sequence[str]) -> int:
    options = parser().parse_args(words)
    for module, hint in NEEDED.items():
        try:
            importlib.import_module(module)
        except ImportError:
            print(f"quillgen_blender: this Python has no {module}: {hint}", file=sys.stderr)
            return REFUSED
    try:
        return run(options)
    except Refused as error:
        print(f"quillgen_blender: {error}", file=sys.stderr)
        return REFUSED


class Refused(Exception):
    """Nothing can be done."""


def run(options: argparse.Namespace) -> int:
    from . import exporting, write

    materials = chosen_materials(opened(options.file), options.material)
    try:
        target = write.look(options.out)
    except OSError as error:
        raise Refused(f"{options.out}: {error.strerror}") from error
    settings = Settings(options=Options(parameters=options.parameters), displacement=not options.no_displacement)
    record = Record(options.out / RUN, description(options), fresh=options.from_start)
    waiting = [material for material in materials if not record.has(material, exporting.library_of(material))]
    skipped = len(materials) - len(waiting)
    if skipped and not options.quiet:
        print(f"going on where the last run stopped: {skipped} of {len(materials)} are done")
    bar = Bar(len(materials), skipped, quiet=options.quiet)
    counts = {"all": 0, "parameters": 0, "nothing": 0, "failed": 0, "remarks": 0}
    began = time.perf_counter()
    try:
        for material in waiting:
            bar.show(material.name)
            outcome = exporting.finish(exporting.steps(material, target, settings, not options.no_textures))
            counts[outcome.changed or "failed"] += 1
            counts["remarks"] += bool(outcome.remarks)
            bar.line(told(outcome), failed=bool(outcome.error))
            bar.done += 1
            if not outcome.error:
                record.add(material, exporting.library_of(material))
    except KeyboardInterrupt:
        bar.clear()
        print(f"stopped after {bar.done} of {len(materials)}; the same command goes on from here", file=sys.stderr)
        return STOPPED
    bar.clear()
    record.end()
    if not options.quiet:
        print(summary(counts, skipped, time.perf_counter() - began))
    return FAILED if counts["failed"] else DONE


def opened(file: Path) -> Path:
    import bpy

    if not file.is_file():
        raise Refused(f"{file}: no such file")
    try:
        bpy.ops.wm.open_mainfile(filepath=str(file.resolve()), load_ui=False, use_scripts=False)
    except RuntimeError as error:
        raise Refused(f"{file}: {str(error).removeprefix('Error: ').strip()}") from error
    return file


def chosen_materials(file: Path, names: Sequence[str]) -> list[Any]:
    import bpy

    from . import exporting

    if not names:
        found = exporting.all_materials()
        if not found:
            raise Refused(f"{file} has no material with nodes that something uses")
        return found
    missing = [name for name in names if name not in bpy.data.materials]
    if missing:
        raise Refused(f"{file} has no material {', '.join(missing)}")
    return [material for name in dict.fromkeys(names) for material in bpy.data.materials if material.name == name]


def told(outcome: Any) -> str:
    if outcome.error:
        return f"{outcome.where}: {outcome.error}"
    words = {"all": "exported", "parameters": "values exported", "nothing": "unchanged"}[outcome.changed]
    remarks = "".join(f"\n  {remark['node'] or outcome.name}: {remark['text']}" for remark in outcome.remarks)
    return f"{outcome.name}: {words}, {outcome.parameters} parameters, {outcome.textures} textures{remarks}"


def summary(counts: dict[str, int], skipped: int, seconds: float) -> str:
    written = counts["all"] + counts["parameters"]
    parts = [f"{written} exported", f"{counts['nothing']} unchanged", f"{counts['failed']} failed"]
    parts += [f"{skipped} done before"] if skipped else []
    return f"{', '.join(parts)}; {counts['remarks']} differ from Blender; {seconds:.1f} s"


def description(options: argparse.Namespace) -> dict[str, Any]:
    """What has to be the same for a run to continue an interrupted one."""
    stat = options.file.stat()
    found = {key: value for key, value in vars(options).items() if key not in ("file", "out", "quiet", "from_start")}
    return found | {"file": options.file.name, "size": stat.st_size, "changed": stat.st_mtime_ns}


class Record:
    """What a run has done. Its file is in the target folder until the run ends."""

    def __init__(self, path: Path, about: dict[str, Any], fresh: bool):
        self.path, self.about = path, about
        self.done: list[list[str]] = []
        with contextlib.suppress(OSError, ValueError, KeyError, TypeError):
            found = json.loads(path.read_bytes())
            if found["about"] == about and not fresh:
                self.done = found["done"]

    def has(self, material: Any, library: str) -> bool:
        return [material.name, library] in self.done

    def add(self, material: Any, library: str) -> None:
        from .write import files

        self.done.append([material.name, library])
        content = json.dumps({"about": self.about, "done": self.done}, ensure_ascii=False)
        files.replace(self.path.parent, {self.path.name: content.encode("utf-8", "replace")}, {})

    def end(self) -> None:
        self.path.unlink(missing_ok=True)


class Bar:
    """A progress bar on a terminal. Lines that are printed don't break it."""

    def __init__(self, of: int, done: int, quiet: bool):
        self.of, self.done, self.quiet = of, done, quiet
        self.drawn = sys.stderr.isatty() and not quiet

    def show(self, text: str) -> None:
        if self.drawn:
            filled = WIDTH * self.done // max(self.of, 1)
            bar = "#" * filled + "-" * (WIDTH - filled)
            print(f"\r\x1b[K[{bar}] {self.done}/{self.of} {text}", end="", file=sys.stderr, flush=True)

    def clear(self) -> None:
        if self.drawn:
            print("\r\x1b[K", end="", file=sys.stderr, flush=True)

    def line(self, text: str, failed: bool) -> None:
        self.clear()
        if failed:
            print(text, file=sys.stderr, flush=True)
        elif not self.quiet:
            print(text, flush=True)
