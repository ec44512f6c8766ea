"""Runs the parts of the tests (tools/parts.py). Prints what it does and how long each part took.

    tools/test             ten minutes on two processors: what a change should pass before it is shown to others
    tools/test --all       everything, as .ci/run does: also the Blenders, all data, the fuzzers, clang-tidy, wheels
    tools/test --fast      the loop of development: under a minute once built
    tools/test --part NAME [--part NAME ...] [-- ARGUMENTS]   these alone, with arguments for their last command
    tools/test --list      the parts, and which choice has them

Two parts run in parallel (--jobs sets the number). The output of each is kept in out/test/NAME.log; if the part fails,
the end of it is printed. tools/setup installs the requirements first, unless QUILLGEN_NO_SETUP=1 is set.
"""

import argparse
import json
import os
import re
import subprocess
import sys
import time
from collections.abc import Iterable, Sequence
from concurrent.futures import FIRST_COMPLETED, Future, ThreadPoolExecutor, wait
from dataclasses import dataclass, field
from pathlib import Path

from parts import PARTS, Part

ROOT = Path(__file__).resolve().parents[1]
LOGS = ROOT / "out" / "test"
PYTHON = ".venv/bin/python"
SETUP = ("build", "tests", "clang", "lint", "types", "docs", "wheels", "fxc")  # words of tools/setup, in their order
BLENDERS = "4.2 5.2"
TAIL = 60  # number of output lines printed for a failed part


@dataclass
class Outcome:
    failed: list[str] = field(default_factory=list)  # command lines that rerun the failures
    left_out: list[str] = field(default_factory=list)
    passed: set[str] = field(default_factory=set)


def main(arguments: Sequence[str]) -> int:
    arguments, further = split(arguments)
    options = parse(arguments, further)
    if options.list:
        return show_list()
    LOGS.mkdir(parents=True, exist_ok=True)
    chosen, outcome = choose(options)
    started = time.monotonic()
    try:
        setup(chosen, options, outcome)
        run_all(chosen, options, further, outcome)
    except KeyboardInterrupt:  # the child processes have received the signal too
        tell_now("== interrupted")
        return 130
    return tell(outcome, time.monotonic() - started)


def split(arguments: Sequence[str]) -> tuple[list[str], list[str]]:
    if "--" not in arguments:
        return list(arguments), []
    at = list(arguments).index("--")
    return list(arguments[:at]), list(arguments[at + 1 :])


def parse(arguments: Sequence[str], further: Sequence[str] = ()) -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="tools/test", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter
    )
    choice = parser.add_mutually_exclusive_group()
    choice.add_argument("--all", dest="choice", action="store_const", const="all")
    choice.add_argument("--fast", dest="choice", action="store_const", const="fast")
    choice.add_argument("--part", dest="parts", action="append", metavar="NAME", choices=[part.name for part in PARTS])
    choice.add_argument("--list", action="store_true")
    parser.add_argument(
        "--blender", metavar="VERSIONS", help=f"Blenders for the tests that run it, such as 4.5,5.1 ({BLENDERS})"
    )
    parser.add_argument("--fxc", action="store_true", help="also Microsoft's FXC under Wine, which is installed for it")
    parser.add_argument("--verbose", action="store_true", help="the parts' output as it comes, one after the other")
    parser.add_argument("--jobs", type=int, default=2, metavar="N", help="how many parts run side by side (2)")
    options = parser.parse_args(arguments)
    if further and not options.parts:
        parser.error("arguments behind -- are for a part: --part NAME")
    options.jobs = 1 if options.verbose else max(1, options.jobs)
    options.choice = options.choice or "default"
    options.blender = (options.blender or BLENDERS).replace(",", " ")
    return options


