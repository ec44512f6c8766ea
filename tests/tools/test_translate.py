"""The command quillgen-translate."""

import io
import json
import os
import subprocess
import sys
import time
from pathlib import Path

import pytest

import quillgen
from quillgen_tools import files, translate

MATERIALS = Path(__file__).resolve().parents[2] / "examples" / "materials"
GOOD = {
    "nodes": [{"id": "Glow", "type": "ShaderNodeRGB", "in": {}, "props": {}}],
    "out": {"surface": ["Glow", "Color"]},
}
WARNS = {
    "nodes": [{"id": "Odd", "type": "ShaderNodeOdd", "in": {}, "outs": {"Color": "RGBA"}}],
    "out": {"surface": ["Odd", "Color"]},
}
NO_SURFACE = {"nodes": [], "out": {}}
LACKS = {"nodes": [{"id": "Glow", "in": {}}], "out": {"surface": ["Glow", "Color"]}}


@pytest.fixture
def folder(tmp_path):
    def make(**documents):
        for name, document in documents.items():
            path = tmp_path / "documents" / f"{name.replace('__', '/')}.json"
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(document if isinstance(document, str) else json.dumps(document), encoding="utf-8")
        return tmp_path

    return make


def run(place, *options):
    return translate.main([str(place / "documents"), "--out", str(place / "out"), *options])


def written(place):
    return sorted(path.relative_to(place / "out").as_posix() for path in (place / "out").rglob("*") if path.is_file())


def test_a_folder_keeps_its_shape(folder, capsys):
    place = folder(a=GOOD, deep__er__b=GOOD, other={"key": "no document"}, broken_list=[1])
    assert run(place) == 0
    assert written(place) == [f"{stem}.{end}" for stem in ("a", "deep/er/b") for end in ("hlsl", "json", "md")]
    assert (place / "out" / "a.hlsl").read_text() == quillgen.compile(GOOD)["code"] + "\n"
    assert json.loads((place / "out" / "a.json").read_text())["material"]["shading"] == "default_lit"
    assert "2 translated" in capsys.readouterr().out


def test_displacement_is_a_file_of_its_own_and_goes_with_it(folder):
    document = json.loads((MATERIALS / "mossy_rock.json").read_text(encoding="utf-8"))
    document["settings"]["displacement"] = "BOTH"
    document["out"].setdefault("displacement", document["out"]["surface"])
    place = folder(rock=document)
    if quillgen.compile(document)["displacement"] is None:
        pytest.fail("the document has no displacement")
    assert run(place) == 0
    assert "rock.displacement.hlsl" in written(place)
    assert json.loads((place / "out" / "rock.json").read_text())["displacement"]["magnitude"] > 0
    document["settings"]["displacement"] = "BUMP"
    folder(rock=document)
    assert run(place) == 0 and "rock.displacement.hlsl" not in written(place)


@pytest.mark.parametrize(
    "document, said",
    [
        (NO_SURFACE, "can't be translated: no surface output"),
        (LACKS, "is no sound document: nothing under the key 'type'"),
        ("{", "is no JSON"),
        ('{"nodes": 1, "out": 2}', "is no sound document: TypeError"),
    ],
)
def test_one_that_fails_does_not_keep_the_others(folder, capsys, document, said):
    place = folder(a=GOOD, b=document if document != "{" else NO_SURFACE, c=GOOD)
    if document == "{":
        (place / "documents" / "b.json").write_text("{")
        assert translate.main([str(place / "documents" / "b.json"), "--out", str(place / "out")]) == 1
    assert run(place) == (0 if document == "{" else 1)
    assert said in capsys.readouterr().err
    assert {"a.hlsl", "c.hlsl"} <= set(written(place)) and "b.hlsl" not in written(place)


def test_warnings_are_told_and_are_errors_only_if_asked(folder, capsys):
    place = folder(odd=WARNS)
    assert run(place) == 0
    assert "odd.json: warning: Odd (ShaderNodeOdd) has no Unreal equivalent" in capsys.readouterr().err
    assert run(place, "--strict") == 1


def test_options_reach_the_translation(folder):
    place = folder(a=GOOD)
    run(place, "--mode", "emission", "--literals")
    assert (place / "out" / "a.hlsl").read_text() == quillgen.compile(GOOD, "emission", False)["code"] + "\n"


def test_no_document_is_an_error_of_the_command_line(tmp_path, capsys):
    assert translate.main([str(tmp_path)]) == 2
    assert translate.main([str(tmp_path / "missing.json")]) == 2
    assert "no such file or folder" in capsys.readouterr().err
    with pytest.raises(SystemExit, match="2"):
        translate.main(["--mode", "nothing", str(tmp_path)])


def test_files_that_say_the_same_are_left_as_they_are(folder, capsys):
    place = folder(a=GOOD)
    run(place)
    assert "3 files written" in capsys.readouterr().out
    before = {path: path.stat().st_mtime_ns for path in (place / "out").iterdir()}
    run(place)
    assert "0 files written" in capsys.readouterr().out
    assert before == {path: path.stat().st_mtime_ns for path in (place / "out").iterdir()}


