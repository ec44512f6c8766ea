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
