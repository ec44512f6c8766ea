"""MkDocs hooks: add the generated pages and the generated diagram to the written pages."""

from __future__ import annotations

import sys
from pathlib import Path
from typing import Any

sys.path.insert(0, str(Path(__file__).resolve().parent))

from mkdocs.structure.files import File, Files

import drawing
import pages
import quillgen


def on_config(config: Any) -> Any:
    config.extra["version"] = quillgen.__version__
    return config


def on_files(files: Files, config: Any) -> Files:
    made = pages.all_pages() | {"architecture.svg": drawing.svg()}
    for place, content in made.items():
        kept = files.get_file_from_path(place)
        if kept is not None:
            files.remove(kept)
        files.append(File.generated(config, place, content=content))
    return files
