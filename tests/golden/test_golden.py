"""Every golden document translates to exactly the stored result."""

import functools
import os
import pathlib
import subprocess
import sys

import pytest

from golden import kept
from golden.cases import all_cases
from golden.render import FOLDER, literal, render

TESTS = pathlib.Path(__file__).parents[1]
CASES = [
    pytest.param(file, case, id=f"{file}: {title}")
    for file, cases in all_cases().items()
    for title, case in cases.items()
]
read = functools.cache(kept.read)


@pytest.mark.parametrize("file, case", CASES)
def test_result_is_the_kept_one(file, case):
    assert kept.section(case).split("\n") == read(file)[case.title].split("\n")


def test_nothing_is_kept_that_no_case_makes():
    assert {path.name for path in FOLDER.glob("*.txt")} == {kept.path_of(file).name for file in all_cases()}
    for file, cases in all_cases().items():
        assert list(read(file)) == list(cases)


def test_document_is_left_as_it_was():
    for cases in all_cases().values():
        for case in cases.values():
            if case.document:
                before = literal(case.document)
                case.result()
                assert literal(case.document) == before, case.title


@pytest.mark.parametrize(
    "one, other",
    [
        (1, 1.0),
        (True, 1),
        (0.0, -0.0),
        ([1], (1,)),
        ({"a": 1, "b": 2}, {"b": 2, "a": 1}),
        ("1", 1),
        (set(), {}),
        (None, "None"),
        (0.1, 0.1 + 2**-56),
    ],
)
def test_rendering_shows_what_differs(one, other):
    assert render({"key": one}) != render({"key": other})


def test_rendering_shows_a_changed_library_or_closure():
    code = all_cases()["ShaderNodeTexChecker"]["as Blender makes it"].result()["code"]
    assert "[material: tex_checker]" in "\n".join(render(code))
    for old, new in (
        ("tex_checker(", "tex_chequer("),
        ("c.alpha = 1.0", "c.alpha = 0.9"),
        ("struct QWK {", "struct QWK  {"),
    ):
        assert "[material" not in "\n".join(render(code.replace(old, new, 1)))


def test_update_refuses_where_ci_is_set():
    before = {path: path.stat().st_mtime_ns for path in FOLDER.iterdir()}
    run = subprocess.run(
        [sys.executable, "-m", "pytest", "--update", "--collect-only", "-q", __file__],
        cwd=TESTS,
        env={**os.environ, "CI": "true"},
        capture_output=True,
        text=True,
    )
    assert run.returncode == pytest.ExitCode.USAGE_ERROR
    assert "--update changes what the tests expect" in run.stderr
    assert {path: path.stat().st_mtime_ns for path in FOLDER.iterdir()} == before


def test_update_writes_all_and_removes_the_rest(tmp_path, monkeypatch):
    (tmp_path / "NoSuchNode.txt").write_text("stale")
    (tmp_path / "Math.txt").write_text("changed")
    monkeypatch.setattr(kept, "FOLDER", tmp_path)
    kept.write_all()
    assert {p.name: p.read_text() for p in tmp_path.iterdir()} == {p.name: p.read_text() for p in FOLDER.glob("*.txt")}
