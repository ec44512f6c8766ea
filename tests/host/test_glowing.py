"""A value where a shader belongs becomes an emission, in each installed Blender."""

import sys
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE))

import blenders
import quillgen


@pytest.fixture(scope="module", params=blenders.VERSIONS)
def found(request, tmp_path_factory):
    return blenders.report(request.param, HERE / "glowing_in_blender.py", tmp_path_factory.mktemp("glowing"))


def test_the_document_shows_the_same_picture(found):
    assert {name: one["difference"] for name, one in found.items() if not one["difference"] <= 1e-6} == {}
    assert all(one["spread"] > 0.1 for one in found.values())


def test_shader_sockets_read_shaders_alone(found):
    for name, one in found.items():
        nodes = {node["id"]: node for node in one["document"]["nodes"]}
        source, output = one["document"]["out"]["surface"]
        assert nodes[source]["outs"][output] == "SHADER", name
        entries = [entry for node in nodes.values() for entry in node["in"].values() if entry["t"] == "SHADER"]
        assert {entry["link"][2] for entry in entries if "link" in entry} <= {"SHADER"}, name


def test_the_text_emits_it(found):
    for name, one in found.items():
        outputs = [output["name"] for output in quillgen.compile(one["document"])["outputs"]]
        assert "OutEmissive" in outputs, name
