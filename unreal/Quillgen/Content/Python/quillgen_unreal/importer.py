"""Imports exports: creates or updates M_Name and MI_Name, and reports what it did."""

from __future__ import annotations

import time
from collections.abc import Sequence
from pathlib import Path
from typing import Any, Callable, NamedTuple

import unreal

from . import apply, build, engine, exchange, instances, layout, naming, textures
from .errors import Cancelled, Refused, Unfinished
from .exchange import Export
from .plan import Plan

MATERIAL_TAG = "Quillgen.Material"  # the Blender material that an asset belongs to
PLAN_TAG = "Quillgen.Plan"  # the fingerprint of the plan that it was built from
PATIENCE = 3.0  # seconds to wait for an export in progress
TESSELLATION = ("r.Nanite.AllowTessellation", "r.Nanite.Tessellation")
NO_TESSELLATION = (
    "the displacement shows once DefaultEngine.ini has r.Nanite.AllowTessellation=1 and r.Nanite.Tessellation=1 under "
    "[/Script/Engine.RendererSettings], and the mesh has Nanite on"
)


Progress = Callable[[str], None]


class Outcome(NamedTuple):
    """The result of importing one material."""

    name: str
    status: str  # "made", "updated", "values", "unchanged" or "failed"
    material: str  # paths of the assets, "" if it failed
    instance: str
    remarks: tuple[str, ...]


def no_progress(text: str) -> None:
    """The default: no progress display."""


def read(folder: str | Path, patience: float = PATIENCE) -> Export:
    """The export in a folder; waits up to `patience` seconds while its files are being written."""
    end = time.monotonic() + patience
    while True:
        try:
            return exchange.read(folder)
        except Unfinished:
            if time.monotonic() >= end:
                raise
            time.sleep(0.1)


def bring(
    folder: str | Path,
    content_path: str,
    progress: Progress = no_progress,
    instanced: bool = False,
    force: bool = False,
    patience: float = PATIENCE,
) -> Outcome:
    """Imports one folder and returns its Outcome. If it raises Refused, M_Name is unchanged."""
    content_path = naming.content_path(content_path)
    export = read(folder, patience)
    where = naming.asset_path(content_path, "M_", export)
    instance_path = naming.asset_path(content_path, "MI_", export)
    material = _own(where, unreal.Material, export)
    instance = _own(instance_path, unreal.MaterialInstanceConstant, export)
    assets, imported = textures.bring(export, content_path, material, progress)
    plan = build.plan(export, assets, engine.Features.of_editor(unreal), instanced)
    mark = build.fingerprint(plan)
    library = unreal.EditorAssetLibrary
    rebuilt = force or not material or library.get_metadata_tag(material, PLAN_TAG) != mark
    if rebuilt:
        progress(f"{export.name}: the material")
        material = _rebuild(export, plan, mark, where, material)
        textures.remember(material, assets)
    made = not instance
    if made:
        instance = _make_instance(export, instance_path, material)
    elif not instance.get_editor_property("parent"):  # the material was deleted and created again
        unreal.MaterialEditingLibrary.set_material_instance_parent(instance, material)
    changed = instances.update(instance, export)
    status = "made" if made else "updated" if rebuilt or imported else "values" if changed else "unchanged"
    return Outcome(export.name, status, where, instance_path, _remarks(export, plan))


def _own(path: str, kind: type, export: Export) -> Any:
    """The asset at a path, or None. Raises Refused unless an import of the same material made it."""
    library = unreal.EditorAssetLibrary
    if not library.does_asset_exist(path):
        return None
    asset = library.load_asset(path)
    if not isinstance(asset, kind):
        raise Refused(export.name, export.folder, f"{path} is there already and is no {kind.__name__}")
    owner = library.get_metadata_tag(asset, MATERIAL_TAG)
    if owner != _identity(export):
        whose = f"belongs to the material {owner!r}" if owner else "wasn't imported from Blender"
        raise Refused(export.name, export.folder, f"{path} is there already and {whose}; rename one of them")
    return asset


def _identity(export: Export) -> str:
    """The identity of a Blender material."""
    return f"{export.name} in {export.library}" if export.library else export.name


