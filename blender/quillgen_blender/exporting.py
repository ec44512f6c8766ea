"""The export of materials of the open file, step by step, so that whoever asks for it may do something in between."""

import re
import tempfile
import time
import traceback
from collections.abc import Collection, Generator, Iterable, Sequence
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import Any

import bpy

from . import pipeline, read, write
from .notes import Note
from .pipeline import Failed, Settings
from .read import labels, pictures
from .write import Material, Picture, Target

MARK = "quillgen_named"  # the custom property of a node whose values stay live among "named" ones


@dataclass(frozen=True)
class Outcome:
    """What became of one material. `error` is "" where it was exported; `node` is then the one to blame, if any.
    `changed`: what was written; "text" where the artist asked for no files."""

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
        """The material and, where one is to blame, the node."""
        return f"{self.name}, {self.node}" if self.node else self.name


@dataclass
class Memory:
    """What the last export of a material started from, for the next one to know what is as it was."""

    document: dict[str, Any] | None = None
    settings: Settings | None = None
    fingerprint: list[Any] | None = None


class Unchanged(Exception):
    """There is nothing to export."""


Steps = Generator[str, None, Outcome]


def exportable(material: Any) -> str:
    """Why a material can't be exported, "" where it can."""
    if material is None:
        return "There is no material here"
    if material.is_grease_pencil:
        return f"{material.name} is a Grease Pencil material"
    if material.node_tree is None or (bpy.app.version < (5, 0) and not material.use_nodes):
        return f"{material.name} has no nodes: switch on Use Nodes"
    return ""


def materials_of(objects: Iterable[Any]) -> list[Any]:
    """The materials that objects wear, each once, in the order of the slots."""
    found = {slot.material: None for thing in objects for slot in thing.material_slots if slot.material}
    return [material for material in found if not exportable(material)]


def all_materials() -> list[Any]:
    """The materials of the open file that something uses."""
    return [material for material in bpy.data.materials if material.users and not exportable(material)]


def library_of(material: Any) -> str:
    return Path(material.library.filepath.replace("\\", "/")).name if material.library else ""


def steps(
    material: Any,
    target: Target | None,
    settings: Settings,
    textures: bool | Collection[str] = True,
    memory: Memory | None = None,
) -> Steps:
    """Exports one material to a target, or just translates it where that is None. `textures`: whether its pictures
    are saved, or the names of those that are. `memory` is that of the last export of this material to this target.
    Yields what it is about to do, and never raises but for errors of the program that started it."""
    began = time.perf_counter()
    library = library_of(material)
    outcome = Outcome(material.name, library, at=time.time())
    paths: dict[str, tuple[str, ...]] = {}
    try:
        made, paths = yield from translation(material, settings, target is not None, memory, not textures)
        inputs = write.inputs(made.result)
        outcome = replace(
            outcome,
            paths=paths,
            changed="text",
            remarks=write.remarks(made.result["warnings"], made.notes, made.document),
            parameters=len(made.result["params"]),
            inputs=len(inputs),
            textures=sum(entry["kind"] == "texture" for entry in inputs),
        )
        if target is not None:
            written = yield from writing(made, target, textures)
            outcome = replace(
                outcome,
                folder=str(written.folder),
                changed=written.changed,
                remarks=written.manifest["remarks"],
            )
    except Unchanged:
        outcome = replace(outcome, changed="nothing")
    except Failed as error:
        outcome = replace(outcome, error=str(error), node=error.node, paths=paths, changed="")
    except OSError as error:
        outcome = replace(outcome, error=f"{error.strerror or error}: {error.filename or ''}".strip(": "), changed="")
    except ReferenceError:  # the material was removed
        raise
    except Exception as error:  # one material's trouble is none of the others'
        traceback.print_exc()
        outcome = replace(outcome, error=f"{type(error).__name__}: {error} (the console tells more)", changed="")
    return replace(outcome, seconds=time.perf_counter() - began)


