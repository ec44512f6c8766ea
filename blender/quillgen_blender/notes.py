"""What a translation can't reproduce, told about a node: what readers of Blender and passes give beside a document."""

from typing import Literal, NamedTuple

Loss = Literal["near", "lost", "info"]


class Note(NamedTuple):
    """One line for the artist.

    `node`: the node's id in the document, or "" for the material as a whole. `text`: what differs, in the artist's
    words, without the node's name. `loss`: "near" where something close stands in, "lost" where it has no effect,
    "info" where nothing is lost that a picture shows.
    """

    node: str
    text: str
    loss: Loss = "lost"
