"""Builds the level of the checklist: rows of spheres, each with the material of one check and its name above it."""

from __future__ import annotations

import unreal

from . import apply, build, checks, engine, importer, layout, naming
from .errors import Refused

SHAPES = "/Engine/BasicShapes"  # spheres of a radius of 50 cm
SPACING = 220.0  # cm
IN_A_ROW = 5


def build_level(content_path: str) -> str:
    """Returns instructions what to look for, which are also logged."""
    content_path = naming.content_path(content_path)
    made = [(check, _material(check, content_path)) for check in checks.CHECKS]
    level = f"{content_path}/L_Checklist"
    levels = unreal.get_editor_subsystem(unreal.LevelEditorSubsystem)
    there = unreal.EditorAssetLibrary.does_asset_exist(level)
    if not (levels.load_level(level) if there else levels.new_level(level)):
        raise Refused("Checklist", "", f"Unreal can't make the level {level}")
    if not there:
        for number, (check, material) in enumerate(made):
            _place(check, material, number)
    lines = [f"{number + 1}. {check.name}: {check.shows}" for number, check in enumerate(checks.CHECKS)]
    text = "\n".join(["Every object has to look so:", *lines])
    unreal.log(text)
    return text


def _material(check: checks.Check, content_path: str) -> unreal.Material:
    export = checks.export(check)
    plan = build.plan(export, {}, engine.Features.of_editor(unreal))
    name = naming.asset("M_", export.name)
    path = f"{content_path}/{name}"
    library = unreal.EditorAssetLibrary
    material = library.load_asset(path) if library.does_asset_exist(path) else None
    if not material:
        material = importer.create(export, path, unreal.Material, unreal.MaterialFactoryNew())
    boxes, _ = layout.place(plan.graph)
    apply.build(plan, boxes, material, export.name)
    unreal.MaterialEditingLibrary.recompile_material(material)
    return material


def _place(check: checks.Check, material: unreal.Material, number: int) -> None:
    actors = unreal.get_editor_subsystem(unreal.EditorActorSubsystem)
    place = unreal.Vector(0.0, SPACING * (number % IN_A_ROW), SPACING * (number // IN_A_ROW + 0.5))
    mesh = unreal.EditorAssetLibrary.load_asset(f"{SHAPES}/{check.mesh}")
    shown = actors.spawn_actor_from_object(mesh, place)
    shown.set_actor_scale3d(unreal.Vector(*check.scale))
    shown.set_actor_label(check.name)
    shown.get_editor_property("static_mesh_component").set_material(0, material)
    title = actors.spawn_actor_from_class(unreal.TextRenderActor, unreal.Vector(place.x, place.y, place.z + 90.0))
    title.set_actor_label(f"{check.name}: title")
    words = title.get_editor_property("text_render")
    words.set_editor_property("text", f"{number + 1}. {check.name}")
    words.set_editor_property("world_size", 9.0)
    words.set_editor_property("horizontal_alignment", unreal.HorizTextAligment.EHTA_CENTER)