def test_a_file_is_written_as_a_whole(tmp_path, monkeypatch):
    path = tmp_path / "text"
    files.put(path, "old")

    def fails(self, target):
        raise OSError("no")

    monkeypatch.setattr(Path, "replace", fails)
    with pytest.raises(OSError, match="no"):
        files.put(path, "new")
    assert path.read_text() == "old" and list(tmp_path.iterdir()) == [path]


def test_the_bar_is_shown_on_a_terminal_only(folder):
    place = folder(a=GOOD, b=WARNS)
    command = [sys.executable, "-m", "quillgen_tools.translate", str(place / "documents"), "--out", str(place / "out")]
    plain = subprocess.run(command, env=environment(), capture_output=True, check=True)
    assert b"\r" not in plain.stderr
    controller, terminal = os.openpty()
    subprocess.run(command, env=environment(), stdout=subprocess.PIPE, stderr=terminal, check=True)
    os.close(terminal)
    shown = os.read(controller, 100_000).decode()
    assert "[" + " " * 30 + "] 0/2 a" in shown and "1/2 b" in shown and shown.endswith("\x1b[K")


def test_the_bar_keeps_to_the_width_of_the_terminal(monkeypatch):
    monkeypatch.setenv("COLUMNS", "60")
    stream = io.StringIO()
    translate.Bar(2, stream, shown=True).show("a" * 100)
    assert len(stream.getvalue().removeprefix("\r\x1b[K")) == 59  # a full line would wrap to the next


def test_an_interruption_takes_the_bar_away(folder, monkeypatch):
    place = folder(a=GOOD, b=GOOD)
    monkeypatch.setattr(sys, "stderr", io.StringIO())
    monkeypatch.setattr(sys.stderr, "isatty", lambda: True)
    monkeypatch.setattr(translate, "translate", fails_with(KeyboardInterrupt()))
    assert run(place) == 130
    assert "0/2 a" in sys.stderr.getvalue() and sys.stderr.getvalue().endswith("\r\x1b[K")


def environment():
    folders = [str(Path(quillgen.__file__).parent), str(Path(translate.__file__).parents[1])]
    return {**os.environ, "PYTHONPATH": os.pathsep.join(folders)}


def test_what_changes_while_the_first_translation_runs_is_translated_again(folder, monkeypatch):
    place = folder(a=GOOD)
    rounds = []

    def translate_all(work, options):
        rounds.append([job.name.as_posix() for job in work])
        if len(rounds) == 1:
            folder(b=GOOD)
        return translate.Outcome()

    def sleep(seconds):
        if len(rounds) > 1:
            raise KeyboardInterrupt

    monkeypatch.setattr(translate, "translate_all", translate_all)
    monkeypatch.setattr(translate.time, "sleep", sleep)
    assert run(place, "--watch", "--quiet") == 0
    assert rounds == [["a"], ["b"]]


def test_a_document_is_not_overwritten_by_a_result(folder, capsys):
    place = folder(a=GOOD, deep__b=GOOD)
    documents = place / "documents"
    before = {path: path.read_bytes() for path in documents.rglob("*.json")}
    assert translate.main([str(documents), "--out", str(documents)]) == 1
    assert translate.main([str(documents / "deep" / "b.json"), "--out", str(documents / "deep")]) == 1
    assert {path: path.read_bytes() for path in documents.rglob("*") if path.is_file()} == before
    assert f"{documents / 'a.json'}: its result would overwrite the document" in capsys.readouterr().err


@pytest.mark.parametrize("second", ["a", "a.displacement"])
def test_two_documents_that_would_have_the_same_files(folder, capsys, second):
    place = folder(**{"one__a": GOOD, f"two__{second}": GOOD, "two__c": GOOD})
    folders = [str(place / "documents" / name) for name in ("two", "one")]
    assert translate.main([*folders, "--out", str(place / "out"), "--literals"]) == 1
    said = capsys.readouterr().err
    assert "one/a.json: its files would take the place of those of" in said and f"two/{second}.json" in said
    assert written(place) == sorted(f"{stem}.{end}" for stem in (second, "c") for end in ("hlsl", "json", "md"))


def test_names_alike_in_different_folders_are_no_clash(folder):
    place = folder(one__a=GOOD, two__a=GOOD)
    assert run(place, "--quiet") == 0


@pytest.mark.parametrize("encoding", ["utf-8-sig", "utf-16"])
def test_a_byte_order_mark_is_no_mistake(folder, encoding):
    place = folder(a=GOOD)
    (place / "documents" / "a.json").write_text(json.dumps(GOOD), encoding=encoding)
    assert run(place) == 0 and "a.hlsl" in written(place)


