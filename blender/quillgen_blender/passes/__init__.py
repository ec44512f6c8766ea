"""Passes that change a document before translation or a result after it: one file each, plain Python without bpy."""

from collections.abc import Collection
from dataclasses import replace
from typing import Any, Literal

from ..notes import Note
from . import bumped_normals, clear_mixes, displacement, losses, luma, parameters, ramps, shaders
from .options import Options

__all__ = ["PASSES", "Mode", "Options", "finish", "prepare"]

Mode = Literal["surface", "emission"]  # a lit or an unlit material

# The order matters. Each pass takes a document and the options, and returns a document and notes. It returns the same
# document if nothing changes, and never changes one in place.
PASSES = (losses.run, ramps.run, shaders.run, clear_mixes.run, bumped_normals.run, luma.run)
# The passes after the translation. Each takes a result, the document that was translated, the names of the parameters
# that the artist marked, and the options.
RESULT_PASSES = (displacement.set_magnitude, parameters.name_parameters)


def prepare(
    document: dict[str, Any], options: Options | None = None, mode: Mode = "surface"
) -> tuple[dict[str, Any], list[Note]]:
    """Returns the document for the translator, and the notes of all passes. `mode`: that of the translation."""
    options = options or Options()
    if mode == "emission":  # its single colour has no opacity beside it and is thinned itself
        options = replace(options, clear_mixes=False)
    notes: list[Note] = []
    for run in PASSES:
        document, more = run(document, options)
        notes += more
    return document, notes


def finish(
    result: dict[str, Any], document: dict[str, Any], named: Collection[str] = (), options: Options | None = None
) -> tuple[dict[str, Any], list[Note]]:
    """Returns the result for the export, and notes. `document` is what `prepare` returned and the translator took;
    `named` holds the names of parameters (`P_Node__Socket`) that the artist marked."""
    options = options or Options()
    notes: list[Note] = []
    for run in RESULT_PASSES:
        result, more = run(result, document, named, options)
        notes += more
    return result, notes
