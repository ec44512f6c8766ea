"""The parts of the tests, in the order in which they start. By default two run in parallel.

A row holds the command (a bash command line, run in the repository root), the choices that include it (`tools/test
--fast`, `tools/test`, `tools/test --all`) and its requirements. In a command, `{python}` is the interpreter with the
packages of tests/requirements.txt; the modules of the GCC build, binding/python and blender are on its path.

A command that skips something prints a line that begins with "left out: ". Tests that pytest skips are detected without
such a line.
"""

from dataclasses import dataclass

FAST = ("fast", "default", "all")
DEFAULT = ("default", "all")
SHORT = ("default",)  # samples; `--all` runs the full parts instead
ALL = ("all",)

CPP = "bench binding closures core lib nodes tests tools"  # folders with C++; listed since a copy may have no git


@dataclass(frozen=True)
class Part:
    name: str
    does: str  # description, printed when the part starts
    command: str
    choices: tuple[str, ...]
    after: tuple[str, ...] = ()  # parts that must have passed
    setup: tuple[str, ...] = ("build",)  # arguments of `tools/setup` that it requires
    option: str = ""  # runs only with this option of `tools/test`


def pytest(name: str, does: str, tests: str, choices: tuple[str, ...], **further: object) -> Part:
    """A part that runs pytest on the GCC build."""
    settings: dict[str, object] = {"after": ("build",), "setup": ("build", "tests"), **further}
    return Part(name, does, f"{{pytest}} {tests}", choices, **settings)  # type: ignore[arg-type]


PARTS = (
    # --fast: during development
    Part(
        "build",
        "GCC, warnings are errors: the build that the tests use",
        "{cmake} -B build/g++ -DCMAKE_CXX_COMPILER=g++ && cmake --build build/g++ --target all check_core",
        FAST,
        setup=("build", "tests"),
    ),
    Part(
        "format",
        "clang-format of the C++ sources",
        f"find {CPP} -name '*.cpp' -o -name '*.h' | xargs clang-format --dry-run --Werror",
        FAST,
        setup=("lint",),
    ),
    Part(
        "ruff",
        "ruff over the Python sources",
        ".venv-tools/bin/ruff check --quiet . && .venv-tools/bin/ruff format --check --quiet .",
        FAST,
        setup=("lint",),
    ),
    pytest(
        "unreal",
        "the plugin for Unreal, against a double of the editor",
        "tests/unreal --ignore tests/unreal/test_picture.py",
        FAST,
    ),
    pytest("goldens", "every golden document gives what is kept of it", "tests/golden/test_golden.py", FAST),
    pytest("edge-cases", "rules of documents and nodes", "tests/core tests/closures tests/nodes", FAST),
    pytest("tools", "quillgen_tools and quillgen-translate", "tests/tools", FAST),
    pytest(
        "passes",
        "what is done ahead of the translation and behind it",
        "tests/passes --ignore tests/passes/with_blender",
        FAST,
    ),
    pytest(
        "extension",
        "the files of an export, without Blender",
        "tests/extension/test_names.py tests/extension/test_parameters.py tests/extension/test_write.py",
        FAST,
    ),
    # Default: before a change is shown to others
    Part(
        "sanitizers-short",
        "AddressSanitizer and UndefinedBehaviorSanitizer: GCC, some of the tests",
        "tools/sanitize --short",
        SHORT,
        setup=("build", "tests"),
    ),
    pytest("texts", "DXC takes every golden text", "tests/golden/test_compiles.py", DEFAULT),
    pytest("library", "the HLSL library on DXC and a Vulkan device", "tests/gpu tests/library", DEFAULT),
    pytest("fidelity-sample", "a sample of the texts against Cycles", "tests/fidelity/test_sample.py", SHORT),
    Part(
        "mypy",
        "types of the Python sources",
        "tools/check-types",
        DEFAULT,
        setup=("lint",),
    ),
    # --all: decides whether a change lands. The longest parts start first.
    Part(
        "sanitizers",
        "AddressSanitizer, UndefinedBehaviorSanitizer, leaks",
        "tools/sanitize",
        ALL,
        setup=("build", "tests", "clang"),
    ),
    Part(
        "wheels",
        "the wheels of all machines, made with Zig and checked; that for Linux in each CPython that is here",
        "tools/wheels && {pytest} tests/wheels",
        ALL,
        setup=("build", "tests", "wheels"),
    ),
    Part(
        "clang",
        "Clang, warnings are errors",
        "{cmake} -B build/clang++ -DCMAKE_CXX_COMPILER=clang++ && cmake --build build/clang++",
        ALL,
        setup=("build", "tests", "clang"),
    ),
    Part("tidy", "clang-tidy", "tools/tidy", ALL, after=("clang",), setup=("build", "tests", "clang")),
    pytest(
        "robustness",
        "documents that are not sound, hostile objects, deep graphs",
        "tests/robustness --ignore tests/robustness/test_fuzz.py",
        ALL,
    ),
    pytest(
        "fidelity",
        "generated texts against Cycles, pixel by pixel",
        "tests/fidelity --ignore tests/fidelity/test_sample.py --ignore tests/fidelity/test_other_blenders.py",
        ALL,
    ),
    pytest(
        "extension-in-blender",
        "the interface, the command line and the installation, in Blender",
        "tests/extension/test_interface.py tests/extension/test_command.py tests/extension/test_install.py",
        ALL,
        setup=("build", "tests", "blender"),
    ),
    pytest("unreal-pictures", "what the plugin builds, on a Vulkan device", "tests/unreal/test_picture.py", ALL),
    Part(
        "install",
        "the wheel, built and installed where nothing else is",
        "tools/translate-examples --out out/test/examples",
        ALL,
        setup=("build", "tests"),
    ),
    pytest(
        "fidelity-in-blender",
        "a sample of the texts against Cycles, captured in each Blender",
        "tests/fidelity/test_other_blenders.py",
        ALL,
        setup=("build", "tests", "blender"),
    ),
    pytest(
        "host",
        "what the extension reads, in Blender",
        "tests/host",
        ALL,
        setup=("build", "tests", "blender"),
    ),
    pytest("fuzz", "the fuzzers", "tests/robustness/test_fuzz.py", ALL),
    pytest("materials", "the example materials and the gallery", "tests/test_materials.py tests/test_gallery.py", ALL),
    pytest(
        "passes-in-blender",
        "ramps and weights of colours against each Blender",
        "tests/passes/with_blender",
        ALL,
        setup=("build", "tests", "blender"),
    ),
    Part(
        "stubs",
        "the modules' stubs against the modules; a typed example for mypy and pyright",
        "tools/check-stubs",
        ALL,
        after=("build",),
        setup=("build", "tests", "lint", "types"),
    ),
    Part(
        "docs",
        "the documentation as a site, with every link",
        "tools/make-docs",
        ALL,
        after=("build",),
        setup=("build", "tests", "docs"),
    ),
    pytest(
        "fxc",
        "Microsoft's FXC (under Wine) and spirv-cross take the example materials",
        "tests/fxc -s",
        (),
        setup=("build", "tests", "fxc"),
        option="fxc",
    ),
)
