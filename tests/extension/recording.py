"""A replacement for Blender's layout that records what a panel draws."""

from dataclasses import dataclass, field
from types import SimpleNamespace
from typing import Any

import bpy


@dataclass
class Item:
    """`kind`: label, prop, operator, progress, separator, or a layout's own row, column, box."""

    kind: str
    text: str = ""
    icon: str = "NONE"
    name: str = ""  # of the property or operator
    data: Any = None
    properties: dict[str, Any] = field(default_factory=dict)
    layout: Any = None


def operator_type(name):
    """The definition of an operator. Raises KeyError if it doesn't exist."""
    module, _, word = name.partition(".")
    return getattr(getattr(bpy.ops, module), word).get_rna_type()


class Properties:
    """Records the operator properties that a button sets."""

    def __init__(self, into):
        object.__setattr__(self, "_into", into)

    def __setattr__(self, name, value):
        self._into[name] = value


class Layout:
    def __init__(self, kind="column", align=False):
        self.kind, self.align = kind, align
        self.children = []
        self.active = self.enabled = True
        self.use_property_split = self.use_property_decorate = False
        self.scale_x = self.scale_y = 1.0

    def _inner(self, kind, align=False, **_):
        made = Layout(kind, align)
        made.use_property_split = self.use_property_split
        self.children.append(Item(kind, layout=made))
        return made

    def row(self, **more):
        return self._inner("row", **more)

    def column(self, **more):
        return self._inner("column", **more)

    def box(self):
        return self._inner("box")

    def separator(self, **_):
        self.children.append(Item("separator"))

    def separator_spacer(self):
        self.children.append(Item("separator"))

    def label(self, text="", icon="NONE", **_):
        self.children.append(Item("label", text, icon))

    def prop(self, data, name, text=None, icon="NONE", **_):
        rna = data.bl_rna.properties[name]
        self.children.append(Item("prop", rna.name if text is None else text, icon, name, data))

    def operator(self, name, text=None, icon="NONE", **_):
        if text is None:
            text = operator_type(name).name
        item = Item("operator", text, icon, name)
        self.children.append(item)
        return Properties(item.properties)

    def progress(self, factor=0.0, text="", **_):
        self.children.append(Item("progress", text, data=factor))

    def items(self):
        """All items. Items of a nested layout follow that layout."""
        for item in self.children:
            yield item
            if item.layout:
                yield from item.layout.items()

    def texts(self):
        return [item.text for item in self.items() if item.text]

    def count(self, name):
        return sum(item.name == name for item in self.items())


def context_of(panel, material, width=340):
    """The context of a panel in one of the two editors."""
    space = SimpleNamespace(type=panel.bl_space_type, id=material, tree_type="ShaderNodeTree")
    real = bpy.context
    return SimpleNamespace(
        scene=real.scene,
        object=real.object,
        material=material,
        space_data=space,
        preferences=real.preferences,
        region=SimpleNamespace(width=width),
    )


def drawn(panel, context):
    """The layout that a panel draws, or None if its poll fails."""
    if not panel.poll(context):
        return None
    layout = Layout()
    panel.draw(SimpleNamespace(layout=layout), context)
    return layout
