"""Menus and dialogs."""

from . import objects


def fill(module, editor):
    module.ToolMenus = _menus(module, editor)
    module.ToolMenuEntry = _entry(module)
    module.EditorDialog = _dialogs(module, editor)
    module.uclass = lambda: lambda kind: _made(module, kind)
    module.uproperty = _Declared


def _entry(module):
    class ToolMenuEntry:
        def __init__(self, name="", type=None):
            if type is not module.MultiBlockType.MENU_ENTRY:
                raise TypeError("an entry needs the type MENU_ENTRY here")
            self.name, self.label, self.tip, self.command = name, "", "", None

        def set_label(self, label):
            self.label = label

        def set_tool_tip(self, tool_tip):
            self.tip = tool_tip

        def set_string_command(self, type, custom_type, string):
            assert type is module.ToolMenuStringCommandType.PYTHON
            self.command = string

    return ToolMenuEntry


def _menus(module, editor):
    class ToolMenu:
        def __init__(self, name):
            self.name, self.sections, self.entries = name, {}, {}

        def add_section(self, section_name, label=""):
            self.sections[section_name] = label

        def add_menu_entry(self, section_name, args):
            assert section_name in self.sections, "an unknown section"
            self.entries[args.name] = args

        def add_sub_menu(self, owner, section_name, name, label, tool_tip=""):
            return editor.menus.setdefault(f"{self.name}.{name}", ToolMenu(f"{self.name}.{name}"))

    class ToolMenus:
        @staticmethod
        def get():
            return ToolMenus()

        def find_menu(self, name):
            return editor.menus.get(name)

        def extend_menu(self, name):
            return editor.menus.setdefault(name, ToolMenu(name))

        def refresh_all_widgets(self):
            editor.menus_drawn = True

    return ToolMenus


class _Declared:
    """The placeholder that `uproperty` returns in a class body."""

    def __init__(self, type, meta=None, getter=None, setter=None):
        if meta is not None and not all(isinstance(v, str) for v in meta.values()):
            raise TypeError("meta: texts only")
        self.type = type


def _made(module, kind):
    """Makes an editor class from a Python class."""
    declared = {name: value.type for name, value in vars(kind).items() if isinstance(value, _Declared)}
    types = {name: value.__name__ for name, value in declared.items()}
    return type(kind.__name__, (objects.Object,), {"_types": types, "_module": module})


def _dialogs(module, editor):
    class EditorDialog:
        @staticmethod
        def show_message(title, message, message_type):
            if message_type is not module.AppMsgType.OK:
                raise TypeError("show_message: a type of message")
            editor.messages.append(message)
            return module.AppReturnType.OK

        @staticmethod
        def show_object_details_view(title, in_out_object, options=None):
            return editor.dialog(in_out_object)

    return EditorDialog
