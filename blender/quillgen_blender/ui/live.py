"""Live update: a material that was exported is exported again once an edit of it rests.

The handler of Blender's dependency graph only notes what changed. A timer does the work, in steps of a few milliseconds
with a chance for Blender to draw between them.
"""

import time
from collections.abc import Collection
from typing import Any

import bpy

from .. import exporting, write
from . import preferences, settings, state

SLICE = 0.004  # seconds of work at a time
SOON = 0.01  # seconds until the next slice


class Waiting:
    """What was edited and isn't exported yet."""

    def __init__(self) -> None:
        self.materials: dict[int, float] = {}  # session_uid -> when it was edited last
        self.images: set[str] = set()  # names of those whose pixels may have changed
        self.users: dict[int, set[int]] = {}  # session_uid of a group or an image -> those of its materials
        self.target: write.Target | None = None
        self.job: tuple[Any, exporting.Steps] | None = None

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
    """Notes the materials that an update is about."""
    edited = set()
    for update in depsgraph.updates:
        found = update.id.original
        if isinstance(found, bpy.types.Material):
            edited.add(found.session_uid)
        elif isinstance(found, (bpy.types.ShaderNodeTree, bpy.types.Image)):
            edited |= users_of(found)
            if isinstance(found, bpy.types.Image):
                _waiting.images.add(found.name)
    if not edited:
        return
    now = time.monotonic()
    _waiting.materials.update(dict.fromkeys(edited, now))
    if not bpy.app.timers.is_registered(tick):
        bpy.app.timers.register(tick, first_interval=preferences.of(bpy.context).rest)


def users_of(found: Any) -> set[int]:
    """The materials that a group or an image is part of. Looked up once until the next material is edited."""
    if found.session_uid not in _waiting.users:
        users: set[int] = set()
        seen, waiting = {found}, [found]
        while waiting:
            for user in bpy.data.user_map(subset=[waiting[-1]])[waiting.pop()]:
                if isinstance(user, bpy.types.Material):
                    users.add(user.session_uid)
                elif isinstance(user, bpy.types.ShaderNodeTree) and user not in seen:
                    seen.add(user)
                    waiting.append(user)
        _waiting.users[found.session_uid] = users
    return _waiting.users[found.session_uid]


def tick() -> float | None:
    """A slice of work. The seconds until the next one, None where nothing is left."""
    context = bpy.context
    rest = preferences.of(context).rest
    until = time.perf_counter() + SLICE
    while time.perf_counter() < until:
        if _waiting.job is None and not begin(context, rest):
            break
        if _waiting.job is not None:
            step()
    if _waiting.job is not None:
        return SOON
    if not _waiting.materials:
        return None
    return max(SOON, min(_waiting.materials.values()) + rest - time.monotonic())


def begin(context: Any, rest: float) -> bool:
    """Starts the export of a material whose edit has rested; whether there was one."""
    ready = [uid for uid, edited in _waiting.materials.items() if time.monotonic() - edited >= rest]
    if not ready:
        return False
    del _waiting.materials[ready[0]]
    _waiting.users.clear()
    material = next((each for each in bpy.data.materials if each.session_uid == ready[0]), None)
    target = current_target(context)
    if material is None or target is None or exporting.exportable(material):
        return True
    folder = target.materials.get((material.name, exporting.library_of(material)))
    before = target.manifest(folder) if folder else None
    if before is None or not preferences.of(context).live:
        return True
    textures: bool | Collection[str] = False
    if context.scene.quillgen.textures:
        kept = {record["image"] for record in before["textures"] if record["file"]}
        used = {node.image.name for node in all_nodes(material.node_tree) if getattr(node, "image", None)}
        textures = used - kept | used & _waiting.images
    _waiting.images.clear()
    _waiting.job = material, exporting.steps(material, target, settings.chosen(context), textures)
    return True


def step() -> None:
    """One step of the job under way."""
    if _waiting.job is None:
        return
    material, job = _waiting.job
    try:
        next(job)
    except StopIteration as end:
        _waiting.job = None
        state.keep(material, end.value)
    except ReferenceError:  # the material was removed meanwhile
        _waiting.job = None


def current_target(context: Any) -> write.Target | None:
    """The target as it was looked at before, or looked at anew where it is another or has got new folders."""
    path, _ = exporting.target_folder(settings.folder_of(context))
    if path is None or not path.is_dir():
        _waiting.target = None
    elif _waiting.target is None or _waiting.target.path != path or write.stamp(path) != _waiting.target.looked:
        _waiting.target = write.look(path)
    return _waiting.target


def all_nodes(tree: Any, depth: int = 0) -> Any:
    for node in tree.nodes:
        yield node
        inner = getattr(node, "node_tree", None)
        if inner and depth < 50:
            yield from all_nodes(inner, depth + 1)
