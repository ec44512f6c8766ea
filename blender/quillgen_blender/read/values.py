"""Socket values as plain numbers and lists, and the conversions that Blender makes between socket types."""

SCALARS = ("VALUE", "INT", "BOOLEAN")
TRIPLES = ("VECTOR", "RGBA", "ROTATION")
LUMA = (0.2126, 0.7152, 0.0722)


def kind(socket_type):
    """ "scalar", "triple" or None: what a conversion has to know of a type."""
    return "scalar" if socket_type in SCALARS else "triple" if socket_type in TRIPLES else None


def default(socket):
    """The value that the socket holds while nothing is linked to it; None where it is not a number."""
    value = getattr(socket, "default_value", None)
    if kind(socket.type) == "scalar":
        return value
    if kind(socket.type) == "triple":
        value = list(value)
        return value if socket.type == "RGBA" else (value + [0.0, 0.0, 0.0])[:3]
    return None


def zero(socket_type):
    return {
        "RGBA": [0.0, 0.0, 0.0, 1.0],
        "VECTOR": [0.0, 0.0, 0.0],
        "ROTATION": [0.0, 0.0, 0.0],
        "VALUE": 0.0,
        "INT": 0,
        "BOOLEAN": False,
    }.get(socket_type)


def convert(value, source, target):
    """A constant that crosses from a socket of one type into a socket of another."""
    if value is None or kind(target) is None:
        return None
    if kind(source) == "triple" and kind(target) == "scalar":
        weights = LUMA if source == "RGBA" else (1 / 3, 1 / 3, 1 / 3)
        value = sum(part * weight for part, weight in zip(value, weights))
    if kind(source) == "scalar" and kind(target) == "triple":
        value = [float(value)] * 3
    if kind(target) == "triple":
        return value[:3] + [1.0] if target == "RGBA" else value[:3]
    return {"INT": int, "BOOLEAN": lambda number: number > 0, "VALUE": float}[target](value)