def test_a_file_of_endless_lists_is_no_document(folder):
    place = folder(a=GOOD)
    (place / "documents" / "deep.json").write_text("[" * 100_000)
    assert run(place) == 0


def test_a_folder_that_cannot_be_written_is_told(folder, capsys):
    place = folder(a=GOOD, deep__b=GOOD)
    (place / "out").write_text("a file")
    assert run(place) == 2
    assert f"quillgen-translate: {place / 'out'} is no folder" in capsys.readouterr().err
    (place / "out").unlink()
    (place / "out").mkdir()
    (place / "out" / "deep").write_text("a file")
    assert run(place) == 1
    assert "b.json: can't be written: " in capsys.readouterr().err and "a.hlsl" in written(place)


def test_a_file_that_cannot_be_read_is_told(folder, capsys, monkeypatch):
    place = folder(a=GOOD)
    monkeypatch.setattr(files, "read", fails_with(PermissionError(13, "Permission denied")))
    assert translate.main([str(place / "documents" / "a.json"), "--out", str(place / "out")]) == 1
    assert "a.json: can't be read: Permission denied" in capsys.readouterr().err


def test_a_path_that_no_system_takes_is_a_mistake_of_the_command_line(capsys):
    assert translate.main(["x" * 5000]) == 2
    assert capsys.readouterr().err.endswith(": File name too long\n")


def fails_with(error):
    def call(*arguments, **named):
        raise error

    return call


def test_text_that_no_encoding_takes_is_written_as_escapes(folder):
    ramp = {"id": "Lone \ud800", "type": "ShaderNodeOdd", "in": {}, "outs": {"Color": "RGBA"}}
    place = folder(a={"nodes": [ramp], "out": {"surface": ["Lone \ud800", "Color"]}})
    assert run(place) == 0
    assert json.loads((place / "out" / "a.json").read_text("utf-8"))["warnings"][0].startswith("Lone \ud800 ")


def test_names_that_the_terminal_cannot_show_are_told_as_escapes(folder):
    place = folder(**{"b\udcff\n": GOOD})
    out = place / "\u00fc\udcff"
    command = [sys.executable, "-m", "quillgen_tools.translate", str(place / "documents"), "--out", str(out)]
    ended = subprocess.run(command, env=environment() | {"PYTHONIOENCODING": "ascii"}, capture_output=True)
    assert (ended.returncode, ended.stderr) == (0, b"")
    assert b"1 translated into" in ended.stdout and b"\\xfc\\udcff" in ended.stdout
    assert len(list(out.iterdir())) == 3


def test_a_reader_that_went_away_is_no_error_of_the_translation(folder):
    place = folder(a=GOOD, b=WARNS)
    command = [sys.executable, "-m", "quillgen_tools.translate", str(place / "documents"), "--out", str(place / "out")]
    reader, writer = os.pipe()
    os.close(reader)
    ended = subprocess.run(command, env=environment(), stdout=writer, stderr=subprocess.PIPE)
    os.close(writer)
    assert b"Error" not in ended.stderr and ended.returncode == 1
    assert {"a.hlsl", "b.hlsl"} <= set(written(place))


@pytest.mark.parametrize("options, status", [([], 130), (["--watch"], 0)])
def test_an_interruption_ends_it_without_a_traceback(folder, monkeypatch, options, status):
    place = folder(a=GOOD)
    monkeypatch.setattr(translate, "translate", fails_with(KeyboardInterrupt()))
    assert run(place, *options) == status


def test_watch_outlives_a_folder_that_goes_while_it_is_read(folder, monkeypatch):
    place = folder(a=GOOD)
    looks = []
    look = Path.rglob

    def rglob(self, pattern):
        looks.append(self)
        if len(looks) == 2:
            raise FileNotFoundError(2, "No such file or directory", str(self))
        return look(self, pattern)

    def sleep(seconds):
        if len(looks) > 2:
            raise KeyboardInterrupt

    monkeypatch.setattr(Path, "rglob", rglob)
    monkeypatch.setattr(translate.time, "sleep", sleep)
    assert run(place, "--watch", "--quiet") == 0 and len(looks) == 3


def test_watch_translates_what_changes(folder):
    place = folder(a=GOOD)
    command = [sys.executable, "-u", "-m", "quillgen_tools.translate", "--watch", str(place / "documents")]
    with subprocess.Popen(
        [*command, "--out", str(place / "out")], env=environment(), stdout=subprocess.PIPE, stderr=subprocess.PIPE
    ) as process:
        try:
            assert b"1 translated" in process.stdout.readline()
            assert b"watching" in process.stdout.readline()
            folder(b=GOOD)
            assert b"1 translated" in process.stdout.readline()
            folder(a={**GOOD, "out": {}})
            assert b"1 failed" in process.stdout.readline()
            time.sleep(0.1)
            process.send_signal(2)
            assert process.wait(20) == 0
        finally:
            process.kill()
    assert {"a.hlsl", "b.hlsl"} <= set(written(place))