def choose(options: argparse.Namespace) -> tuple[list[Part], Outcome]:
    """Returns the parts to run, including their dependencies, and an Outcome that lists the parts not chosen."""
    outcome = Outcome()
    wanted: set[str] = set()
    for part in PARTS:
        asked = bool(options.parts and part.name in options.parts)
        given = not part.option or getattr(options, part.option)
        if asked or (not options.parts and given and (options.choice in part.choices or part.option)):
            wanted |= with_earlier(part)
        elif not options.parts and not given and options.choice == "all":
            outcome.left_out.append(f"{part.name} (--{part.option} runs it)")
    chosen = [part for part in PARTS if part.name in wanted]
    if not options.parts and options.choice != "all":
        later = [part.name for part in PARTS if part.name not in wanted and "all" in part.choices]
        if later:
            outcome.left_out.append(f"{', '.join(later)} (--all runs them)")
    return chosen, outcome


def with_earlier(part: Part) -> set[str]:
    names = {part.name}
    for earlier in PARTS:
        if earlier.name in part.after:
            names |= with_earlier(earlier)
    return names


def setup(chosen: Iterable[Part], options: argparse.Namespace, outcome: Outcome) -> None:
    """Installs the requirements of the parts. Records those that tools/setup skipped."""
    if os.environ.get("QUILLGEN_NO_SETUP"):
        return
    needs = {need for part in chosen for need in part.setup}
    words: list[str] = [need for need in SETUP if need in needs]
    if "blender" in needs:
        words.append(f"blender={','.join(options.blender.split())}")
    print(f"== setup: {' '.join(words)}", flush=True)
    started = time.monotonic()
    with subprocess.Popen([ROOT / "tools" / "setup", *words], cwd=ROOT, stdout=subprocess.PIPE, text=True) as process:
        assert process.stdout
        for line in process.stdout:
            print(line, end="", flush=True)
            if line.startswith("setup: left out: "):
                outcome.left_out.append(line.removeprefix("setup: left out: ").strip())
    if process.returncode:
        sys.exit("tools/setup failed: " + " ".join(["tools/setup", *words]))
    print(f"   setup took {time.monotonic() - started:.0f} s", flush=True)


def run_all(chosen: Sequence[Part], options: argparse.Namespace, further: Sequence[str], outcome: Outcome) -> None:
    """Runs the parts in parallel, in the order of the table. A part waits for its dependencies."""
    waiting, ended = list(chosen), set[str]()
    running: dict[Future[None], Part] = {}
    with ThreadPoolExecutor(options.jobs) as pool:
        while waiting or running:
            for part in [part for part in waiting if ended >= set(part.after)]:
                missing = [name for name in part.after if name not in outcome.passed]
                if missing:
                    outcome.left_out.append(f"{part.name} ({', '.join(missing)} failed)")
                    ended.add(part.name)
                elif len(running) < options.jobs:
                    tell_now(f"== {part.name}: {part.does}")
                    running[pool.submit(run, part, options, further, outcome)] = part
                else:
                    continue
                waiting.remove(part)
            for done in wait(running, return_when=FIRST_COMPLETED).done:
                ended.add(running.pop(done).name)
                done.result()  # raises if this program itself failed


def run(part: Part, options: argparse.Namespace, further: Sequence[str], outcome: Outcome) -> None:
    started = time.monotonic()
    log = LOGS / f"{part.name}.log"
    asked = options.parts and options.parts[-1] == part.name
    code, spent = execute(command(part, further if asked else ()), log, environment(options), options.verbose)
    lines = log.read_text(encoding="utf-8", errors="replace").splitlines()
    took = f"{time.monotonic() - started:.0f} s ({spent:.0f} s of processor time)"
    outcome.left_out += [f"{part.name}: {what}" for what in left_out(lines)]
    if code == 0:
        outcome.passed.add(part.name)
        tell_now(f"   {part.name} passed in {took}{summary(part, lines)}")
        return
    shown = [] if options.verbose else lines[-TAIL:]
    where = f"exit status {code}; all of its output: {log.relative_to(ROOT)}"
    tell_now("\n".join([*shown, f"   {part.name} FAILED in {took}, {where}"]))
    outcome.failed.append(repetition(part))