def translation(
    material: Any,
    settings: Settings,
    with_labels: bool = True,
    memory: Memory | None = None,
    may_be_unchanged: bool = False,
) -> Generator[str, None, tuple[Material, dict[str, tuple[str, ...]]]]:
    """Reads and translates a material. Raises Failed, and Unchanged where `memory` says that nothing has changed."""
    yield "reading"
    why = exportable(material)
    if why:
        raise Failed(why)
    reading = read.flatten(material)
    yield "comparing"
    same = labels_are_as_before(material, reading, settings, memory, may_be_unchanged)
    yield "translating"
    if settings.options.parameters in ("auto", "named"):
        settings = replace(settings, named={*settings.named, *marked(material, reading)})
    try:
        made = pipeline.translate(material.name, reading.document, reading.notes, settings)
    except Failed as error:
        error.node = shown(error.node, reading.paths)
        raise
    found: labels.Labels = {}
    if with_labels and not same:
        live = made.result["params"].keys()
        wanted = {origin for name, origin in write.origins(made.document).items() if name in live}
        for more in labels.by_node(material, made.document, reading.paths, wanted):
            yield "labels"
            found.update(more)
    made = replace(
        made,
        library=library_of(material),
        labels=None if same else found,
        made_by={**made.made_by, "blender": ".".join(map(str, bpy.app.version))},
    )
    return made, reading.paths


def marked(material: Any, reading: read.Reading) -> set[str]:
    """The parameters of the nodes that the artist marked, which stay live among "named" ones."""
    trees = {node.id_data for node in labels.all_nodes(material.node_tree) if node.get(MARK)}
    if not trees:
        return set()
    found = set()
    for name, (identity, _) in write.origins(reading.document).items():
        chain = labels.nodes_on(material.node_tree, reading.paths.get(identity, ()))
        if chain and chain[-1].get(MARK):
            found.add(name)
    return found


def labels_are_as_before(
    material: Any, reading: read.Reading, settings: Settings, memory: Memory | None, may_be_unchanged: bool
) -> bool:
    """Whether the labels are those of the last export. Raises Unchanged where all else is as well."""
    if memory is None:
        return False
    now = labels.fingerprint(material)
    same = memory.fingerprint == now
    if same and may_be_unchanged and memory.settings == settings and memory.document == reading.document:
        raise Unchanged
    memory.document, memory.settings, memory.fingerprint = reading.document, settings, now
    return same


def shown(node: str, paths: dict[str, tuple[str, ...]]) -> str:
    """A node as an artist knows it."""
    return " / ".join(paths.get(node, (node,)))


def writing(made: Material, target: Target, textures: bool | Collection[str]) -> Generator[str, None, write.Written]:
    wanted = {entry["image"] for entry in write.inputs(made.result) if entry["kind"] == "texture"}
    if textures is not True:
        wanted &= set(textures or ())
    yield "naming"
    made = write.named(target, made)
    if not wanted:
        yield "comparing"
        prepared = write.prepare(target, made)
    else:
        yield "saving pictures"
        with tempfile.TemporaryDirectory(prefix="quillgen-") as folder:
            prepared = write.prepare(target, save_pictures(wanted, Path(folder), made))
    yield "writing"
    return write.commit(target, prepared)


def save_pictures(images: Iterable[str], folder: Path, made: Material) -> Material:
    """Saves pictures to a folder. One that can't be saved is left out and told."""
    found: dict[str, Picture] = {}
    notes = list(made.notes)
    for place, name in enumerate(sorted(images)):
        try:
            file, record = pictures.save_picture(bpy.data.images[name], folder, str(place))
        except (OSError, RuntimeError) as error:
            reason = getattr(error, "strerror", None) or str(error)
            notes.append(Note("", f"the picture {name} isn't exported: {reason}", "lost"))
        else:
            found[name] = Picture(file, record["float"], record["colorspace"])
    return replace(made, pictures=found, notes=notes)


def finish(job: Steps) -> Outcome:
    """Runs a job to its end."""
    while True:
        try:
            next(job)
        except StopIteration as end:
            return end.value


def target_folder(folder: str) -> tuple[Path | None, str]:
    """The folder that a setting means, and why there is none."""
    if not folder.strip():
        return None, "Choose a target folder"
    if folder.startswith("//") and not bpy.data.filepath:
        return None, "Save the file first: the target folder is relative to it"
    path = Path(bpy.path.abspath(folder))
    if not path.is_absolute() or re.match("^[\\\\/]+$", folder):
        return None, f"{folder} is no folder"
    if path.exists() and not path.is_dir():
        return None, f"{path} is a file"
    return path, ""


def text(material: Any, settings: Settings) -> str:
    """The HLSL of a material. Raises Failed."""
    job = translation(material, settings)
    while True:
        try:
            next(job)
        except StopIteration as end:
            return end.value[0].result["code"]


def nodes_on(material: Any, path: Sequence[str]) -> tuple[Any, ...]:
    """The nodes of a path, the outermost group first; none where the path leads nowhere."""
    return labels.nodes_on(material.node_tree, tuple(path))
