"""A double of the editor's Python interface, as strict as the real one, for one version of Unreal.

    unreal, editor = make((5, 4))

`unreal` stands for the module of that name; `editor` says what a script did to the project: assets, unsaved packages,
compiled materials, log. It is made from what is documented and seen in use of that interface, and knows nothing of the
scripts that it tests. What isn't in its tables doesn't exist: a property, a pin or a member of an enumeration that the
version lacks fails as it would in the editor.
"""

from .editor import make

__all__ = ["make"]
