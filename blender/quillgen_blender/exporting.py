"""Exports materials of the open file step by step, so that the caller can do other work in between."""

import re
import tempfile
import time
import traceback
from collections.abc import Callable, Generator, Iterable, Mapping, Sequence
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import Any, NamedTuple

import bpy

from . import pipeline, read, write
from .notes import Note
from .pipeline import Failed, Settings
from .read import labels, pictures
from .write import Material, Picture, Target

MARK = "quillgen_named"  # the custom property of a node whose values stay live with "named"


@dataclass(frozen=True)
class Outcome:
    """The result of one material. `error` is "" if it was exported; otherwise `node` is the node that caused it, if
    any. `changed`: what was written; "text" if no files were asked for."""

    name: str
    library: str = ""
    error: str = ""
    node: str = ""
    folder: str = ""
    changed: str = ""
    remarks: Sequence[dict[str, str]] = ()
    paths: dict[str, tuple[str, ...]] = field(default_factory=dict)
    parameters: int = 0
    inputs: int = 0
    textures: int = 0
    seconds: float = 0.0
    at: float = 0.0  # seconds since the epoch

    @property
    def where(self) -> str:
        """The material and, if a node caused the error, the node."""
        return f"{self.name}, {self.node}" if self.node else self.name


class Start(NamedTuple):
    """All inputs of an export except the pixels of pictures. `fingerprint` is that of the labels."""

    document: dict[str, Any]
    settings: Settings
    fingerprint: list[Any]


@dataclass
class Memory:
    """What the last successful export of a material started from, and the stamps of the files that it left. The next
    export compares them to find out what is unchanged."""

    start: Start | None = None
    stamps: tuple[write.Stamp, ...] = ()


class Unchanged(Exception):
    """There is nothing to export."""


Steps = Generator[str, None, Outcome]
Wanted = Callable[[str, Any], bool]  # whether a picture is saved, by its name in the document and Blender's image


def exportable(material: Any) -> str:
    """Why a material can't be exported, "" if it can."""
    if material is None:
        return "There is no material here"
    if material.is_missing:
        return f"{material.name} isn't in {library_of(material)} any more, or that library isn't there"
    if material.is_grease_pencil:
        return f"{material.name} is a Grease Pencil material"
    if material.node_tree is None or (bpy.app.version < (5, 0) and not material.use_nodes):
        return f"{material.name} has no nodes: switch on Use Nodes"
    return ""


def materials_of(objects: Iterable[Any]) -> list[Any]:
    """The materials of objects, each once, in the order of the slots."""
    found = {slot.material: None for thing in objects for slot in thing.material_slots if slot.material}
    return [material for material in found if not exportable(material)]


def all_materials() -> list[Any]:
    """The materials of the open file that something uses."""
    return [material for material in bpy.data.materials if material.users and not exportable(material)]


def library_of(material: Any) -> str:
    """The name of the file that a material is linked from, "" for the open file. If two such files have the same name,
    it is Blender's name for the library, which then has a number."""
    if not material.library:
        return ""
    name = file_name(material.library)
    return material.library.name if [file_name(each) for each in bpy.data.libraries].count(name) > 1 else name


def file_name(library: Any) -> str:
    return Path(library.filepath.replace("\\", "/")).name


def steps(
    material: Any,
    target: Target | None,
    settings: Settings,
    textures: bool | Wanted = True,
    memory: Memory | None = None,
) -> Steps:
    """Exports one material to a target, or only translates it if the target is None. `textures`: whether its pictures
    are saved, or a function that decides this for each. `memory` is that of the last export of this material to this
    target. Yields what it is about to do. Errors are reported in the Outcome; only a ReferenceError is raised, if the
    material was removed."""
    began = time.perf_counter()
    library = library_of(material)
    outcome = Outcome(material.name, library, at=time.time())
    wanted = textures if callable(textures) else lambda name, picture: bool(textures)
    try:
        last = known(memory, target, material)
        made, reading, start = yield from translation(material, settings, target is not None, last, wanted)
        inputs = write.inputs(made.result)
        outcome = replace(
            outcome,
            paths=reading.paths,
            changed="text",
            remarks=write.remarks(made.result["warnings"], made.notes, made.document),
            parameters=len(made.result["params"]),
            inputs=len(inputs),
            textures=sum(entry["kind"] == "texture" for entry in inputs),
        )
        if target is not None:
            saved = {name: picture for name, picture in reading.pictures.items() if wanted(name, picture)}
            written = yield from writing(made, target, saved)
            if memory:
                memory.start, memory.stamps = start, target.stamps((made.name, made.library))
            outcome = replace(
                outcome,
                folder=str(written.folder),
                changed=written.changed,
                remarks=written.manifest["remarks"],
            )
    except Unchanged:
        outcome = replace(outcome, changed="nothing")
    except Failed as error:
        outcome = replace(outcome, error=str(error), node=error.node, changed="")
    except OSError as error:
        outcome = replace(outcome, error=f"{error.strerror or error}: {error.filename or ''}".strip(": "), changed="")
    except ReferenceError:  # the material was removed
        raise
    except Exception as error:  # an error in one material must not stop the others
        traceback.print_exc()
        outcome = replace(outcome, error=f"{type(error).__name__}: {error} (the console tells more)", changed="")
    if memory and outcome.error:
        memory.start = None  # the next export starts from scratch
    return replace(outcome, seconds=time.perf_counter() - began)


