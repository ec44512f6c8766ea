"""The menu's settings for this project: the folder of the exports and where their assets go."""

from __future__ import annotations

import json
from pathlib import Path
from typing import NamedTuple

import unreal


class Settings(NamedTuple):
    folder: str = ""
    content_path: str = "/Game/Blender"
    instanced: bool = False


def _file() -> Path:
    saved = unreal.Paths.convert_relative_path_to_full(unreal.Paths.project_saved_dir())
    return Path(saved) / "Quillgen.json"


def load() -> Settings:
    try:
        found = json.loads(_file().read_text(encoding="utf-8"))
        known = {key: found[key] for key, value in Settings()._asdict().items() if type(found.get(key)) is type(value)}
    except (OSError, ValueError, AttributeError):
        known = {}
    return Settings(**known)


def save(settings: Settings) -> None:
    path = _file()
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(json.dumps(settings._asdict(), indent=1) + "\n", encoding="utf-8")
