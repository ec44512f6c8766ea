"""What the written pages say is so: their links lead somewhere, their examples run."""

import json
import re
from pathlib import Path

import pytest

import quillgen
from quillgen_tools import types
from quillgen_tools.wiring import WIRING

ROOT = Path(__file__).resolve().parents[2]
PAGES = sorted(
    [*ROOT.glob("*.md"), *ROOT.glob("docs/**/*.md"), *ROOT.glob("blender/**/*.md"), *ROOT.glob("tests/**/*.md")]
)
MADE = ("gallery.md", "changelog.md", "architecture.svg")  # by tools/docs, or names of pages within the site


def blocks(page, language):
    return re.findall(rf"```{language}\n(.*?)```", (ROOT / page).read_text(encoding="utf-8"), re.DOTALL)


@pytest.mark.parametrize("path", PAGES, ids=lambda path: path.relative_to(ROOT).as_posix())
def test_links_lead_to_files(path):
    targets = re.findall(r"\]\(([^)#\s]+)", path.read_text(encoding="utf-8"))
    local = [target for target in targets if not re.match(r"\w+:", target)]
    made = {"nodes/", "reference/inputs.md", "reference/python.md", "reference/command-line.md"}
    missing = [
        target
        for target in local
        if not (path.parent / target).exists()
        and Path(target).name not in MADE
        and not any(target.endswith(place) or place in f"{path.parent.name}/{target}" for place in made)
    ]
    assert missing == []


def test_the_table_of_steps_names_files_that_have_the_functions():
    _, table = (ROOT / "docs" / "architecture.md").read_text(encoding="utf-8").split("### Where each step stands")
    rows = re.findall(r"^\|.*\| (.*`) \| (.*`) \|$", table, re.MULTILINE)
    missing = []
    for functions, files in rows:
        paths = [path for pattern in re.findall(r"`([^`]+)`", files) for path in ROOT.glob(pattern)]
        text = "\n".join(path.read_text(encoding="utf-8") for path in paths)
        for function in re.findall(r"`([^`]+)`", functions):
            member = function.split("::")[-1] if any(path.suffix == ".h" for path in paths) else function
            if not re.search(rf"^[\w<>*& ]*[*& ]({re.escape(function)}|{member})\([^;]*\{{", text, re.MULTILINE):
                missing.append(f"{function}: {files}")
    assert len(rows) > 10 and missing == []


@pytest.mark.parametrize("path", PAGES, ids=lambda path: path.relative_to(ROOT).as_posix())
def test_paths_that_are_named_are_there(path):
    """Those in code, such as `core/gen/gen.h` and `tools/test --fast`, if they begin with a folder of sources."""
    folders = "bench|binding|blender|closures|cmake|core|docs|examples|lib|nodes|tests|tools|unreal"
    text = path.read_text(encoding="utf-8")
    code = "\n".join(re.findall(r"`[^`\n]+`|^    [^\n]*$|```.*?```", text, re.DOTALL | re.MULTILINE))
    named = re.findall(rf"(?<![\w./*-])(?:{folders})/[\w./*-]+", code)
    made = {"tests/golden/expected/Quantize.txt", "nodes/index.md"}  # by the reader, by tools/docs
    missing = [name for name in named if name not in made and not any(ROOT.glob(name.rstrip("/.")))]
    assert missing == []


def test_commands_find_the_modules():
    """The environment of the tests has no modules: they are in the folder that a tool builds in. tests/wheels brings
    its own."""
    built = set(re.findall(r"-B (build/\S+)", (ROOT / "tools" / "parts.py").read_text(encoding="utf-8")))
    lines = [
        f"{path.name}: {line.strip()}"
        for path in PAGES
        for line in path.read_text(encoding="utf-8").splitlines()
        if ".venv/bin/python" in line or "PYTHONPATH=build" in line or "`pytest " in line
    ]
    lost = [line for line in lines if not any(f"PYTHONPATH={folder} .venv/bin/python" in line for folder in built)]
    assert len(lines) > 5 and [line for line in lost if "pytest tests/wheels/" not in line] == []


@pytest.mark.parametrize("page", ["README.md", "docs/index.md"])
def test_the_ten_lines_run(page, capsys, monkeypatch):
    monkeypatch.chdir(ROOT)
    (lines,) = blocks(page, "python")
    exec(lines, {})
    told = capsys.readouterr().out
    assert "OutNormal -> normal" in told and "wpos <- Absolute World Position" in told


def test_both_pages_have_the_same_ten_lines():
    assert blocks("README.md", "python") == blocks("docs/index.md", "python")


def test_the_example_of_a_document_translates():
    (text,) = blocks("docs/reference/document.md", "json")
    document = json.loads(text)
    result = quillgen.compile(document)
    assert "tex_checker" in result["code"] and result["warnings"] == []


@pytest.mark.parametrize(
    "page, shape",
    [
        ("document", types.Document),
        ("document", types.Settings),
        ("document", types.Image),
        ("document", types.Socket),
        ("document", types.Node),
        ("result", types.Result),
        ("result", types.Material),
    ],
)
def test_the_reference_names_every_key(page, shape):
    text = (ROOT / "docs" / "reference" / f"{page}.md").read_text(encoding="utf-8")
    assert [key for key in shape.__annotations__ if f"`{key}`" not in text] == []


def test_the_reference_names_every_output():
    text = (ROOT / "docs" / "reference" / "result.md").read_text(encoding="utf-8")
    materials = sorted((ROOT / "examples" / "materials").glob("*.json"))
    results = [quillgen.compile(json.loads(path.read_text(encoding="utf-8"))) for path in materials]
    names = {output["name"] for result in results for output in result["outputs"]}
    assert len(names) > 5 and [name for name in names if f"`{name}`" not in text] == []
    assert {entry["kind"] for result in results for entry in result["inputs"]} <= set(WIRING)
