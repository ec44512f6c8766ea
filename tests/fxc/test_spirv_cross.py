"""The SPIR-V that DXC makes from the example materials converts to Metal and GLSL ES, which mobile renderers need."""

import shutil
import subprocess

import pytest

from dxc import DxcError, compile_hlsl

CROSS = shutil.which("spirv-cross")
TARGETS = {"Metal": ["--msl", "--msl-version", "20300"], "GLSL ES": ["--es", "--version", "310"]}


@pytest.mark.skipif(CROSS is None, reason="there is no spirv-cross here: tools/setup fxc")
@pytest.mark.parametrize("target", TARGETS)
def test_every_example_converts(shaders, target, tmp_path):
    failed = {}
    for name, text in shaders.items():
        path = tmp_path / f"{name}.spv"
        try:
            path.write_bytes(compile_hlsl(text, target="ps_6_0", spirv=True))
        except DxcError as error:
            failed[name] = str(error)
            continue
        done = subprocess.run([CROSS, path, *TARGETS[target]], capture_output=True, text=True)
        if done.returncode or "main" not in done.stdout:
            failed[name] = done.stderr
    assert len(shaders) > 20 and failed == {}
