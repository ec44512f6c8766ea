"""Exports the materials of a .blend file from a command line.

    python -m quillgen_blender FILE.blend --out FOLDER [--material NAME ...]
    blender --background --python .../quillgen_blender/__main__.py -- FILE.blend --out FOLDER
    blender --command quillgen FILE.blend --out FOLDER            where the extension is enabled

An interrupted run continues where it stopped when the same command is given again.
"""

import sys
from pathlib import Path


def package() -> None:
    """Makes this file part of its package if Blender runs it as a script. The folder may have another name then, which
    is not used: it may be the name of the module."""
    import importlib.util

    folder = Path(__file__).resolve().parent
    spec = importlib.util.spec_from_file_location(
        "quillgen_blender", folder / "__init__.py", submodule_search_locations=[str(folder)]
    )
    assert spec and spec.loader
    module = importlib.util.module_from_spec(spec)
    sys.modules["quillgen_blender"] = module
    spec.loader.exec_module(module)


def arguments() -> list[str]:
    """The arguments for this program, without Blender's own."""
    words = sys.argv[1:]
    return words[words.index("--") + 1 :] if "--" in words else words


if __name__ == "__main__":
    if not __package__:
        package()
    from quillgen_blender.command import main

    sys.exit(main(arguments()))
