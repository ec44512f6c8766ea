"""The folder that materials are exported to, and which of its folders belong to which material."""

import contextlib
import json
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import Any, Literal, NamedTuple

from . import files, manifest, names, textures
from .manifest import Material

Changed = Literal["all", "parameters", "nothing"]
Stamp = tuple[int, int] | None  # modification time and size of a file
Identity = tuple[str, str]  # a material's name, and the library that it is linked from


@dataclass
class Target:
    """`folders`: the names in use there, as `names.key`. `materials`: the folder of each exported material.
    `manifests`: their contents by folder, each with the stamp of its file. `looked`: the stamp of the folder itself
    when it was read; it changes when folders are added or removed."""

    path: Path
    looked: Stamp = None
    folders: set[str] = field(default_factory=set)
    materials: dict[Identity, str] = field(default_factory=dict)
    manifests: dict[str, tuple[Stamp, dict[str, Any]]] = field(default_factory=dict)

    def manifest(self, folder: str) -> dict[str, Any] | None:
        """The current manifest in a folder; None if it has none of ours."""
        now = stamp(self.path / folder / manifest.MANIFEST)
        if folder not in self.manifests or self.manifests[folder][0] != now:
            found = read_manifest(self.path / folder)
            if found is None:
                self.manifests.pop(folder, None)
                return None
            self.manifests[folder] = (now, found)
        return self.manifests[folder][1]

    def pictures(self) -> set[str]:
        """The picture files that the manifests currently name, whoever has written them."""
        found = filter(None, (self.manifest(entry.name) for entry in self.path.iterdir()))
        return {record["file"] for each in found for record in each["textures"]}

    def stamps(self, identity: Identity) -> tuple[Stamp, ...]:
        """The stamps of the files of a material that every export with changes writes."""
        folder = self.path / self.materials.get(identity, "")
        return stamp(folder / manifest.MANIFEST), stamp(folder / manifest.VALUES)


class Written(NamedTuple):
    """The result of an export: `changed` says which files are new."""

    folder: Path
    changed: Changed
    manifest: dict[str, Any]


def look(path: Path) -> Target:
    """Reads what a folder holds. Creates the folder if necessary."""
    path.mkdir(parents=True, exist_ok=True)
    files.sweep(path)
    target = Target(path, stamp(path))
    for entry in sorted(path.iterdir()):
        found = target.manifest(entry.name)
        if found is not None:
            target.materials.setdefault((found["name"], found["library"]), entry.name)
        if found is not None or not is_empty_folder(entry):
            target.folders.add(names.key(entry.name))
    return target


def stamp(path: Path) -> Stamp:
    try:
        found = path.stat()
    except OSError:
        return None
    return found.st_mtime_ns, found.st_size


def is_empty_folder(path: Path) -> bool:
    return path.is_dir() and not any(path.iterdir())


def read_manifest(folder: Path) -> dict[str, Any] | None:
    """The manifest of a folder that an export made, None for any other folder."""
    with contextlib.suppress(OSError, ValueError):
        found = json.loads((folder / manifest.MANIFEST).read_bytes())
        kind = isinstance(found, dict) and (found.get("format"), found.get("version"))
        if kind == (manifest.FORMAT, manifest.VERSION) and found.keys() >= manifest.KEYS:
            return found
    return None


class Prepared(NamedTuple):
    """What is to be written of a material: its folder ("" if it has none), the manifest there, and the new contents."""

    identity: Identity
    name: str
    before: dict[str, Any] | None
    made: dict[str, Any]
    texts: dict[str, bytes]
    values: bytes


def write_material(target: Target, material: Material) -> Written:
    """Writes the changed files of a material, all or none of them. A material keeps its folder."""
    return commit(target, prepare(target, material))


def named(target: Target, material: Material) -> Material:
    """The first step of `write_material`, for callers that do other work between the steps: makes the records of the
    parameters."""
    name = target.materials.get((material.name, material.library), "")
    return replace(material, records=manifest.records(material, target.manifest(name) if name else None))


def prepare(target: Target, material: Material) -> Prepared:
    """The second step. Afterwards the pictures are in their place."""
    identity = (material.name, material.library)
    name = target.materials.get(identity, "")
    before = target.manifest(name) if name else None
    if name and not (target.path / name).exists():
        target.folders.discard(names.key(name))
    pictures = textures.records(material.result, material.pictures, target.path, before["textures"] if before else [])
    contents = manifest.texts(material.result)
    made = manifest.manifest(material, contents, pictures, before)
    values = manifest.dumped(manifest.values(material.result))
    return Prepared(identity, name if before else "", before, made, contents, values)


def commit(target: Target, prepared: Prepared) -> Written:
    """The last step: writes the files."""
    identity, name, before, made, contents, values = prepared
    changed: Changed = "all"
    if before:
        changed = update(target.path / name, before, made, contents, values)
    else:
        name = names.free(identity[0], target.folders)
        whole = contents | {manifest.VALUES: values, manifest.MANIFEST: manifest.dumped(made)}
        files.make_folder(target.path / name, whole)
    target.folders.add(names.key(name))
    target.materials[identity] = name
    if changed == "all":
        target.manifests[name] = (stamp(target.path / name / manifest.MANIFEST), made)
    if before and changed == "all":
        left = textures.left(before["textures"], made["textures"])
        if left:
            textures.remove_unused(target.path, left, target.pictures())
    return Written(target.path / name, changed, made)


def update(
    folder: Path, before: dict[str, Any], made: dict[str, Any], contents: dict[str, bytes], values: bytes
) -> Changed:
    """Updates the files of a folder. If only values have changed, only their file is written."""
    now = {name: files.content_of(folder / name) for name in (*contents, manifest.VALUES, manifest.MANIFEST)}
    wanted = contents | {manifest.VALUES: values}
    new = {name: content for name, content in wanted.items() if now[name] != content}
    if now[manifest.MANIFEST] and not new.keys() - {manifest.VALUES} and manifest.same_but_values(before, made):
        if not new:
            return "nothing"
        files.replace(folder, new, now)
        return "parameters"
    files.sweep(folder)
    files.replace(folder, new | {manifest.MANIFEST: manifest.dumped(made)}, now)
    remove_displacement(folder, before, made)
    return "all"


def remove_displacement(folder: Path, before: dict[str, Any], made: dict[str, Any]) -> None:
    """Removes the displacement's HLSL if the material no longer has one and the file is still what the export wrote."""
    last = before["displacement"]
    if last and not made["displacement"]:
        path = folder / last["file"]
        if path.is_file() and files.checksum_of(path) == last["sha256"]:
            path.unlink()
