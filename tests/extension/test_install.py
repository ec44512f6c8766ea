"""The packed extension: Blender's own tool validates it, and each Blender installs, uses and removes it."""

import importlib.util
import json
import os
import subprocess
import sys
import tomllib
import zipfile
from importlib.machinery import SourceFileLoader
from pathlib import Path

import pytest

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
sys.path.insert(0, str(HERE.parent / "host"))

import blenders

loader = SourceFileLoader("extension_tool", str(ROOT / "tools" / "extension"))
spec = importlib.util.spec_from_loader(loader.name, loader)
assert spec
tool = importlib.util.module_from_spec(spec)
loader.exec_module(tool)


@pytest.fixture(scope="module")
def archives(tmp_path_factory):
    out = tmp_path_factory.mktemp("extension")
    done = subprocess.run([sys.executable, ROOT / "tools" / "extension", "--out", out], capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr
    return out


def whole(archives):
    return archives / f"quillgen-{tool.project_version()}.zip"


def manifest(path):
    return tomllib.loads(zipfile.ZipFile(path).read("blender_manifest.toml").decode())


def test_the_manifest_has_the_projects_version_and_the_wheels_that_are_there(archives):
    found = manifest(whole(archives))
    names = zipfile.ZipFile(whole(archives)).namelist()
    assert found["version"] == tomllib.loads((ROOT / "pyproject.toml").read_text())["project"]["version"]
    assert found["license"][0] == "SPDX:GPL-3.0-or-later" and "LICENSE" in names
    assert {f"./{name}" for name in names if name.startswith("wheels/")} == set(found["wheels"])
    assert not [name for name in names if "__pycache__" in name or name.endswith((".in", ".md"))]


def test_each_platform_has_a_zip_with_its_wheel_alone(archives):
    for platform in manifest(whole(archives))["platforms"]:
        path = archives / f"quillgen-{tool.project_version()}-{platform.replace('-', '_')}.zip"
        assert manifest(path)["platforms"] == [platform] and len(manifest(path)["wheels"]) == 1


def test_wheels_of_all_platforms_find_their_place(tmp_path):
    ends = ("x86_64", "aarch64")
    tags = [f"manylinux_2_28_{end}" for end in ends] + ["win_amd64", "macosx_11_0_arm64", "macosx_11_0_universal2"]
    for tag in tags:
        (tmp_path / f"quillgen-1.2.3-cp311-abi3-{tag}.whl").write_bytes(b"")
    (tmp_path / "quillgen-1.2.2-cp311-abi3-win_arm64.whl").write_bytes(b"")
    found = {platform: wheel.stem.rpartition("-")[2] for platform, wheel in tool.wheels_in(tmp_path, "1.2.3").items()}
    assert found == {
        "linux-x64": "manylinux_2_28_x86_64",
        "linux-arm64": "manylinux_2_28_aarch64",
        "windows-x64": "win_amd64",
        "macos-arm64": "macosx_11_0_universal2",
        "macos-x64": "macosx_11_0_universal2",
    }


def test_the_same_sources_give_the_same_bytes(archives, tmp_path):
    subprocess.run([sys.executable, ROOT / "tools" / "extension", "--out", tmp_path], capture_output=True, check=True)
    for path in archives.iterdir():
        assert (tmp_path / path.name).read_bytes() == path.read_bytes(), path.name


@pytest.mark.parametrize("version", blenders.VERSIONS)
def test_blenders_own_tool_builds_the_same(archives, tmp_path, version):
    known = tool.blenders()
    if version not in known:
        pytest.skip(f"no Blender {version} here: tools/setup blender={version} makes it")
    python, extension = known[version]
    source = tmp_path / "source"
    zipfile.ZipFile(whole(archives)).extractall(source)
    words = [python, extension, "build", "--source-dir", source, "--output-dir", tmp_path]
    done = subprocess.run(words, capture_output=True, text=True)
    assert done.returncode == 0, done.stdout + done.stderr
    (built,) = tmp_path.glob("*.zip")
    assert built.name == whole(archives).name
    files = [name for name in zipfile.ZipFile(built).namelist() if not name.endswith("/")]
    assert sorted(files) == sorted(zipfile.ZipFile(whole(archives)).namelist())


@pytest.mark.parametrize("version", blenders.VERSIONS)
def test_a_fresh_blender_installs_uses_and_removes_it(archives, tmp_path, version):
    python = ROOT / f".venv-blender-{version}" / "bin" / "python"
    if not python.exists():
        pytest.skip(f"no Blender {version} here: tools/setup blender={version} makes it")
    environment = {key: value for key, value in os.environ.items() if key != "PYTHONPATH"}
    (tmp_path / "user").mkdir()
    done = subprocess.run(
        [python, "-W", "ignore", HERE / "install_in_blender.py", whole(archives), tmp_path / "out"],
        capture_output=True,
        text=True,
        env=environment | {"BLENDER_USER_RESOURCES": str(tmp_path / "user")},
    )
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr[-4000:]
    report = json.loads(done.stdout.splitlines()[-1])
    nothing = {"handlers": [], "types": [], "operators": []}
    assert report["before"] == nothing | {"modules": [], "files": []}
    assert report["installed"] == report["exported"] == ["FINISHED"] and report["enabled"] == [True, True]
    assert Path(report["module"]).is_relative_to(tmp_path / "user"), "the module is that of the wheel"
    assert report["preferences"] == "//unreal"
    written = [json.loads(path.read_bytes())["name"] for path in (tmp_path / "out").glob("*/material.json")]
    assert sorted(written) == sorted(report["names"]) and len(written) == 6
    assert report["disabled"] == nothing
    assert report["removed"]["files"] == [] and {key: report["removed"][key] for key in nothing} == nothing
