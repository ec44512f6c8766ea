"""What changes a document on its way to the translator: one pass a file, plain Python without bpy."""

from . import ramps

PASSES = (ramps.run,)


def prepare(document, options=None):
    """The document that the translator takes, and the notes of all passes."""
    notes = []
    for run in PASSES:
        document, more = run(document, options)
        notes += more
    return document, notes
