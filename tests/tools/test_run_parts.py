"""What tools/test runs and prints."""

import importlib.util
import sys
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools"))

import parts
import run_parts


@pytest.fixture
def table(monkeypatch, tmp_path):
    def make(*rows):
        monkeypatch.setattr(run_parts, "PARTS", rows)
        monkeypatch.setattr(run_parts, "LOGS", ROOT / "out" / "test" / tmp_path.name)
        monkeypatch.setenv("QUILLGEN_NO_SETUP", "1")

    return make


def row(name, command, choices=parts.FAST, **further):
    return parts.Part(name, f"does {name}", command, choices, **further)


def test_names_are_unique_and_parts_come_after_what_they_need():
    names = [part.name for part in parts.PARTS]
    assert len(names) == len(set(names))
    for part in parts.PARTS:
        assert all(names.index(earlier) < names.index(part.name) for earlier in part.after)
        assert set(part.choices) <= {"fast", "default", "all"} and (part.choices or part.option)


def test_all_is_what_ci_runs():
    assert "tools/test --all" in (ROOT / ".ci" / "run").read_text()


def test_every_folder_of_tests_is_in_some_part():
    lines = " ".join(part.command for part in parts.PARTS)
    folders = {path.parent.name for path in (ROOT / "tests").glob("*/test_*.py")}
    assert [name for name in sorted(folders) if f"tests/{name}" not in lines] == []


def test_a_failure_is_told_with_the_line_that_repeats_it(table, capfd):
    table(row("good", "echo fine"), row("bad", "echo trouble; exit 3"), row("last", "true"))
    assert run_parts.main(["--fast"]) == 1
    told = capfd.readouterr().out
    assert "trouble" in told and "exit status 3" in told and "fine" not in told
    assert "2 parts passed, 1 failed" in told
    assert told.rstrip().splitlines()[-1] == "repeat it alone: tools/test --part bad"


def test_parts_run_side_by_side_and_after_what_they_need(table, capfd, tmp_path):
    """Two parts that wait for each other both end. The third starts when its dependency ended, even if others run."""
    meet = "touch {0}/{1}; for i in $(seq 100); do [ -e {0}/{2} ] && exit; sleep 0.1; done; exit 1"
    table(
        row("one", meet.format(tmp_path, "one", "two")),
        row("late", f"test -e {tmp_path}/two", after=("two",)),
        row("two", meet.format(tmp_path, "two", "one")),
    )
    assert run_parts.main(["--fast"]) == 0
    told = capfd.readouterr().out
    assert told.index("== two") < told.index("two passed") < told.index("== late") and "3 parts passed" in told
    (tmp_path / "one").unlink(), (tmp_path / "two").unlink()
    table(row("one", f"touch {tmp_path}/one; sleep 0.3; rm {tmp_path}/one"), row("two", f"test ! -e {tmp_path}/one"))
    assert run_parts.main(["--fast", "--jobs", "1"]) == 0


def test_processor_time_is_that_of_the_part_alone(table, capfd):
    busy = f"{sys.executable} -c 'import time\nwhile time.process_time() < 1: pass'"
    table(row("busy", busy), row("idle", "sleep 0.1", after=("busy",)))
    assert run_parts.main(["--fast"]) == 0
    told = capfd.readouterr().out
    assert "idle passed in 0 s (0 s of processor time)" in told and " s (1 s of processor time)" in told


def test_what_setup_leaves_out_reaches_the_end(table, capfd, monkeypatch, tmp_path):
    table(row("one", "true"))
    setup = tmp_path / "tools" / "setup"
    setup.parent.mkdir()
    setup.write_text(
        "#!/bin/sh\necho 'setup: left out: Blender 9.9, there is no Python 9 here'\necho setup: all there\n"
    )
    setup.chmod(0o755)
    monkeypatch.setattr(run_parts, "ROOT", tmp_path)
    monkeypatch.setattr(run_parts, "LOGS", tmp_path / "out")
    monkeypatch.delenv("QUILLGEN_NO_SETUP")
    assert run_parts.main(["--fast"]) == 0
    told = capfd.readouterr().out
    assert told.rstrip().splitlines()[-1] == "left out: Blender 9.9, there is no Python 9 here"


