"""From a document to the files for Unreal: passes, translation, passes over the result, writing. Plain Python; the
caller reads Blender."""

import json
import re
from collections.abc import Collection, Mapping, Sequence
from dataclasses import dataclass, field, replace
from pathlib import Path
from typing import Any

from . import passes, write
from .notes import Note
from .passes import Options
from .write import Material, Picture, Target, Written

TOO_DEEP = "too many of its nodes, or turns of repeat zones, follow one another"


@dataclass(frozen=True)
class Settings:
    """What an export makes of a material. `mode`: "surface", or "emission" for an unlit material. `displacement`:
    whether displacement moves the geometry; if not, it bumps the surface as in Blender's own bump-only setting.
    `named`: the parameters that the artist marked."""

    options: Options = field(default_factory=Options)
    mode: passes.Mode = "surface"
    displacement: bool = True
    named: Collection[str] = ()


class Failed(Exception):
    """A material that can't be exported, in the artist's words. `node`: the id of the node that caused it, "" if none
    did."""

    def __init__(self, text: str, node: str = ""):
        super().__init__(text)
        self.node = node


def translate(
    name: str, document: dict[str, Any], notes: Sequence[Note] = (), settings: Settings | None = None
) -> Material:
    """Returns a material, ready to be written. Raises Failed."""
    import quillgen  # imported here, so that the rest works without the module

    settings = settings or Settings()
    method = document.get("settings", {}).get("displacement", "BUMP")
    if not settings.displacement and method != "BUMP":
        document = document | {"settings": document["settings"] | {"displacement": "BUMP"}}
    try:
        document, more = passes.prepare(document, settings.options, settings.mode)
        result: Any = quillgen.compile(document, settings.mode, settings.options.parameters != "none")
        result, last = passes.finish(result, document, settings.named, settings.options)
    except quillgen.Unsupported as error:
        raise explained(str(error), document) from error
    except RecursionError as error:
        raise Failed(TOO_DEEP) from error
    return Material(
        name=name,
        document=document,
        result=result,
        mode=settings.mode,
        notes=[*notes, *more, *last],
        made_by={"quillgen": getattr(quillgen, "__version__", ""), "extension": getattr(quillgen, "__version__", "")},
    )


def explained(message: str, document: Mapping[str, Any]) -> Failed:
    """Explains to the artist why a graph has no translation."""
    if message == "no surface output":
        return Failed(surfaceless(document.get("host", {})))
    for node in document["nodes"]:
        if message.startswith(f"{node['type']}: no input"):
            return Failed(f"the node has {message.partition(': ')[2]}, which its type needs", node["id"])
        for socket, entry in node["in"].items():
            source = entry.get("link", ("", "", ""))[2]
            if source and (source == "SHADER") != (entry.get("t") == "SHADER"):
                wanted = "a shader" if entry.get("t") == "SHADER" else "a value"
                given = "a shader" if source == "SHADER" else "a value"
                return Failed(f"{socket} takes {wanted}, and {given} is connected to it", node["id"])
    if re.match("a (shader|.* value) plugged into", message):
        return Failed("the Surface of the Material Output takes a shader, and a value is connected to it")
    return Failed(message)


def surfaceless(host: Mapping[str, Any]) -> str:
    """Why a material has no surface. `host`: what the reader found beside the graph."""
    if not host.get("output", True):
        return "it has no Material Output whose target is All or Cycles"
    if host.get("surface"):
        return (
            "what is connected to the Surface of the Material Output gives no shader: "
            "it is muted, for example, or an empty group"
        )
    return "nothing is connected to the Surface of the Material Output"


def export_document(
    target: Target,
    name: str,
    document: dict[str, Any],
    pictures: Mapping[str, Path] | None = None,
    settings: Settings | None = None,
) -> Written:
    """Exports an existing document, such as those in examples/materials. `pictures`: image name -> its file."""
    made = translate(name, document, settings=settings)
    images = document.get("images", {})
    saved = {
        image: Picture(path, images.get(image, {}).get("float", False), images.get(image, {}).get("colorspace", "sRGB"))
        for image, path in (pictures or {}).items()
    }
    return write.write_material(target, replace(made, pictures=saved))


def export_examples(folder: Path, documents: Sequence[Path]) -> list[Written]:
    """Exports documents in files to a folder; pictures are looked for in `textures` beside each document."""
    target = write.look(folder)
    found = []
    for path in documents:
        document = json.loads(path.read_text(encoding="utf-8"))
        pictures = {
            image: path.parent / "textures" / image
            for image in document.get("images", {})
            if (path.parent / "textures" / image).is_file()
        }
        found.append(export_document(target, path.stem.replace("_", " ").title(), document, pictures))
    return found
