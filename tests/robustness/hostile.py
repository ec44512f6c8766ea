"""Objects for documents whose own code runs during a translation."""

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
    """The exception that a trap raises. Neither the interpreter nor the module raises it."""


def trap(value, action):
    """An object that behaves like `value`, but each of its methods first runs `action(name of the method)`.

    Its type is derived from the value's type. For `None` and other values whose type isn't handled, it is a plain
    object that returns some value.
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
    """A list or dict that raises Mine at the end of its iteration."""

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
    """Empties all containers of a document, which frees everything that nobody else owns."""
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
    """Changes every list and dict of a document without changing their sizes."""
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