def known(memory: Memory | None, target: Target | None, material: Any) -> Start | None:
    """What the last export started from, if its files are unchanged."""
    if memory is None or target is None or memory.stamps != target.stamps((material.name, library_of(material))):
        return None
    return memory.start


def translation(
    material: Any, settings: Settings, with_labels: bool, last: Start | None, wanted: Wanted
) -> Generator[str, None, tuple[Material, read.Reading, Start]]:
    """Reads and translates a material. Labels that are the same as in the last export aren't computed again. Raises
    Failed, and Unchanged if nothing has changed and no picture is to be saved."""
    yield "reading"
    why = exportable(material)
    if why:
        raise Failed(why)
    try:
        reading = read.flatten(material)
    except RecursionError as error:
        raise Failed(pipeline.TOO_DEEP) from error
    yield "comparing"
    if settings.options.parameters in ("auto", "named"):
        settings = replace(settings, named={*settings.named, *marked(material, reading)})
    start = Start(reading.document, settings, labels.fingerprint(material) if with_labels else [])
    same = last is not None and last.fingerprint == start.fingerprint
    if last == start and not any(wanted(name, picture) for name, picture in reading.pictures.items()):
        raise Unchanged
    yield "translating"
    try:
        made = pipeline.translate(material.name, reading.document, reading.notes, settings)
    except Failed as error:
        error.node = shown(error.node, reading.paths)
        raise
    found: labels.Labels = {}
    if with_labels and not same:
        live = made.result["params"].keys()
        sockets = {origin for name, origin in write.origins(made.document).items() if name in live}
        for more in labels.by_node(material, made.document, reading.paths, sockets):
            yield "labels"
            found.update(more)
    made = replace(
        made,
        library=library_of(material),
        labels=None if same else found,
        made_by={**made.made_by, "blender": ".".join(map(str, bpy.app.version))},
    )
    return made, reading, start


def marked(material: Any, reading: read.Reading) -> set[str]:
    """The parameters of the nodes that the artist marked, which stay live with "named"."""
    trees = {node.id_data for node in labels.all_nodes(material.node_tree) if node.get(MARK)}
    if not trees:
        return set()
    found = set()
    for name, (identity, _) in write.origins(reading.document).items():
        chain = labels.nodes_on(material.node_tree, reading.paths.get(identity, ()))
        if chain and chain[-1].get(MARK):
            found.add(name)
    return found


def shown(node: str, paths: dict[str, tuple[str, ...]]) -> str:
    """A node's name as the artist knows it, with its groups."""
    return " / ".join(paths.get(node, (node,)))


def writing(made: Material, target: Target, images: Mapping[str, Any]) -> Generator[str, None, write.Written]:
    """Writes the files of a translated material. `images`: those that are saved if the HLSL reads them."""
    used = {entry["image"] for entry in write.inputs(made.result) if entry["kind"] == "texture"}
    images = {name: images[name] for name in sorted(used & images.keys())}
    yield "naming"
    made = write.named(target, made)
    if not images:
        yield "comparing"
        prepared = write.prepare(target, made)
    else:
        yield "saving pictures"
        with tempfile.TemporaryDirectory(prefix="quillgen-") as folder:
            prepared = write.prepare(target, save_pictures(images, Path(folder), made))
    yield "writing"
    return write.commit(target, prepared)


def save_pictures(images: Mapping[str, Any], folder: Path, made: Material) -> Material:
    """Saves pictures to a folder. A picture that can't be saved is omitted, with a note."""
    found: dict[str, Picture] = {}
    notes = list(made.notes)
    for place, (name, image) in enumerate(images.items()):
        try:
            file, record = pictures.save_picture(image, folder, str(place))
        except (OSError, RuntimeError, ReferenceError) as error:  # ReferenceError: it was removed meanwhile
            reason = getattr(error, "strerror", None) or str(error).removeprefix("Error: ").strip()
            notes.append(Note("", f"the picture {name} isn't exported: {reason}", "lost"))
        else:
            found[name] = Picture(file, record["float"], record["colorspace"])
    return replace(made, pictures=found, notes=notes)


def finish(job: Steps) -> Outcome:
    """Runs a job to completion."""
    while True:
        try:
            next(job)
        except StopIteration as end:
            return end.value


def target_folder(folder: str) -> tuple[Path | None, str]:
    """The folder that a setting names, or None and the reason."""
    if not folder.strip():
        return None, "Choose a target folder"
    if folder.startswith("//") and not bpy.data.filepath:
        return None, "Save the file first: the target folder is relative to it"
    path = Path(bpy.path.abspath(folder))
    if not path.is_absolute() or re.match("^[\\\\/]+$", folder):
        return None, f"{folder} is no folder"
    try:
        if path.exists() and not path.is_dir():
            return None, f"{path} is a file"
    except OSError as error:
        return None, f"{path}: {error.strerror}"
    return path, ""


def text(material: Any, settings: Settings) -> str:
    """The HLSL of a material. Raises Failed."""
    job = translation(material, settings, False, None, lambda name, picture: False)
    while True:
        try:
            next(job)
        except StopIteration as end:
            return end.value[0].result["code"]


def nodes_on(material: Any, path: Sequence[str]) -> tuple[Any, ...]:
    """The nodes of a path, the outermost group first; empty if the path does not exist."""
    return labels.nodes_on(material.node_tree, tuple(path))
