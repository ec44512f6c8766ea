"""Objects with type-checked properties: enumerations, structs, and objects of the project."""

import struct

from . import tables


class Member:
    """A member of an enumeration."""

    def __init__(self, owner, name):
        self.owner, self.name = owner, name

    def __repr__(self):
        return f"<{self.owner}.{self.name}>"


def enumeration(name):
    """A type whose attributes are its members. Any other attribute raises AttributeError."""
    return type(name, (), {member: Member(name, member) for member in tables.ENUMS[name].split()})


def _float32(number):
    return struct.unpack("f", struct.pack("f", number))[0]


class Properties:
    """Base class with editor properties. `_types`: name -> type; no other attribute can be set."""

    _types = {}
    _module = None

    def __init__(self, **values):
        object.__setattr__(self, "_values", {})
        for name, kind in self._types.items():
            self._values[name] = self._initial(kind)
        for name, value in values.items():
            self.set_editor_property(name, value)

    def _initial(self, kind):
        if kind.endswith("[]"):
            return []
        if kind in tables.DEFAULTS:
            return tables.DEFAULTS[kind]
        if kind in tables.STRUCTS:
            return getattr(self._module, kind)()
        return None

    def get_editor_property(self, name):
        if name not in self._types:
            raise Exception(f"{type(self).__name__}: Failed to find property '{name}' for attribute '{name}'")
        return self._values[name]

    def set_editor_property(self, name, value):
        if name not in self._types:
            raise Exception(f"{type(self).__name__}: Failed to find property '{name}' for attribute '{name}'")
        before, self._values[name] = self._values[name], self._checked(name, self._types[name], value)
        self._changed(name, before)

    def _changed(self, name, before):
        pass

    def _checked(self, name, kind, value):
        if kind.endswith("[]"):
            if not isinstance(value, (list, tuple)):
                raise TypeError(f"{name}: an array, not {value!r}")
            return [self._checked(name, kind[:-2], v) for v in value]
        if not self._fits(kind, value):
            raise TypeError(f"{type(self).__name__}: Cannot assign {value!r} to the property '{name}' of type {kind}")
        return _float32(value) if kind == "float" else value

    def _fits(self, kind, value):
        number = isinstance(value, (int, float)) and not isinstance(value, bool)
        plain = {
            "bool": isinstance(value, bool),
            "int": number and isinstance(value, int),
            "float": number,
            "str": isinstance(value, str),
            "name": isinstance(value, str),
        }
        if kind in plain:
            return plain[kind]
        if kind in tables.ENUMS:
            return isinstance(value, Member) and value.owner == kind
        return isinstance(value, getattr(self._module, kind))

    def __getattr__(self, name):
        if name in type(self)._types:
            return self.get_editor_property(name)
        raise AttributeError(f"'{type(self).__name__}' object has no attribute '{name}'")

    def __setattr__(self, name, value):
        if name not in self._types:
            raise AttributeError(f"'{type(self).__name__}' object has no attribute '{name}'")
        self.set_editor_property(name, value)


class Struct(Properties):
    """Base class of structs. The constructor takes the fields in order, or by name."""

    def __init__(self, *values, **named):
        super().__init__(**dict(zip(self._types, values)), **named)

    def __eq__(self, other):
        return type(self) is type(other) and self._values == other._values

    __hash__ = None


class Object(Properties):
    """An object that belongs to a package of the project, or to none. A change marks the package as unsaved."""

    def __init__(self, editor, outer=None, name=""):
        super().__init__()
        for key, value in {"_editor": editor, "_outer": outer, "_name": name, "_tags": {}}.items():
            object.__setattr__(self, key, value)

    def _touch(self):
        top = self
        while top._outer is not None:
            top = top._outer
        self._editor.touched(top)

    def _changed(self, name, before):
        if "_editor" in self.__dict__:
            self._touch()

    def get_name(self):
        return self._name

    def get_path_name(self):
        return f"{self._editor.path_of(self)}.{self._name}"


class Expression(Object):
    """A node of a material. `_wires`: input pin -> (expression, index of its output)."""

    _pins_in = ()
    _pins_out = ()

    def __init__(self, editor, outer, name):
        super().__init__(editor, outer, name)
        object.__setattr__(self, "_wires", {})

    def inputs(self):
        return self._pins_in

    def outputs(self):
        return self._pins_out

    def input_index(self, pin):
        """The index of an input pin, or None if there is none with this name."""
        if pin == "":
            return 0 if self.inputs() else None
        return next((i for i, name in enumerate(self.inputs()) if name == pin), None)

    def output_index(self, pin):
        if pin == "":
            return 0 if self.outputs() else None
        return next((i for i, (name, _) in enumerate(self.outputs()) if name == pin), None)


class Custom(Expression):
    """A Custom expression. Its properties define its pins. A new one has one unnamed input."""

    def __init__(self, editor, outer, name):
        super().__init__(editor, outer, name)
        self._values["inputs"] = [self._module.CustomInput(input_name="")]
        self._values["output_type"] = self._module.CustomMaterialOutputType.CMOT_FLOAT3
        self._values["code"] = "1"
        self._values["description"] = "Custom"

    def inputs(self):
        return [record.input_name for record in self._values["inputs"]]

    def outputs(self):
        further = [(r.output_name, r.output_type) for r in self._values["additional_outputs"]]
        kinds = [("return", self._values["output_type"]), *further]
        return [(name, tables.CUSTOM_WIDTHS[kind.name]) for name, kind in kinds]

    def _changed(self, name, before):
        super()._changed(name, before)
        if name == "inputs":
            self._wires.clear()


class TextureObject(Expression):
    """A texture expression. Setting the texture also sets the sampler type."""

    def _changed(self, name, before):
        super()._changed(name, before)
        if name == "texture" and self._values["texture"] is not None:
            from .libraries import sampler_type

            self._values["sampler_type"] = sampler_type(self._values["texture"])
