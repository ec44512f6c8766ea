"""What changes a document on its way to the translator: one pass a file, plain Python without bpy."""

from collections.abc import Collection
from typing import Any

from ..notes import Note
from . import bumped_normals, displacement, losses, luma, parameters, ramps, shaders
from .options import Options

__all__ = ["PASSES", "Options", "finish", "prepare"]

# In this order. Each takes a document and the options, and returns a document (the same one where nothing changes,
# never one changed in place) and notes.
PASSES = (losses.run, ramps.run, shaders.run, bumped_normals.run, luma.run)
# What follows the translation, likewise: each takes a result, the document that was translated, the names of the
# parameters that the artist marked, and the options.
RESULT_PASSES = (displacement.set_magnitude, parameters.name_parameters)


def prepare(document: dict[str, Any], options: Options | None = None) -> tuple[dict[str, Any], list[Note]]:
    """The document that the translator takes, and the notes of all passes."""
    options = options or Options()
    notes: list[Note] = []
    for run in PASSES:
        document, more = run(document, options)
        notes += more
    return document, notes


def finish(
    result: dict[str, Any], document: dict[str, Any], named: Collection[str] = (), options: Options | None = None
) -> tuple[dict[str, Any], list[Note]]:
    """The result as it is exported, and notes. `document` is what `prepare` returned and the translator took;
    `named` holds names of parameters (`P_Node__Socket`) that the artist marked."""
    options = options or Options()
    notes: list[Note] = []
    for run in RESULT_PASSES:
        result, more = run(result, document, named, options)
        notes += more
    return result, notes
