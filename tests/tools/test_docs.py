"""The documentation pages and the diagram that are generated from the sources."""

import sys
from pathlib import Path

import pytest

import quillgen
from quillgen_blender.passes import support

ROOT = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tools" / "docs"))

import drawing
import pages


def test_every_page_is_made_and_every_node_is_on_one():
    made = pages.all_pages()
    assert all(text.startswith("# ") for text in made.values())
    for node in pages.nodes():
        assert made[f"nodes/{node.family}.md"].count(f"\n## {node.name}\n") == 1
    for row in support.rows():
        assert any(row.text in text for place, text in made.items() if place.startswith("nodes/"))


@pytest.mark.parametrize("list_name", ["NODES", "rows"])
def test_a_node_that_no_page_has_stops_the_build(monkeypatch, list_name):
    if list_name == "NODES":
        monkeypatch.setattr(pages, "quillgen", type("Module", (), {"NODES": (*quillgen.NODES, "ShaderNodeOdd")}))
    else:
        row = support.rows()[0]._replace(type="ShaderNodeOdd")
        monkeypatch.setattr(pages.support, "rows", lambda: [row])
    with pytest.raises(ValueError, match="ShaderNodeOdd"):
        pages.nodes()


def test_measured_shares_are_those_of_the_fidelity_page():
    measured, reasons = pages.fidelity()
    page = (ROOT / "docs" / "fidelity.md").read_text(encoding="utf-8")
    cases, pixels, share = measured["Voronoi Texture"]
    assert f"| Voronoi Texture | {cases} | {pixels} | {share} |" in page
    assert len(reasons) > 5 and all(reason in page for rows in reasons.values() for *_, reason in rows)


def test_the_slider_takes_the_place_of_every_picture():
    page = pages.gallery_page()
    assert page.count('class="slider"') == len(list((ROOT / "examples" / "materials").glob("*.json")))
    assert " in Cycles](" not in page and ": the text](" not in page


def test_rooms_use_only_what_they_may():
    """The dependencies between folders obey docs/architecture.md."""
    uses = set(drawing.arrows())
    assert ("closures", "core/gen") in uses and ("nodes/value", "core/gen") in uses
    for start, end in uses:
        if start.startswith("core/"):
            assert end.startswith("core/"), (start, end)
        if start.startswith("nodes"):
            assert end.startswith(("core/", "nodes")), (start, end)
        if start == "core/document":
            assert end == "core/document"
        if start.endswith(("/passes", "/write")):
            assert not end.endswith(("/read", "/ui")), (start, end)
        assert end != "binding" and start not in ("lib", "unreal"), (start, end)


def test_the_picture_shows_every_folder_of_sources():
    folders = {
        path.parent.relative_to(ROOT).as_posix()
        for path in ROOT.glob("[bcln]*/**/*.cpp")
        if "build" not in path.parts[-4:]
    }
    folders = {folder for folder in folders if folder.split("/")[0] in ("binding", "closures", "core", "lib", "nodes")}
    assert folders - {room.folder for room in drawing.ROOMS} == set()
    picture = drawing.svg()
    assert picture.count("<rect") == len(drawing.ROOMS)
