"""Names of assets and parameters."""

from __future__ import annotations

import re
from collections.abc import Iterable

from .errors import Refused
from .exchange import Export, Parameter

LONGEST_PATH = 200  # of an asset: the paths of cooked files are a little longer, and Windows allows 260
CONTENT_PATH = re.compile(r"(/[^/\\:*?\"<>|' ,.&!~\n\r\t@#]+)+\Z")


def asset(prefix: str, name: str) -> str:
    """An asset's name: characters that Unreal refuses become "_". "" if no letter or digit remains."""
    plain = "".join(c if c.isalnum() or c == "_" else "_" for c in name.strip())
    return prefix + plain if any(c.isalnum() for c in plain) else ""


def content_path(path: str) -> str:
    """A folder of the content browser, without a trailing slash."""
    path = path.rstrip("/")
    if not CONTENT_PATH.match(path):
        raise Refused("Import", "", f"{path!r} is no folder of the content browser; one is written /Game/Blender")
    return path


def asset_path(folder: str, prefix: str, export: Export) -> str:
    """The path for an asset of this export. The folder has the material's name, with a number if two materials have the
    same name."""
    name = asset(prefix, export.folder.name)
    if not name:
        raise Refused(export.name, export.folder, "no asset can have this name; give it a letter or a digit in Blender")
    path = f"{folder}/{name}"
    if len(path) > LONGEST_PATH:
        raise Refused(export.name, export.folder, f"the asset's path would be {len(path)} characters long: {path}")
    return path


def parameters(records: Iterable[Parameter]) -> dict[str, str]:
    """Input name -> name of the parameter in Unreal: its label, which is unique in the material. Unreal treats "None"
    as no name."""
    labels = {record.name: record.label.strip() for record in records}
    return {name: name if label.casefold() in ("", "none") else label for name, label in labels.items()}
