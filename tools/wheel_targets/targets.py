"""The table of targets: a wheel for every platform that Blender runs on."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Build:
    """One build of the modules: a system and a processor, in Zig's and CMake's terms."""

    zig: str  # a version after the first dot is the oldest system version that the modules run on
    system: str
    processor: str


@dataclass(frozen=True)
class Target:
    key: str  # as in `tools/wheels KEY`
    platform: str  # platform tag of the wheel
    suffix: str  # of the modules' file names
    builds: tuple[Build, ...]  # several builds are joined to universal binaries


LINUX_X86_64 = Build("x86_64-linux-gnu.2.28", "Linux", "x86_64")
LINUX_AARCH64 = Build("aarch64-linux-gnu.2.28", "Linux", "aarch64")
WINDOWS_X86_64 = Build("x86_64-windows-gnu", "Windows", "AMD64")
MACOS_ARM64 = Build("aarch64-macos.11.0", "Darwin", "arm64")
MACOS_X86_64 = Build("x86_64-macos.10.15", "Darwin", "x86_64")

TARGETS = {
    target.key: target
    for target in (
        Target("linux-x86_64", "manylinux_2_28_x86_64", ".abi3.so", (LINUX_X86_64,)),
        Target("linux-aarch64", "manylinux_2_28_aarch64", ".abi3.so", (LINUX_AARCH64,)),
        Target("windows-x86_64", "win_amd64", ".pyd", (WINDOWS_X86_64,)),
        Target("macos-arm64", "macosx_11_0_arm64", ".abi3.so", (MACOS_ARM64,)),
        Target("macos-universal2", "macosx_10_15_universal2", ".abi3.so", (MACOS_ARM64, MACOS_X86_64)),
    )
}
MODULES = ("quillgen", "quillgen_lib")
