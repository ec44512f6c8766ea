"""Settings of a scene, saved with the file."""

from typing import Any

import bpy

from ..passes import Options
from ..pipeline import Settings
from . import preferences

PARAMETERS = (
    ("auto", "Automatic", "All values up to the limit, the named ones above it"),
    ("all", "All Values", "Every unlinked socket becomes a parameter of the Unreal material"),
    (
        "named",
        "Named Values",
        "Value and RGB nodes and inputs of groups become parameters; all else is fixed in the text",
    ),
    ("none", "None", "All values are fixed in the text: the fastest material, without a slider"),
)


class QuillgenSceneSettings(bpy.types.PropertyGroup):
    folder: bpy.props.StringProperty(
        name="Folder",
        description="The folder that materials are exported to; // is the folder of the .blend file. "
        "Empty: the folder of the extension's preferences",
        subtype="DIR_PATH",
    )
    parameters: bpy.props.EnumProperty(
        name="Parameters",
        description="Which values can be changed in Unreal without another export",
        items=PARAMETERS,
        default="auto",
    )
    limit: bpy.props.IntProperty(
        name="Limit",
        description="Up to so many parameters, Automatic takes all values",
        default=200,
        min=0,
        soft_max=1000,
    )
    displacement: bpy.props.BoolProperty(
        name="Displacement",
        description="Export real displacement for Nanite tessellation where the material has it; "
        "without it, displacement bumps the surface",
        default=True,
    )
    textures: bpy.props.BoolProperty(
        name="Textures", description="Save the pictures that materials use, beside the materials", default=True
    )
    live: bpy.props.BoolProperty(
        name="Live Update",
        description="Export a material again shortly after it was edited, if it is in the folder already",
        default=False,
    )


def folder_of(context: Any) -> str:
    """The folder of the scene, or of the preferences."""
    return context.scene.quillgen.folder or preferences.of(context).folder


def chosen(context: Any) -> Settings:
    scene = context.scene.quillgen
    options = Options(parameters=scene.parameters, parameter_limit=scene.limit)
    return Settings(options=options, displacement=scene.displacement)


CLASSES = (QuillgenSceneSettings,)


def register() -> None:
    bpy.types.Scene.quillgen = bpy.props.PointerProperty(type=QuillgenSceneSettings)


def unregister() -> None:
    del bpy.types.Scene.quillgen
