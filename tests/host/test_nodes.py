"""No part of a node is lost silently: every property and socket of a translated node in the installed Blender is passed
on, or listed as having no effect. Fails with a newer Blender that adds some."""

import json
import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path[:0] = [str(HERE), str(HERE.parents[1] / "blender")]

import blenders
import quillgen
from quillgen_blender import passes

EMPTY = ("image", "object")  # passed on only if set


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def nodes(request):
    return json.loads(blenders.run(request.param, HERE / "nodes_in_blender.py")[-1])


def test_all_nodes_can_be_read(nodes):
    assert len(nodes) > 100
    assert {name: found["error"] for name, found in nodes.items() if "error" in found} == {}


def test_all_properties_and_sockets_are_known(nodes):
    assert {name: found["unknown"] for name, found in nodes.items() if found["unknown"]} == {}


def test_what_is_known_is_handed_over_or_has_a_reason(nodes):
    lost = {}
    for name, found in nodes.items():
        if found["known"] and "kept" in found and found["kept"]:
            names = set(found["properties"]) | set(found["sockets"])
            missing = names - set(found["kept"]) - set(found["ignored"]) - set(found["renamed"]) - set(EMPTY)
            lost |= {name: sorted(missing)} if missing else {}
    assert lost == {}


def test_reasons_are_of_nodes_that_there_are(nodes):
    """Each reason for a single node type names an existing property or socket. Reasons for all nodes need not apply to
    each."""
    stale = {
        name: [what for what in found["ignored_here"] if what not in found["properties"] + found["sockets"]]
        for name, found in nodes.items()
    }
    assert {name: names for name, names in stale.items() if names} == {}
    assert sum(len(found["ignored_here"]) for found in nodes.values()) == 5


def test_what_is_new_is_a_note(nodes):
    """A property and a socket that are missing in the reader's table become notes."""
    told = [text for text in nodes["ShaderNodeMath"]["forgotten"] if "is new to this translator" in text]
    assert [text.split()[0] for text in told] == ["use_clamp", "Value_002"]


def test_all_nodes_can_be_translated(nodes):
    """Older Blenders have every socket that a handler requires."""
    trouble = {}
    for name, found in nodes.items():
        if "document" in found and found["document"]["out"]:
            try:
                quillgen.compile(passes.prepare(found["document"])[0])
            except quillgen.Unsupported as reason:
                trouble[name] = str(reason)
    assert trouble == {}
