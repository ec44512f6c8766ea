"""The stored results: a file for each node type, a section for each case."""

import re

from golden.cases import all_cases
from golden.render import FOLDER, render

MARK = "=== "


def path_of(file):
    return FOLDER / (re.sub(r"\W", "_", file.removeprefix("ShaderNode")) + ".txt")


def section(case):
    return "\n".join(render(case.result()))


def write_all():
    """Rewrites all files, and deletes those without cases."""
    wanted = {}
    for file, cases in all_cases().items():
        text = "\n\n".join(f"{MARK}{title}\n{section(case)}" for title, case in cases.items())
        wanted[path_of(file)] = f"{file}\n\n{text}\n"
    for path in set(FOLDER.glob("*.txt")) - set(wanted):
        path.unlink()
    for path, text in wanted.items():
        if not path.exists() or path.read_text(encoding="utf-8") != text:
            path.write_text(text, encoding="utf-8")


def read(file):
    """Reads a file. Returns title -> text of the section."""
    sections = path_of(file).read_text(encoding="utf-8").rstrip("\n").split(f"\n\n{MARK}")[1:]
    return dict(s.split("\n", 1) for s in sections)
