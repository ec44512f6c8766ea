"""Live update: exports a material again a short time after its last edit, if it was exported before.

The handler of Blender's dependency graph only records what changed. A timer does the work, in steps of a few
milliseconds between which Blender can draw.

The handler is always registered and checks whether live update is on in the scene. Registering it only while it is on
would require notice of every change of the setting, and Blender calls no update function for an undo, a new scene or a
file.
"""

import contextlib
import time
from collections.abc import Iterator
from typing import Any, NamedTuple

import bpy

from .. import exporting, write
from ..read import labels
from . import preferences, settings, state

SLICE = 0.001  # seconds of work after which no new step starts; a step may take three times as long
SOON = 0.01  # seconds until the next slice


class Job(NamedTuple):
    """Work in steps. `uid`: the material that is exported, None while materials are searched. `edited`: the edits that
    it handles, as in `Waiting`."""

    uid: int | None
    edited: dict[int, float]
    steps: Iterator[str]


class Waiting:
    """Edits that aren't exported yet. All keys are session_uids, because an undo may invalidate all references."""

    def __init__(self) -> None:
        self.materials: dict[int, float] = {}  # time of the last edit
        self.shared: dict[int, float] = {}  # the same for groups and images, whose materials aren't known yet
        self.images: set[int] = set()  # images whose pixels may have changed
        self.target: write.Target | None = None
        self.memories: dict[int, exporting.Memory] = {}  # by material
        self.job: Job | None = None

    def forget(self) -> None:
        self.__init__()  # type: ignore[misc]


_waiting = Waiting()


def register() -> None:
    bpy.app.handlers.load_post.append(loaded)
    bpy.app.handlers.depsgraph_update_post.append(changed)


def unregister() -> None:
    bpy.app.handlers.depsgraph_update_post.remove(changed)
    bpy.app.handlers.load_post.remove(loaded)
    if bpy.app.timers.is_registered(tick):
        bpy.app.timers.unregister(tick)
    _waiting.forget()


@bpy.app.handlers.persistent
def loaded(*_: Any) -> None:
    state.forget()
    _waiting.forget()


@bpy.app.handlers.persistent
def changed(scene: Any, depsgraph: Any) -> None:
    """Records what an update changed."""
    if not scene.quillgen.live:
        return
    now = time.monotonic()
    noted = False
    for update in depsgraph.updates:
        found = update.id.original
        if isinstance(found, bpy.types.Material):
            _waiting.materials[found.session_uid] = now
        elif isinstance(found, (bpy.types.ShaderNodeTree, bpy.types.Image)) and not found.is_embedded_data:
            _waiting.shared[found.session_uid] = now
            if isinstance(found, bpy.types.Image):
                _waiting.images.add(found.session_uid)
        else:
            continue
        noted = True
    if noted and not bpy.app.timers.is_registered(tick):
        bpy.app.timers.register(tick, first_interval=preferences.of(bpy.context).rest)


def users(edited: dict[int, float]) -> Iterator[str]:
    """Finds the materials that use the edited groups or images, one material per step."""
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
    """Works for one slice. Returns the seconds until the next one, None if nothing is left."""
    context = bpy.context
    if not context.scene.quillgen.live:
        _waiting.forget()
        return None
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
    """Starts a job for edits that are old enough. Returns whether there were any."""
    now = time.monotonic()
    if _waiting.shared and now - max(_waiting.shared.values()) >= rest:
        _waiting.job = Job(None, _waiting.shared, users(_waiting.shared))
        _waiting.shared = {}
        return True
    ready = [uid for uid, edited in _waiting.materials.items() if now - edited >= rest]
    if not ready:
        return False
    uid = ready[0]
    edited = _waiting.materials.pop(uid)
    material = next((each for each in bpy.data.materials if each.session_uid == uid), None)
    target = current_target(context)
    if material is None or target is None or exporting.exportable(material) or not preferences.of(context).live:
        return True
    folder = target.materials.get((material.name, exporting.library_of(material)))
    before = target.manifest(folder) if folder else None
    if before is None:
        return True
    kept = {record["image"] for record in before["textures"] if record["file"]}

    def wanted(name: str, image: Any) -> bool:
        return name not in kept or image.session_uid in _waiting.images

    memory = _waiting.memories.setdefault(uid, exporting.Memory())
    chosen, textures = settings.chosen(context), wanted if context.scene.quillgen.textures else False
    _waiting.job = Job(uid, {uid: edited}, exporting.steps(material, target, chosen, textures, memory))
    return True


def step() -> None:
    """Runs one step of the current job."""
    if _waiting.job is None:
        return
    uid, edited, steps = _waiting.job
    try:
        next(steps)
    except StopIteration as end:
        _waiting.job = None
        if uid is not None and (end.value.changed != "nothing" or state.has_failed(uid)):
            state.keep(uid, end.value)
        if not _waiting.materials and not _waiting.shared:
            _waiting.images.clear()  # all materials that use them are exported
    except ReferenceError:  # something was removed meanwhile, or an undo replaced the data
        _waiting.job = None
        waiting = _waiting.shared if uid is None else _waiting.materials
        waiting.update(edited | waiting)


def current_target(context: Any) -> write.Target | None:
    """The cached target. It is read again if the folder is another one or has changed. None if it can't be read."""
    path, _ = exporting.target_folder(settings.folder_of(context))
    if path is None or not path.is_dir():
        _waiting.target = None
    elif _waiting.target is None or _waiting.target.path != path or write.stamp(path) != _waiting.target.looked:
        _waiting.target = None
        with contextlib.suppress(OSError):
            _waiting.target = write.look(path)
    return _waiting.target
