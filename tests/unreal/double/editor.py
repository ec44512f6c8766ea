"""The module `unreal` of one version, and the project that scripts change through it."""

import pathlib
import types

from . import levels, libraries, menus, objects, tables

SPECIAL = {"Custom": objects.Custom, "TextureObjectParameter": objects.TextureObject}


class CompileError(Exception):
    """A compile error that the editor shows in the material's window and writes to its log."""


class Editor:
    """The state of the project, for the tests."""

    def __init__(self, version):
        self.version = version
        self.assets = {}  # path -> object
        self.tags = {}
        self.unsaved = set()  # paths
        self.compiled = []  # paths of the materials, in order
        self.log = []  # (level, text)
        self.ticks = {}  # handle -> function
        self.transactions = []
        self.tasks = []  # ScopedSlowTask objects
        self.cancel_after = None  # number of times that should_cancel returns False first
        self.console = {}  # console variable -> value
        self.virtual_textures = False  # whether the project imports large pictures as virtual textures
        self.menus = {}
        self.unloadable = set()  # files that the importers refuse
        self.actors = []
        self.messages = []
        self.saved_folder = None
        self.dialog = lambda target: False  # simulates the user: changes the object and returns True for OK
        self.unattended = False
        self.level = ""

    def path_of(self, asset):
        return next((path for path, found in self.assets.items() if found is asset), "/Engine/Transient")

    def touched(self, top):
        if any(found is top for found in self.assets.values()):
            self.unsaved.add(self.path_of(top))

    def save_all(self):
        self.unsaved.clear()

    def texts(self, level):
        return [text for kind, text in self.log if kind == level]

    def material(self, path):
        """The expressions of a material, and (expression, output) wired to its attributes."""
        found = self.assets[path]
        return found._expressions, found._attributes


def make(version, saved_folder=None):
    """Returns (the module, the Editor) of a version such as (5, 4)."""
    if version not in tables.VERSIONS:
        raise ValueError(f"no Unreal {version}")
    editor = Editor(version)
    editor.saved_folder = pathlib.Path(saved_folder) if saved_folder else None
    module = types.ModuleType("unreal")
    module.__getattr__ = _missing
    _types(module, editor)
    libraries.fill(module, editor)
    menus.fill(module, editor)
    levels.fill(module, editor)
    return module, editor


def _missing(name):
    raise AttributeError(f"module 'unreal' has no attribute '{name}'")


def _there(name, version):
    return tables.SINCE.get(name, (0, 0)) <= version


def _types(module, editor):
    version = editor.version
    for name in tables.ENUMS:
        if _there(name, version):
            setattr(module, name, objects.enumeration(name))
    for name, fields in tables.STRUCTS.items():
        if _there(name, version):
            setattr(module, name, type(name, (objects.Struct,), {"_types": fields, "_module": module}))
    module.Object = objects.Object
    module.MaterialInterface = type("MaterialInterface", (objects.Object,), {})
    module.Texture = type("Texture", (objects.Object,), {})
    bases = {"Texture2D": module.Texture}
    for name, fields in tables.ASSETS.items():
        fields = {key: kind for key, kind in fields.items() if _there(f"{name}.{key}", version)}
        base = bases.get(name, module.MaterialInterface)
        setattr(module, name, type(name, (base,), {"_types": fields, "_module": module}))
    module.MaterialExpression = objects.Expression
    for name, (fields, pins_in, pins_out) in tables.EXPRESSIONS.items():
        full = f"MaterialExpression{name}"
        if _there(full, version):
            base = SPECIAL.get(name, objects.Expression)
            members = {"_types": {"desc": "str", **fields}, "_pins_in": pins_in, "_pins_out": pins_out}
            setattr(module, full, type(full, (base,), {**members, "_module": module}))
