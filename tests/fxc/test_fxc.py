"""FXC, Microsoft's older compiler, compiles every example material. Unreal uses it when it falls back to Direct3D 11.

Optional: `tools/test --fxc` installs Wine, the compiler's DLL and the tools that build a host program for it.
The target is shader model 5. The CPU times are printed; only a time far above that of any example is a failure.
"""

import pathlib
import shutil
import subprocess

import pytest

FOLDER = pathlib.Path(__file__).resolve().parents[2] / ".venv-fxc"
WINE = shutil.which("wine64") or next(
    (p for p in ("/usr/lib/wine/wine64", "/usr/lib/wine/wine") if pathlib.Path(p).exists()), None
)
SECONDS = 120.0  # limit for the slowest material, which takes 5 s on an idle machine


@pytest.fixture(scope="module")
def compile_shaders(tmp_path_factory):
    """Compiles {name: text}. Returns {name: (ok or failed, seconds, compiler messages)}."""
    if WINE is None or not (FOLDER / "d3dcompiler_47.dll").exists():
        pytest.skip("there is no Wine or no d3dcompiler_47.dll here: tools/setup fxc")
    host = FOLDER / "host.exe"
    if not host.exists():
        source = pathlib.Path(__file__).parent / "host.c"
        build = [FOLDER / "bin" / "python", "-m", "ziglang", "cc", "-target", "x86_64-windows-gnu", "-O1"]
        subprocess.run([*build, "-o", host, source], check=True)
    folder = tmp_path_factory.mktemp("fxc")
    environment = {"WINEPREFIX": str(FOLDER / "wine"), "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml="}

    def compile_all(texts):
        found = {}
        for name, text in texts.items():
            (folder / f"{name}.hlsl").write_text(text, encoding="utf-8")
            said = subprocess.run(
                [WINE, host, f"Z:{folder}/{name}.hlsl"],
                cwd=FOLDER,
                env={"PATH": "/usr/bin:/bin", "HOME": str(folder), **environment},
                capture_output=True,
                text=True,
                check=True,
            ).stdout
            line, _, words = said.partition("\n")
            _, state, seconds, size = line.rsplit(" ", 3)
            print(f"{name}: {state}, {seconds} s, {size} bytes")
            found[name] = state, float(seconds), words
        return found

    return compile_all


def test_every_example_compiles(compile_shaders, shaders):
    outcomes = compile_shaders(shaders)
    assert len(outcomes) > 20
    assert {name: words for name, (state, _, words) in outcomes.items() if state != "ok"} == {}
    assert {name: seconds for name, (_, seconds, _) in outcomes.items() if seconds > SECONDS} == {}


def test_a_wrong_text_is_refused(compile_shaders, shaders):
    name, text = next(iter(shaders.items()))
    state, _, words = compile_shaders({name: text.replace("floor(", "flor(")})[name]
    assert state == "failed" and "flor" in words
