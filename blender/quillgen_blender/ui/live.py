"""Live update: a material that was exported is exported again once an edit of it rests.

The handler of Blender's dependency graph only notes what changed. A timer does the work, in steps of a few milliseconds
with a chance for Blender to draw between them.
"""

import time
from collections.abc import Collection, Iterator
from typing import Any, NamedTuple

import bpy

from .. import exporting, write
from ..read import labels
from . import preferences, settings, state

SLICE = 0.001  # seconds of work after which no further step begins; one may take three times as long
SOON = 0.01  # seconds until the next slice


class Job(NamedTuple):
    """Work in steps. `material`: the one that is exported, None while materials are looked for."""

    material: Any
    steps: Iterator[str]


class Waiting:
    """What was edited and isn't exported yet."""

    def __init__(self) -> None:
        self.materials: dict[int, float] = {}  # session_uid -> when it was edited last
        self.shared: dict[int, float] = {}  # the same of groups and images, whose materials aren't known yet
        self.images: set[str] = set()  # names of those whose pixels may have changed
        self.target: write.Target | None = None
        self.memories: dict[int, exporting.Memory] = {}  # session_uid -> what was exported last
        self.job: Job | None = None

    def forget(self) -> None:
        self.__init__()  # type: ignore[misc]


_waiting = Waiting()


def register() -> None:
    bpy.app.handlers.load_post.append(loaded)
    switched(any(scene.quillgen.live for scene in getattr(bpy.data, "scenes", ())))


def unregister() -> None:
    switched(False)
    bpy.app.handlers.load_post.remove(loaded)


@bpy.app.handlers.persistent
def loaded(*_: Any) -> None:
    state.forget()
    _waiting.forget()
    switched(any(scene.quillgen.live for scene in bpy.data.scenes))


def switched(on: bool) -> None:
    """Starts or stops to listen."""
    handlers = bpy.app.handlers.depsgraph_update_post
    if on and changed not in handlers:
        handlers.append(changed)
    if not on:
        if changed in handlers:
            handlers.remove(changed)
        if bpy.app.timers.is_registered(tick):
            bpy.app.timers.unregister(tick)
        _waiting.forget()


@bpy.app.handlers.persistent
def changed(scene: Any, depsgraph: Any) -> None:
    """Notes what an update is about."""
    now = time.monotonic()
    noted = False
    for update in depsgraph.updates:
        found = update.id.original
        if isinstance(found, bpy.types.Material):
            _waiting.materials[found.session_uid] = now
        elif isinstance(found, (bpy.types.ShaderNodeTree, bpy.types.Image)) and not found.is_embedded_data:
            _waiting.shared[found.session_uid] = now
            if isinstance(found, bpy.types.Image):
                _waiting.images.add(found.name)
        else:
            continue
        noted = True
    if noted and not bpy.app.timers.is_registered(tick):
        bpy.app.timers.register(tick, first_interval=preferences.of(bpy.context).rest)


def users(edited: dict[int, float]) -> Iterator[str]:
    """Notes the materials that groups or images are part of, a material at a time."""
    for material in list(bpy.data.materials):
        yield "looking"
        if exporting.exportable(material):
            continue
        parts = {part.session_uid for node in labels.all_nodes(material.node_tree) for part in parts_of(node)}
        times = [when for uid, when in edited.items() if uid in parts]
        if times:
            _waiting.materials[material.session_uid] = max(times)


def parts_of(node: Any) -> list[Any]:
    return [part for part in (getattr(node, "node_tree", None), getattr(node, "image", None)) if part]


def tick() -> float | None:
    """A slice of work. The seconds until the next one, None where nothing is left."""
    context = bpy.context
    rest = preferences.of(context).rest
    until = time.perf_counter() + SLICE
    while time.perf_counter() < until:
        if _waiting.job is None and not begin(context, rest):
            break
        step()
    if _waiting.job is not None:
        return SOON
    edits = [*_waiting.materials.values(), *_waiting.shared.values()]
    return max(SOON, min(edits) + rest - time.monotonic()) if edits else None


def begin(context: Any, rest: float) -> bool:
    """Takes up what has rested; whether there was something."""
    now = time.monotonic()
    if _waiting.shared and now - max(_waiting.shared.values()) >= rest:
        _waiting.job = Job(None, users(_waiting.shared))
        _waiting.shared = {}
        return True
    ready = [uid for uid, edited in _waiting.materials.items() if now - edited >= rest]
    if not ready:
        return False
    del _waiting.materials[ready[0]]
    material = next((each for each in bpy.data.materials if each.session_uid == ready[0]), None)
    target = current_target(context)
    if material is None or target is None or exporting.exportable(material) or not preferences.of(context).live:
        return True
    folder = target.materials.get((material.name, exporting.library_of(material)))
    before = target.manifest(folder) if folder else None
    if before is None:
        return True
    textures: bool | Collection[str] = False
    if context.scene.quillgen.textures:
        textures = changed_images(material, before)
    memory = _waiting.memories.setdefault(material.session_uid, exporting.Memory())
    _waiting.job = Job(material, exporting.steps(material, target, settings.chosen(context), textures, memory))
    return True


def changed_images(material: Any, before: dict[str, Any]) -> set[str]:
    """The images of a material that the target hasn't got as they are."""
    kept = {record["image"] for record in before["textures"] if record["file"]}
    used = {node.image.name for node in labels.all_nodes(material.node_tree) if getattr(node, "image", None)}
    return (used - kept) | (used & _waiting.images)


def step() -> None:
    """One step of the job under way."""
    if _waiting.job is None:
        return
    material, steps = _waiting.job
    try:
        next(steps)
    except StopIteration as end:
        _waiting.job = None
        if material is not None and end.value.changed != "nothing":
            state.keep(material, end.value)
        if not _waiting.materials:
            _waiting.images.clear()  # all of their materials have them
    except ReferenceError:  # the material was removed meanwhile
        _waiting.job = None


def current_target(context: Any) -> write.Target | None:
    """The target as it was looked at before, or looked at anew where it is another or has got new folders."""
    path, _ = exporting.target_folder(settings.folder_of(context))
    if path is None or not path.is_dir():
        _waiting.target = None
    elif _waiting.target is None or _waiting.target.path != path or write.stamp(path) != _waiting.target.looked:
        _waiting.target = write.look(path)
        _waiting.memories.clear()
    return _waiting.target
