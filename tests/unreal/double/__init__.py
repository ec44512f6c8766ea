"""A test double of the editor's Python interface for one version of Unreal, as strict as the real one.

    unreal, editor = make((5, 4))

`unreal` replaces the module of that name. `editor` records what a script did to the project: assets, unsaved packages,
compiled materials, log. The double is based on the documentation and the observed behaviour of that interface, not on
the scripts that it tests. Whatever is missing in its tables doesn't exist: a property, a pin or an enumeration member
that the version doesn't have raises the same error as in the editor.
"""

from .editor import make

__all__ = ["make"]