def _rebuild(export: Export, plan: Plan, mark: str, where: str, old: unreal.Material | None) -> unreal.Material:
    """Builds the graph in the material, which is created if there is none."""
    boxes, _ = layout.place(plan.graph)
    if old:
        # A trial: errors of this editor version appear here, before the old graph is removed.
        apply.build(plan, boxes, unreal.new_object(unreal.Material), export.name)
    with unreal.ScopedEditorTransaction(f"Import {export.name} from Blender"):
        material = old or create(export, where, unreal.Material, unreal.MaterialFactoryNew())
        try:
            apply.build(plan, boxes, material, export.name)
        except Exception:
            if not old:
                unreal.EditorAssetLibrary.delete_asset(where)
            raise
        unreal.EditorAssetLibrary.set_metadata_tag(material, MATERIAL_TAG, _identity(export))
        unreal.EditorAssetLibrary.set_metadata_tag(material, PLAN_TAG, mark)
        unreal.MaterialEditingLibrary.recompile_material(material)
    return material


def create(export: Export, where: str, kind: type, factory: unreal.Factory) -> Any:
    folder, name = where.rsplit("/", 1)
    made = unreal.AssetToolsHelpers.get_asset_tools().create_asset(name, folder, kind, factory)
    if not made:
        raise Refused(export.name, export.folder, f"Unreal refuses to make the asset {where}")
    return made


def _make_instance(export: Export, where: str, material: unreal.Material) -> unreal.MaterialInstanceConstant:
    instance = create(export, where, unreal.MaterialInstanceConstant, unreal.MaterialInstanceConstantFactoryNew())
    unreal.MaterialEditingLibrary.set_material_instance_parent(instance, material)
    unreal.EditorAssetLibrary.set_metadata_tag(instance, MATERIAL_TAG, _identity(export))
    return instance


def _remarks(export: Export, plan: Plan) -> tuple[str, ...]:
    """Remarks for the user: what Blender's side reports as lost, and what Unreal's side lacks."""
    found = [f"{r.get('node') or 'material'}: {r.get('text', '')}" for r in export.remarks if r.get("loss") != "info"]
    found += plan.remarks
    if export.displacement and not plan.remarks:
        system = unreal.SystemLibrary
        if not all(system.get_console_variable_int_value(name) for name in TESSELLATION):
            found.append(NO_TESSELLATION)
    return tuple(found)


def folders(root: str | Path) -> list[Path]:
    """The folders of single materials below an export's target folder."""
    root = Path(root)
    if not root.is_dir():
        raise Refused("Import", root, "the folder isn't there")
    return sorted(path.parent for path in root.glob(f"*/{exchange.MANIFEST}"))


def bring_all(root: str | Path, content_path: str, instanced: bool = False, force: bool = False) -> list[Outcome]:
    """Imports every material below a folder. Returns Outcomes in the order of the folders. A failure does not stop the
    others."""
    content_path = naming.content_path(content_path)
    found = folders(root)
    outcomes: list[Outcome] = []
    try:
        with unreal.ScopedSlowTask(max(len(found), 1), "Materials from Blender") as task:
            task.make_dialog(True)
            for folder in found:
                task.enter_progress_frame(1, folder.name)
                outcomes.append(attempt(folder, content_path, _progress(task), instanced, force))
    except Cancelled:
        unreal.log_warning(f"Quillgen: cancelled after {len(outcomes)} of {len(found)} materials")
    summarise(outcomes, root)
    return outcomes


def _progress(task: unreal.ScopedSlowTask) -> Progress:
    def step(text: str) -> None:
        if task.should_cancel():
            raise Cancelled
        task.enter_progress_frame(0, text)

    return step


def attempt(
    folder: str | Path,
    content_path: str,
    progress: Progress = no_progress,
    instanced: bool = False,
    force: bool = False,
    patience: float = PATIENCE,
) -> Outcome:
    """Imports one folder; an error becomes a log entry and a failed Outcome."""
    try:
        return bring(folder, content_path, progress, instanced, force, patience)
    except Cancelled:
        raise
    except Refused as error:
        name, text = error.material, str(error)
    except Exception as error:  # an unexpected error must not stop other materials
        name, text = Path(folder).name, f"{Path(folder).name}: {type(error).__name__}: {error} ({folder})"
    unreal.log_error(f"Quillgen: {text}")
    return Outcome(name, "failed", "", "", (text,))


WORDS = {"made": "made", "updated": "updated", "values": "new values", "unchanged": "unchanged", "failed": "failed"}


def summarise(outcomes: Sequence[Outcome], root: str | Path) -> None:
    counts = {status: sum(o.status == status for o in outcomes) for status in WORDS}
    parts = [f"{count} {WORDS[status]}" for status, count in counts.items() if count]
    unreal.log(f"Quillgen: {len(outcomes)} materials from {root}: {', '.join(parts) or 'nothing to import'}")
    for outcome in outcomes:
        if outcome.status != "failed":
            for remark in outcome.remarks:
                unreal.log_warning(f"Quillgen: {outcome.name}: {remark}")
