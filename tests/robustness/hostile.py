"""Objects that a document may hold whose own code runs in the middle of a translation."""

_VALUES = {
    "__float__": 0.5,
    "__int__": 1,
    "__index__": 1,
    "__bool__": True,
    "__len__": 3,
    "__contains__": False,
    "__getitem__": 0.5,
    "__format__": "text",
    "__str__": "text",
    "__lt__": True,
    "__gt__": True,
    "__eq__": False,
    "__hash__": 1,
    "get": None,
    "lower": "text",
    "index": 0,
    "copy": None,
    "__iter__": (0.5,) * 3,
    "keys": (),
    "values": (),
    "items": (),
}


class Mine(Exception):
    """What a trap raises: no error of the interpreter or of the module."""


def trap(value, action):
    """An object that equals `value` in all that it does, but runs `action(name of the method)` before it does it.

    It is of a type derived from the value's own. `None` and other values that have no such types are stood for by a
    plain object that answers with something.
    """
    base = type(value) if type(value) in (str, float, int, dict, list, tuple) else object

    class Trap(base):
        pass

    def method(name):
        own = getattr(base, name, None) if base is not object else None

        def run(self, *args, **kwargs):
            action(name)
            if own is not None:
                return own(self, *args, **kwargs)
            return iter(_VALUES[name]) if name in ("__iter__", "keys", "values", "items") else _VALUES[name]

        return run

    names = [name for name in _VALUES if base is object or hasattr(base, name)]
    unhashable = base in (dict, list)
    for name in names:
        if not (unhashable and name == "__hash__"):
            setattr(Trap, name, method(name))
    if unhashable:
        Trap.__hash__ = None
    return Trap() if base is object else Trap(value)


def raising(value):
    """A trap that raises Mine at the first of its methods that is called."""

    def action(name):
        raise Mine(name)

    return trap(value, action)


def breaking_off(value):
    """A list or dict that raises Mine once it has been gone through."""

    def broken(items):
        yield from list(items)
        raise Mine("the end")

    if isinstance(value, list):
        return type("Breaking", (list,), {"__iter__": lambda self: broken(list.__iter__(self))})(value)
    return type(
        "Breaking",
        (dict,),
        {
            "__iter__": lambda self: broken(dict.__iter__(self)),
            "keys": lambda self: broken(dict.keys(self)),
            "values": lambda self: broken(dict.values(self)),
            "items": lambda self: broken(dict.items(self)),
        },
    )(value)


def wreck(document):
    """Takes a document apart, and with that frees what nobody else holds."""
    todo = [document]
    while todo:
        value = todo.pop()
        if isinstance(value, dict):
            todo += dict.values(value)
            dict.clear(value)
        elif isinstance(value, list):
            todo += list.__iter__(value)
            list.clear(value)


def shuffle(document):
    """Changes every list and dict of a document, and leaves as many items in it."""
    todo = [document]
    while todo:
        value = todo.pop()
        if isinstance(value, dict):
            items = list(dict.items(value))
            todo += [item for _, item in items]
            dict.clear(value)
            dict.update(value, {f"{key}?": [0.25] for key, _ in items})
        elif isinstance(value, list):
            todo += list.__iter__(value)
            value[:] = [{} for _ in range(list.__len__(value))]
