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
from .pipeline import Failed, Settings
from .read import labels
from .write import Material, Picture, Target


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


def steps(material: Any, target: Target | None, settings: Settings, textures: bool | Collection[str] = True) -> Steps:
    """Exports one material to a target, or just translates it where that is None. `textures`: whether its pictures
    are saved, or the names of those that are. Yields what it is about to do, and never raises but for errors of the
    program that started it."""
    began = time.perf_counter()
    library = library_of(material)
    outcome = Outcome(material.name, library, at=time.time())
    paths: dict[str, tuple[str, ...]] = {}
    try:
        made, paths = yield from translation(material, settings, with_labels=target is not None)
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
            outcome = replace(outcome, folder=str(written.folder), changed=written.changed)
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
    material: Any, settings: Settings, with_labels: bool = True
) -> Generator[str, None, tuple[Material, dict[str, tuple[str, ...]]]]:
    """Reads and translates a material."""
    yield "reading"
    why = exportable(material)
    if why:
        raise Failed(why)
    reading = read.flatten(material)
    found = labels.labels(material, reading.document, reading.paths) if with_labels else {}
    yield "translating"
    try:
        made = pipeline.translate(material.name, reading.document, reading.notes, settings)
    except Failed as error:
        error.node = shown(error.node, reading.paths)
        raise
    made = replace(
        made,
        library=library_of(material),
        labels=found,
        made_by={**made.made_by, "blender": ".".join(map(str, bpy.app.version))},
    )
    return made, reading.paths


def shown(node: str, paths: dict[str, tuple[str, ...]]) -> str:
    """A node as an artist knows it."""
    return " / ".join(paths.get(node, (node,)))


def writing(made: Material, target: Target, textures: bool | Collection[str]) -> Generator[str, None, write.Written]:
    wanted = {entry["image"] for entry in write.inputs(made.result) if entry["kind"] == "texture"}
    if textures is not True:
        wanted &= set(textures or ())
    with tempfile.TemporaryDirectory(prefix="quillgen-") as folder:
        if wanted:
            yield "saving pictures"
            made = replace(made, pictures=save_pictures(wanted, Path(folder), made))
        yield "writing"
        return write.write_material(target, made)


def save_pictures(images: Iterable[str], folder: Path, made: Material) -> dict[str, Picture]:
    from .write import export

    found = {}
    for place, name in enumerate(sorted(images)):
        image = bpy.data.images[name]
        made_file = export.save_texture(image, folder / str(place))
        found[name] = Picture(made_file, image.is_float, image.colorspace_settings.name)
    return found


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