def test_setup_knows_every_word_that_a_part_needs():
    text = (ROOT / "tools" / "setup").read_text()
    assert {need for part in parts.PARTS for need in part.setup} <= {*run_parts.SETUP, "blender"}
    assert [word for word in run_parts.SETUP if f"\n    {word})\n" not in text] == []


def test_what_needs_a_failed_part_is_left_out(table, capfd):
    table(row("build", "false"), row("tests", "true", after=("build",)), row("other", "true"))
    assert run_parts.main(["--fast"]) == 1
    told = capfd.readouterr().out
    assert "left out: tests (build failed)" in told and "== other" in told and "== tests" not in told


def test_choices(table, capfd):
    table(
        row("a", "true"), row("b", "true", parts.ALL), row("c", "true", parts.SHORT), row("d", "true", (), option="fxc")
    )
    for choice, shown, left in [
        (["--fast"], "a", "b (--all runs them)"),
        ([], "a c", "b (--all runs them)"),
        (["--all"], "a b", "d (--fxc runs it)"),
        (["--all", "--fxc"], "a b d", "nothing"),
        (["--part", "b"], "b", "nothing"),
    ]:
        assert run_parts.main(choice) == 0
        told = capfd.readouterr().out
        assert [line.split()[1][:-1] for line in told.splitlines() if line.startswith("== ") and ": does" in line] == (
            shown.split()
        )
        assert f"left out: {left}" in told


def test_a_part_alone_brings_what_it_needs(table, capfd):
    table(row("build", "true"), row("other", "true"), row("tests", "true", after=("build",)))
    assert run_parts.main(["--part", "tests"]) == 0
    told = capfd.readouterr().out
    assert "== build" in told and "== tests" in told and "== other" not in told


def test_what_parts_leave_out_is_told_at_the_end(table, capfd):
    table(row("one", "echo 'left out: Blender 5.2, no Python'; echo 'SKIPPED [3] tests/x.py:5: no device'"))
    assert run_parts.main([]) == 0
    assert "left out: one: Blender 5.2, no Python; one: 3 tests: no device" in capfd.readouterr().out


def test_a_failing_test_of_pytest_is_named(table, capfd, tmp_path):
    test = tmp_path / "test_it.py"
    test.write_text("def test_good(): pass\ndef test_bad(): assert 0\n")
    table(row("unit", f"{{pytest}} --rootdir {tmp_path} -c /dev/null {test}"))
    assert run_parts.main([]) == 1
    assert "tools/test --part unit -- 'test_it.py::test_bad'" in capfd.readouterr().out


def test_arguments_take_the_place_of_the_tests_of_a_part():
    part = parts.pytest("x", "", "tests/golden", parts.FAST)
    assert run_parts.command(part, ["-k", "noise"]).endswith("tests/golden '-k' 'noise'")
    line = run_parts.command(part, ["tests/golden/test_golden.py::test_x"])
    assert line.endswith("'tests/golden/test_golden.py::test_x'") and "tests/golden '" not in line


def test_an_interruption_ends_it_without_a_traceback(table, capfd):
    table(row("one", "kill -INT $PPID; sleep 0.5"), row("two", "true", after=("one",)))
    assert run_parts.main([]) == 130
    assert capfd.readouterr().out.endswith("== interrupted\n")


def test_arguments_without_a_part_are_a_mistake(table, capfd):
    table(row("one", "true"))
    with pytest.raises(SystemExit, match="2"):
        run_parts.main(["--fast", "--", "-k", "noise"])
    assert "arguments behind -- are for a part: --part NAME" in capfd.readouterr().err


def test_without_pytest_the_driver_needs_the_standard_library_only():
    sources = [(ROOT / "tools" / name).read_text() for name in ("run_parts.py", "parts.py")]
    names = {line.split()[1].split(".")[0] for text in sources for line in text.splitlines()
             if line.startswith(("import ", "from "))}  # fmt: skip
    assert names - {"parts"} <= sys.stdlib_module_names
    assert importlib.util.find_spec("parts") is not None
