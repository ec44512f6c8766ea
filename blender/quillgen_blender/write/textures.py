"""The pictures of a material: saved once for all materials of a target, with a checksum of the content in the name."""

from collections.abc import Mapping
from pathlib import Path
from typing import Any, NamedTuple

from . import files, names
from .parameters import inputs


class Picture(NamedTuple):
    """A picture that was saved for the export. `colorspace`: the colour space of the values in the file."""

    file: Path
    float: bool = False
    colorspace: str = "sRGB"


def records(
    result: Mapping[str, Any],
    pictures: Mapping[str, Picture],
    target: Path,
    before: list[dict[str, Any]],
) -> list[dict[str, Any]]:
    """Puts the pictures into the target and returns one record for each texture of the result. A picture that wasn't
    saved this time keeps the file of the last export."""
    last = {record["image"]: record for record in before}
    placed: dict[str, dict[str, Any]] = {}
    found = []
    for entry in inputs(result):
        if entry["kind"] != "texture":
            continue
        image = entry["image"]
        if image not in placed:
            placed[image] = place(image, pictures[image], target) if image in pictures else kept(entry, last.get(image))
        found.append({"name": entry["name"], "image": image} | placed[image])
    return found


def kept(entry: Mapping[str, Any], record: Mapping[str, Any] | None) -> dict[str, Any]:
    if record is None:
        colorspace = "sRGB" if entry["srgb"] else "Non-Color"
        return details(None, None, entry["float"], colorspace)
    return details(record["file"], record["sha256"], record["float"], record["colorspace"])


def place(image: str, picture: Picture, target: Path) -> dict[str, Any]:
    """Copies a picture, unless the target has it already."""
    folder = target / names.TEXTURES
    folder.mkdir(exist_ok=True)
    sha256 = files.checksum_of(picture.file)
    for digits in (8, 16, 64):
        name = f"{names.stem(image)}-{sha256[:digits]}{picture.file.suffix.lower()}"
        if not (folder / name).exists():
            files.copy(picture.file, folder / name)
            break
        if files.checksum_of(folder / name) == sha256:
            break
    return details(f"../{names.TEXTURES}/{name}", sha256, picture.float, picture.colorspace)


def details(file: str | None, sha256: str | None, is_float: bool, colorspace: str) -> dict[str, Any]:
    return {
        "file": file,
        "sha256": sha256,
        "float": bool(is_float),
        "colorspace": colorspace,
        "import": {
            "srgb": False,  # the HLSL decodes
            "compression": "float" if is_float else "rgba8",
            "mipmaps": False,
            "streaming": False,
            "virtual": False,
        },
    }


def left(before: list[dict[str, Any]], now: list[dict[str, Any]]) -> list[dict[str, Any]]:
    """The records of the last export whose file the material no longer names."""
    named = {None, *(record["file"] for record in now)}
    return [record for record in before if record["file"] not in named]


def remove_unused(target: Path, records: list[dict[str, Any]], used: set[str]) -> None:
    """Removes the pictures of records that no material of the target uses any more, if they are still what the export
    wrote. `used`: the files that the materials name."""
    for record in records:
        if record["file"] in used:
            continue
        path = target / names.TEXTURES / record["file"].rpartition("/")[2]
        if path.is_file() and files.checksum_of(path) == record["sha256"]:
            path.unlink()
