"""Notes on what a translation can't reproduce; readers of Blender and passes return them beside a document."""

from typing import Literal, NamedTuple

Loss = Literal["near", "lost", "info"]


class Note(NamedTuple):
    """One line for the artist.

    `node`: the node's id in the document, or "" for the material as a whole. `text`: what differs, in the artist's
    words, without the node's name. `loss`: "near" if something similar replaces it, "lost" if it has no effect, "info"
    if no difference is visible.
    """

    node: str
    text: str
    loss: Loss = "lost"
