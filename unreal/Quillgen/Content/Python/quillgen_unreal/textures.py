"""Imports pictures as texture assets, which materials share.

The HLSL reads a picture texel by texel from its largest mip level, decodes colours and multiplies by alpha itself. The
asset therefore has to hold the picture's own values: no decoding, no compression, no mipmaps, no streaming.
"""

from __future__ import annotations

import hashlib
import json
from collections.abc import Mapping
from pathlib import Path
from typing import Any, Callable

import unreal

from . import engine, texture_names
from .apply import value
from .errors import Refused
from .exchange import Export, Picture
from .plan import Properties

TAG = "Quillgen.Sha256"
USED_TAG = "Quillgen.Textures"

BYTES = engine.COMPRESSION["TC_VECTOR_DISPLACEMENTMAP"]  # four channels of 8 bits, uncompressed
FLOATS = engine.COMPRESSION["TC_HDR_F32"]

RULES = (
    ("srgb", False),
    ("mip_gen_settings", engine.MIPS["TMGS_NO_MIPMAPS"]),
    ("never_stream", True),  # for a streamed texture the HLSL gets the size of what is currently loaded
    ("virtual_texture_streaming", False),  # the project may make large pictures virtual, which the HLSL can't read
    ("lod_group", engine.TEXTURE_GROUP["TEXTUREGROUP_WORLD"]),
    ("max_texture_size", 0),
)


def rules(picture: Picture) -> Properties:
    return (("compression_settings", FLOATS if picture.floats else BYTES), *RULES)


def bring(
    export: Export, content_path: str, material: unreal.Material | None, progress: Callable[[str], None]
) -> tuple[dict[str, str], int]:
    """Returns (input name -> asset path, number of assets that were imported or corrected). Pictures that weren't
    exported keep the asset that the material has, if there is one."""
    paths: dict[str, str] = {}
    changed = 0
    for picture in export.pictures:
        progress(f"{export.name}: {picture.image}")
        paths[picture.name] = (
            texture_names.path(picture, content_path) if picture.path else _kept(export, picture, material)
        )
        if picture.path:
            changed += _bring(export, picture, picture.path, paths[picture.name])
    return paths, changed


def remember(material: unreal.Material, paths: Mapping[str, str]) -> None:
    """Stores in the material which textures it was built with."""
    content = json.dumps(paths, sort_keys=True)
    if unreal.EditorAssetLibrary.get_metadata_tag(material, USED_TAG) != content:
        unreal.EditorAssetLibrary.set_metadata_tag(material, USED_TAG, content)


def _kept(export: Export, picture: Picture, material: unreal.Material | None) -> str:
    known = unreal.EditorAssetLibrary.get_metadata_tag(material, USED_TAG) if material else ""
    where = json.loads(known or "{}").get(picture.name, "")
    if not where or not unreal.EditorAssetLibrary.does_asset_exist(where):
        what = f"the picture {picture.image!r} wasn't exported, and there is none from an earlier import"
        hint = "is the picture there in Blender, and Textures on in the options of the export?"
        raise Refused(export.name, export.folder, f"{what}; {hint}")
    return where


def _bring(export: Export, picture: Picture, file: Path, where: str) -> bool:
    library = unreal.EditorAssetLibrary
    texture: Any = library.load_asset(where) if library.does_asset_exist(where) else None
    known = texture and library.get_metadata_tag(texture, TAG)
    if texture and not known:
        raise Refused(export.name, file, f"{where} is there already and wasn't imported from Blender")
    if known != picture.sha256:
        texture = _import(export, picture, file, where)
    wrong = [(key, value(content)) for key, content in rules(picture)]
    wrong = [(key, content) for key, content in wrong if texture.get_editor_property(key) != content]
    for key, content in wrong:
        texture.set_editor_property(key, content)
    if known != picture.sha256:
        library.set_metadata_tag(texture, TAG, picture.sha256)
    return bool(wrong) or known != picture.sha256


def _import(export: Export, picture: Picture, file: Path, where: str) -> unreal.Texture2D:
    if hashlib.sha256(file.read_bytes()).hexdigest() != picture.sha256:
        raise Refused(export.name, file, "the picture isn't the one that the manifest names")
    task = unreal.AssetImportTask()
    folder, name = where.rsplit("/", 1)
    for key, content in (
        ("filename", str(file.resolve())),
        ("destination_path", folder),
        ("destination_name", name),
        ("automated", True),
        ("replace_existing", True),
        ("save", False),
    ):
        task.set_editor_property(key, content)
    unreal.AssetToolsHelpers.get_asset_tools().import_asset_tasks([task])
    texture = unreal.EditorAssetLibrary.load_asset(where)
    if not isinstance(texture, unreal.Texture2D):
        raise Refused(export.name, file, "Unreal can't import the picture as a texture")
    return texture
