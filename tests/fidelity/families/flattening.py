"""Trees with groups, reroutes and muted nodes: those of tests/host, with exact coordinates."""

import newer_trees
import trees
from builder import Case

# Trees that read more of the surface than a tile provides.
NOT_ON_TILES = (
    "second_uv_map",
    "constant_for_a_normal",
    "hidden_constant_for_a_normal",
    "texture_with_its_own_coordinate",
)


def cases():
    for fill in trees.TREES + newer_trees.TREES:
        if fill.__name__ not in NOT_ON_TILES:
            yield Case("(groups, reroutes, muted nodes)", fill.__name__.replace("_", " "), whole(fill))


def whole(fill):
    """A tree of tests/host with the canvas's vector in place of the raw UV coordinate."""

    def build(c):
        before = trees.vector
        trees.vector = newer_trees.vector = lambda tree: c.vector() if tree == c.tree else before(tree)
        try:
            return fill(c.tree)
        finally:
            trees.vector = newer_trees.vector = before

    return build