def tell_now(text: str) -> None:
    """Prints the text and its newline in one write, so that the output of two threads does not mix."""
    sys.stdout.write(text + "\n")
    sys.stdout.flush()


def command(part: Part, further: Sequence[str]) -> str:
    """The command line of a part. Arguments that name tests replace the tests in the table."""
    pytest = f"{PYTHON} -m pytest -q -rs -o cache_dir={LOGS / 'cache' / part.name}"
    template = part.command
    if further and template.startswith("{pytest}"):
        tests = any(Path(one.split("::")[0]).exists() for one in further)
        template = "{pytest}" if tests else template
    cmake = f"cmake -S . -G Ninja -DQUILLGEN_STRICT=ON -DPython_EXECUTABLE={ROOT / PYTHON}"
    line = template.replace("{pytest}", pytest).replace("{python}", PYTHON).replace("{cmake}", cmake)
    return " ".join([line, *(f"'{one}'" for one in further)])


def environment(options: argparse.Namespace) -> dict[str, str]:
    folders = [str(ROOT / folder) for folder in ("build/g++", "binding/python", "blender")]
    given = os.environ.get("PYTHONPATH")
    return {
        **os.environ,
        "PYTHONPATH": os.pathsep.join(folders + ([given] if given else [])),
        "QUILLGEN_BLENDERS": options.blender,
        "QUILLGEN_CHOICE": options.choice,
    }


def execute(line: str, log: Path, env: dict[str, str], verbose: bool) -> tuple[int, float]:
    """Runs a command line. Returns its exit status and the CPU time of it and its child processes, in seconds."""
    line = f"set -euo pipefail; {line}"
    if verbose:
        line = f"({line}) 2>&1 | tee '{log}'"
    with log.open("wb") as output:
        to = None if verbose else output
        process = subprocess.Popen(["bash", "-o", "pipefail", "-c", line], cwd=ROOT, env=env, stdout=to, stderr=to)
        _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, used.ru_utime + used.ru_stime


def left_out(lines: Iterable[str]) -> list[str]:
    """What a part reported as left out, and pytest's reasons for skipped tests."""
    found: dict[str, int] = {}
    for line in lines:
        if line.startswith("left out: "):
            found.setdefault(line.removeprefix("left out: "), 0)
        elif match := re.match(r"SKIPPED \[(\d+)\] [^ ]+ (.*)", line):
            found[match[2]] = found.get(match[2], 0) + int(match[1])
    return [f"{count} tests: {reason}" if count else reason for reason, count in found.items()]


def summary(part: Part, lines: Sequence[str]) -> str:
    """The last line of pytest's output, without the time."""
    if "{pytest}" not in part.command or not lines:
        return ""
    counts = re.sub(r" in [\d.]+s.*", "", lines[-1].strip("= "))
    return f": {counts}"


def repetition(part: Part) -> str:
    """The command line that reruns a failed part; only the failed tests if pytest recorded one to three of them."""
    line = f"tools/test --part {part.name}"
    kept = LOGS / "cache" / part.name / "v" / "cache" / "lastfailed"
    if "{pytest}" in part.command and kept.exists():
        failed = list(json.loads(kept.read_text(encoding="utf-8")))
        if 0 < len(failed) <= 3:
            line += " -- " + " ".join(f"'{one}'" for one in failed)
    return line


def show_list() -> int:
    for part in PARTS:
        choice = part.option or ("default only" if part.choices == ("default",) else part.choices[0])
        print(f"{part.name:16} {choice:13} {part.does}")
    return 0


def tell(outcome: Outcome, seconds: float) -> int:
    print(f"== {len(outcome.passed)} parts passed, {len(outcome.failed)} failed, {seconds / 60:.1f} minutes")
    print("left out: " + ("; ".join(outcome.left_out) or "nothing"))
    for line in outcome.failed:
        print(f"repeat it alone: {line}")
    return 1 if outcome.failed else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
